// Every scalar and curve that is a plain row: limits, texts, image bytes, records, polling answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "base/errors.h"

#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int ignored = -1;
constexpr float noLimit = -99999;

struct ScalarExpectation {
    const char* name;
    int cell;
    int polling;  ///< `ignored` when the reader has no polling branch
    float minimum;
    float maximum;
    const char* rangeText;
    float entry;
    float stored;
    int imageIndex;
    std::vector<int> imageBytes;
    std::vector<int> sentBytes;
};

void PrintTo(const ScalarExpectation& row, std::ostream* out) {
    *out << row.name;
}

const std::vector<ScalarExpectation> scalars = {
    {"INJ_Reset", 17, 17, 0, 15, "(0 to 15)", 9, 9, 17, {9}, {}},
    {"KNK_MIN", 34, 34, 2, 100, "(2 to 100 units)", 50, 50, 34, {128}, {128}},
    {"KNK_ATK", 35, 35, 0.25F, 10, "(0.25 to 10 deg/EF)", 3, 3, 35, {26}, {26}},
    {"KNK_DCY", 36, 36, 0.25F, 5, "(0.25 to 5 deg/EF)", 2.5F, 2.5F, 36, {21}, {21}},
    {"KNK_MAX", 37, 37, 1, 30, "(1 to 30 deg)", 10, 10, 37, {85}, {85}},
    {"KNK_RPM", 38, 38, 0, 8000, "(0 to 8000 RPM)", 6000, 6000, 38, {118}, {118}},
    {"MAP_FailHigh", 40, 40, 0, 5, "(0 to 5 Volts)", 2.5F, 2.5F, 40, {128}, {128}},
    {"MAP_FailLow", 41, 41, 0, 5, "(0 to 5 Volts)", 2.5625F, 2.5625F, 41, {131}, {131}},
    {"TPS_FCV", 44, 44, 0, 5, "(0 to 5 Volts)", 2.75F, 2.75F, 44, {140}, {140}},
    {"TPS_WOV", 45, 45, 0, 5, "(0 to 5 Volts)", 2.8125F, 2.8125F, 45, {143}, {143}},
    {"TPS_FailHigh", 46, 46, 0, 5, "(0 to 5 Volts)", 2.875F, 2.875F, 46, {147}, {147}},
    {"TPS_FailLow", 47, 47, 0, 5, "(0 to 5 Volts)", 2.9375F, 2.9375F, 47, {150}, {150}},
    {"TPS_Default", 48, 48, 0, 5, "(0 to 5 Volts)", 3, 3, 48, {153}, {153}},
    {"CLT_FailHigh", 49, 49, 0, 5, "(0 to 5 Volts)", 3.0625F, 3.0625F, 49, {156}, {156}},
    {"CLT_FailLow", 50, 50, 0, 5, "(0 to 5 Volts)", 3.125F, 3.125F, 50, {159}, {159}},
    {"MAT_FailHigh", 54, 54, 0, 5, "(0 to 5 Volts)", 3.375F, 3.375F, 54, {172}, {172}},
    {"MAT_FailLow", 55, 55, 0, 5, "(0 to 5 Volts)", 3.4375F, 3.4375F, 55, {175}, {175}},
    {"EGO_LowVoltage", 303, 303, 0, 5, "(0 to 5 Volts)", 3.9375F, 3.9375F, 303, {201}, {201}},
    {"EGO_HighVoltage", 304, 304, 0, 5, "(0 to 5 Volts)", 4, 4, 304, {204}, {204}},
    {"MAP_FIL", 43, 43, 1, 64, "(1 to 64)", 33, 33, 43, {33}, {33}},
    {"CLT_Default", 51, 51, -40, 150, "(-40 to 150 Degrees Celsius)", 85, 85, 51, {168}, {168}},
    {"EGO_FailTime", 52, 52, 1, 255, "(1 to 255 Seconds)", 100, 100, 52, {100}, {100}},
    {"EGO_SUD", 53, 53, 0, 20, "(0 to 20 Seconds)", 12, 12, 53, {12}, {12}},
    {"MAT_Default", 56, 56, -30, 80, "(-30 to 80 Degrees Celsius)", -10, -10, 56, {40}, {40}},
    {"KNK_Timer", 57, 57, 1, 255, "(1 to 255 Seconds)", 7, 7, 57, {7}, {7}},
    {"REV_Limiter", 58, 58, 1000, 20000, "(1000 to 20000 RPM)", 8500, 8500, 58, {33, 52}, {33, 52}},
    {"REV_AuxLimiter", 60, 60, 1000, 20000, "(1000 to 20000 RPM)", 3000, 3000, 60, {11, 184}, {11, 184}},
    {"OVR1THR", 62, 62, 0, 250, "(0 to 250 RPM)", 162, 162, 62, {162}, {162}},
    {"OVR2THR", 63, 63, 0, 250, "(0 to 250 RPM)", 163, 163, 63, {163}, {163}},
    {"REV_Hysteresis", 64, 64, 0, 250, "(0 to 250 RPM)", 164, 164, 64, {164}, {164}},
    {"CYL_CutDly", 66, 66, 0, 250, "(0 to 250 RPM)", 166, 166, 66, {166}, {166}},
    {"CYL_OvrThr", 65, 65, 0, 1000, "(0 to 1000 Milliseconds)", 20, 20, 65, {5}, {80}},
    {"REV_Limit_Approach", 125, 125, 0, 1000, "(0 - 1000 RPM)", 500, 500, 125, {125}, {125}},
    {"scale1", 148, 148, 3, 30, "(3 to 30 milliseconds (ms))", 12.5F, 12.5F, 148, {48, 212}, {48, 212}},
    {"SCALE2", 149, 149, 3, 30, "(3 to 30 milliseconds (ms))", 4, 4, -1, {}, {}},
    {"MOFFSET", 18, 6, -30, 30, "(-30 to 30 degree offset)", 12, 12, 18, {0}, {}},
    {"INJ_On", 150, 150, -15, 15, "(-15 to 15 milliseconds (ms))", -1.5F, -1.5F, 150, {244}, {244}},
    {"MT", 151, 151, 0, 5, "(0 to 5 milliseconds (ms))", 1.25F, 1.25F, 151, {62}, {62}},
    {"SE0", 152, 152, 0, 250, "(0 to 250%)", 150, 1.5F, 152, {150}, {150}},
    {"SE1", 153, 153, 0, 150, "(0 to 150%)", 75, 0.75F, 153, {75}, {75}},
    {"SEPW", 154, 154, 0, 15, "(0 to 15 milliseconds (ms))", 6.5F, 6.5F, 154, {52}, {52}},
    {"SECLT", 155, 155, -30, 80, "(-30 to 80 Degrees Celsius)", 20, 20, 155, {81}, {81}},
    {"ASE0", 156, 156, 0, 250, "(0 to 250%)", 225, 2.25F, 156, {225}, {225}},
    {"ASE1", 157, 157, 0, 150, "(0 to 150%)", 50, 0.5F, 157, {50}, {50}},
    {"ACE0", 198, 198, 0.85F, 51.75F, "(0.85 to 51.75 V/s)", 10.75F, 10.75F, 198, {50}, {50}},
    {"ACE2", 200, 200, 0, 250, "(0 to 250%)", 201, 201, 200, {201}, {201}},
    {"ACE3", 201, 201, 0, 150, "(0 to 150%)", 101, 101, 201, {101}, {101}},
    {"ACE4", 202, 202, 0.25F, 2, "(0.25 to 2 Seconds)", 1.5F, 1.5F, 202, {24}, {24}},
    {"ACE5", 203, 203, 0, 250, "(0 to 250%)", 202, 202, 203, {202}, {202}},
    {"ACE6", 204, 204, 0, 250, "(0 to 250%)", 203, 203, 204, {203}, {203}},
    {"ACE7", 205, 205, 0, 150, "(0 to 150%)", 104, 104, 205, {104}, {104}},
    {"ACCL_PW", 206, 206, 0, 15, "(0 to 15 milliseconds (ms))", 9.5F, 9.5F, 206, {76}, {76}},
    {"ACCL_TM", 207, 207, 0, 15, "(0 to 15 Seconds)", 2.5F, 2.5F, 207, {40}, {40}},
    {"DCCL_0", 208, 208, 0, 3900, "(0 to 3900 RPM)", 2000, 2000, 208, {125}, {125}},
    {"DCCL_1", 209, 209, 0, 3900, "(0 to 3900 RPM)", 1000, 1000, 209, {62}, {62}},
    {"DCCL_4", 211, 211, 0, 150, "(0 to 150%)", 42, 42, 211, {42}, {42}},
    {"TBSOFF", 236, 236, 0, 1.5F, "(0 to 1.5 Volts)", 0.75F, 0.75F, 236, {38}, {38}},
    {"BSTCTTM", 258, 258, 0.25F, 10, "(0.25 to 10 Seconds)", 4, 4, 258, {64}, {64}},
    {"FPT", 259, 259, 1, 15, "(1 to 15 Seconds)", 3, 3, 259, {48}, {48}},
    {"MAFMax", 260, 259, 2000, 20000, "(2000 to 20000 RPM)", 9000, 9000, 260, {35, 40}, {35, 40}},
    {"INJFIX_RPM", 266, -1, 0, 800, "(0 to 800 RPM)", 503, 503, 266, {125}, {125}},
    {"INJFIX_PW", 267, -1, 0, 15, "(0 to 15 ms)", 2.5F, 2.5F, 267, {25}, {25}},
    {"CONDIV", 275, 275, 2, 64, "2,4,8,16,32 or 64", 16, 16, 275, {16}, {16}},
    {"AVRDIV", 276, 276, 2, 64, "2,4,8,16,32 or 64", 32, 32, 276, {32}, {32}},
    {"Register_Number", 277, 277, 2, 12, "(2 to 12)", 5, 5, 277, {5}, {8}},
    {"EGO_LMT", 278, 278, 0, 50, "(0 to 50%)", 25, 25, 278, {25}, {25}},
    {"EGO_RPM", 279, 279, 1000, 11000, "(1000 to 11000 RPM)", 6400, 6400, 279, {100}, {100}},
    {"EGO_TMP", 281, 281, 0, 80, "(0 to 80 Degrees Celsius)", 60, 60, 281, {134}, {134}},
    {"EGO_RPML", 282, 282, 0, 11000, "(0 to 11000 RPM)", 800, 800, 282, {12}, {12}},
    {"NEGPGAIN", 305, 305, 1, 255, "(1 to 255)", 105, 105, 305, {151}, {151}},
    {"POSPGAIN", 306, 306, 1, 255, "(1 to 255)", 106, 106, 306, {150}, {150}},
    {"NEGDGAIN", 307, 307, 1, 255, "(1 to 255)", 107, 107, 307, {149}, {149}},
    {"POSDGAIN", 308, 308, 1, 255, "(1 to 255)", 108, 108, 308, {148}, {148}},
    {"IS_RTD", 318, 318, 0, 10, "(0 to 10 Degrees)", 6, 6, 318, {26}, {26}},
    {"IS_ADV", 319, 319, 0, 10, "(0 to 10 Degrees)", 6, 6, 319, {26}, {26}},
    {"IAC_RPM_HI", 320, 320, 0, 3900, "(0 to 3900 RPM)", 1600, 1600, 320, {100}, {100}},
    {"IAC_RPM_LO", 321, 321, 0, 3900, "(0 to 3900 RPM)", 1616, 1616, 321, {101}, {101}},
};

