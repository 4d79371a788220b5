#include "sim/adapter.h"

#include <gtest/gtest.h>

namespace zentaq::sim {
namespace {

using Bytes = Adapter::Bytes;
using std::chrono::microseconds;

constexpr Moment start{std::chrono::seconds(1)};

Moment at(int us) {
    return start + microseconds(us);
}

Adapter withBurst(int milliseconds) {
    return Adapter({.burst = std::chrono::milliseconds(milliseconds)}, start);
}

TEST(Adapter, WithoutATimerEveryByteGoesOnAtOnce) {
    Adapter adapter({}, start);
    adapter.receive(at(100), {1, 2});
    EXPECT_EQ(adapter.takeForProgram(at(100)), (Bytes{1, 2}));
    EXPECT_FALSE(adapter.nextDue());
}

TEST(Adapter, BytesWaitForTheNextFiringOfATimerThatRunsFree) {
    Adapter adapter = withBurst(16);
    adapter.receive(at(20'000), {1});  // between the firings at 16 and 32 ms
    EXPECT_EQ(adapter.nextDue(), at(32'000));
    EXPECT_TRUE(adapter.takeForProgram(at(20'000)).empty());
    adapter.receive(at(31'999), {2});
    EXPECT_TRUE(adapter.takeForProgram(at(31'999)).empty());
    EXPECT_EQ(adapter.takeForProgram(at(32'000)), (Bytes{1, 2}));
    EXPECT_FALSE(adapter.nextDue());
    adapter.receive(at(32'001), {3});
    EXPECT_EQ(adapter.nextDue(), at(48'000));  // not 16 ms after the byte
}

TEST(Adapter, ByteThatComesAtTheVeryFiringGoesWithIt) {
    Adapter adapter = withBurst(16);
    adapter.receive(at(16'000), {7});
    EXPECT_EQ(adapter.takeForProgram(at(16'000)), (Bytes{7}));
}

TEST(Adapter, FullLumpGoesAtOnceAndItsRestWaits) {
    Adapter adapter = withBurst(16);
    adapter.receive(at(1'000), Bytes(61, 5));
    EXPECT_TRUE(adapter.takeForProgram(at(1'000)).empty());
    adapter.receive(at(2'000), Bytes(4, 6));
    Bytes lump(61, 5);
    lump.push_back(6);
    EXPECT_EQ(adapter.takeForProgram(at(2'000)), lump);
    EXPECT_EQ(adapter.nextDue(), at(16'000));
    EXPECT_EQ(adapter.takeForProgram(at(16'000)), (Bytes{6, 6, 6}));
}

TEST(Adapter, WriteThatIsTooLongLosesItsRest) {
    const Adapter adapter({.dropWrites = 3}, start);
    EXPECT_EQ(adapter.written({1, 2, 3}), (Bytes{1, 2, 3}));
    EXPECT_EQ(adapter.written({1, 2, 3, 4}), (Bytes{1, 2, 3}));
}

TEST(Adapter, VanishesOverAWriteThatIsTooLong) {
    const Adapter adapter({.vanishWrites = 3}, start);
    EXPECT_EQ(adapter.written({1, 2, 3}), (Bytes{1, 2, 3}));
    EXPECT_FALSE(adapter.written({1, 2, 3, 4}));
}

TEST(Adapter, WithoutALimitLongWritesPass) {
    const Adapter adapter({}, start);
    EXPECT_EQ(adapter.written(Bytes(4096, 1)), Bytes(4096, 1));
}

}  // namespace
}  // namespace zentaq::sim
