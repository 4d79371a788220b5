#include "live/check_engine.h"

#include <algorithm>

#include "base/errors.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::size_t fieldWidth = 7;

/// The text of a code, and what the two fields of the dashboard make of it.
struct Code {
    std::string_view text;
    std::string_view top;
    std::string_view bottom;
};

constexpr Code noCode{" ", {}, {}};
constexpr Code spare(std::string_view number) {
    return {number, "CODE", number};
}
constexpr Code past(std::string_view text, std::string_view what) {
    return {text, "INTRMT", what};
}

/// A line for each code word, a code for each bit; words 4 and 10 have two lines, first that of a kind with
/// analog inputs. The dashboard steps through the codes in this order.
// clang-format off
constexpr std::array<Code, CheckEngineTexts::bitCount> codeLines[] = {
    {{spare("11"), {"12 - Trigger Wheel Error", "TRIGGER", "ERROR"},
      {"13 - Cam Sensor Failure", "CAM SEN", "FAILURE"}, {"14 - ECU Internal Failure", "ECU INT", "FAILURE"},
      spare("15"), spare("16"), spare("17"), spare("18")}},
    {{{"21 - TPS Sensor Failed High", "TPS SEN", "FAIL HI"},
      {"22 - TPS Sensor Failed Low", "TPS SEN", "FAIL LO"},
      {"23 - MAP Sensor Failed High", "MAP SEN", "FAIL HI"},
      {"24 - MAP Sensor Failed Low", "MAP SEN", "FAIL LO"},
      {"25 - CLT Sensor Failed High", "CLT SEN", "FAIL HI"},
      {"26 - CLT Sensor Failed Low", "CLT SEN", "FAIL LO"}, spare("27"), spare("28")}},
    {{{"31 - MAT Sensor Failed High", "MAT SEN", "FAIL HI"},
      {"32 - MAT Sensor Failed Low", "MAT SEN", "FAIL LO"},
      {"33 - BAT Voltage Failed High", "BATTERY", "FAIL HI"},
      {"34 - BAT Voltage Failed Low", "BATTERY", "FAIL LO"},
      {"35 - Knock Response too Long", "KNOCK", "TOO LNG"}, {"36 - Knock Not Detected", "KNOCK", "NOT DET"},
      {"37 - EGO Lean Too Long", "EGO", "LEAN"}, {"38 - EGO Rich Too Long", "EGO", "RICH"}}},
    {{{"41 - AD1 Failed High", "AD1", "FAIL HI"}, {"42 - AD1 Failed Low", "AD1", "FAIL LO"},
      {"43 - AD2 Failed High", "AD2", "FAIL HI"}, {"44 - AD2 Failed Low", "AD2", "FAIL LO"},
      {"45 - AD3 Failed High", "AD3", "FAIL HI"}, {"46 - AD3 Failed Low", "AD3", "FAIL LO"},
      {"47 - AD4 Failed High", "AD4", "FAIL HI"}, {"48 - AD4 Failed Low", "AD4", "FAIL LO"}}},
    {{{"41 - GPO5 Failed", "GPO5", "FAILED"}, {"42 - GPO6 Failed", "GPO6", "FAILED"},
      {"43 - GPO7 Failed", "GPO7", "FAILED"}, {"44 - GPO8 Failed", "GPO8", "FAILED"},
      {"45 - GPO9 Failed", "GPO9", "FAILED"}, noCode, noCode, noCode}},
    {{{"51 - GPO1 Failed", "GPO1", "FAILED"}, {"52 - GPO2 Failed", "GPO2", "FAILED"},
      {"53 - GPO3 Failed", "GPO3", "FAILED"}, {"54 - GPO4 Failed", "GPO4", "FAILED"},
      {"55 - Fuel Pump Failed", "FUEL PU", "FAILED"}, {"56 - Check Engine Failure", "CHK ENG", "FAILURE"},
      {"57 - Spare Out", "SPARE", "OUT"}, {"58 - TACH Failed", "TACH", "FAILED"}}},
    {{{"61 - ISC1 Thermal Shutdown", "ISC1", "THERMAL"},
      {"62 - ISC2 Short to Battery or Open Load", "ISC2", "SHRT/OP"},
      {"63 - ISC3 Short to Ground", "ISC3", "SHRT GN"}, spare("64"), spare("65"), spare("66"), spare("67"),
      spare("68")}},
    {{noCode, past("Intermittent Trigger Wheel", "TRIGGER"), past("Intermittent Cam Sensor", "CAM SEN"),
      past("Intermittent ECU Internal", "ECU INT"), noCode, noCode, noCode, noCode}},
    {{past("Intermittent TPS Sensor High", "TPS HI"), past("Intermittent TPS Sensor Low", "TPS LO"),
      past("Intermittent MAP Sensor High", "MAP HI"), past("Intermittent MAP Sensor Low", "MAP LO"),
      past("Intermittent CLT Sensor High", "CLT HI"), past("Intermittent CLT Sensor Low", "CLT LO"), noCode,
      noCode}},
    {{past("Intermittent MAT Sensor High", "MAT HI"), past("Intermittent MAT Sensor Low", "MAT LO"),
      past("Intermittent BAT Voltage High", "BAT HI"), past("Intermittent BAT Voltage Low", "BAT LO"),
      past("Intermittent Knock too Long", "KNK LNG"), past("Intermittent Knock Not Detected", "KNK NOT"),
      past("Intermittent EGO Lean Too Long", "EGO LN"), past("Intermittent EGO Rich Too Long", "EGO RCH")}},
    {{past("Intermittent AD1 Failed High", "AD1 HI"), past("Intermittent AD1 Failed Low", "AD1 LO"),
      past("Intermittent AD2 Failed High", "AD2 HI"), past("Intermittent AD2 Failed Low", "AD2 LO"),
      past("Intermittent AD3 Failed High", "AD3 HI"), past("Intermittent AD3 Failed Low", "AD3 LO"),
      past("Intermittent AD4 Failed High", "AD4 HI"), past("Intermittent AD4 Failed Low", "AD4 LO")}},
    {{past("Intermittent GPO5 Failed", "GPO5"), past("Intermittent GPO6 Failed", "GPO6"),
      past("Intermittent GPO7 Failed", "GPO7"), past("Intermittent GPO8 Failed", "GPO8"),
      past("Intermittent GPO9 Failed", "GPO9"), noCode, noCode, noCode}},
    {{past("Intermittent GPO1 Failed", "GPO1"), past("Intermittent GPO2 Failed", "GPO2"),
      past("Intermittent GPO3 Failed", "GPO3"), past("Intermittent GPO4 Failed", "GPO4"),
      past("Intermittent Fuel Pump Failed", "FUEL PU"), past("Intermittent Check Engine", "CHK ENG"),
      past("Spare Out", "SPARE"), past("Intermittent TACH Failure", "TACH")}},
    {{past("Intermittent ISC1 Thermal Shutdown", "ISC1"),
      past("Intermittent ISC2 Short to Battery or Open Load", "ISC2"),
      past("Intermittent ISC3 Short to Ground", "ISC3"), noCode, noCode, noCode, noCode, noCode}},
};
// clang-format on
constexpr int lineCount = static_cast<int>(std::size(codeLines));
static_assert(lineCount * CheckEngineTexts::bitCount <= CheckEngineDisplay::entryCount);

