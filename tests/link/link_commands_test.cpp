#include "link/link_commands.h"

#include <gtest/gtest.h>

#include "link/recording_link_host.h"

namespace zentaq {
namespace {

TEST(CommandKey, ZAndPCommandsCarryDataBehindTheirKey) {
    EXPECT_EQ(commandKey(std::string("Z\xFF")), "Z");
    EXPECT_EQ(commandKey(std::string("Z\0", 2)), "Z");
    EXPECT_EQ(commandKey("P2S10411415059"), "P2");
    EXPECT_EQ(commandKey("P1"), "P1");
    EXPECT_EQ(commandKey("W"), "W");
    EXPECT_EQ(commandKey(""), "");
}

TEST(CommandTable, HasOneRowForEachOfTheFifteenKeys) {
    EXPECT_EQ(commandTable().size(), 15u);
    for (const char* key : {"A", "B", "C", "D", "E", "F", "I", "K", "P1", "P2", "P3", "S", "T", "W", "Z"}) {
        EXPECT_NE(findCommand(key), nullptr) << key;
    }
    EXPECT_EQ(findCommand("Q"), nullptr);
    EXPECT_EQ(findCommand(""), nullptr);
}

struct LengthRow {
    const char* key;
    int orbA, orbL, orbC, orbD, pzk;
};

TEST(CommandTable, ReplyLengthsByUnitKind) {
    const LengthRow rows[] = {
        {"A", 2, 2, 2, 2, 2},      {"B", 39, 38, 38, 38, 38}, {"C", 39, 39, 39, 39, 39},
        {"D", 33, 36, 40, 34, 34}, {"E", 8, 8, 8, 8, 8},      {"F", 35, 28, 28, 28, 28},
        {"I", 21, 21, 21, 21, 21}, {"K", 2, 2, 2, 2, 2},      {"P1", 2, 2, 2, 2, 2},
        {"P2", 2, 2, 2, 2, 2},     {"P3", 2, 2, 2, 2, 2},     {"S", 2, 2, 2, 2, 2},
        {"T", 16, 16, 16, 16, 16}, {"W", 65, 66, 70, 62, 23}, {"Z", 2, 2, 2, 2, 2},
    };
    for (const LengthRow& row : rows) {
        const auto length = [&](int slot) {
            return unitKindOfSlot(slot)->sizes.*findCommand(row.key)->replyLength;
        };
        EXPECT_EQ(length(3), row.orbA) << row.key;
        EXPECT_EQ(length(4), row.orbL) << row.key;
        EXPECT_EQ(length(6), row.orbC) << row.key;
        EXPECT_EQ(length(7), row.orbD) << row.key;
        EXPECT_EQ(length(5), row.pzk) << row.key;
    }
}

TEST(CommandTable, TheNullUnitAnswersOneByteAndTwoWhereEveryUnitDoes) {
    for (const CommandRow& row : commandTable()) {
        const std::string keys = "A K P1 P2 P3 S Z ";
        const bool misc = keys.find(std::string(row.key) + " ") != std::string::npos;
        EXPECT_EQ(nullKind().sizes.*row.replyLength, misc ? 2 : 1) << row.key;
    }
}

TEST(CommandTable, BothKindsOfOrbDHaveTheSameLengths) {
    for (const CommandRow& row : commandTable()) {
        EXPECT_EQ(unitKindOfSlot(8)->sizes.*row.replyLength, unitKindOfSlot(7)->sizes.*row.replyLength);
    }
}

TEST(CommandTable, AFirstIdentifyAndThatOfAnOldOrbAAskForSixBytes) {
    const CommandRow& identify = *findCommand("E");
    EXPECT_EQ(replyLength(identify, nullKind(), false), 6);
    EXPECT_EQ(replyLength(identify, *unitKindOfSlot(3), true), 6);
    EXPECT_EQ(replyLength(identify, *unitKindOfSlot(3), false), 8);
    EXPECT_EQ(replyLength(identify, *unitKindOfSlot(4), true), 8);
}

TEST(CommandTable, ClearStoreAndFirmwareHaveFiveSecondsOfPatience) {
    for (const CommandRow& row : commandTable()) {
        const bool slow = row.key == "A" || row.key == "S" || row.key == "P3";
        EXPECT_EQ(row.patienceTicks, slow ? 5000 : 1000) << row.key;
    }
}

TEST(CommandTable, ClearOnTheFlyAndStoreLockTheTable) {
    for (const CommandRow& row : commandTable()) {
        EXPECT_EQ(row.locksTable, row.key == "A" || row.key == "P2" || row.key == "S") << row.key;
    }
}

TEST(StatusRow, AKeyInNoRowShowsTheRowOfAllOthers) {
    EXPECT_EQ(statusRow("Q").activity, "{Info}");
    EXPECT_EQ(statusRow("").status.title, "Active ORB...");
}

}  // namespace
}  // namespace zentaq
