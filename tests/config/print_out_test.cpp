#include "config/print_out.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "base/text_pdf.h"
#include "config/quiet_calibration.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

struct Printed {
    RecordingHost host;
    Unit unit;
    PrintFacts facts{"tune.ZQ4OA", "11/23/26", "12:00:00", "4 Cylinder", "1 BAR", "4.10"};

    explicit Printed(const UnitKind& kind = orbaKind()) : unit(kind, host) {
        unit.FW_Release(5);
        unit.set("CYL_Number", 4);
    }
    std::vector<std::string> lines() { return printOut(unit, facts); }
    /// The headings, which begin with a number and a point.
    std::vector<std::string> headings() {
        std::vector<std::string> found;
        for (const std::string& line : lines()) {
            const std::size_t point = line.find('.');
            const bool number = point != std::string::npos && point > 0 && point < 3 &&
                                line.find_first_not_of("0123456789") == point;
            if (number) found.push_back(line);
        }
        return found;
    }
};

TEST(PrintOut, AFullUnitHasSixteenSectionsInTheirOrder) {
    EXPECT_THAT(
        Printed().headings(),
        ElementsAre("1.  WIZARD & BASIC PARAMETERS", "2.  FUEL ENRICHMENTS",
                    "3.  VOLUMETRIC EFFICIENCY CORRECTION TABLE", "4.  STAGED PULSEWIDTH TABLE",
                    "5.  ADVANCE TABLE", "6.  COOLANT ADVANCE TABLE", "7.  MANIFOLD TEMP ADVANCE TABLE",
                    "8.  DUAL PLUG TIMING-SPLIT", "9.  EGO PARAMETERS", "10. AIR FUEL RATIO TABLE",
                    "11. KNOCK CONTROL PARAMETERS", "12. IDLE CONTROL PARAMETERS",
                    "13. REV LIMITER PARAMETERS", "14. SENSOR PARAMETERS", "15. CYLINDER TRIMS",
                    "16. General Purpose Input/Output"));
}

TEST(PrintOut, AnIgnitionOnlyUnitHasNineByTheirOwnNumbers) {
    EXPECT_THAT(Printed(pzk2Kind()).headings(),
                ElementsAre("1.  WIZARD & BASIC PARAMETERS", "2.  ADVANCE TABLE", "3.  EXTERNAL RETARD TABLE",
                            "4.  DUAL PLUG TIMING-SPLIT", "5.  KNOCK CONTROL PARAMETERS",
                            "6.  REV LIMITER PARAMETERS", "7.  SENSOR PARAMETERS", "8.  CYLINDER TRIMS",
                            "9.  General Purpose Input/Output"));
}

TEST(PrintOut, ValuesStandInTheirFormats) {
    Printed printed;
    printed.unit.set("scale1", 7.4);
    printed.unit.set("INJ_On", 0.75);
    printed.unit.set("MT", 1.2);
    printed.unit.set("Initial_Advance", 8);
    printed.unit.set("CLT_Default", 80);
    printed.unit.set("CAMSTL", 1);
    printed.unit.set("KNK_MIN", 44);
    const auto lines = printed.lines();
    EXPECT_THAT(lines, Contains("Current Engine Configuration = 4 Cylinder"));
    EXPECT_THAT(lines, Contains("User Adjustable PulseWidth(TOG) = 7.400 Milli-seconds"));
    EXPECT_THAT(lines, Contains("Injector PulseWidth offset time(IOT) = 0.750"));
    EXPECT_THAT(lines, Contains("Minimum turn-on time for injectors = 1.20000"));
    EXPECT_THAT(lines, Contains("Initial advance = 8 Degrees"));
    EXPECT_THAT(lines, Contains("Failure Default Value = 80 DEG C"));
    EXPECT_THAT(lines, Contains("Camshaft Style = Race/High Performance Cam"));
    EXPECT_THAT(lines, Contains(StartsWith("A. Knock threshold = 44")));
    EXPECT_THAT(lines, Contains("MAP Sensor Installed: 1 BAR"));
    EXPECT_THAT(lines, Contains("This file was printed with Zentaq software version 4.10."));
}

TEST(PrintOut, TemperaturesAreInCelsiusWhateverTheUsersScale) {
    Printed printed;
    printed.unit.set("CLT_Default", 80);
    printed.host.isFahrenheit = true;
    EXPECT_THAT(printed.lines(), Contains("Failure Default Value = 80 DEG C"));
    EXPECT_THAT(printed.lines(), Not(Contains(HasSubstr("Fahrenheit"))));
}

TEST(PrintOut, TheLimiterTellsItsStagesOrItsCut) {
    Printed printed;
    printed.unit.set("OVR1THR", 100);
    printed.unit.set("OVR2THR", 150);
    EXPECT_THAT(printed.lines(),
                Contains("Rev Limiter Coil Control is set to 3-Stage Softrev on Rev Limit."));
    EXPECT_THAT(
        printed.lines(),
        Contains("First -12 Degrees, then after 100 RPM, 1/2 Coil Current, then after another 150 RPM, cut "
                 "coils"));
    EXPECT_THAT(printed.lines(), Contains("No Fuel Cut."));
    printed.unit.set("opt_FullCut", 1);
    EXPECT_THAT(printed.lines(), Contains("Rev Limiter Coil Control is set to Full Coil Cut."));
}