class Scalar : public ::testing::TestWithParam<ScalarExpectation> {
 protected:
    OrbaCalibration cal;
};

TEST_P(Scalar, AnEntryIsStoredInItsCellAndReadsBack) {
    const auto& row = GetParam();
    ASSERT_TRUE(cal.unit.set(row.name, row.entry));
    EXPECT_FLOAT_EQ(cal.unit.DirectIndex(row.cell), row.stored);
    EXPECT_FLOAT_EQ(cal.unit.get(row.name), row.entry);
    ASSERT_EQ(cal.host.inputChecks.size(), 1U);
    EXPECT_EQ(cal.host.inputChecks[0].code, 1003);
}

TEST_P(Scalar, TheRangeCheckGetsTheLimitsAndTheText) {
    const auto& row = GetParam();
    cal.unit.set(row.name, row.entry);
    ASSERT_EQ(cal.host.rangeChecks.size(), 1U);
    EXPECT_FLOAT_EQ(cal.host.rangeChecks[0].minimum, row.minimum);
    EXPECT_FLOAT_EQ(cal.host.rangeChecks[0].maximum, row.maximum);
    EXPECT_EQ(cal.host.rangeChecks[0].text, row.rangeText);
    const Limits limits = cal.unit.limits(row.name);
    EXPECT_FLOAT_EQ(limits.minimum, row.minimum);
    EXPECT_FLOAT_EQ(limits.maximum, row.maximum);
    EXPECT_EQ(limits.text, row.rangeText);
}

