#include "testing/scripted_port.h"

#include <gtest/gtest.h>

#include "base/errors.h"

namespace zentaq {
namespace {

/// A port with an owner that reads on each event, as the link does.
class ScriptedPortTest : public testing::Test {
 protected:
    void SetUp() override {
        port.onEvent([this](CommEvent event) {
            events.push_back(event);
            if (event != CommEvent::DataReceived) return;
            const auto bytes = port.read();
            deliveries.emplace_back(bytes.begin(), bytes.end());
            times.push_back(clock.monotonicUs());
        });
    }
    void ask(std::string_view command, int threshold) {
        port.open(1);
        port.setReceiveThreshold(threshold);
        port.write(command);
    }
    ManualClock clock;
    ScriptedPort port{clock};
    std::vector<CommEvent> events;
    std::vector<std::string> deliveries;
    std::vector<std::int64_t> times;
};

TEST_F(ScriptedPortTest, AnswersAWriteAfterTheTimeOfItsBytesAndTwoQuietCharacters) {
    port.always("K", "AX");
    ask("K", 2);
    port.advanceUs(1079);  // 300 + 260 + 520 = 1080
    EXPECT_TRUE(deliveries.empty());
    port.advanceUs(1);
    EXPECT_EQ(deliveries, (std::vector<std::string>{"AX"}));
    EXPECT_EQ(times, (std::vector<std::int64_t>{1080}));
}

TEST_F(ScriptedPortTest, OneTimeRepliesComeBeforeTheStandingOne) {
    port.always("K", "AX");
    port.once("K", "AR");
    port.open(1);
    port.setReceiveThreshold(2);
    for (int i = 0; i < 2; ++i) {
        port.write("K");
        port.advanceUs(5000);
    }
    EXPECT_EQ(deliveries, (std::vector<std::string>{"AR", "AX"}));
}

TEST_F(ScriptedPortTest, APauseInsideAReplyKeepsItTogetherWhileBytesAreMissing) {
    port.always("B", {.bytes = "12345678", .splitAt = 3, .pauseUs = 20'000});
    ask("B", 8);
    port.advanceUs(20'000);
    EXPECT_TRUE(deliveries.empty());
    port.advanceUs(10'000);
    EXPECT_EQ(deliveries, (std::vector<std::string>{"12345678"}));
}

TEST_F(ScriptedPortTest, APauseBehindTheThresholdSplitsTheReply) {
    port.always("B", {.bytes = "12345678", .splitAt = 6, .pauseUs = 20'000});
    ask("B", 2);
    port.advanceUs(100'000);
    EXPECT_EQ(deliveries, (std::vector<std::string>{"123456", "78"}));
}

TEST_F(ScriptedPortTest, RefusesToOpenWhatTheFaultPlanRefuses) {
    port.refuse(2);
    EXPECT_THROW(port.open(2), Failure);
    EXPECT_FALSE(port.isOpen());
    port.open(1);
    EXPECT_TRUE(port.isOpen());
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{2, 1}));
}

TEST_F(ScriptedPortTest, FailingWritesAreCountedDownAndNotKept) {
    port.open(1);
    port.failWrites(1);
    EXPECT_THROW(port.write("E"), Failure);
    port.write("F");
    EXPECT_EQ(port.written(), (std::vector<std::string>{"F"}));
}

TEST_F(ScriptedPortTest, OnlyTheUnitsPortAnswers) {
    port.always("E", "xxxxxx");
    port.unitOnPort(2);
    port.setReceiveThreshold(6);
    port.open(1);
    port.write("E");
    port.advanceUs(50'000);
    EXPECT_TRUE(deliveries.empty());
    port.close();
    port.open(2);
    port.write("E");
    port.advanceUs(50'000);
    EXPECT_EQ(deliveries.size(), 1u);
}

TEST_F(ScriptedPortTest, ErrorEventsCarryNoBytes) {
    port.open(1);
    port.raiseError();
    EXPECT_EQ(events, (std::vector<CommEvent>{CommEvent::Error}));
    EXPECT_TRUE(deliveries.empty());
}

}  // namespace
}  // namespace zentaq
