// A link on a scripted port in virtual time: one call of `ticks` moves the line and the tick machine
// together.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/channels.h"
#include "link/link.h"
#include "link/poller.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "temporary_folder.h"
#include "testing/scripted_port.h"
#include "unit_replies.h"

namespace zentaq {

/// A reply that is whole before the next tick.
inline ScriptedReply atOnce(std::string_view text) {
    return {.bytes = std::string(text), .delayUs = 10, .byteUs = 0};
}

/// A yield that lets one millisecond pass: the line, one tick, and what a test wants to happen meanwhile.
class BenchYield : public Yield {
 public:
    void yield() override {
        ++count;
        if (meanwhile) meanwhile();
    }
    std::function<void()> meanwhile;
    int count = 0;
};

class LinkBench : public testing::Test {
 protected:
    LinkBench() { host.unitHost.applicationFolder(folder.path()); }

    /// Each tick stands at the end of its millisecond.
    void ticks(int count) {
        for (int i = 0; i < count; ++i) {
            port.advanceUs(1000);
            link.tick();
        }
    }

    void open() {
        link.RS232_Initialize(1);
        forget();
    }

    /// What was recorded so far does not matter.
    void forget() {
        port.takeWritten();
        host.forget();
    }

    /// Brings a unit of a serial number up to UnitFound without a B reply; the unanswered B is gone.
    void find(std::uint32_t serial) {
        open();
        port.once("E", identifyReply(serial));
        link.Send_ORB_Command("E");
        ticks(2000);
        forget();
    }

    /// The next questions who is there are answered by this unit.
    void tellOnce(std::uint32_t serial, const std::string& firmware) {
        port.once("E", identifyReply(serial));
        port.once("B", firmwareReply("DEMO", firmware, serial < 300000 ? 39 : 38));
    }

    /// Brings a unit up to UnitIdentified.
    void identify(std::uint32_t serial, const std::string& firmware) {
        open();
        tellOnce(serial, firmware);
        port.once("C", framed(39, {}));
        link.Send_ORB_Command("E");
        ticks(200);
        ASSERT_TRUE(link.linked().UnitIdentified);
        forget();
    }

    /// One command and its reply.
    void exchange(std::string_view command, std::string_view reply) {
        port.once(command, atOnce(reply));
        link.Send_ORB_Command(command);
        ticks(2);
    }

    /// The dashboard's timer, each time with some ticks behind it.
    void poll(int firings, int ticksBehind = 0) {
        for (int i = 0; i < firings; ++i) {
            poller.fire({});
            ticks(ticksBehind);
        }
    }

    Texts statusTexts() const {
        return {host.linkDisplay.status().title, host.linkDisplay.status().line1,
                host.linkDisplay.status().line2};
    }

    TemporaryFolder folder;
    ManualClock clock;
    ScriptedPort port{clock};
    RecordingLinkHost host;
    LiveValues live;
    FrameDecoder decoder{live};
    BenchYield yielding;
    Link link{port, host, decoder, live, clock, yielding};
    Poller poller{link, host.linkDisplay, {}, {}};
};

}  // namespace zentaq
