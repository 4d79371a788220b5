// A platform without a machine: fixed time, answers prepared by the test, everything shown is kept.
#pragma once

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/session.h"
#include "base/errors.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/serial_port.h"
#include "platform/settings_store.h"
#include "platform/ticker.h"
#include "platform/yield.h"
#include "refdata/seed_builder.h"
#include "temporary_folder.h"

namespace zentaq {

class FakeClock : public Clock {
 public:
    std::int64_t monotonicUs() const override { return nowUs; }
    std::string timeText() const override { return "12:34:56"; }
    std::string dateText() const override { return "Saturday, 21 November 2026"; }
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

/// Does what a test wants to happen at the next yield, once.
class MeanwhileYield : public Yield {
 public:
    void yield() override {
        if (const auto now = std::exchange(meanwhile, nullptr)) now();
    }
    std::function<void()> meanwhile;
};

/// A port that opens if it is told to, keeps what is written and delivers what a test hands it.
class FakePort : public SerialPort {
 public:
    void open(int number) override {
        ++opens;
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
    void deliver(std::vector<std::uint8_t> reply) {
        buffer = std::move(reply);
        raise(CommEvent::DataReceived);
    }

    int presentNumber = 1;  ///< 0: no port at all
    int opens = 0;
    int threshold = 0;
    std::vector<std::string> written;
    std::vector<std::uint8_t> buffer;

 private:
    bool open_ = false;
};

/// Windows that write down what they are asked.
class RecordingWindows : public WindowSet {
 public:
    void showMain() override { note("showMain"); }
    void enableToolbar(bool on) override { note(on ? "toolbar on" : "toolbar off"); }
    void splash(std::string_view text) override { note("splash " + std::string(text)); }
    void makeGraphPools() override { note("graph pools"); }
    void showConfig() override { note("showConfig"); }
    void showLink() override { note("showLink"); }
    void showDashboard() override { note("showDashboard"); }
    void showCommList(bool on) override { note(on ? "comm list on" : "comm list off"); }
    void focusForm(const std::string& form) override { note("focus " + form); }
    void showTip(const std::string& text) override { tip = text; }
    void killTimers() override { note("killTimers"); }
    void closeMain() override { note("closeMain"); }
    void titleChanged(const std::string& text) override { title = text; }
    void setupNodes() override { note("setupNodes"); }
    void showStartTab() override { note("startTab"); }
    void onFlyChanged(bool on) override { note(on ? "onfly on" : "onfly off"); }
    void removeForms() override { note("removeForms"); }
    void openTable(const std::string& table, const std::string& tableTitle) override {
        note("table " + table + " " + tableTitle);
    }
    void openGeneralConfig() override { note("general config"); }
    bool closeGeneralConfig() override {
        note("leave general config");
        return leavesGeneralConfig;
    }
    void saveGeneralConfig() override { note("save general config"); }
    void openSensorEditor() override { note("sensor editor"); }
    void openOptions(OptionsPage page) override {
        note(page == OptionsPage::Monitor ? "options, monitor" : "options");
    }
    void openHelp(const std::string& topic) override { note("help " + topic); }
    void temperaturesChanged() override { note("temperatures"); }
    void updateRateChanged() override { note("update rate"); }
    void clearTableColours() override { note("white table"); }
    void dashboardColours(const std::string& lights, const std::string& needle) override {
        note("colours " + lights + " " + needle);
    }
    void initializeRecorderRows() override { note("recorder rows"); }
    void sensorsChanged() override { note("sensors"); }
    void dayMode() override { note("day"); }
    void nightMode() override { note("night"); }

    void note(const std::string& what) { calls.push_back(what); }
    bool leavesGeneralConfig = true;  ///< false: the user keeps the new calibration in the form
    std::vector<std::string> calls;
    std::string title;
    std::string tip;
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
    MemorySettings settings;
    ScriptedDialogs dialogs;
    MeanwhileYield yield;
    RecordingWindows windows;
    Session session{Platform{port, ticker, clock, settings, dialogs, yield, folder.path(), folder.path()}};

    FakeSession() {
        settings.set("System", "TemperatureToggle", "0");  // numbers of tests are degrees Celsius
        session.attach(windows);
    }
};

}  // namespace zentaq
