#include "sim/faults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

const Bytes tenBytes{0xFA, 0xA5, 0x55, 1, 2, 3, 4, 5, 6, 0x6A};

FaultInjector injector(std::initializer_list<const char*> texts, unsigned seed = 1) {
    std::vector<Fault> faults;
    for (const char* text : texts) faults.push_back(parseFault(text));
    return FaultInjector(std::move(faults), seed);
}

Bytes joined(const FaultyReply& reply) {
    Bytes all;
    for (const auto& piece : reply.pieces) all.insert(all.end(), piece.bytes.begin(), piece.bytes.end());
    return all;
}

Bytes once(const char* fault, const Bytes& reply = tenBytes) {
    return joined(injector({fault}).apply(bytesOf("W"), reply));
}

/// What is left of "AX" as the answer to a command.
std::string answerOf(FaultInjector& faults, std::string_view command) {
    return textOf(joined(faults.apply(bytesOf(command), bytesOf("AX"))));
}

TEST(Faults, WithoutOneAReplyPassesAsItIs) {
    FaultInjector none;
    const FaultyReply reply = none.apply(bytesOf("W"), tenBytes);
    ASSERT_EQ(reply.pieces.size(), 1u);
    EXPECT_EQ(reply.pieces[0].bytes, tenBytes);
    EXPECT_EQ(reply.pieces[0].after, Delay(0));
    EXPECT_FALSE(reply.cableOut);
}

TEST(Faults, LostByteIsMissingAndTheOthersKeepTheirOrder) {
    const Bytes reply = once("lose-byte");
    ASSERT_EQ(reply.size(), 9u);
    std::size_t at = 0;
    for (const std::uint8_t byte : tenBytes) {
        if (at < reply.size() && reply[at] == byte) ++at;
    }
    EXPECT_EQ(at, 9u);
}

TEST(Faults, ExtraByteMakesTheReplyLonger) {
    EXPECT_EQ(once("extra-byte").size(), 11u);
}

TEST(Faults, FlippedBitIsOneBit) {
    const Bytes reply = once("flip-bit");
    ASSERT_EQ(reply.size(), 10u);
    int different = 0;
    for (std::size_t i = 0; i < 10; ++i) {
        different += std::popcount(static_cast<unsigned>(reply[i] ^ tenBytes[i]));
    }
    EXPECT_EQ(different, 1);
}

TEST(Faults, WrongSumChangesTheLastByteOfAHeadedReplyOnly) {
    Bytes expected = tenBytes;
    expected.back() = 0x6B;
    EXPECT_EQ(once("wrong-sum"), expected);
    EXPECT_EQ(once("wrong-sum", bytesOf("AX")), bytesOf("AX"));
}

TEST(Faults, SilenceAndRefusalReplaceTheReply) {
    EXPECT_TRUE(once("silence").empty());
    EXPECT_EQ(textOf(once("refuse")), "AR");
}

TEST(Faults, LateReplyBeginsLater) {
    const FaultyReply reply = injector({"late=350"}).apply(bytesOf("W"), tenBytes);
    ASSERT_EQ(reply.pieces.size(), 1u);
    EXPECT_EQ(reply.pieces[0].after, Delay(350));
    EXPECT_EQ(reply.pieces[0].bytes, tenBytes);
}

TEST(Faults, SplitReplyPausesInItsMiddle) {
    const FaultyReply reply = injector({"split=40", "late=5"}).apply(bytesOf("W"), tenBytes);
    ASSERT_EQ(reply.pieces.size(), 2u);
    EXPECT_EQ(reply.pieces[0].bytes, (Bytes{0xFA, 0xA5, 0x55, 1, 2}));
    EXPECT_EQ(reply.pieces[0].after, Delay(5));
    EXPECT_EQ(reply.pieces[1].bytes, (Bytes{3, 4, 5, 6, 0x6A}));
    EXPECT_EQ(reply.pieces[1].after, Delay(45));
}

TEST(Faults, HangUpTakesTheReplyAndTheCable) {
    const FaultyReply reply = injector({"hang-up=700"}).apply(bytesOf("W"), tenBytes);
    EXPECT_TRUE(reply.pieces.empty());
    EXPECT_EQ(reply.cableOut, Delay(700));
}