TEST(PrintOut, AGridHasTheHighestPressureOnTop) {
    Printed printed;
    for (int i = 0; i < 16; ++i) {
        printed.unit.set("RPMTBL", 500 * (i + 1), i);
        printed.unit.set("MAPTBL", 20 + 5 * i, i);
    }
    printed.unit.set("VE", -7, 0);
    printed.unit.set("VE", 12, 255);
    const auto lines = printed.lines();
    const auto head = std::ranges::find(lines, std::string("VOLUMETRIC EFFICIENCY (%GAMA)")) + 1;
    EXPECT_THAT(*head, StartsWith("RPM        500  1000"));
    EXPECT_TRUE((head + 1)->ends_with("    12")) << *(head + 1);
    EXPECT_THAT(*(head + 16), HasSubstr("   -07")) << "the lowest row is the last one";
}

TEST(PrintOut, RatiosStandWithTwoDecimals) {
    Printed printed;
    EXPECT_TRUE(printed.unit.set("AFR", 14.7));
    EXPECT_TRUE(printed.unit.set("Get_AFR", 13.5, 240));
    const auto lines = printed.lines();
    const auto head = std::ranges::find(lines, std::string("             AIR TO FUEL RATIO")) + 1;
    EXPECT_THAT(*(head + 1), HasSubstr("   13.50   00.00"));
}

TEST(PrintOut, CylindersStandWithTheirTrims) {
    Printed printed;
    for (int i = 0; i < 4; ++i)
        printed.unit.set("CYLORDER", std::array{1, 3, 4, 2}[static_cast<std::size_t>(i)], i);
    printed.unit.set("FuelTrim", -4, 2);
    EXPECT_THAT(printed.lines(), Contains("Firing Order:  1-3-4-2"));
    EXPECT_THAT(printed.lines(), Contains("3              0         -4"));
}

TEST(PrintOut, PinsStandWithTheirFunctionsAndParameters) {
    Printed printed;
    printed.unit.Set_GPIO_Func(1, 6);
    printed.unit.Set_GPIO_Param(1, 0, 6200);
    const auto lines = printed.lines();
    const auto pin = std::ranges::find(lines, std::string("Channel 2  Shift Light"));
    ASSERT_NE(pin, lines.end());
    EXPECT_EQ(*(pin + 1), "    RPM above which Shift Light is ON = 6200 RPM");
}

TEST(PrintedPages, HaveAHeadEachAndAreNoLongerAndNoBroaderThanThePaper) {
    const PrintFacts facts{"tune.ZQ4OA", "11/23/26", "12:00:00", "", "", ""};
    std::vector<std::string> lines(25, "short");
    lines.push_back("words that are longer than the paper is broad go on below");
    const std::vector<std::string> pages = split(printedPages(lines, facts, 40, 12), '\f');
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_THAT(pages[2], StartsWith("tune.ZQ4OA  DATE: 11/23/26  TIME:"));
    for (const std::string& page : pages) {
        const auto rows = split(page, '\n');
        EXPECT_LE(rows.size(), 13u) << "twelve lines and the end of the last";
        for (const std::string& row : rows) EXPECT_LE(row.size(), 40u);
    }
    EXPECT_THAT(pages[2], HasSubstr("words that are longer than the paper is\n        broad go on below\n"));
}

TEST(PrintOut, WhatStandsTogetherIsNotTornWhereAPageHasRoomForIt) {
    const PrintFacts facts{.file = "tune.ZQ4OA", .date = "11/23/26", .time = "12:00:00 PM"};
    // Ten lines of room: five, an empty one, then a heading with its three lines, which would be torn.
    const std::vector<std::string> lines{"1", "2", "3", "4", "5", "6", "7", "", "HEADING", "", "a", "b", "c"};
    const auto pages = split(printedPages(lines, facts, 40, 12), '\f');
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_THAT(pages[0], ::testing::EndsWith("\n7\n\n"));
    EXPECT_THAT(pages[1], ::testing::EndsWith("\n\nHEADING\n\na\nb\nc\n"));
}

TEST(PrintOut, WhatIsLongerThanAPageGoesOnOnTheNext) {
    const PrintFacts facts{.file = "tune.ZQ4OA"};
    std::vector<std::string> lines;
    for (int i = 0; i < 25; ++i) lines.push_back("line " + std::to_string(i));
    const auto pages = split(printedPages(lines, facts, 40, 12), '\f');
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_THAT(pages[1], HasSubstr("\nline 10\n"));
    EXPECT_THAT(pages[2], ::testing::EndsWith("\nline 24\n"));
}

TEST(TextPdf, HasAPageForEachPageAndItsTableOfOffsetsIsRight) {
    const std::string pdf = textPdf("one (1)\n\ftwo \u00B0\u2026\n", "tune");
    EXPECT_THAT(pdf, StartsWith("%PDF-1.4\n"));
    EXPECT_THAT(pdf, HasSubstr("/Count 2"));
    EXPECT_THAT(pdf, HasSubstr("(one \\(1\\)) Tj"));
    EXPECT_THAT(pdf, HasSubstr("(two \xB0?) Tj")) << "Latin-1, and a mark for what it lacks";
    const std::size_t table = pdf.find("xref\n");
    ASSERT_NE(table, std::string::npos);
    EXPECT_THAT(pdf, HasSubstr("startxref\n" + std::to_string(table) + "\n%%EOF"));
    std::size_t entry = pdf.find(" f \n", table) + 4;
    for (int number = 1; pdf.substr(entry + 10, 7) == " 00000 "; ++number, entry += 20) {
        const auto offset = static_cast<std::size_t>(std::stoul(pdf.substr(entry, 10)));
        EXPECT_THAT(pdf.substr(offset), StartsWith(std::to_string(number) + " 0 obj\n"));
    }
}

}  // namespace
}  // namespace zentaq
