// A platform without a machine: fixed time, answers prepared by the test, everything shown is kept.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/session.h"
#include "base/errors.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/serial_port.h"
#include "platform/ticker.h"
#include "platform/yield.h"
#include "refdata/seed_builder.h"
#include "temporary_folder.h"
#include "testing/memory_settings.h"

namespace zentaq {

class FakeClock : public Clock {
 public:
    std::int64_t monotonicUs() const override { return nowUs; }
    std::string timeText() const override { return "12:34:56"; }
    std::string dateText() const override { return "Saturday, 21 November 2026"; }
    std::string stampText() const override { return "20261121_123456"; }
    std::int64_t nowUs = 0;
};

/// Boxes are kept and answered by `answers` in order, then by the friendly answer of their buttons.
class ScriptedDialogs : public Dialogs {
 public:
    Answer show(const Box& box) override {
        boxes.push_back(box);
        if (meanwhile) meanwhile(box.title);
        if (!answers.empty()) {
            const Answer answer = answers.front();
            answers.pop_front();
            return answer;
        }
        return box.buttons == Buttons::YesNo ? Answer::No : Answer::Ok;
    }
    std::string openFile(const FileRequest& request) override { return next(request); }
    std::string saveFile(const FileRequest& request) override { return next(request); }
    std::optional<std::string> input(const std::string& title, const std::string& prompt,
                                     const std::string& initial) override {
        boxes.push_back({title, prompt + "\n" + initial, Icon::None, Buttons::OkCancel});
        if (meanwhile) meanwhile(title);
        if (inputs.empty()) return {};
        const auto text = inputs.front();
        inputs.pop_front();
        return text;
    }

    std::vector<Box> boxes;
    std::vector<FileRequest> requests;
    std::deque<Answer> answers;
    std::deque<std::string> files;
    std::deque<std::optional<std::string>> inputs;
    /// What happens while a box of this title stands; an empty title is a file dialog.
    std::function<void(const std::string& title)> meanwhile;

 private:
    std::string next(const FileRequest& request) {
        requests.push_back(request);
        if (meanwhile) meanwhile({});
        if (files.empty()) return {};
        const std::string path = files.front();
        files.pop_front();
        return path;
    }
};

/// Does what a test wants to happen at the next yield, once, behind what each yield brings.
class MeanwhileYield : public Yield {
 public:
    void yield() override {
        if (passing) passing();
        if (const auto now = std::exchange(meanwhile, nullptr)) now();
    }
    std::function<void()> passing;
    std::function<void()> meanwhile;
};

/// A port that opens if it is told to, keeps what is written and delivers what a test hands it.
class FakePort : public SerialPort {
 public:
    void open(int number) override {
        ++opens;
        if (busy) throw Failure("busy");
        if (number != presentNumber) throw Failure("no such port");
        open_ = true;
    }
    void close() override { open_ = false; }
    bool isOpen() const override { return open_; }
    void write(std::string_view bytes) override { written.emplace_back(bytes); }
    std::vector<std::uint8_t> read() override { return std::exchange(buffer, {}); }
    void setReceiveThreshold(int bytes) override { threshold = bytes; }
    std::vector<PortInfo> list() const override {
        if (presentNumber == 0) return {};
        return {{presentNumber, "/dev/fake", "A port for tests", "fake"}};
    }
    void deliver(const std::string& reply) {
        buffer.assign(reply.begin(), reply.end());
        raise(CommEvent::DataReceived);
    }

    int presentNumber = 1;  ///< 0: no port at all
    bool busy = false;      ///< another program has it
    int opens = 0;
    int threshold = 0;
    std::vector<std::string> written;
    std::vector<std::uint8_t> buffer;

