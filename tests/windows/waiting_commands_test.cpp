// Commands that wait, without the windows: a form stands for the one in which keys wait.
#include "windows/waiting_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>

#include "app/fake_platform.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Keys wait in it until the unit has answered.
class TypedInto : public QWidget, public Form {
 public:
    TypedInto() : Form(this) {}
    bool keysWait() const override { return waits; }
    void behindKeys(const std::string& caption, std::function<void()> command) override {
        behind.emplace_back(caption, std::move(command));
    }
    void unitAnswers() {
        waits = false;
        for (const auto& [caption, command] : std::exchange(behind, {})) command();
    }
    bool waits = true;
    std::vector<std::pair<std::string, std::function<void()>>> behind;
};

class Waiting : public ::testing::Test {
 protected:
    FakeSession fake;
    TypedInto form;
    bool refused = false;
    std::vector<std::string> run;
    WaitingCommands waiting{fake.session,
                            {[this] { return form.waits ? &form : nullptr; }, [this] { return !refused; }}};

    std::function<void()> command(const std::string& name) {
        return [this, name] { run.push_back(name); };
    }
    static void events() {
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    }
    static void eventsFor(int ms) {
        QTimer done;
        done.setSingleShot(true);
        done.start(ms);
        while (done.isActive()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
};

TEST_F(Waiting, ACommandWithoutEditsBeforeItRunsAtOnce) {
    form.waits = false;
    waiting.afterEdits("Save", command("Save"));
    EXPECT_THAT(run, ElementsAre("Save"));
}

TEST_F(Waiting, ACommandComesBehindTheKeysThatWaitForTheUnit) {
    waiting.afterEdits("Save", command("Save"));
    EXPECT_THAT(run, IsEmpty());
    ASSERT_EQ(form.behind.size(), 1u);
    EXPECT_EQ(form.behind[0].first, "Save");
    form.unitAnswers();
    EXPECT_THAT(run, ElementsAre("Save"));
}

TEST_F(Waiting, ACommandDoesNotRunBehindAnEntryThatWasRefused) {
    refused = true;
    form.waits = false;
    waiting.afterEdits("Save", command("Save"));
    EXPECT_THAT(run, IsEmpty());
    // Looked at when its turn comes, not when it was given.
    form.waits = true;
    refused = false;
    waiting.afterEdits("Close", command("Close"));
    refused = true;
    form.unitAnswers();
    EXPECT_THAT(run, IsEmpty());
}

TEST_F(Waiting, ACommandThatComesWhileAFileIsReadBeginsAnewBehindIt) {
    form.waits = false;
    {
        const auto reading = fake.session.saving.beginReading();
        waiting.afterEdits("Save", command("Save"));
        EXPECT_THAT(run, IsEmpty());
    }
    fake.session.saving.poll();
    EXPECT_THAT(run, ElementsAre("Save"));
}

TEST_F(Waiting, WhatComesLaterWaitsForTheFileThatIsRead) {
    {
        const auto reading = fake.session.saving.beginReading();
        waiting.later(command("box"));
        eventsFor(3 * WaitingCommands::lookMs);
        EXPECT_THAT(run, IsEmpty());
    }
    eventsFor(3 * WaitingCommands::lookMs);
    EXPECT_THAT(run, ElementsAre("box"));
}

TEST_F(Waiting, CommandsThatAreHandedOnRunInTheirOrderAndNotUnderABox) {
    QDialog box;
    box.setModal(true);
    box.show();
    events();
    waiting.handOn({{command("Save"), command("Close")}, {}});
    eventsFor(3 * WaitingCommands::lookMs);
    EXPECT_THAT(run, IsEmpty());
    box.close();
    eventsFor(3 * WaitingCommands::lookMs);
    EXPECT_THAT(run, ElementsAre("Save", "Close"));
}

TEST_F(Waiting, TheNextOneWaitsForTheBoxOfTheOneBeforeIt) {
    QDialog box;
    box.setModal(true);
    waiting.handOn({{[&] { box.show(); }, command("Close")}, {}});
    eventsFor(3 * WaitingCommands::lookMs);
    EXPECT_THAT(run, IsEmpty());
    box.close();
    eventsFor(3 * WaitingCommands::lookMs);
    EXPECT_THAT(run, ElementsAre("Close"));
}

TEST_F(Waiting, WhatMeantTheWindowAloneIsToldInOneLine) {
    waiting.handOn({{}, "2 keys, Discard Changes"});
    const std::string told = "The table was closed; not taken: 2 keys, Discard Changes.";
    EXPECT_THAT(fake.dialogs.boxes, IsEmpty());
    EXPECT_EQ(fake.session.notices.text(fake.clock.nowUs), told);
    EXPECT_THAT(fake.session.console.lines().back(), HasSubstr(told));
}

TEST_F(Waiting, AtTheEndOfTheProgramNothingIsHandedOn) {
    waiting.handOn({{command("Save")}, {}});
    waiting.drop();
    waiting.handOn({{command("Close")}, {}});
    eventsFor(3 * WaitingCommands::lookMs);
    EXPECT_THAT(run, IsEmpty());
}

}  // namespace
}  // namespace zentaq
