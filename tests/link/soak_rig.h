// Hours of a link's life in virtual time: a link, its poller and a tuner who is never at rest, on a simulated
// unit behind a line with faults. Tells the first thing that must never be and was.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "link/poller.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "sim/faults.h"
#include "sim/simulated_unit.h"
#include "temporary_folder.h"
#include "testing/manual_clock.h"
#include "testing/scripted_port.h"

namespace zentaq {

struct SoakOptions {
    unsigned seed = 1;
    std::string_view model = "A";  ///< of the simulated unit
    std::int64_t ticks = 60'000;   ///< milliseconds of the run
};

/// What has happened in a run, so that a reader sees that it went anywhere.
struct SoakCounts {
    std::int64_t ticks = 0;
    std::map<std::string, std::int64_t> of;  ///< by what: "frames", "P1 ended 1002", "hang-up"
    std::int64_t longestRecoveryTicks = 0;   ///< from the end of the faults to a living link
    std::size_t longestReply = 0;            ///< bytes
    std::size_t mostBytesHeld = 0;           ///< in the port
};

/// A program around the link that keeps no texts: a day of them would not fit.
class SoakHost : public RecordingLinkHost {
 public:
    void sysLog(std::string_view text) override;
    void commLog(std::string_view) override {}
    void addToLastLine(std::string_view) override {}
    void displayMessage(int code) override;
    void show(const Box& box) override;
    void heard(const LinkNews& news) override { LinkTeller::heard(news); }
    void transferEnded(const TransferEnd& end) override { LinkTeller::transferEnded(end); }

    std::function<void(std::string_view)> onLog;
    std::function<void(int)> onMessage;
    std::function<void(const Box&)> onBox;
};

class Soak {
 public:
    explicit Soak(const SoakOptions& options);

    /// Runs to the end, or to the first thing that must never be.
    void run();
    /// Empty while all is well; else what was broken, when, and the last events before it.
    const std::string& broken() const { return broken_; }
    const SoakCounts& counts() const { return counts_; }

 private:
    struct Transfer {
        std::string key;
        bool faultless = true;  ///< nothing has spoilt the line since it began
        sim::Bytes image;
        /// A log of fewer than two records counts as none; so does what an earlier download left of one.
        bool shortLog = false;
    };

    /// Time that passes inside the program's own waits.
    class SoakYield : public Yield {
     public:
        explicit SoakYield(Soak& soak) : soak_(soak) {}
        void yield() override { soak_.whileYielding(); }

     private:
        Soak& soak_;
    };

    // ---- Time
    void millisecond();
    void whileYielding();
    void whileBoxShows();
    bool done() const { return counts_.ticks >= options_.ticks || !broken_.empty(); }

    // ---- The line
    std::optional<ScriptedReply> answer(const std::string& command);
    std::string spoiltCommand(const std::string& command);
    void send(const sim::FaultyReply& reply);
    void put(const std::string& text, std::int64_t delayUs, std::int64_t perByteUs);
    void noise();
    void catchUp();
    void powerCycle();

    // ---- Storm and calm
    void storm();
    void calm();
    void recover();
    void setFaults();
    bool alive() const;
    bool misread();

    // ---- The tuner
    void act();
    void actInCalm();
    void program(TransferMode mode);
    std::string firmwareFile();
    void search();
    void movePort();
    void queueMany(int count);
    void sendChange();

    // ---- What must always hold
    void check();
    void checkRing();
    void checkTransfers();
    void checkPatience();
    void checkBuffers();
    void transferEnded(int code);
    void logged(std::string_view line);
    void breakWith(const std::string& what);
    void note(std::string what);
    void count(const std::string& what) { ++counts_.of[what]; }

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool chance(double share) { return static_cast<double>(random_()) < share * 4294967296.0; }

    SoakOptions options_;
    SoakCounts counts_;
    std::mt19937 random_;
    TemporaryFolder folder_;
    ManualClock clock_;
    ScriptedPort port_{clock_};
    SoakHost host_;
    LiveValues live_;
    FrameDecoder decoder_{live_};
    SoakYield yield_{*this};
    Link link_{port_, host_, decoder_, live_, clock_, yield_};
    Poller poller_;
    sim::SimulatedUnit unit_;
    sim::FaultInjector faults_;
    int slot_ = 0;
    std::int64_t unitTimeUs_ = 0;
    std::int64_t cableBackUs_ = 0;
    std::int64_t lineFreeUs_ = 0;
    std::int64_t reopenAtMs_ = -1;
    double commandFaults_ = 0;  ///< share of commands that reach the unit spoilt
    double noisePerMs_ = 0;
    bool storming_ = false;
    bool searching_ = false;
    int depth_ = 0;  ///< of waits in waits

    std::vector<Transfer> open_;  ///< none or one
    int started_ = 0;
    int ended_ = 0;
    int quietTicks_ = 0;  ///< ticks since the last write, the last reply or the last change of the command
    int waitingTicks_ = 0;
    int residueTicks_ = 0;
    std::string lastCommand_;
    int lastHead_ = 0;
    bool lastReady_ = false;
    std::uint64_t writes_ = 0, lastWrites_ = 0;
    std::string broken_;
    std::vector<std::string> notes_;
};

}  // namespace zentaq