 private:
    bool open_ = false;
};

/// Settings that write down what they are given, in a trail of the test's.
class TrailingSettings : public MemorySettings {
 public:
    void set(const std::string& section, const std::string& key, const std::string& value) override {
        if (trail != nullptr) trail->push_back(key + "=" + value);
        MemorySettings::set(section, key, value);
    }
    std::vector<std::string>* trail = nullptr;
};

/// Windows that write down what they are asked, and what they are told.
class RecordingWindows : public WindowSet, public WindowNews {
 public:
    void open(std::string_view name, const std::string& on, const std::string& itsTitle) override {
        static const std::map<std::string_view, std::string> opening{
            {window::main, "showMain"},
            {window::splash, "splash "},
            {window::config, "showConfig"},
            {window::link, "showLink"},
            {window::dashboard, "showDashboard"},
            {window::table, "table "},
            {window::options, "options"},
            {window::generalConfig, "general config"},
            {window::gpio, "gpio"},
            {window::help, "help "},
            {window::sensorEditor, "sensor editor"}};
        note(opening.at(name) + on + (itsTitle.empty() ? "" : " " + itsTitle));
    }
    bool close(std::string_view name) override {
        if (name != window::generalConfig) return note("closeMain"), true;
        note("leave general config");
        return leavesGeneralConfig;
    }
    bool showDoubts(const std::vector<Doubt>& doubts) override {
        doubtsShown.push_back(doubts);
        if (meanwhileDoubts) meanwhileDoubts();
        return leavesDoubts;
    }
    std::vector<std::vector<Doubt>> doubtsShown;
    bool leavesDoubts = true;
    std::function<void()> meanwhileDoubts;
    void focus(std::string_view form) override { note("focus " + std::string(form)); }
    void removeForms() override { note("removeForms"); }

    void enableToolbar(bool on) override { note(on ? "toolbar on" : "toolbar off"); }
    void makeGraphPools() override { note("graph pools"); }
    void showCommList(bool on) override { note(on ? "comm list on" : "comm list off"); }
    void showTip(const std::string& text) override {
        tip = text;
        note("tip");
    }
    void killTimers() override { note("killTimers"); }
    void titleChanged(const std::string& text) override { title = text; }
    void setupNodes() override { note("setupNodes"); }
    void showStartTab() override { note("startTab"); }
    void onFlyChanged(bool on) override { note(on ? "onfly on" : "onfly off"); }
    void saveNew() override { note("save general config"); }
    void temperaturesChanged() override { note("temperatures"); }
    void updateRateChanged() override { note("update rate"); }
    void clearTableColours() override { note("white table"); }
    void dashboardColours(const std::string& lights, const std::string& needle) override {
        note("colours " + lights + " " + needle);
    }
    void initializeRecorderRows() override { note("recorder rows"); }
    void sensorsChanged() override { note("sensors"); }
    void look(bool day) override { note(day ? "day" : "night"); }

    void note(const std::string& what) {
        calls.push_back(what);
        if (meanwhile) meanwhile(what);
    }
    std::function<void(const std::string& call)> meanwhile;  ///< what happens while a call runs
    bool leavesGeneralConfig = true;  ///< false: the user keeps the new calibration in the form
    std::vector<std::string> calls;
    std::string title;
    std::string tip;

 protected:
    void toEach(const std::function<void(WindowNews&)>& tell) override { tell(*this); }
};

/// The project's reference database, built once for all tests, for reading.
inline const std::string& builtReference() {
    static const TemporaryFolder folder;
    static const std::string path = [] {
        const std::string built = folder.path("reference.pak");
        refdata::buildDatabase(ZENTAQ_SOURCE_DIR "/data/seeds", built);
        return built;
    }();
    return path;
}

/// A whole session on fakes; application and user folder are temporary.
struct FakeSession {
    TemporaryFolder folder;
    FakePort port;
    ManualTicker ticker;
    FakeClock clock;
    TrailingSettings settings;
    ScriptedDialogs dialogs;
    MeanwhileYield yield;
    RecordingWindows windows;
    Session session;
    UnitHost& forUnits = session;
    LinkTeller& forLink = session;

    explicit FakeSession(FileWriter* disk = nullptr, SideWork* side = nullptr)
        : session({port, ticker, clock, settings, dialogs, yield, folder.path(), folder.path(), disk, side}) {
        settings.set("System", "TemperatureToggle", "0");  // numbers of tests are degrees Celsius
        session.attach(windows);
    }
};

}  // namespace zentaq