TEST(Faults, ResetCutsTheReplyInItsMiddleAndTellsHowLongTheUnitBoots) {
    const FaultyReply reply = injector({"reset=250"}).apply(bytesOf("W"), tenBytes);
    ASSERT_EQ(reply.pieces.size(), 1u);
    EXPECT_EQ(reply.pieces[0].bytes, (Bytes{0xFA, 0xA5, 0x55, 1, 2}));
    EXPECT_EQ(reply.resetFor, Delay(250));
    EXPECT_FALSE(reply.cableOut);
    const FaultyReply ofALine = injector({"reset@line"}).apply(bytesOf(imageRow(0, 1)), bytesOf("AX"));
    EXPECT_EQ(textOf(joined(ofALine)), "A");
    EXPECT_EQ(ofALine.resetFor, Delay(400));
    const FaultyReply ofOneByte = injector({"reset"}).apply(bytesOf("W"), Bytes{1});
    EXPECT_TRUE(ofOneByte.pieces.empty());
}

TEST(Faults, NoiseAnswersAnyRequestWithRandomBytesOfRandomCount) {
    FaultInjector faults = injector({"noise"});
    std::size_t shortest = 1000;
    std::size_t longest = 0;
    std::vector<int> seen(256);
    for (int i = 0; i < 2000; ++i) {
        const auto noise = faults.mishear(bytesOf("x"));  // no command of any unit
        ASSERT_TRUE(noise);
        const Bytes bytes = joined(*noise);
        shortest = std::min(shortest, bytes.size());
        longest = std::max(longest, bytes.size());
        for (const std::uint8_t byte : bytes) ++seen[byte];
    }
    EXPECT_EQ(shortest, 1u);
    EXPECT_EQ(longest, 64u);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0), 0) << "every value comes";
}

TEST(Faults, NoiseKeepsToItsCommandItsOccurrenceAndItsChance) {
    FaultInjector ofOne = injector({"noise@W#2"});
    EXPECT_FALSE(ofOne.mishear(bytesOf("W")));
    EXPECT_FALSE(ofOne.mishear(bytesOf("E")));
    EXPECT_TRUE(ofOne.mishear(bytesOf("W")));
    EXPECT_FALSE(ofOne.mishear(bytesOf("W")));
    FaultInjector ofSome = injector({"noise%25"});
    int struck = 0;
    for (int i = 0; i < 2000; ++i) struck += ofSome.mishear(bytesOf("W")) ? 1 : 0;
    EXPECT_NEAR(struck, 500, 60);
}

TEST(Faults, NoiseIsNoMatterOfAReplyAndOtherFaultsNoneOfNoise) {
    EXPECT_EQ(once("noise"), tenBytes);
    EXPECT_FALSE(injector({"silence"}).mishear(bytesOf("W")));
}

TEST(Faults, FaultOfACommandLeavesTheOthersAlone) {
    FaultInjector faults = injector({"silence@P2"});
    for (const char* other : {"P1", "W", "S"}) EXPECT_EQ(answerOf(faults, other), "AX") << other;
    EXPECT_EQ(answerOf(faults, "P2S10411228048"), "");
}

TEST(Faults, OccurrenceStrikesOnce) {
    FaultInjector faults = injector({"refuse@S#2"});
    for (const char* untouched : {"S", "A"}) EXPECT_EQ(answerOf(faults, untouched), "AX");
    EXPECT_EQ(answerOf(faults, "S"), "AR");
    EXPECT_EQ(answerOf(faults, "S"), "AX");
}

TEST(Faults, LinesAreCountedFromTheStartOfEachTransferOfWhateverKind) {
    FaultInjector faults = injector({"refuse@line#2"});
    for (const char* command : {"P1", "P3", "P1", "P3"}) {
        answerOf(faults, command);
        std::string replies;
        for (const std::string& line : {imageRow(0, 1), std::string("S017"), std::string("S214")}) {
            replies += answerOf(faults, line);
        }
        EXPECT_EQ(replies, "AXARAX") << command;
    }
}

