// Random walks of commands, replies, ticks and faults: after each step the link must look as the reference
// model does. A disagreement prints the walk.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>

#include "base/errors.h"
#include "link/link.h"
#include "link/link_bench.h"
#include "link/recording_link_host.h"
#include "link/reference_model.h"

namespace zentaq {
namespace {

using reference::Model;
using reference::Observed;

/// A port that delivers what it is told, when it is told, whatever length was asked for.
class DirectPort : public SerialPort {
 public:
    void open(int) override { open_ = true; }
    void close() override {
        open_ = false;
        waiting.clear();
        failWrite = false;
    }
    bool isOpen() const override { return open_; }
    void write(std::string_view text) override {
        if (std::exchange(failWrite, false)) throw Failure("Write failed");
        written.emplace_back(text);
    }
    std::vector<std::uint8_t> read() override {
        std::vector<std::uint8_t> all(waiting.begin(), waiting.end());
        waiting.clear();
        return all;
    }
    void setReceiveThreshold(int bytes) override { threshold = bytes; }
    std::vector<PortInfo> list() const override { return {}; }
    void tell(CommEvent event) { raise(event); }

    std::string waiting;
    std::vector<std::string> written;
    int threshold = 0;
    bool failWrite = false;

 private:
    bool open_ = false;
};

class Walk {
 public:
    explicit Walk(unsigned seed) : random_(seed) {
        host.unitHost.applicationFolder(folder.path());
        host.unit(3).BinFile("car.ZQ4OA");
        for (int index = 0; index < Unit::cellCount; ++index) host.unit(3).AssignDirectIndex(2, index);
        open();
    }

    /// Answers whether link and model agreed all the way.
    bool run(int steps) {
        for (int i = 0; i < steps && agreed_; ++i) next();
        return agreed_;
    }
    const std::map<std::string, int>& reached() const { return reached_; }

 private:
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool chance(int percent) { return below(100) < percent; }
    template <typename Row>
    const Row& oneOf(const std::vector<Row>& rows) {
        return rows.at(static_cast<std::size_t>(below(static_cast<int>(rows.size()))));
    }

    // ---- Steps

    void next() {
        const int dice = below(100);
        if (dice < 22) return sendSome();
        if (dice < 55) return answer();
        if (dice < 80) return let(oneOf<int>({1, 1, 1, 2, 2, 3, 10, 11, 12}));
        if (dice < 84) return let(oneOf<int>({20, 21, 62, 63, 83, 84, 85}));
        if (dice < 87) return let(oneOf<int>({999, 1000, 1001, 1002, 1100}));
        if (dice < 88) return let(oneOf<int>({4999, 5000, 5001, 5002}));
        if (dice < 92) return startTransfer();
        if (dice < 94) return late();
        if (dice < 95)
            return step(
                "other event", [&] { port.tell(CommEvent::Error); }, [&] { model.otherEvent(); });
        if (dice < 96) return handleAgain();
        if (dice < 97) return movePort();
        if (dice < 98) {
            return step(
                "next write fails", [&] { port.failWrite = true; }, [&] { model.failNextWrite(); });
        }
        changeFile();
    }

    void sendSome() {
        using namespace std::string_view_literals;
        static const std::vector<std::string_view> commands = {"A"sv,
                                                               "B"sv,
                                                               "C"sv,
                                                               "E"sv,
                                                               "E"sv,
                                                               "E"sv,
                                                               "F"sv,
                                                               "F"sv,
                                                               "I"sv,
                                                               "K"sv,
                                                               "S"sv,
                                                               "T"sv,
                                                               "W"sv,
                                                               "W"sv,
                                                               "Q"sv,
                                                               "Z\xFF"sv,
                                                               "Z\0"sv,
                                                               "P2S10411228048"sv,
                                                               "P2S10511221234"sv};
        const int count = chance(2) ? 300 + below(300) : chance(20) ? 2 + below(6) : 1;
        for (int i = 0; i < count; ++i) {
            const std::string command(oneOf(commands));
            step(
                "send " + reference::printable(command), [&] { link.Send_ORB_Command(command); },
                [&] { model.send(command); });
        }
        let(1);
    }