TEST_P(Scalar, BothLimitsAreAccepted) {
    const auto& row = GetParam();
    EXPECT_TRUE(cal.unit.set(row.name, row.minimum));
    EXPECT_TRUE(cal.unit.set(row.name, row.maximum));
    EXPECT_THAT(cal.host.warnings, IsEmpty());
}

TEST_P(Scalar, JustOutsideTheLimitsIsRefusedAndTheCellStays) {
    const auto& row = GetParam();
    ASSERT_TRUE(cal.unit.set(row.name, row.entry));
    const float before = cal.unit.DirectIndex(row.cell);
    cal.unit.ONFLY_MODE(true);
    EXPECT_FALSE(cal.unit.set(row.name, std::nextafter(row.minimum, -100000.0F)));
    EXPECT_FALSE(cal.unit.set(row.name, std::nextafter(row.maximum, 100000.0F)));
    EXPECT_EQ(cal.unit.DirectIndex(row.cell), before);
    EXPECT_THAT(cal.host.warnings, ElementsAre(RecordingHost::Box{1001, row.rangeText},
                                               RecordingHost::Box{1001, row.rangeText}));
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

TEST_P(Scalar, BlankTextIsRefusedBeforeTheRangeIsLookedAt) {
    const auto& row = GetParam();
    EXPECT_FALSE(cal.unit.set(row.name, "  "));
    EXPECT_THAT(cal.host.rangeChecks, IsEmpty());
    EXPECT_THAT(cal.host.warnings, ElementsAre(RecordingHost::Box{1005, ""}));
    EXPECT_EQ(cal.unit.DirectIndex(row.cell), 0);
}

TEST_P(Scalar, TheImageHoldsItsBytes) {
    const auto& row = GetParam();
    ASSERT_TRUE(cal.unit.set(row.name, row.entry));
    cal.unit.ConvertData();
    for (std::size_t i = 0; i < row.imageBytes.size(); ++i) {
        EXPECT_EQ(cal.image(row.imageIndex + static_cast<int>(i)), row.imageBytes[i]);
    }
}

TEST_P(Scalar, AChangeOnTheFlySendsItsRecord) {
    const auto& row = GetParam();
    cal.unit.ONFLY_MODE(true);
    cal.unit.SILENT_MODE(true);  // only table cells mind
    ASSERT_TRUE(cal.unit.set(row.name, row.entry));
    if (row.sentBytes.empty()) {
        EXPECT_THAT(cal.host.sent, IsEmpty());
    } else {
        EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(row.imageIndex, row.sentBytes)));
    }
    EXPECT_THAT(cal.host.log, IsEmpty());
}

