// What a change sends to a running unit.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, RecordShowsTheLineThatAChangeSends) {
    const std::string before = contentOf(file);
    EXPECT_THAT(onFile("record", "KNK_MIN 50"), Succeeds("S10411228048\n"));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, RecordUsesTheScaleAndTheAddressOfTheRunningUnit) {
    expectAnswers("record", {{"CYL_OvrThr 20", "S10411415059\n"},
                             // 45 = 0x2D at 0x1100 + 912 + 17 = 0x14A1; 4 + 0x14 + 0xA1 + 0x2D = 0xE6
                             {"VE -5 --index 17", "S10414A12D19\n"},
                             // 50 % = 127.5, which goes to 128 = 0x80, at 0x1100 + 1680 + 3 = 0x1793; 4 +
                             // 0x17 + 0x93 + 0x80 = 0x12E
                             {"GPO1 50 --index 3", "S104179380D1\n"},
                             // 500 = 0x01F4 at 0x1100 + 592 = 0x1350; 5 + 0x13 + 0x50 + 0x01 + 0xF4 = 0x15D
                             {"RPMTBL 500", "S105135001F4A2\n"},
                             {"VE.X-Axis 500", "S105135001F4A2\n"}});
}

TEST_F(Zentaqctl, RecordShowsNothingWhereNothingIsSent) {
    for (const char* change :
         {"INJ_Number 8", "NOTES_TEXT hello", "BiName hello", "Control 1 --index 3", "VE.ROWS 12"}) {
        EXPECT_THAT(onFile("record", change), Succeeds(IsEmpty())) << change;
    }
}

TEST_F(Zentaqctl, RecordOfARefusedValueFails) {
    EXPECT_THAT(onFile("record", "KNK_MIN 1"), Fails(1, outOfRange("(2 to 100 units)") + "\n", IsEmpty()));
}

TEST_F(Zentaqctl, RecordAnswersInJson) {
    expectAnswers(
        "record",
        {{"KNK_MIN 50 --json", "{\"member\":\"KNK_MIN\",\"index\":0,\"records\":[\"S10411228048\"]}\n"},
         {"INJ_Number 8 --json", "{\"member\":\"INJ_Number\",\"index\":0,\"records\":[]}\n"}});
}

}  // namespace
}  // namespace zentaq