    /// One tick a step, so that a disagreement is told on the tick on which it begins.
    void let(int ticks) {
        note("ticks " + std::to_string(ticks));
        for (int i = 0; i < ticks && agreed_; ++i) {
            clock.advanceUs(1000);
            quiet([&] { link.tick(); }, [&] { model.tick(); });
        }
    }

    void answer() {
        if (!model.now().open) return;
        const std::string bytes = reply(inFlight());
        deliver(bytes);
        lastReply_ = bytes;
        let(oneOf<int>({1, 1, 1, 11, 12}));
    }

    void deliver(const std::string& bytes) {
        step(
            "reply " + std::to_string(bytes.size()),
            [&] {
                port.waiting += bytes;
                port.tell(CommEvent::DataReceived);
            },
            [&] { model.deliver(bytes); });
    }

    void late() {
        if (!model.now().open) return;
        const std::string bytes = noise(1 + below(9));
        step(
            "late bytes", [&] { port.waiting += bytes; }, [&] { model.arrive(bytes); });
    }

    void handleAgain() {
        step(
            "PROCESS_RESPONSE", [&] { link.PROCESS_RESPONSE(); }, [&] { model.processResponse(); });
    }

    void movePort() {
        if (chance(40)) return open();
        if (chance(50)) {
            step(
                "close", [&] { link.RS232_Close(); }, [&] { model.close(); });
        } else {
            step(
                "ORB_Close", [&] { link.ORB_Close(); }, [&] { model.closeWithKill(); });
        }
        let(oneOf<int>({1, 5, 90}));
        open();
    }

    void open() {
        step(
            "open", [&] { link.RS232_Initialize(1); }, [&] { model.open(); });
    }

    void changeFile() {
        const int kind = oneOf<int>({0, 3, 4, 5, 6, 7, 8});
        const int code = oneOf<int>({0, 4099, 5001});
        host.current = kind;
        host.fileCode = static_cast<float>(code);
        model.currentUnit(kind);
        model.fileFirmware(code);
        const int release = oneOf<int>({4, 5, 7}), build = oneOf<int>({1, 50, 99});
        for (const int slot : {0, 3, 4, 5, 6, 7, 8}) host.releases[slot] = release, host.builds[slot] = build;
        model.expectedFirmware(release, build);
        note("file of kind " + std::to_string(kind) + ", firmware " + std::to_string(code));
    }

    // ---- Transfers

    void startTransfer() {
        link.AutoPollSuspended(true);
        model.suspend(true);
        if (chance(8)) return silentStarts();
        const int way = below(10);
        if (way == 0) return calibration();
        if (way < 7) return firmware();
        datalog();
    }

    std::vector<std::string> someLines() {
        std::vector<std::string> lines(static_cast<std::size_t>(below(6)));
        for (std::size_t i = 0; i < lines.size(); ++i) lines[i] = "S1LINE" + std::to_string(i);
        return lines;
    }

    static std::string joined(const std::vector<std::string>& lines) {
        std::string text;
        for (const std::string& line : lines) text += line + "\r\n";
        return text;
    }

    void start(TransferMode mode, const std::string& path, const std::function<bool()>& begin) {
        bool refused = false;
        bool refusedByModel = false;
        step(
            "start transfer " + std::to_string(static_cast<int>(mode)),
            [&] {
                try {
                    link.Program_Unit(mode, path);
                } catch (const Failure&) {
                    refused = true;
                }
            },
            [&] { refusedByModel = !begin(); });
        if (agreed_ && refused != refusedByModel) disagree("refusal of a second transfer");
    }

