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
    ring.written();
    ring.pop();
    EXPECT_EQ(ring.count(), 511) << "510 wait: the lost one stays in the count";
    EXPECT_EQ(emptied(ring).size(), 510U);
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

/// Changes on the fly, "P2", go in front of polls; all else goes to the end.
void queue(CommandRing& ring, const Texts& commands) {
    for (const std::string& command : commands) {
        if (command.starts_with("P2")) {
            ring.pushInFrontOfPolls(command);
        } else {
            ring.push(command);
        }
    }
}

TEST(CommandRing, AChangeOnTheFlyPassesThePollsAtItsEndAndNothingElse) {
    const std::pair<Texts, Texts> rows[] = {
        {{"W", "W", "I", "T", "F", "P2a"}, {"P2a", "W", "W", "I", "T", "F"}},
        {{"W", "W", "P2a", "P2b", "W", "P2c"}, {"P2a", "P2b", "P2c", "W", "W", "W"}},
        {{"W", "P2a", "S"}, {"P2a", "W", "S"}},
        {{"W", "S", "W", "P2a"}, {"W", "S", "P2a", "W"}},
        {{"W", "A", "W", "P2a"}, {"W", "A", "P2a", "W"}},
        {{"W", "K", "W", "P2a"}, {"W", "K", "P2a", "W"}}};
    for (const auto& [queued, sent] : rows) {
        for (const int first : {0, CommandRing::size - 2}) {  // across the end of the ring too
            CommandRing ring;
            for (int i = 0; i < first; ++i) {
                ring.push("W");
                ring.pop();
            }
            queue(ring, queued);
            EXPECT_EQ(emptied(ring), sent) << first;
        }
    }
}

TEST(CommandRing, AFullRingLosesItsOldestPollToAChangeOnTheFly) {
    CommandRing ring;
    queue(ring, Texts(CommandRing::size - 1, "W"));
    queue(ring, {"P2a"});
    EXPECT_EQ(ring.front(), "P2a");
    EXPECT_EQ(emptied(ring).size(), 511U);
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