TEST_P(Scalar, NothingIsSentWithoutOnFlyMode) {
    cal.unit.set(GetParam().name, GetParam().entry);
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

TEST_P(Scalar, IndexPollingAnswersTheIndexWhateverTheCellHolds) {
    const auto& row = GetParam();
    cal.unit.set(row.name, row.entry);
    cal.unit.IndexPolling(true);
    EXPECT_FLOAT_EQ(cal.unit.get(row.name),
                    row.polling == ignored ? row.entry : static_cast<float>(row.polling));
}

INSTANTIATE_TEST_SUITE_P(OrbA, Scalar, ::testing::ValuesIn(scalars),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- Curves and tables

struct CurveExpectation {
    const char* name;
    int cell;
    int count;
    int stride;
    bool polls;
    float minimum;
    float maximum;
    const char* rangeText;
    float entry;
    int imageIndex;
    std::vector<int> imageBytes;
    std::vector<int> sentBytes;
};

void PrintTo(const CurveExpectation& row, std::ostream* out) {
    *out << row.name;
}

const std::vector<CurveExpectation> curves = {
    {"INJTBL", 9, 8, 1, true, noLimit, noLimit, "", 3, 9, {3}, {}},
    {"SPLITBL", 68, 16, 1, true, 0, 30, "(0 to 30 Degrees)", 10, 68, {42}, {42}},
    {"CLTTBL", 84, 20, 1, true, 0, 60, "(0 to 60 Degrees)", 8, 84, {34}, {34}},
    {"MATADV", 104, 20, 1, true, -30, 30, "(-30 to 30 Degrees)", -10, 104, {85}, {85}},
    {"BARO_ADV", 130, 8, 1, false, -50, 50, "(-50 to 50%)", 20, 126, {20}, {20}},
    {"BARO_TRIM", 138, 8, 1, false, -50, 50, "(-50 to 50%)", -20, 140, {30}, {30}},
    {"CHKTBL", 158, 20, 1, true, 0, 250, "(0 to 250%)", 130, 158, {130}, {130}},
    {"MATENH", 178, 20, 1, true, -50, 50, "(-50 to 50%)", -7, 178, {43}, {43}},
    {"BLDTBL", 212, 8, 2, true, 0, 12000, "(0 to 12000 RPM)", 4660, 212, {18, 52}, {18, 52}},
    {"LOWBLD", 228, 8, 1, true, 0, 100, "(0 to 100%)", 66, 228, {66}, {66}},
    {"BATCom", 237, 20, 1, true, -1000, 1000, "(-1000 to 1000 microseconds)", -200, 237, {100}, {100}},
    {"X", 293, 10, 1, true, 0, 5, "(0 to 5 Volts)", 2, 293, {102}, {102}},
    {"ISTMP", 310, 3, 1, true, -30, 80, "(-30 to 80 Degrees Celsius)", 20, 310, {81}, {81}},
    {"ISRPM", 313, 3, 1, true, 500, 2000, "(500 to 2000 RPM)", 960, 313, {60}, {60}},
    {"RPMTBL", 592, 16, 2, true, 0, 20000, "(0 to 20000 RPM)", 4660, 592, {18, 52}, {18, 52}},
    {"ADV", 656, 256, 1, true, 0, 60, "(0 to 60 Degrees)", 40, 656, {170}, {170}},
    {"VE", 912, 256, 1, true, -50, 50, "(-50 to 50%)", 12, 912, {62}, {62}},
    {"SPW", 1168, 256, 1, true, 0, 100, "(0 to 100%)", 77, 1168, {77}, {77}},
    {"CYLORDER", 2207, 13, 1, true, noLimit, noLimit, "", 4, -1, {}, {}},
};

class Curve : public ::testing::TestWithParam<CurveExpectation> {
 protected:
    OrbaCalibration cal;
};

TEST_P(Curve, FirstAndLastElementHaveTheirCellsBytesAndRecords) {
    const auto& row = GetParam();
    for (const int i : {0, row.count - 1}) {
        cal.host.forget();
        cal.unit.ONFLY_MODE(true);
        ASSERT_TRUE(cal.unit.set(row.name, row.entry, i));
        EXPECT_EQ(cal.unit.DirectIndex(row.cell + i * row.stride), row.entry);
        EXPECT_EQ(cal.unit.get(row.name, i), row.entry);
        const int image = row.imageIndex + i * row.stride;
        if (row.sentBytes.empty()) {
            EXPECT_THAT(cal.host.sent, IsEmpty());
        } else {
            EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(image, row.sentBytes)));
        }
        cal.unit.ConvertData();
        EXPECT_EQ(cal.imageBytes(image, static_cast<int>(row.imageBytes.size())), row.imageBytes);
    }
}