    /// A firmware breaks off behind its first line, and its unit answers nothing any more.
    void silentStarts() {
        let(5002);
        startFirmware({"S1LINE0", "S9LINE1"});
        for (int i = 0; i < 3000 && agreed_ && model.now().command != "P3"; ++i) let(1);
        for (int i = 0; i < 2 && agreed_; ++i) {
            deliver("AX");
            let(11);
        }
        let(5002);
        for (int i = 0; i < 4; ++i) {
            startFirmware({"S1LINE0", "S9LINE1"});
            let(6010);
        }
    }

    void firmware() { startFirmware(someLines()); }

    void startFirmware(const Texts& lines) {
        const std::string path = folder.write("new" + std::to_string(++files_) + ".nv3", joined(lines));
        start(TransferMode::Firmware, path, [&] {
            return model.beginLines("P3", lines, static_cast<int>(lines.size()) + 1,
                                    {"Attempting Firmware Upgrade, Sending File... ", "  - " + path});
        });
    }

    void calibration() {
        const int former = host.current;
        host.current = 3;
        start(TransferMode::Calibration, "", [&] {
            std::string content = TemporaryFolder::read(folder.path("ORB.s19"));
            std::erase(content, '\r');
            const Texts lines = linesOf(content);
            return model.beginLines("P1", lines, static_cast<int>(lines.size()),
                                    {"Preparing car.ZQ4OA for output to ORB Unit...",
                                     "  - Converting Data...", "  - Programming ORB..."});
        });
        host.current = former;
    }

    void datalog() {
        const std::string path = folder.path("log.zql");
        start(TransferMode::Datalog, path, [&] {
            return model.beginDatalog({"Downloading on-board datalog file... ", "Saving data to: " + path,
                                       "  - Downloading data..."});
        });
    }

    // ---- Replies

    const std::string& inFlight() const { return model.now().command; }

    std::string noise(int length) {
        std::string bytes;
        for (int i = 0; i < length; ++i) bytes += static_cast<char>(below(256));
        return bytes;
    }

    /// Mostly what a unit would say, else something else.
    std::string reply(const std::string& command) {
        std::string bytes = goodReply(command);
        const int dice = below(100);
        if (dice < 4) bytes = lastReply_;
        if (dice >= 4 && dice < 8) bytes = noise(below(80));
        if (dice >= 8 && dice < 12) bytes.resize(bytes.size() / 2);
        // Not in the texts of a firmware reply: what is a number there is not the machine's concern.
        if (dice >= 12 && dice < 16 && !bytes.empty() && command != "B") {
            bytes.at(static_cast<std::size_t>(below(static_cast<int>(bytes.size())))) =
                static_cast<char>(below(256));
        }
        // The same behind bytes that came before it.
        const bool shifted = command == "B" && model.now().waiting > 0;
        return (command == "B" && dice >= 4 && dice < 8) || shifted ? bytes.substr(0, 20) : bytes;
    }

    std::string goodReply(const std::string& command) {
        const char key = command.empty() ? 'E' : command[0];
        const auto length = static_cast<std::size_t>(model.lengthOf(std::string(1, key)));
        switch (key) {
            case 'E':
                return identity();
            case 'B':
                return firmwareAnswer();
            case 'D':
                return framed(33, {{3, chance(20) ? 83 : below(83)}});
            case 'C':
            case 'W':
            case 'F':
            case 'I':
            case 'T':
                return framed(std::max<std::size_t>(length, 20), {{18, below(256)}});
            case 'P':
                if (command == "P1" || command == "P3") return chance(85) ? "AX" : chance(50) ? "AR" : "PN";
                return chance(80) ? "AX" : "AR";
            default:
                return chance(80) ? "AX" : "AR";
        }
    }