TEST(Faults, CommandSAloneIsNoLine) {
    FaultInjector faults = injector({"refuse@line"});
    EXPECT_EQ(answerOf(faults, "S"), "AX");
}

TEST(Faults, BurstWithoutAReplyIsNotCounted) {
    FaultInjector faults = injector({"refuse@Z#1"});
    EXPECT_TRUE(faults.apply(bytesOf("Z"), {}).pieces.empty());
    EXPECT_EQ(textOf(joined(faults.apply(Bytes{'Z', 0xFF}, bytesOf("AX")))), "AR");
}

TEST(Faults, PercentIsAChanceThatTheSeedRepeats) {
    const auto pattern = [](unsigned seed) {
        FaultInjector faults = injector({"silence%20"}, seed);
        std::vector<bool> silent;
        for (int i = 0; i < 2000; ++i) silent.push_back(faults.apply(bytesOf("W"), tenBytes).pieces.empty());
        return silent;
    };
    const auto first = pattern(7);
    EXPECT_NEAR(static_cast<double>(std::count(first.begin(), first.end(), true)), 400, 60);
    EXPECT_EQ(first, pattern(7));
    EXPECT_NE(first, pattern(8));
}

TEST(Faults, ChanceOfZeroNeverStrikesAndOfHundredAlways) {
    FaultInjector never = injector({"silence%0"});
    FaultInjector always = injector({"silence%100"});
    for (int i = 0; i < 500; ++i) {
        ASSERT_FALSE(never.apply(bytesOf("W"), tenBytes).pieces.empty());
        ASSERT_TRUE(always.apply(bytesOf("W"), tenBytes).pieces.empty());
    }
}

TEST(Faults, ByteLostFromAReplyOfOneByteIsSilence) {
    EXPECT_TRUE(once("lose-byte", Bytes{1}).empty());
    EXPECT_EQ(textOf(once("split", Bytes{'A'})), "A");
}

TEST(FaultText, CarriesDelayCommandOccurrenceAndChance) {
    const Fault fault = parseFault("late=300@line#12%2.5");
    EXPECT_EQ(fault.kind, FaultKind::Late);
    EXPECT_EQ(fault.delay, Delay(300));
    EXPECT_EQ(fault.command, "line");
    EXPECT_EQ(fault.occurrence, 12);
    EXPECT_EQ(fault.percent, 2.5);
    EXPECT_EQ(parseFault("hang-up").delay, Delay(1000));
    EXPECT_EQ(parseFault("flip-bit").percent, 100);
}

TEST(FaultText, OptionsNameEveryKindOnce) {
    std::vector<FaultKind> kinds;
    for (const FaultOption& option : faultOptions()) {
        EXPECT_EQ(parseFault(option.name).kind, option.kind) << option.name;
        EXPECT_EQ(std::count(kinds.begin(), kinds.end(), option.kind), 0) << option.name;
        kinds.push_back(option.kind);
    }
    EXPECT_EQ(kinds.size(), 11u);
}

TEST(FaultText, OptionAndTheWordsBehindItMakeAFault) {
    EXPECT_EQ(faultText("late", "300@W"), "late=300@W");
    EXPECT_EQ(faultText("late", "=300@W"), "late=300@W");
    EXPECT_EQ(faultText("lose-byte", "@W%5"), "lose-byte@W%5");
    EXPECT_EQ(faultText("silence", "@B#2"), "silence@B#2");
    EXPECT_EQ(faultText("silence", "%20"), "silence%20");
    EXPECT_EQ(faultText("silence", ""), "silence");
}

TEST(FaultText, AnythingElseIsRefused) {
    for (const char* text :
         {"", "boo", "silence=5", "late=", "late=-1", "late=x", "silence@", "silence@Q", "silence@W#0",
          "silence@W#x", "noise=5", "silence%", "silence%101", "silence%-1", "@W"}) {
        EXPECT_THROW(parseFault(text), Failure) << text;
    }
}

}  // namespace
}  // namespace zentaq::sim
