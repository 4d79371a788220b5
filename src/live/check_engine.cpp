#include "live/check_engine.h"

#include <algorithm>

#include "base/errors.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::size_t fieldWidth = 7;

using CodeRow = std::array<std::string_view, CheckEngineTexts::bitCount>;

constexpr std::array<CodeRow, CheckEngineTexts::rowCount> codeRows{{
    {"11", "12 - Trigger Wheel Error", "13 - Cam Sensor Failure", "14 - ECU Internal Failure", "15", "16",
     "17", "18"},
    {"21 - TPS Sensor Failed High", "22 - TPS Sensor Failed Low", "23 - MAP Sensor Failed High",
     "24 - MAP Sensor Failed Low", "25 - CLT Sensor Failed High", "26 - CLT Sensor Failed Low", "27", "28"},
    {"31 - MAT Sensor Failed High", "32 - MAT Sensor Failed Low", "33 - BAT Voltage Failed High",
     "34 - BAT Voltage Failed Low", "35 - Knock Response too Long", "36 - Knock Not Detected",
     "37 - EGO Lean Too Long", "38 - EGO Rich Too Long"},
    {"41 - GPO5 Failed", "42 - GPO6 Failed", "43 - GPO7 Failed", "44 - GPO8 Failed", "45 - GPO9 Failed", " ",
     " ", " "},
    {"51 - GPO1 Failed", "52 - GPO2 Failed", "53 - GPO3 Failed", "54 - GPO4 Failed", "55 - Fuel Pump Failed",
     "56 - Check Engine Failure", "57 - Spare Out", "58 - TACH Failed"},
    {"61 - ISC1 Thermal Shutdown", "62 - ISC2 Short to Battery or Open Load", "63 - ISC3 Short to Ground",
     "64", "65", "66", "67", "68"},
    {" ", "Intermittent Trigger Wheel", "Intermittent Cam Sensor", "Intermittent ECU Internal", " ", " ", " ",
     " "},
    {"Intermittent TPS Sensor High", "Intermittent TPS Sensor Low", "Intermittent MAP Sensor High",
     "Intermittent MAP Sensor Low", "Intermittent CLT Sensor High", "Intermittent CLT Sensor Low", " ", " "},
    {"Intermittent MAT Sensor High", "Intermittent MAT Sensor Low", "Intermittent BAT Voltage High",
     "Intermittent BAT Voltage Low", "Intermittent Knock too Long", "Intermittent Knock Not Detected",
     "Intermittent EGO Lean Too Long", "Intermittent EGO Rich Too Long"},
    {"Intermittent GPO5 Failed", "Intermittent GPO6 Failed", "Intermittent GPO7 Failed",
     "Intermittent GPO8 Failed", "Intermittent GPO9 Failed", " ", " ", " "},
    {"Intermittent GPO1 Failed", "Intermittent GPO2 Failed", "Intermittent GPO3 Failed",
     "Intermittent GPO4 Failed", "Intermittent Fuel Pump Failed", "Intermittent Check Engine", "Spare Out",
     "Intermittent TACH Failure"},
    {"Intermittent ISC1 Thermal Shutdown", "Intermittent ISC2 Short to Battery or Open Load",
     "Intermittent ISC3 Short to Ground", " ", " ", " ", " ", " "},
}};

/// Rows 4 and 10 of a kind with analog inputs there.
constexpr CodeRow analogRow4{"41 - AD1 Failed High", "42 - AD1 Failed Low",  "43 - AD2 Failed High",
                             "44 - AD2 Failed Low",  "45 - AD3 Failed High", "46 - AD3 Failed Low",
                             "47 - AD4 Failed High", "48 - AD4 Failed Low"};
constexpr CodeRow analogRow10{"Intermittent AD1 Failed High", "Intermittent AD1 Failed Low",
                              "Intermittent AD2 Failed High", "Intermittent AD2 Failed Low",
                              "Intermittent AD3 Failed High", "Intermittent AD3 Failed Low",
                              "Intermittent AD4 Failed High", "Intermittent AD4 Failed Low"};

struct Reduction {
    std::string_view text;
    std::string_view top;
    std::string_view bottom;
};

