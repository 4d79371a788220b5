// A session of fakes with the commands of the main window, and a unit that a test puts on its link.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "app/fake_platform.h"
#include "app/main_commands.h"
#include "app/menu.h"
#include "app/start_up.h"
#include "unit_replies.h"

namespace zentaq {

inline void PrintTo(const Box& box, std::ostream* out) {
    *out << '"' << box.title << "\": " << box.text;
}
MATCHER_P2(IsBox, title, text, "") {
    return arg.title == title && arg.text == text;
}

/// Windows whose `later` waits for the event loop, as the real ones' does.
class LateWindows : public RecordingWindows {
 public:
    void later(const std::function<void()>& something) override { waiting.push_back(something); }
    void runEvents() {
        while (!waiting.empty()) {
            const auto next = std::move(waiting.front());
            waiting.pop_front();
            next();
        }
    }
    bool boxOpen() const override { return box; }
    std::deque<std::function<void()>> waiting;
    bool box = false;
};

/// Windows that let the link go on while they close.
class SlowlyClosingWindows : public RecordingWindows {
 public:
    void removeForms() override { meanwhile(); }
    std::function<void()> meanwhile;
};

class ProgramTest : public ::testing::Test {
 protected:
    explicit ProgramTest(FileWriter* disk = nullptr, SideWork* side = nullptr) : fake(disk, side) {}

    // ---- What the user does
    void open(const std::string& path) {
        fake.dialogs.files = {path};
        commands.files.open();
    }
    /// Happens once, while the first box of this title stands; an empty title is a file dialog.
    void during(const std::string& title, std::function<void()> happens) {
        fake.dialogs.meanwhile = [this, title, happens = std::move(happens)](const std::string& shown) {
            if (shown != title) return;
            const auto now = happens;  // outlives the lambda
            fake.dialogs.meanwhile = {};
            now();
        };
    }

    /// Another rev limit for the calibration in hand.
    void change(double revLimit) {
        unit().set("REV_Limiter", revLimit);
        session.markModified();
    }

    // ---- What came of it
    std::vector<Box>& boxes() { return fake.dialogs.boxes; }
    /// The last box; an empty one when none was shown.
    Box box() const { return fake.dialogs.boxes.empty() ? Box{} : fake.dialogs.boxes.back(); }
    std::vector<std::string> titles() const {
        std::vector<std::string> all;
        for (const Box& box : fake.dialogs.boxes) all.push_back(box.title);
        return all;
    }
    bool logged(const std::string& part) const {
        return std::ranges::any_of(session.console.lines(), [&](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }
    /// What was shown so far does not matter.
    void forget() {
        fake.dialogs.boxes.clear();
        fake.dialogs.requests.clear();
        fake.windows.calls.clear();
    }
    Unit& unit() { return session.currentUnitObject(); }
    bool enabled(std::string_view entry) const {
        const auto row = std::ranges::find(menuTree(), entry, &MenuEntry::name);
        EXPECT_NE(row, menuTree().end()) << entry << " is no entry";
        return row != menuTree().end() && row->enabled != nullptr && row->enabled(session);
    }

    // ---- The unit on the link
    void ticks(int count) {
        for (int i = 0; i < count; ++i) session.link.tick();
    }
    /// The reply is handled, and the next command goes out.
    void answer(const std::string& reply) {
        fake.port.deliver(reply);
        ticks(2);
    }
    void identify(std::uint32_t serial) {
        session.link.Send_ORB_Command("E");
        ticks(1);
        answer(identifyReply(serial));
    }
    void connect(std::uint32_t serial, const std::string& firmware) {
        session.link.load();
        identify(serial);
        answer(firmwareReply("", firmware));
    }
    /// It falls silent.
    void loseUnit() {
        session.link.Send_ORB_Command("F");
        for (int i = 0; i < 60'000 && session.link.linked().LinkedUnitKind != 0; ++i) session.link.tick();
        ASSERT_EQ(session.link.linked().LinkedUnitKind, 0);
    }
    bool sent(const std::string& command) const {
        return std::ranges::count(fake.port.written, command) != 0;
    }

    FakeSession fake;
    Session& session = fake.session;
    MainCommands commands{session};
    Kernel kernel{session, commands};
};

/// The same with the objects of all kinds, and the reference database for what needs it.
class CommandTest : public ProgramTest {
 protected:
    explicit CommandTest(FileWriter* disk = nullptr, SideWork* side = nullptr) : ProgramTest(disk, side) {
        session.makeUnits();
        session.DatabaseFile = builtReference();
    }
};

}  // namespace zentaq