TEST_P(Curve, TheLimitsAreAcceptedAndBeyondThemIsRefused) {
    const auto& row = GetParam();
    if (row.minimum == noLimit) {
        EXPECT_TRUE(cal.unit.set(row.name, -1e6, 0));
        EXPECT_TRUE(cal.unit.limits(row.name).unlimited());
        return;
    }
    EXPECT_TRUE(cal.unit.set(row.name, row.minimum, 0));
    EXPECT_TRUE(cal.unit.set(row.name, row.maximum, 1));
    EXPECT_FALSE(cal.unit.set(row.name, std::nextafter(row.minimum, -100000.0F), 0));
    EXPECT_FALSE(cal.unit.set(row.name, std::nextafter(row.maximum, 100000.0F), 1));
    EXPECT_EQ(cal.unit.get(row.name, 0), row.minimum);
    EXPECT_EQ(cal.unit.get(row.name, 1), row.maximum);
    EXPECT_EQ(cal.host.rangeChecks.back().text, row.rangeText);
}

TEST_P(Curve, AnElementOutsideIsABoundsError) {
    const auto& row = GetParam();
    EXPECT_THROW(cal.unit.get(row.name, -1), BoundsError);
    EXPECT_THROW(cal.unit.get(row.name, row.count), BoundsError);
    EXPECT_THROW(cal.unit.set(row.name, row.entry, row.count), BoundsError);
}

