#include "unit/gpio_limits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

struct WordRow {
    std::string_view word;
    float minimum;
    float maximum;
    std::string_view text;
    std::span<const float> listed = {};
    double step = 0;
};

constexpr std::array<float, 2> mainsPair = {60, 120};
constexpr std::array<float, 2> slowPair = {30, 60};
constexpr std::array<float, 6> fineFrequencies = {24, 16, 31, 61, 122, 244};
constexpr std::array<float, 2> zeroOrOne = {0, 1};
constexpr std::array<float, 2> oneOrTwo = {1, 2};
constexpr std::array<float, 3> logRates = {5, 10, 20};
constexpr double twentieth = 0.05;

// kept: the check goes by the unit word, also where the row's hint is narrower ("Deg Adv", "RPM" of the power
// cut).
constexpr std::array<WordRow, 27> words = {{
    {"RPM", 0, 20000, "(0 to 20000 RPM)"},
    {"Valet RPM", 1500, 11000, "(1500 to 11000 RPM)"},
    {"Kickup RPM", 0, 4000, "(0 to 4000 RPM)"},
    {"°C", -40, 150, "(-40 to 150 °C)"},
    {"°F", -40, 302, "(-40 to 302 °F)"},
    {"Deg", 0, 60, "(0 to 60 Degrees)"},
    {"Hz", 60, 120, "(60, 120)", mainsPair},
    {"Hz (Cycles per sec)", 30, 60, "(30, 60)", slowPair},
    {"Hz (Freq)", 16, 244, "(24, 16, 31, 61, 122, 244)", fineFrequencies},
    {"TBL", 1, 2, "(1 or 2)", oneOrTwo},
    {"Deg Adv", 0, 30, "(0 to 30 Degrees)"},
    {"Deg Ret", -30, -1, "(-30 to -1 Degrees)"},
    {"Deg Adv/Ret", -30, 30, "(-30 to 30 Degrees)"},
    {"GAMA Enrich", 0, 50, "(0 to 50 %GAMA)"},
    {"GAMA Lean", -50, -1, "(-50 to -1 %GAMA)"},
    {"Secs", 0, 2, "(0 to 2 secs, steps of .05)", {}, twentieth},
    {"Seconds", 0, 10, "(0 to 10 secs, steps of .05)", {}, twentieth},
    {"Samp. per sec", 5, 20, "(5, 10, 20)", logRates},
    {"Volts", 0, 5, "(0 to 5 volts)"},
    {"Hys. RPM", 0, 250, "(0 to 250 RPM)"},
    {"ms", 0, 1000, "(0 to 1000)"},
    {"High/Low", 0, 1, "0 = active high, 1 = active low", zeroOrOne},
    {"CLT/MAT", 0, 1, "0 = CLT, 1 = MAT", zeroOrOne},
    {"Spd In", 1, 2, "(1 or 2)", oneOrTwo},
    {"MPH", 0, 255, "(0 to 255 MPH)"},  // a byte of the unit
    {"%", 0, 100, "(0 to 100%)"},
    {"inches", 0, 100, "(0 to 100 inches)"},
}};

bool isPressure(std::string_view word) {
    constexpr std::array<std::string_view, 6> units = {"kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow"};
    return std::ranges::find(units, word) != units.end();
}

Limits pressureLimits(Unit& unit) {
    const float low = unit.MAPMin();
    const float high = unit.MAPMax();
    const int places = unit.MAPPrecision();
    return {
        .minimum = low,
        .maximum = high,
        .text = "(" + numberText(roundTo(low, places)) + " to " + numberText(roundTo(high, places)) + ")"};
}

}  // namespace

Limits gpioLimitsOf(Unit& unit, std::string_view word) {
    if (isPressure(word)) return pressureLimits(unit);
    const auto found = std::ranges::find(words, word, &WordRow::word);
    if (found == words.end()) return Limits::none();
    return {.minimum = found->minimum,
            .maximum = found->maximum,
            .text = std::string(found->text),
            .listed = found->listed,
            .step = found->step};
}

}  // namespace zentaq