    std::string identity() {
        static const std::vector<std::uint32_t> serials = {
            200000, 200001, 9999, 10, 9, 0, 210000, 300000, 350000, 500000, 700000, 750000, 0x80000000u};
        const std::uint32_t serial = oneOf(serials);
        if (chance(75)) return identifyReply(serial);
        // Octal digits: 0606500 octal is 200000 as a number.
        static const std::vector<std::uint32_t> octals = {0200000, 0300000, 0350000,
                                                          01000,   0210000, 037777777777u};
        const std::uint32_t number = oneOf(octals);
        if (chance(50)) return identifyReply(number, 0x54);
        const auto part = [&](int shift) { return static_cast<int>(number >> shift & 255); };
        return bytes({part(24), part(16), part(8), part(0), 'A', 'X'});
    }

    std::string firmwareAnswer() {
        static const std::vector<std::string> texts = {"ZQA-404099", "ZQA-405099", "ZQA-407001", "ZQA-403050",
                                                       "ZQA-405001", "ZQA-4x5099", "ZQA-405abc"};
        const bool orbA = model.now().kind == 3;
        return firmwareReply("NAME" + std::to_string(below(9)), oneOf(texts), orbA ? 39 : 38, below(4));
    }

    // ---- Comparison

    void note(std::string text) { steps_.push_back(std::move(text)); }

    void step(const std::string& name, const std::function<void()>& real,
              const std::function<void()>& ideal) {
        if (!agreed_) return;
        note(name);
        quiet(real, ideal);
        compareChecksums();
    }

    void compareChecksums() {
        for (const char* command : {"A", "B", "C", "D", "E", "F", "I", "T", "W", "Z\xFF", "Q"}) {
            if (link.commCheckSum(command) == model.checkSum(command)) continue;
            return disagree(std::string("checksum of ") + command);
        }
    }

    template <typename Real, typename Ideal>
    void quiet(Real&& real, Ideal&& ideal) {
        real();
        ideal();
        const Observed wanted = model.take();
        const Observed seen = observe();
        count(seen);
        if (!(seen == wanted)) return disagreeOn(wanted, seen);
    }

    Observed observe() {
        Observed seen;
        seen.command = link.CurrentCommand();
        seen.head = link.ring().head(), seen.tail = link.ring().tail(), seen.queued = link.ring().count();
        seen.ready = link.ResponseReady(), seen.transferActive = link.transfer().active();
        seen.onFlyBusy = link.OnFlyBusy(), seen.suspended = link.AutoPollSuspended();
        seen.line = link.transfer().line(), seen.lines = link.transfer().lines();
        seen.rx = link.RxBuffer();
        seen.open = port.isOpen(), seen.threshold = port.threshold, seen.waiting = port.waiting.size();
        const LinkedUnit& unit = link.linked();
        seen.serial = unit.SerialNumber, seen.kind = unit.LinkedUnitKind, seen.found = unit.UnitFound;
        seen.identified = unit.UnitIdentified, seen.wide = unit.WideMonitor;
        seen.oldFirmware = unit.OldFirmware, seen.subType = unit.UnitSubType, seen.binName = unit.UnitBinName;
        for (const int slot : {3, 4, 5, 6, 7, 8}) {
            const auto at = static_cast<std::size_t>(slot);
            seen.release.at(at) = host.unit(slot).FW_Release();
            seen.build.at(at) = host.unit(slot).FW_Build();
            seen.pic18.at(at) = host.unit(slot).hasPIC18();
        }
        const LinkStatus& status = host.linkDisplay.status();
        seen.activity = status.activity, seen.title = status.title,
        seen.image = static_cast<int>(status.image);
        seen.connected = status.connected, seen.progress = status.progressVisible;
        seen.upgradeEnabled = !unit.OldFirmware;
        seen.sending = status.send == Lamp::Sending, seen.received = status.receive == Lamp::Received;
        seen.written = std::exchange(port.written, {});
        seen.calls = std::exchange(host.calls, {});
        seen.locks = std::exchange(host.locks, {});
        seen.frames = host.frameCount, seen.codesReceived = host.codesReceivedCount;
        seen.codesCleared = host.codesClearedCount;
        kindsFound_ += static_cast<int>(host.kindsFound.size());
        host.kindsFound.clear();
        seen.kindsFound = kindsFound_;
        return seen;
    }