TEST_P(Curve, PollingAnswersTheElementsIndex) {
    const auto& row = GetParam();
    cal.unit.set(row.name, row.entry, 2);
    cal.unit.IndexPolling(true);
    const auto index = static_cast<float>(row.cell + 2 * row.stride);
    EXPECT_EQ(cal.unit.get(row.name, 2), row.polls ? index : row.entry);
}

TEST_P(Curve, ReaderAndWriterNamesFindIt) {
    const std::string name = GetParam().name;
    EXPECT_TRUE(cal.unit.set("Set_" + name, GetParam().entry, 1));
    EXPECT_EQ(cal.unit.get("Get_" + name, 1), GetParam().entry);
}

INSTANTIATE_TEST_SUITE_P(OrbA, Curve, ::testing::ValuesIn(curves),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- Names and plain cells

struct PlainCell {
    const char* name;
    int cell;
};
const std::vector<PlainCell> plainCells = {{"RPM_Size", 2194},     {"IGN_REV", 2197}, {"INJ_Number", 2198},
                                           {"CAMSTL", 2199},       {"BHP", 2201},     {"Option_Type", 2203},
                                           {"INJ_FlowRate", 2206}, {"Alcohol", 2220}, {"MAP_Active", 2222},
                                           {"COFFSET", 31},        {"SOFFSET", 33},   {"P1EGTP", 3},
                                           {"P2EGTP", 4},          {"INJ_Mode", 7},   {"MAP_ID", 128}};

TEST(PlainCells, TakeAnyNumberAndNeverSend) {
    for (const auto& [name, cell] : plainCells) {
        OrbaCalibration cal;
        cal.unit.ONFLY_MODE(true);
        EXPECT_TRUE(cal.unit.set(name, -123.5)) << name;
        EXPECT_EQ(cal.unit.DirectIndex(cell), -123.5F) << name;
        EXPECT_EQ(cal.unit.get(name), -123.5F) << name;
        EXPECT_THAT(cal.host.sent, IsEmpty()) << name;
        EXPECT_THAT(cal.host.rangeChecks, IsEmpty()) << name;
    }
}

TEST(Members, AnUnknownMemberIsSilent) {
    OrbaCalibration cal;
    EXPECT_FALSE(cal.unit.has("No_Such"));
    EXPECT_EQ(cal.unit.get("No_Such", 77), 0);
    EXPECT_FALSE(cal.unit.set("No_Such", 1));
    EXPECT_THAT(cal.host.inputChecks, IsEmpty());
}

TEST(Members, ATextThatIsNoNumberIsATypeMismatch) {
    OrbaCalibration cal;
    EXPECT_THROW(cal.unit.set("KNK_MIN", "fifty"), TypeMismatch);
    EXPECT_EQ(cal.unit.DirectIndex(34), 0);
}

TEST(Members, ATypedNumberIsStored) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.set("KNK_MIN", " 50.5 "));
    EXPECT_EQ(cal.unit.DirectIndex(34), 50.5F);
    EXPECT_TRUE(cal.unit.set("KNK_MIN", std::string("60")));
    EXPECT_EQ(cal.unit.get("KNK_MIN"), 60);
}

