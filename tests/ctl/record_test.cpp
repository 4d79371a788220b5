// What a change sends to a running unit.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, RecordShowsTheLineThatAChangeSends) {
    const std::string before = contentOf(file);
    EXPECT_THAT(onFile("record", "KNK_MIN 50"), Succeeds("S10411228048\n"));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, RecordUsesTheScaleOfTheRunningUnit) {
    EXPECT_EQ(onFile("record", "CYL_OvrThr 20").out, "S10411415059\n");
}

TEST_F(Zentaqctl, RecordShowsTheElementsAddress) {
    // VE 17 of -5: 45 = 0x2D at 0x1100 + 912 + 17 = 0x14A1; 4 + 0x14 + 0xA1 + 0x2D = 0xE6
    EXPECT_EQ(onFile("record", "VE -5 --index 17").out, "S10414A12D19\n");
}

TEST_F(Zentaqctl, RecordShowsNothingWhereNothingIsSent) {
    EXPECT_THAT(onFile("record", "INJ_Number 8"), Succeeds(IsEmpty()));
}

TEST_F(Zentaqctl, RecordOfARefusedValueFails) {
    EXPECT_THAT(onFile("record", "KNK_MIN 1"),
                Fails(1, "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.\n", IsEmpty()));
}

TEST_F(Zentaqctl, RecordAnswersInJson) {
    EXPECT_EQ(onFile("record", "KNK_MIN 50 --json").out,
              "{\"member\":\"KNK_MIN\",\"index\":0,\"records\":[\"S10411228048\"]}\n");
    EXPECT_EQ(onFile("record", "INJ_Number 8 --json").out,
              "{\"member\":\"INJ_Number\",\"index\":0,\"records\":[]}\n");
}

TEST_F(Zentaqctl, RecordShowsWhatAnOutputTableSends) {
    // 50 % = 127.5, which goes to 128 = 0x80, at 0x1100 + 1680 + 3 = 0x1793; 4 + 0x17 + 0x93 + 0x80 = 0x12E
    EXPECT_EQ(onFile("record", "GPO1 50 --index 3").out, "S104179380D1\n");
}

TEST_F(Zentaqctl, RecordShowsWhatAnAxisSends) {
    // 500 = 0x01F4 at 0x1100 + 592 = 0x1350; 5 + 0x13 + 0x50 + 0x01 + 0xF4 = 0x15D
    EXPECT_EQ(onFile("record", "RPMTBL 500").out, "S105135001F4A2\n");
    EXPECT_EQ(onFile("record", "VE.X-Axis 500").out, "S105135001F4A2\n");
}

TEST_F(Zentaqctl, RecordOfTextsAndBitsIsEmpty) {
    for (const char* change : {"NOTES_TEXT hello", "BiName hello", "Control 1 --index 3", "VE.ROWS 12"}) {
        const Outcome outcome = onFile("record", change);
        EXPECT_EQ(outcome.exitCode, 0) << change << outcome.error;
        EXPECT_THAT(outcome.out, IsEmpty()) << change;
    }
}

}  // namespace
}  // namespace zentaq
