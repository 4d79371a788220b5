#include "sim/wire_pacing.h"

#include <gtest/gtest.h>

#include "base/errors.h"

namespace zentaq::sim {
namespace {

using std::chrono::nanoseconds;

Moment at(std::int64_t ns) {
    return Moment{} + nanoseconds(1'000'000'000 + ns);
}

using Bytes = WirePacing::Bytes;

/// One byte takes 10 / 38400 s = 260416.67 ns.
class WireAt38400 : public testing::Test {
 protected:
    WirePacing wire{38400};
};

TEST_F(WireAt38400, BurstIsCompleteAfterTheTimeOfItsBytes) {
    wire.receive(at(0), {1, 2, 3});
    EXPECT_FALSE(wire.takeArrival(at(781'249)));
    const auto arrival = wire.takeArrival(at(781'250));  // 3 * 260416.67
    ASSERT_TRUE(arrival);
    EXPECT_EQ(arrival->complete, at(781'250));
    EXPECT_EQ(arrival->burst, (Bytes{1, 2, 3}));
    EXPECT_FALSE(wire.takeArrival(at(2'000'000)));
}

TEST_F(WireAt38400, SecondBurstComesInBehindTheFirst) {
    wire.receive(at(0), {1, 2, 3});
    wire.receive(at(100), {4, 5, 6});
    EXPECT_TRUE(wire.takeArrival(at(1'562'499)));
    EXPECT_FALSE(wire.takeArrival(at(1'562'499)));
    EXPECT_TRUE(wire.takeArrival(at(1'562'500)));
}

TEST_F(WireAt38400, ReplyLeavesByteByByteAndNeverEarly) {
    wire.send(at(0), {7, 8, 9});
    EXPECT_TRUE(wire.takeSent(at(260'416)).empty());
    EXPECT_EQ(wire.takeSent(at(260'417)), (Bytes{7}));
    EXPECT_TRUE(wire.takeSent(at(520'833)).empty());
    EXPECT_EQ(wire.takeSent(at(520'834)), (Bytes{8}));
    EXPECT_EQ(wire.takeSent(at(781'250)), (Bytes{9}));
    EXPECT_FALSE(wire.nextDue());
}

TEST_F(WireAt38400, LateWakeUpSendsAllThatIsDueAndKeepsTheMeanRate) {
    wire.send(at(0), Bytes(65, 1));
    EXPECT_EQ(wire.takeSent(at(5'000'000)).size(), 19u);  // 5 ms hold 19.2 bytes
    EXPECT_EQ(wire.takeSent(at(16'927'083)).size(), 45u);
    EXPECT_EQ(wire.takeSent(at(16'927'084)).size(), 1u);  // 65 * 260416.67 = 16927083.3
}

TEST_F(WireAt38400, NextReplyFollowsTheOneThatIsGoingOut) {
    wire.send(at(0), {1, 2, 3});
    wire.send(at(10), {4});
    EXPECT_EQ(wire.takeSent(at(781'250)).size(), 3u);
    EXPECT_TRUE(wire.takeSent(at(1'041'666)).empty());
    EXPECT_EQ(wire.takeSent(at(1'041'667)), (Bytes{4}));
}

TEST_F(WireAt38400, TellsTheNextMomentOfEitherDirection) {
    EXPECT_FALSE(wire.nextDue());
    wire.send(at(0), {1, 2});
    EXPECT_EQ(wire.nextDue(), at(260'417));
    wire.takeSent(at(260'417));
    EXPECT_EQ(wire.nextDue(), at(520'834));
    wire.receive(at(100'000), {1});
    EXPECT_EQ(wire.nextDue(), at(360'417));
}

TEST(WirePacing, BaudZeroLetsEverythingPassAtOnce) {
    WirePacing wire(0);
    wire.receive(at(0), Bytes(100, 1));
    EXPECT_TRUE(wire.takeArrival(at(0)));
    wire.send(at(0), Bytes(100, 1));
    EXPECT_EQ(wire.takeSent(at(0)).size(), 100u);
}

TEST(WirePacing, NegativeRateIsRefused) {
    EXPECT_THROW(WirePacing(-1), BoundsError);
}

}  // namespace
}  // namespace zentaq::sim
