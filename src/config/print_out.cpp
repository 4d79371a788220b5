#include "config/print_out.h"

#include <algorithm>
#include <array>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "base/utf8.h"
#include "config/field_pages.h"
#include "config/shown_value.h"
#include "unit/gpio_model.h"
#include "unit/parameter_names.h"
#include "unit/table_kinds.h"

namespace zentaq {

namespace {

/// One with more digits than its place still stands apart from the one before it.
std::string leftPadded(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : " " + text;
}
std::string rightPadded(const std::string& text, std::size_t width) {
    const std::size_t length = characterCount(text);
    return length >= width ? text : text + std::string(width - length, ' ');
}

/// As the pages show the member.
const FieldTraits& traitsOf(std::string_view member) {
    static const FieldTraits plain;
    const auto rows = fieldRows();
    const auto found = std::ranges::find_if(
        rows, [&](const FieldRow& row) { return row.member == member && row.kind == FieldKind::Number; });
    return found == rows.end() ? plain : *found;
}

/// A line of one member: caption, value by a pattern or as it is shown, and what stands behind it.
struct MemberLine {
    std::string_view caption;  ///< empty: the member's own name
    std::string_view member;
    std::string_view pattern{};
    std::string_view tail{};
};

class Listing {
 public:
    Listing(Unit& unit, const PrintFacts& facts) : unit_(unit), facts_(facts) {}

    std::vector<std::string> take() { return std::move(lines_); }
    void all();

 private:
    bool full() const { return unit_.kind().fuelSide; }
    /// Of a full unit the first heading; an ignition-only one has some sections, by the second.
    bool begin(std::string_view first, std::string_view second) {
        const std::string_view heading = full() ? first : second;
        if (heading.empty()) return false;
        put("");
        put(std::string(heading));
        put("");
        return true;
    }
    void put(std::string line) { lines_.push_back(std::move(line)); }

    /// "80 DEG C", "41.5 kPa", "6500 RPM".
    std::string valueOf(std::string_view member, int element = 0, std::string_view pattern = {}) {
        std::string text;
        skipFailing([&] {
            const Parameter* row = unit_.find(member);
            if (row == nullptr) return;
            const float value = unit_.read(*row, element);
            if (!pattern.empty()) {
                text = formatNumber(value, pattern);
            } else if (row->unit == "Celsius") {
                text = formatNumber(value, "##0") + " DEG C";
            } else {
                const FieldTraits& traits = traitsOf(member);
                const std::string in = shownUnit(unit_, *row, traits);
                text = shownValue(unit_, *row, traits, element) + (in.empty() ? "" : " " + in);
            }
        });
        return text;
    }
    void entry(const MemberLine& told) {
        if (!unit_.has(told.member)) return;
        const std::string caption = told.caption.empty() ? std::string(nameOfParameter(told.member)) + " = "
                                                         : std::string(told.caption);
        put(caption + valueOf(told.member, 0, told.pattern) + std::string(told.tail));
    }
    void entries(std::initializer_list<MemberLine> all) {
        for (const MemberLine& one : all) entry(one);
    }
    bool isOn(std::string_view member) {
        bool on = false;
        skipFailing([&] { on = unit_.get(member) != 0; });
        return on;
    }
    void oneOf(std::string_view caption, std::string_view member, std::string_view off, std::string_view on) {
        if (unit_.has(member)) put(std::string(caption) + std::string(isOn(member) ? on : off));
    }

    /// The cells of a curve behind a word, so many a line, with their stops above where they have some.
    void curve(std::string_view word, std::string_view member, FieldAxis axis = FieldAxis::None,
               std::string_view stopWord = {}) {
        const Parameter* row = unit_.find(member);
        if (row == nullptr) return;
        constexpr int inLine = 10;
        constexpr std::size_t width = 8;
        const std::size_t first = std::max(word.size(), stopWord.size());
        for (int begin = 0; begin < row->count; begin += inLine) {
            std::string stops = rightPadded(std::string(stopWord), first);
            std::string cells = rightPadded(std::string(word), first);
            for (int i = begin; i < std::min(begin + inLine, row->count); ++i) {
                skipFailing([&] { stops += leftPadded(celsiusStop(axis, i, row->count), width); });
                std::string cell;
                skipFailing([&] { cell = plainValue(*row, i); });
                cells += leftPadded(cell, width);
            }
            if (axis != FieldAxis::None) put(stops);
            put(cells);
        }
    }
    std::string plainValue(const Parameter& row, int element) {
        if (row.unit == "MAP") return shownValue(unit_, row, {}, element);
        return numberText(unit_.read(row, element));
    }
    /// Temperatures are printed in Celsius, whatever the user's scale is.
    std::string celsiusStop(FieldAxis axis, int element, int count) {
        const bool air = axis == FieldAxis::AirTemperature && unit_.kind().retardInputVolts == 0;
        if (axis == FieldAxis::Temperature || air)
            return numberText(static_cast<float>(-40 + 190.0 * element / (count - 1)));
        return shownStop(unit_, axis, element, count);
    }