/// In the order in which the dashboard steps through them.
constexpr std::array reductions{
    Reduction{"11", "CODE", "11"},
    Reduction{"12 - Trigger Wheel Error", "TRIGGER", "ERROR"},
    Reduction{"13 - Cam Sensor Failure", "CAM SEN", "FAILURE"},
    Reduction{"14 - ECU Internal Failure", "ECU INT", "FAILURE"},
    Reduction{"15", "CODE", "15"},
    Reduction{"16", "CODE", "16"},
    Reduction{"17", "CODE", "17"},
    Reduction{"18", "CODE", "18"},
    Reduction{"21 - TPS Sensor Failed High", "TPS SEN", "FAIL HI"},
    Reduction{"22 - TPS Sensor Failed Low", "TPS SEN", "FAIL LO"},
    Reduction{"23 - MAP Sensor Failed High", "MAP SEN", "FAIL HI"},
    Reduction{"24 - MAP Sensor Failed Low", "MAP SEN", "FAIL LO"},
    Reduction{"25 - CLT Sensor Failed High", "CLT SEN", "FAIL HI"},
    Reduction{"26 - CLT Sensor Failed Low", "CLT SEN", "FAIL LO"},
    Reduction{"27", "CODE", "27"},
    Reduction{"28", "CODE", "28"},
    Reduction{"31 - MAT Sensor Failed High", "MAT SEN", "FAIL HI"},
    Reduction{"32 - MAT Sensor Failed Low", "MAT SEN", "FAIL LO"},
    Reduction{"33 - BAT Voltage Failed High", "BATTERY", "FAIL HI"},
    Reduction{"34 - BAT Voltage Failed Low", "BATTERY", "FAIL LO"},
    Reduction{"35 - Knock Response too Long", "KNOCK", "TOO LNG"},
    Reduction{"36 - Knock Not Detected", "KNOCK", "NOT DET"},
    Reduction{"37 - EGO Lean Too Long", "EGO", "LEAN"},
    Reduction{"38 - EGO Rich Too Long", "EGO", "RICH"},
    Reduction{"41 - AD1 Failed High", "AD1", "FAIL HI"},
    Reduction{"42 - AD1 Failed Low", "AD1", "FAIL LO"},
    Reduction{"43 - AD2 Failed High", "AD2", "FAIL HI"},
    Reduction{"44 - AD2 Failed Low", "AD2", "FAIL LO"},
    Reduction{"45 - AD3 Failed High", "AD3", "FAIL HI"},
    Reduction{"46 - AD3 Failed Low", "AD3", "FAIL LO"},
    Reduction{"47 - AD4 Failed High", "AD4", "FAIL HI"},
    Reduction{"48 - AD4 Failed Low", "AD4", "FAIL LO"},
    Reduction{"41 - GPO5 Failed", "GPO5", "FAILED"},
    Reduction{"42 - GPO6 Failed", "GPO6", "FAILED"},
    Reduction{"43 - GPO7 Failed", "GPO7", "FAILED"},
    Reduction{"44 - GPO8 Failed", "GPO8", "FAILED"},
    Reduction{"45 - GPO9 Failed", "GPO9", "FAILED"},
    Reduction{"51 - GPO1 Failed", "GPO1", "FAILED"},
    Reduction{"52 - GPO2 Failed", "GPO2", "FAILED"},
    Reduction{"53 - GPO3 Failed", "GPO3", "FAILED"},
    Reduction{"54 - GPO4 Failed", "GPO4", "FAILED"},
    Reduction{"55 - Fuel Pump Failed", "FUEL PU", "FAILED"},
    Reduction{"56 - Check Engine Failure", "CHK ENG", "FAILURE"},
    Reduction{"57 - Spare Out", "SPARE", "OUT"},
    Reduction{"58 - TACH Failed", "TACH", "FAILED"},
    Reduction{"61 - ISC1 Thermal Shutdown", "ISC1", "THERMAL"},
    Reduction{"62 - ISC2 Short to Battery or Open Load", "ISC2", "SHRT/OP"},
    Reduction{"63 - ISC3 Short to Ground", "ISC3", "SHRT GN"},
    Reduction{"64", "CODE", "64"},
    Reduction{"65", "CODE", "65"},
    Reduction{"66", "CODE", "66"},
    Reduction{"67", "CODE", "67"},
    Reduction{"68", "CODE", "68"},
    Reduction{"Intermittent Trigger Wheel", "INTRMT", "TRIGGER"},
    Reduction{"Intermittent Cam Sensor", "INTRMT", "CAM SEN"},
    Reduction{"Intermittent ECU Internal", "INTRMT", "ECU INT"},
    Reduction{"Intermittent TPS Sensor High", "INTRMT", "TPS HI"},
    Reduction{"Intermittent TPS Sensor Low", "INTRMT", "TPS LO"},
    Reduction{"Intermittent MAP Sensor High", "INTRMT", "MAP HI"},
    Reduction{"Intermittent MAP Sensor Low", "INTRMT", "MAP LO"},
    Reduction{"Intermittent CLT Sensor High", "INTRMT", "CLT HI"},
    Reduction{"Intermittent CLT Sensor Low", "INTRMT", "CLT LO"},
    Reduction{"Intermittent MAT Sensor High", "INTRMT", "MAT HI"},
    Reduction{"Intermittent MAT Sensor Low", "INTRMT", "MAT LO"},
    Reduction{"Intermittent BAT Voltage High", "INTRMT", "BAT HI"},
    Reduction{"Intermittent BAT Voltage Low", "INTRMT", "BAT LO"},
    Reduction{"Intermittent Knock too Long", "INTRMT", "KNK LNG"},
    Reduction{"Intermittent Knock Not Detected", "INTRMT", "KNK NOT"},
    Reduction{"Intermittent EGO Lean Too Long", "INTRMT", "EGO LN"},
    Reduction{"Intermittent EGO Rich Too Long", "INTRMT", "EGO RCH"},
    Reduction{"Intermittent AD1 Failed High", "INTRMT", "AD1 HI"},
    Reduction{"Intermittent AD1 Failed Low", "INTRMT", "AD1 LO"},
    Reduction{"Intermittent AD2 Failed High", "INTRMT", "AD2 HI"},
    Reduction{"Intermittent AD2 Failed Low", "INTRMT", "AD2 LO"},
    Reduction{"Intermittent AD3 Failed High", "INTRMT", "AD3 HI"},
    Reduction{"Intermittent AD3 Failed Low", "INTRMT", "AD3 LO"},
    Reduction{"Intermittent AD4 Failed High", "INTRMT", "AD4 HI"},
    Reduction{"Intermittent AD4 Failed Low", "INTRMT", "AD4 LO"},
    Reduction{"Intermittent GPO5 Failed", "INTRMT", "GPO5"},
    Reduction{"Intermittent GPO6 Failed", "INTRMT", "GPO6"},
    Reduction{"Intermittent GPO7 Failed", "INTRMT", "GPO7"},
    Reduction{"Intermittent GPO8 Failed", "INTRMT", "GPO8"},
    Reduction{"Intermittent GPO9 Failed", "INTRMT", "GPO9"},
    Reduction{"Intermittent GPO1 Failed", "INTRMT", "GPO1"},
    Reduction{"Intermittent GPO2 Failed", "INTRMT", "GPO2"},
    Reduction{"Intermittent GPO3 Failed", "INTRMT", "GPO3"},
    Reduction{"Intermittent GPO4 Failed", "INTRMT", "GPO4"},
    Reduction{"Intermittent Fuel Pump Failed", "INTRMT", "FUEL PU"},
    Reduction{"Intermittent Check Engine", "INTRMT", "CHK ENG"},
    Reduction{"Spare Out", "INTRMT", "SPARE"},
    Reduction{"Intermittent TACH Failure", "INTRMT", "TACH"},
    Reduction{"Intermittent ISC1 Thermal Shutdown", "INTRMT", "ISC1"},
    Reduction{"Intermittent ISC2 Short to Battery or Open Load", "INTRMT", "ISC2"},
    Reduction{"Intermittent ISC3 Short to Ground", "INTRMT", "ISC3"},
};
static_assert(reductions.size() <= CheckEngineDisplay::entryCount);

