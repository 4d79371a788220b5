// The ring of commands by itself: its order, its overrun, its count.
#include "link/command_ring.h"

#include <gtest/gtest.h>

#include <vector>

namespace zentaq {
namespace {

std::vector<std::string> emptied(CommandRing& ring) {
    std::vector<std::string> all;
    for (; !ring.empty(); ring.pop()) all.push_back(ring.front());
    return all;
}

CommandRing ringOf(std::initializer_list<const char*> commands) {
    CommandRing ring;
    for (const char* command : commands) ring.push(command);
    return ring;
}

using Texts = std::vector<std::string>;

TEST(CommandRing, GivesItsCommandsInTheOrderInWhichTheyCame) {
    CommandRing ring = ringOf({"E", "B", "C"});
    EXPECT_EQ(ring.count(), 3);
    EXPECT_EQ(emptied(ring), (Texts{"E", "B", "C"}));
}

TEST(CommandRing, TheCommandNumber512LosesTheOldestAndIsCountedAllTheSame) {
    CommandRing ring;
    for (int i = 0; i < CommandRing::size; ++i) ring.push(std::to_string(i));
    EXPECT_EQ(ring.front(), "1");
    EXPECT_EQ(ring.head(), 1);
    EXPECT_EQ(ring.tail(), 0);
    EXPECT_EQ(ring.count(), 512);
    EXPECT_EQ(emptied(ring).size(), 511U);
    ring.settle();
    EXPECT_EQ(ring.count(), 0) << "nobody waits in an empty ring";
}

TEST(CommandRing, WrapsBehindItsLastPlace) {
    CommandRing ring;
    for (int i = 0; i < 600; ++i) {
        ring.push(std::to_string(i));
        EXPECT_EQ(ring.front(), std::to_string(i));
        ring.written();
        ring.pop();
    }
    EXPECT_TRUE(ring.empty());
    EXPECT_EQ(ring.count(), 0);
}

TEST(CommandRing, InAFullRingTheOldestGivesWayToOneInFront) {
    CommandRing ring;
    for (int i = 0; i + 1 < CommandRing::size; ++i) ring.push(std::to_string(i));
    ring.pushInFront("K");
    const Texts all = emptied(ring);
    EXPECT_EQ(all.size(), 511U);
    EXPECT_EQ(all[0], "K");
    EXPECT_EQ(all[1], "1");
}

TEST(CommandRing, PassesThePollsAtItsEndAndNothingElse) {
    CommandRing ring = ringOf({"W", "S", "P2a", "F", "I", "T", "W"});
    ring.pushInFrontOfPolls("P2b");
    EXPECT_EQ(emptied(ring), (Texts{"W", "S", "P2a", "P2b", "F", "I", "T", "W"}));
}

TEST(CommandRing, DropsWhatWaitsBehindItsFront) {
    CommandRing ring = ringOf({"P1", "F", "T"});
    ring.dropBehindFront();
    EXPECT_EQ(ring.count(), 1);
    EXPECT_EQ(emptied(ring), (Texts{"P1"}));
}

TEST(CommandRing, TellsWhatWaits) {
    CommandRing ring = ringOf({"E", "Z1", "Z2", "F"});
    EXPECT_TRUE(ring.holds("E"));
    EXPECT_FALSE(ring.holds("Z"));
    EXPECT_EQ(*ring.last('Z'), "Z2");
    EXPECT_EQ(ring.last('K'), nullptr);
    ring.clear();
    EXPECT_FALSE(ring.holds("E"));
    EXPECT_EQ(ring.count(), 0);
}

TEST(CommandRing, AnEmptyTextStandsInTheWay) {
    const CommandRing ring = ringOf({"", "F"});
    EXPECT_TRUE(ring.nothingToSend());
    EXPECT_FALSE(ring.empty());
}

TEST(CommandRing, RewindsWithoutForgettingItsCount) {
    CommandRing ring = ringOf({"E", "B"});
    ring.rewind();
    EXPECT_TRUE(ring.empty());
    EXPECT_EQ(ring.count(), 2);
}

}  // namespace
}  // namespace zentaq