int lineOf(const UnitKind& kind, int row) {
    int line = row - 1;
    for (const int twofold : {4, 10}) {
        if (row > twofold || (row == twofold && !kind.analogCodes)) ++line;
    }
    return line;
}

const Code& codeOf(int entry) {
    const auto at = static_cast<std::size_t>(entry);
    return codeLines[at / CheckEngineTexts::bitCount][at % CheckEngineTexts::bitCount];
}

int entryOf(std::string_view text) {
    for (int entry = 0; entry < lineCount * CheckEngineTexts::bitCount; ++entry) {
        if (codeOf(entry).text == text) return text == noCode.text ? -1 : entry;
    }
    return -1;
}

ShortCode fieldsOf(int entry) {
    const Code& code = codeOf(entry);
    return {fixedWidth(code.top, fieldWidth), fixedWidth(code.bottom, fieldWidth)};
}

}  // namespace

std::string_view CheckEngineTexts::text(const UnitKind& kind, int row, int bit) {
    if (row < 1 || row > rowCount || bit < 0 || bit >= bitCount) throw BoundsError();
    return codeOf(lineOf(kind, row) * bitCount + bit).text;
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
    return fieldsOf(entry);
}

std::string codeLine(const ShortCode& code, std::size_t count) {
    std::string line;
    if (count > 0) line = std::to_string(count) + (count == 1 ? " code: " : " codes: ");
    return line.append(trimmed(code.top)).append(" ").append(trimmed(code.bottom));
}

std::string codeTip(const ShortCode& code, const std::vector<std::string_view>& texts) {
    constexpr std::size_t linesOfTip = 16;
    std::string tip = codeLine(code, texts.size());
    const std::size_t shown = std::min(texts.size(), linesOfTip);
    for (std::size_t i = 0; i < shown; ++i) tip.append("\n").append(texts[i]);
    if (shown < texts.size()) tip += "\nand " + std::to_string(texts.size() - shown) + " more";
    return tip;
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

std::vector<std::string_view> CheckEngineDisplay::texts() const {
    std::vector<std::string_view> texts;
    for (int entry = 0; entry < entryCount; ++entry) {
        if (filled_[static_cast<std::size_t>(entry)]) texts.push_back(codeOf(entry).text);
    }
    return texts;
}

std::optional<ShortCode> CheckEngineDisplay::step() {
    for (int tries = 0; tries < entryCount; ++tries) {
        shownEntry_ = (shownEntry_ + 1) % entryCount;
        if (filled_[static_cast<std::size_t>(shownEntry_)]) return fieldsOf(shownEntry_);
    }
    if (clearedSteps_ == 0) return {};
    --clearedSteps_;
    return ShortCode{fixedWidth("CODES", fieldWidth), fixedWidth("CLEARED", fieldWidth)};
}

}  // namespace zentaq