int entryOf(std::string_view text) {
    const auto found = std::find_if(reductions.begin(), reductions.end(),
                                    [&](const Reduction& entry) { return entry.text == text; });
    return found == reductions.end() ? -1 : static_cast<int>(found - reductions.begin());
}

ShortCode fieldsOf(const Reduction& entry) {
    return {fixedWidth(entry.top, fieldWidth), fixedWidth(entry.bottom, fieldWidth)};
}

}  // namespace

std::string_view CheckEngineTexts::text(const UnitKind& kind, int row, int bit) {
    if (row < 1 || row > rowCount || bit < 0 || bit >= bitCount) throw BoundsError();
    const auto column = static_cast<std::size_t>(bit);
    if (kind.analogCodes && row == 4) return analogRow4[column];
    if (kind.analogCodes && row == 10) return analogRow10[column];
    return codeRows[static_cast<std::size_t>(row) - 1][column];
}

std::vector<std::string> activeCodes(const Unit& unit) {
    std::vector<std::string> texts;
    for (int row = 1; row <= CheckEngineTexts::rowCount; ++row) {
        const int word = unit.Get_ECData(row - 1);
        for (int bit = 0; bit < CheckEngineTexts::bitCount; ++bit) {
            if ((word >> bit) % 2 != 0) continue;
            texts.emplace_back(CheckEngineTexts::text(unit.kind(), row, bit));
        }
    }
    return texts;
}

std::optional<ShortCode> shortCode(std::string_view text) {
    const int entry = entryOf(text);
    if (entry < 0) return {};
    return fieldsOf(reductions[static_cast<std::size_t>(entry)]);
}

void CheckEngineDisplay::Update_CHKE(std::string_view text) {
    const int entry = entryOf(text);
    if (entry < 0) return;
    filled_[static_cast<std::size_t>(entry)] = true;
    clearedSteps_ = 0;
}

void CheckEngineDisplay::Clear_CHKE() {
    filled_.fill(false);
    shownEntry_ = -1;
}

bool CheckEngineDisplay::empty() const {
    return std::none_of(filled_.begin(), filled_.end(), [](bool filled) { return filled; });
}

std::optional<ShortCode> CheckEngineDisplay::step() {
    for (int tries = 0; tries < entryCount; ++tries) {
        shownEntry_ = (shownEntry_ + 1) % entryCount;
        const auto at = static_cast<std::size_t>(shownEntry_);
        if (filled_[at]) return fieldsOf(reductions[at]);
    }
    if (clearedSteps_ == 0) return {};
    --clearedSteps_;
    return ShortCode{fixedWidth("CODES", fieldWidth), fixedWidth("CLEARED", fieldWidth)};
}

}  // namespace zentaq