    /// What the walks have come by, so that a test can tell that they go anywhere.
    void count(const Observed& seen) {
        for (const std::string& call : seen.calls) {
            if (call.starts_with("message: ") || call.starts_with("box: ") || call.starts_with("onfly: ")) {
                ++reached_[call];
            }
        }
        for (const std::string& text : seen.written) ++reached_["written " + text.substr(0, 2)];
        if (seen.identified) ++reached_["identified kind " + std::to_string(seen.kind)];
    }

    std::string walked() const {
        std::string text;
        const std::size_t from = steps_.size() > 80 ? steps_.size() - 80 : 0;
        for (std::size_t i = from; i < steps_.size(); ++i) text += "  " + steps_[i] + "\n";
        return text;
    }

    void disagree(const std::string& what) {
        agreed_ = false;
        ADD_FAILURE() << "link and model disagree: " << what << "\nthe walk:\n" << walked();
    }

    void disagreeOn(const Observed& wanted, const Observed& seen) {
        std::string difference;
        const Texts left = linesOf(describe(wanted)), right = linesOf(describe(seen));
        for (const std::string& line : left) {
            if (std::ranges::find(right, line) == right.end()) difference += "model " + line + "\n";
        }
        for (const std::string& line : right) {
            if (std::ranges::find(left, line) == left.end()) difference += "link  " + line + "\n";
        }
        disagree("\n" + difference + "everything of the model:\n" + describe(wanted));
    }

    static Texts linesOf(const std::string& text) {
        Texts all;
        std::size_t from = 0;
        for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', from)) {
            all.push_back(text.substr(from, end - from));
            from = end + 1;
        }
        return all;
    }

    TemporaryFolder folder;
    ManualClock clock;
    DirectPort port;
    RecordingLinkHost host;
    LiveValues live;
    FrameDecoder decoder{live};
    NoYield yield;
    Link link{port, host, decoder, live, clock, yield};
    Model model;

    std::mt19937 random_;
    std::vector<std::string> steps_;
    std::string lastReply_ = "AX";
    std::map<std::string, int> reached_;
    int kindsFound_ = 0;
    int files_ = 0;
    bool agreed_ = true;
};

/// ZENTAQ_WALKS asks for more of them than a test run has time for.
unsigned walks() {
    const char* wanted = std::getenv("ZENTAQ_WALKS");
    return wanted == nullptr ? 120 : static_cast<unsigned>(std::strtoul(wanted, nullptr, 10));
}

TEST(ModelCheck, RandomWalksLookAsTheReferenceModelSaysAfterEachStep) {
    std::map<std::string, int> reached;
    for (unsigned seed = 1; seed <= walks(); ++seed) {
        Walk walk(seed);
        ASSERT_TRUE(walk.run(250)) << "seed " << seed;
        for (const auto& [what, count] : walk.reached()) reached[what] += count;
    }
    // The walks come by every end of a transfer, every box and every kind of unit.
    std::vector<std::string> wanted = {"box: ",
                                       "box: Unit Type Mismatch",
                                       "box: Old ORBA Firmware",
                                       "onfly: on",
                                       "onfly: off",
                                       "written P1",
                                       "written P3",
                                       "written S1",
                                       "written D"};
    for (int code = 1002; code <= 1009; ++code) wanted.push_back("message: " + std::to_string(code));
    for (int kind = 3; kind <= 8; ++kind) wanted.push_back("identified kind " + std::to_string(kind));
    for (const std::string& what : wanted) EXPECT_GT(reached[what], 0) << what;
}

}  // namespace
}  // namespace zentaq