TEST(Members, TheFullNameListOfTheKindIsThere) {
    OrbaCalibration cal;
    for (const char* name : {"TACHTYP",
                             "TOFFSET1",
                             "TOFFSET2",
                             "TOOTHMIN",
                             "TOOTHMAX",
                             "CYL_Number",
                             "INJ_Events",
                             "MAP_BAR",
                             "MAP_Default",
                             "MAP_DISP_MULT",
                             "MAP_Scaler",
                             "MAP_Offset",
                             "Initial_Advance",
                             "ACE1",
                             "DCCL_3",
                             "MAP_Max",
                             "EGO_MAP",
                             "Reset_Duty",
                             "MinDuty",
                             "MaxDuty",
                             "IAC_Start",
                             "Get_Y",
                             "Get_MAPTBL",
                             "Set_AFR",
                             "Get_FuelTrim",
                             "FuelTrim",
                             "Set_INJTRIM",
                             "InjTrim",
                             "EGO_Type",
                             "MAX_Boost",
                             "Engine_Type",
                             "AMP42",
                             "PHDSEQ",
                             "DCCL_CutActive",
                             "TPS_MARGIN_TOGGLE",
                             "TPS_MARGIN_VALUE",
                             "AFR",
                             "opt_TDCParam1",
                             "opt_KnockActive",
                             "opt_FuelCut",
                             "opt_NoFuelCut",
                             "opt_IdleSpeed",
                             "opt_TDCParam2",
                             "opt_TDCParam3",
                             "opt_TachInv",
                             "opt_ProgCut",
                             "opt_ZeroAdv",
                             "opt_3Stage",
                             "opt_FullCut",
                             "opt_IdleMotorDeactive"}) {
        EXPECT_TRUE(cal.unit.has(name)) << name;
    }
}

TEST(Members, EveryRowHasANameOfItsOwnAndAMeaning) {
    std::set<std::string_view> names;
    for (const Parameter& row : orbaKind().parameters) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_FALSE(row.meaning.empty()) << row.name;
    }
}

TEST(Divisors, ANumberBetweenTheListedOnesIsRefused) {
    OrbaCalibration cal;
    for (const int listed : {2, 4, 8, 16, 32, 64}) EXPECT_TRUE(cal.unit.set("CONDIV", listed));
    EXPECT_FALSE(cal.unit.set("CONDIV", 3));
    EXPECT_FALSE(cal.unit.set("AVRDIV", 63));
    EXPECT_EQ(cal.unit.get("CONDIV"), 64);
    EXPECT_THAT(cal.host.warnings, ElementsAre(RecordingHost::Box{1001, "2,4,8,16,32 or 64"},
                                               RecordingHost::Box{1001, "2,4,8,16,32 or 64"}));
    EXPECT_THAT(cal.host.log, ElementsAre("2,4,8,16,32 or 64", "Invalid Entry: 3 -> 2,4,8,16,32 or 64",
                                          "2,4,8,16,32 or 64", "Invalid Entry: 63 -> 2,4,8,16,32 or 64"));
}

TEST(Entries, ANumberThatFitsNoCellIsAnOverflowEvenWithoutARange) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.set("BHP", 300));
    EXPECT_THROW(cal.unit.set("BHP", "1E+39"), Overflow);
    EXPECT_THROW(cal.unit.set("MAP_Scaler", std::nan("")), Overflow);
    EXPECT_EQ(cal.unit.get("BHP"), 300);
    EXPECT_EQ(cal.unit.DirectIndex(126), 0);
}

TEST(RawAccess, ReadsAndWritesCellsWithoutSending) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.AssignDirectIndex(7.25F, 3000);
    cal.unit.AssignDirectIndex(1000, 34);
    EXPECT_EQ(cal.unit.DirectIndex(3000), 7.25F);
    EXPECT_EQ(cal.unit.get("KNK_MIN"), 1000);
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

TEST(RawAccess, OutsideTheCellsIsABoundsError) {
    OrbaCalibration cal;
    EXPECT_THROW(cal.unit.DirectIndex(-1), BoundsError);
    EXPECT_THROW(cal.unit.DirectIndex(3001), BoundsError);
    EXPECT_THROW(cal.unit.AssignDirectIndex(1, 3001), BoundsError);
}

TEST(SilentMode, KeepsOnlyTheFourTablesOffTheWire) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.SILENT_MODE(true);
    EXPECT_TRUE(cal.unit.set("Set_ADV", 10, 0));
    EXPECT_TRUE(cal.unit.set("Set_VE", 10, 0));
    EXPECT_TRUE(cal.unit.set("Set_SPW", 10, 0));
    EXPECT_TRUE(cal.unit.set("Set_AFR", 14, 0));
    EXPECT_THAT(cal.host.sent, IsEmpty());
    EXPECT_EQ(cal.unit.get("VE", 0), 10);
    EXPECT_TRUE(cal.unit.set("KNK_MIN", 50));
    EXPECT_TRUE(cal.unit.set("RPMTBL", 1000, 0));
    EXPECT_EQ(cal.host.sent.size(), 2U);
}

}  // namespace
}  // namespace zentaq::testing
