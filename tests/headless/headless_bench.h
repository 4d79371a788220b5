// A link without windows on a scripted port in virtual time, where one step is a millisecond; and the unit
// that most tests meet there, an ORB A.
#pragma once

#include <functional>

#include "headless/headless_session.h"
#include "link/link_bench.h"

namespace zentaq {

class StepOfABench : public Yield {
 public:
    explicit StepOfABench(ScriptedPort& port) : port_(port) {}
    void yield() override {
        port_.advanceUs(1000);
        if (tick) tick();
        if (meanwhile) meanwhile();
        ++count;
    }
    std::function<void()> tick;
    std::function<void()> meanwhile;
    int count = 0;

 private:
    ScriptedPort& port_;
};

class HeadlessBench : public ::testing::Test {
 protected:
    explicit HeadlessBench(Unit* calibration = nullptr)
        : session({.port = port,
                   .clock = clock,
                   .pass = pass,
                   .unitHost = unitHost,
                   .calibration = calibration,
                   .stopWanted = [this] { return stop; },
                   .watch = [this](const LinkStatus&) { ++watched; }}) {
        pass.tick = [this] { session.link().tick(); };
    }
    /// Of release 5, which sends wide frames of 65 bytes.
    void answerAsOrbA() {
        port.always("E", identifyReply(200001));
        port.always("B", firmwareReply("DEMO", "ZQA-405099"));
        port.always("C", framed(39, {}));
    }
    void identify() {
        answerAsOrbA();
        session.open(1);
        ASSERT_EQ(session.findUnit(), Found::Identified);
        port.takeWritten();
    }

    ManualClock clock;
    ScriptedPort port{clock};
    StepOfABench pass{port};
    QuietHost unitHost;
    bool stop = false;
    int watched = 0;
    HeadlessSession session;
};

}  // namespace zentaq