    void grid(std::string_view table, std::string_view pattern, std::size_t width);
    void basics();
    void enrichments();
    void advance();
    void ego();
    void knock();
    void idle();
    void revLimiter();
    void sensors();
    void trims();
    void pins();
    std::vector<int> firingOrder();

    Unit& unit_;
    const PrintFacts& facts_;
    std::vector<std::string> lines_;
};

// ---- Grids

void Listing::grid(std::string_view table, std::string_view pattern, std::size_t width) {
    skipFailing([&] {
        const int rows = unit_.GET_TBL_DIMENSIONS(table, "ROWS");
        const int columns = unit_.GET_TBL_DIMENSIONS(table, "COLS");
        const TableKind* kind = findTable(table);
        if (kind == nullptr) return;
        const bool output = kind->isGpo();
        const auto stop = [&](bool row, int i) {
            if (output) return unit_.Get_GPO_Stop(i, row ? "Y-Axis" : "X-Axis", table);
            return unit_.get(row ? "MAPTBL" : "RPMTBL", i);
        };
        const std::size_t first = 8;
        std::string head = rightPadded("RPM ", first);
        for (int c = 0; c < columns; ++c) head += leftPadded(formatNumber(stop(false, c), "##000"), width);
        put(head);
        for (int r = rows - 1; r >= 0; --r) {
            std::string line =
                rightPadded(formatNumber(stop(true, r), unit_.MAPPrecision() > 1 ? "00.00" : "000"), first);
            for (int c = 0; c < columns; ++c) {
                const int index = r * storedColumns + c;
                const float cell =
                    output ? unit_.Get_GPIO_Table(kind->gpoNumber, index) : unit_.get(kind->member, index);
                line += leftPadded(formatNumber(cell, pattern), width);
            }
            put(line);
        }
    });
}

// ---- Sections

void Listing::basics() {
    begin("1.  WIZARD & BASIC PARAMETERS", "1.  WIZARD & BASIC PARAMETERS");
    put("Current Engine Configuration = " + facts_.engine);
    entries({{"User Adjustable PulseWidth(TOG) = ", "scale1", "##.000", " Milli-seconds"},
             {"Injector PulseWidth offset time(IOT) = ", "INJ_On", "#0.000"},
             {"Minimum turn-on time for injectors = ", "MT", "##.00000"}});
    oneOf("Camshaft Style = ", "CAMSTL", "Street/Stock Cam", "Race/High Performance Cam");
    entries(
        {{"Number of Injectors = ", "INJ_Number", "#0"}, {"Estimated Brake HorsePower = ", "BHP", "##0"}});
    oneOf("Fuel Type(Gas/Alcohol) = ", "Alcohol", "Gasoline Fuel", "Alcohol Fuel");
    entry({"Injector Size = ", "INJ_FlowRate", "##0.00"});
    oneOf("Injector Peak Current = ", "AMP42", "2 Amp", "4 Amp");
}

void Listing::enrichments() {
    if (!begin("2.  FUEL ENRICHMENTS", "")) return;
    put("TPS/MAP BLEND TABLE");
    curve("ERPM    ", "BLDTBL");
    curve("TPS%    ", "LOWBLD");
    entry({"TPS-BLEND OFFSET = ", "TBSOFF"});
    put("");
    put("MAP/TPS ACCELERATION ENRICHMENTS");
    for (const char* member :
         {"ACE0", "ACE1", "ACE2", "ACE3", "ACE4", "ACE5", "ACE6", "ACE7", "ACE8", "ACE9"})
        entry({{}, member});
    put("");
    put("DE-ACCELERATION ENRICHMENT");
    for (const char* member : {"DCCL_0", "DCCL_1", "DCCL_3", "DCCL_4"}) entry({{}, member});
    put("");
    put("BATTERY VOLTAGE COMPENSATION");
    curve("MICROSEC", "BATCom", FieldAxis::BatteryVolts, "VOLTS   ");
    put("");
    put("STARTING ENRICHMENTS");
    for (const char* member : {"SEPW", "SECLT", "ASE0", "ASE1"}) entry({{}, member});
    put("");
    entry({"FUEL PUMP TURN-ON TIME = ", "FPT"});
    put("");
    put("MAT FUEL ENRICHMENT");
    curve("%FPW    ", "MATENH", FieldAxis::AirTemperature, "DEG C   ");
    put("");
    put("WARM-UP PARAMETERS");
    curve("%FPW    ", "CHKTBL", FieldAxis::Temperature, "DEG C   ");
    put("");
    put("OVERBOOST FUEL CUTOFF");
    for (const char* member : {"MAP_Max", "BSTCTTM"}) entry({{}, member});
}

void Listing::advance() {
    if (begin("5.  ADVANCE TABLE", "2.  ADVANCE TABLE")) {
        put("ADVANCE (DEGREES)");
        grid("ADV", "#0.0", 6);
        entry({"Initial advance = ", "Initial_Advance", "##", " Degrees"});
    }
    if (begin("6.  COOLANT ADVANCE TABLE", "")) {
        curve("ADV (DEG)   ", "CLTTBL", FieldAxis::Temperature, "DEG C       ");
    }
    if (begin("7.  MANIFOLD TEMP ADVANCE TABLE", "3.  EXTERNAL RETARD TABLE")) {
        curve("ADV (DEG)   ", "MATADV", FieldAxis::AirTemperature, full() ? "DEG C       " : "RET VOLTS   ");
    }
    if (begin("8.  DUAL PLUG TIMING-SPLIT", "4.  DUAL PLUG TIMING-SPLIT")) {
        curve("SPLIT   ", "SPLITBL", FieldAxis::Speed, "RPM     ");
    }
}

void Listing::ego() {
    if (!begin("9.  EGO PARAMETERS", "")) return;
    put(std::string("EGO Feedback Control is ") +
        (unit_.Get_Control(egoFeedbackBit) ? "enabled" : "disabled"));
    for (const char* member :
         {"EGO_TMP", "CONDIV", "AVRDIV", "Register_Number", "EGO_LMT", "EGO_RPM", "EGO_MAP"})
        entry({{}, member});
    put("");
    put("EGO/WIDEBAND CALIBRATION");
    curve("Volts   ", "X");
    curve("AFR     ", "Y");
}

void Listing::knock() {
    if (!begin("11. KNOCK CONTROL PARAMETERS", "5.  KNOCK CONTROL PARAMETERS")) return;
    put(std::string("Knock Control is ") + (isOn("opt_KnockActive") ? "enabled" : "disabled"));
    entries({{"A. Knock threshold = ", "KNK_MIN"},
             {"B. Rate of Advance Retard = ", "KNK_ATK"},
             {"C. Maximum Retard Allowed = ", "KNK_MAX"},
             {"D. Rate of Advance Increase = ", "KNK_DCY"},
             {"E. RPM above which Knock Control is Inhibited = ", "KNK_RPM"}});
}

void Listing::idle() {
    if (!begin("12. IDLE CONTROL PARAMETERS", "")) return;
    const bool active = unit_.Get_Control(idleControlBit);
    put(!active                 ? "Idle Speed Control is disabled"
        : isOn("opt_IdleSpeed") ? "Idle Speed Control is enabled with 2-wire IAC"
                                : "Idle Speed Control is enabled with 4-wire IAC");
    entries({{"IAC Reset Position = ", "Reset_Duty"}, {"IAC Startup (Choke) position = ", "IAC_Start"}});
    curve("RPM     ", "ISRPM");
    curve("DEG C   ", "ISTMP");
    put("");
    put("IDLE CONTROL SENSITIVITIES");
    for (const char* member : {"POSPGAIN", "NEGPGAIN", "POSDGAIN", "NEGDGAIN"}) entry({{}, member});
    put("");
    put("IDLE SPEED RESET RPM POINTS");
    for (const char* member : {"IAC_RPM_HI", "IAC_RPM_LO"}) entry({{}, member});
    put("");
    put("MIN/MAX DUTYCYCLE");
    for (const char* member : {"MinDuty", "MaxDuty"}) entry({{}, member});
    put("");
    put("IDLE ADVANCE");
    for (const char* member : {"IS_ADV", "IS_RTD"}) entry({{}, member});
}

void Listing::revLimiter() {
    if (!begin("13. REV LIMITER PARAMETERS", "6.  REV LIMITER PARAMETERS")) return;
    put(std::string("Rev Limiter is ") + (unit_.Get_Control(revLimiterBit) ? "enabled" : "disabled"));
    const auto chosen = [&](std::string_view control) {
        const FieldRow* row = fieldOf(control);
        return row != nullptr && fieldExists(unit_, *row) && fieldIsOn(unit_, *row);
    };
    const std::string coils = "Rev Limiter Coil Control is set to ";
    if (chosen("optFullCut")) put(coils + "Full Coil Cut.");
    if (chosen("optZeroAdv")) put(coils + "Zero Advance on Rev Limit.");
    if (chosen("opt3Stage")) {
        put(coils + "3-Stage Softrev on Rev Limit.");
        put("First -12 Degrees, then after " + valueOf("OVR1THR", 0, "0") +
            " RPM, 1/2 Coil Current, then after another " + valueOf("OVR2THR", 0, "0") + " RPM, cut coils");
    }
    if (chosen("optNoFuelCut")) put("No Fuel Cut.");
    if (chosen("optFuelCut")) put("Full Fuel Cut on Revlimit");
    if (chosen("optProgCut")) {
        put("Progressive Fuel Cut on Revlimit");
        put("Drop an additional cylinder after " + valueOf("CYL_CutDly", 0, "0") + " RPM");
        put("Add/Drop cylinders as needed every " + valueOf("CYL_OvrThr", 0, "0") + " ms");
    }
    entries({{"Primary Rev Limit Speed = ", "REV_Limiter"},
             {"Auxiliary Rev Limit Speed = ", "REV_AuxLimiter"},
             {"Rev Limit Hysteresis = ", "REV_Hysteresis"}});
}

void Listing::sensors() {
    if (!begin("14. SENSOR PARAMETERS", "7.  SENSOR PARAMETERS")) return;
    const auto failures = [&](std::string_view heading, std::string_view high, std::string_view low,
                              std::string_view otherwise) {
        if (!unit_.has(high)) return;
        put(std::string(heading));
        entries({{"High Voltage failure = ", high},
                 {"Low Voltage failure = ", low},
                 {"Failure Default Value = ", otherwise}});
        put("");
    };
    failures("CLT SENSOR", "CLT_FailHigh", "CLT_FailLow", "CLT_Default");
    failures("MAT SENSOR", "MAT_FailHigh", "MAT_FailLow", "MAT_Default");
    if (unit_.has("TPS_FCV")) {
        put("TPS SENSOR");
        for (const char* member : {"TPS_FCV", "TPS_WOV", "TPS_FailHigh", "TPS_FailLow", "TPS_Default"})
            entry({{}, member});
        put("");
    }
    put("MAP SENSOR");
    put("MAP Sensor Installed: " + facts_.sensor);
    entry({"MAP Sensor Range = ", "MAP_BAR", "#0.0#", " BAR"});
    for (const char* member : {"MAP_FailHigh", "MAP_FailLow", "MAP_Default", "MAP_FIL"}) entry({{}, member});
    if (unit_.has("MAFMax")) {
        put("");
        put("MAF SENSOR");
        if (unit_.Get_Control2(massFlowBit)) put("MAF Enabled (Replaces MAP)");
        entry({{}, "MAFMax"});
    }
    if (unit_.has("EGO_FailTime")) {
        put("");
        put("EGO SENSOR");
        for (const char* member : {"EGO_RPML", "EGO_FailTime", "EGO_SUD"}) entry({{}, member});
    }
    put("");
    put("KNOCK SENSOR");
    entry({{}, "KNK_Timer"});
}

std::vector<int> Listing::firingOrder() {
    std::vector<int> order;
    const Parameter* row = unit_.find("CYLORDER");
    const int cylinders = static_cast<int>(unit_.get("CYL_Number"));
    for (int i = 0; row != nullptr && i < std::min(cylinders, row->count); ++i)
        order.push_back(static_cast<int>(unit_.read(*row, i)));
    return order;
}

void Listing::trims() {
    if (!begin("15. CYLINDER TRIMS", "8.  CYLINDER TRIMS")) return;
    std::string order;
    for (const int cylinder : firingOrder()) order += (order.empty() ? "" : "-") + numberText(cylinder);
    put("Firing Order:  " + order);
    const bool throttleBody = isOn("Engine_Type");
    put(std::string("Cyl.   Ign (deg)") + (full() ? "  Inj Trim%" : ""));
    const Parameter* degrees = unit_.find("INJTRIM");
    const int cylinders =
        std::min(static_cast<int>(unit_.get("CYL_Number")), degrees == nullptr ? 0 : degrees->count);
    for (int i = 0; i < cylinders; ++i) {
        std::string line =
            rightPadded(numberText(i + 1), 7) + leftPadded(numberText(unit_.read(*degrees, i)), 9);
        if (full()) line += leftPadded(throttleBody ? "TBI N/A" : numberText(unit_.get("FuelTrim", i)), 11);
        put(line);
    }
}

void Listing::pins() {
    if (!begin("16. General Purpose Input/Output", "9.  General Purpose Input/Output")) return;
    GpioModel model(unit_);
    for (const GpioPinRow& pin : model.Show_GPIO()) {
        skipFailing([&] {
            const int code = model.storedCode(pin.pin);
            put("Channel " + numberText(pin.pin + 1) + "  " + unit_.GPIO_Function_Name(code));
            for (const GpioParamRow& row : model.Show_GPIO_Param(pin.pin, code)) {
                if (row.parameter < 0) continue;
                put("    " + std::string(trimmed(row.label)) + " = " + row.value +
                    (row.unit.empty() ? "" : " " + row.unit));
            }
            if (code != gpio_code::fullTable) return;
            const int table = unit_.Get_GPO_TblNum(pin.pin);
            if (table == 1 || table == 2) grid("GPO" + numberText(table), "##0", 6);
        });
    }
}

void Listing::all() {
    basics();
    enrichments();
    if (begin("3.  VOLUMETRIC EFFICIENCY CORRECTION TABLE", "")) {
        put("VOLUMETRIC EFFICIENCY (%GAMA)");
        grid("VE", "00", 6);
    }
    if (unit_.has("SPW") && begin("4.  STAGED PULSEWIDTH TABLE", "")) {
        put("STAGED PULSEWIDTH (%PRIMARY)");
        grid("SPW", "#00", 6);
    }
    advance();
    ego();
    if (begin("10. AIR FUEL RATIO TABLE", "")) {
        put("             AIR TO FUEL RATIO");
        grid("AFR", "00.00", 8);
    }
    knock();
    idle();
    revLimiter();
    sensors();
    trims();
    pins();
    put("");
    put("-- SOFTWARE VERSION --");
    put("This file was printed with Zentaq software version " + facts_.version + ".");
}

constexpr std::string_view indent = "        ";

/// A line that is too long, broken between its words, the rest indented.
std::vector<std::string> broken(const std::string& line, std::size_t columns) {
    std::vector<std::string> parts;
    std::string rest = line;
    while (characterCount(rest) > columns) {
        const std::string head(firstCharacters(rest, columns));
        std::size_t end = head.find_last_of(' ');
        if (end == std::string::npos || end <= indent.size()) end = head.size();
        parts.push_back(rest.substr(0, end));
        rest = std::string(indent) + std::string(trimmed(std::string_view(rest).substr(end)));
    }
    parts.push_back(rest);
    return parts;
}

}  // namespace

std::vector<std::string> printOut(Unit& unit, const PrintFacts& facts) {
    Listing listing(unit, facts);
    if (unit.kind().hasCalibration) listing.all();
    return listing.take();
}

namespace {

/// How many lines from `first` on belong together: up to the next empty one, a heading of a line of its own
/// with what stands below it.
std::size_t lengthTogether(const std::vector<std::string>& parts, std::size_t first) {
    std::size_t end = first;
    while (end < parts.size() && !parts[end].empty()) ++end;
    const bool heading = end == first + 1 && end + 1 < parts.size();
    return heading ? 2 + lengthTogether(parts, end + 1) : end - first;
}

}  // namespace

std::string printedPages(const std::vector<std::string>& lines, const PrintFacts& facts, int columns,
                         int linesAPage) {
    constexpr int headLines = 2;
    const auto width = static_cast<std::size_t>(std::max(columns, 2 * static_cast<int>(indent.size())));
    const auto room = static_cast<std::size_t>(std::max(linesAPage - headLines, 1));
    std::vector<std::string> parts;
    for (const std::string& line : lines) {
        for (std::string& part : broken(line, width)) parts.push_back(std::move(part));
    }
    std::string text;
    int page = 0;
    std::size_t used = room;
    std::size_t together = 0;  ///< lines to come that were looked at already
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (together == 0 && !parts[i].empty()) {
            together = lengthTogether(parts, i);
            // What has room on a page is not torn.
            if (together <= room && used + together > room) used = room;
        }
        if (together > 0) --together;
        if (used >= room) {
            if (parts[i].empty() && page > 0) continue;
            if (page > 0) text += '\f';
            const std::string head = facts.file + "  DATE: " + facts.date + "  TIME: " + facts.time +
                                     "  PAGE " + numberText(++page);
            text += broken(head, width).front() + "\n\n";
            used = 0;
        }
        text += parts[i] + '\n';
        ++used;
    }
    return text;
}

}  // namespace zentaq
