// The windows that open beside the frame: which command opens them, that a second call finds the open one,
// and that a closed one is gone.
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>

#include "windows/key_press.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class Forms : public WindowTest {
 protected:
    void run(std::string_view entry) {
        windows.main().run(entry);
        QCoreApplication::processEvents();
    }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void openDatabase() { fake.session.database = Database::open(builtReference()); }
};

TEST_F(Forms, NewOpensTheFormAndClosingItLeavesTheNewStateBehind) {
    run("mnuNew");
    ASSERT_NE(windows.generalConfig(), nullptr);
    EXPECT_TRUE(windows.generalConfig()->isVisible());
    EXPECT_EQ(windows.generalConfig()->windowTitle(), "General Engine Configuration");
    EXPECT_TRUE(fake.session.creating());
    windows.generalConfig()->close();
    settle();
    EXPECT_EQ(windows.generalConfig(), nullptr);
    EXPECT_FALSE(fake.session.creating());
}

TEST_F(Forms, ASecondCallBringsTheOpenWindowToTheFront) {
    run("mnuOptions");
    const FrmOptions* first = windows.options();
    ASSERT_NE(first, nullptr);
    run("mnuControlPanel");
    EXPECT_EQ(windows.options(), first);
}

TEST_F(Forms, AClosedWindowIsMadeAnew) {
    run("mnuOptions");
    windows.options()->close();
    settle();
    EXPECT_EQ(windows.options(), nullptr);
    run("mnuOptions");
    EXPECT_NE(windows.options(), nullptr);
}

TEST_F(Forms, ChangeColoursOpensTheOptionsOnTheirMonitorPage) {
    run("mnuMonitor_ChangeColors");
    ASSERT_NE(windows.options(), nullptr);
    auto* pages = windows.options()->findChild<QTabWidget*>("SSTab1");
    ASSERT_NE(pages, nullptr);
    EXPECT_EQ(pages->currentIndex(), FrmOptions::monitorPage);
}

TEST_F(Forms, HelpOpensTheGuideAndWritesItsLine) {
    run("mnuHelpContents");
    ASSERT_NE(windows.help(), nullptr);
    EXPECT_TRUE(windows.help()->isVisible());
    EXPECT_NE(fake.session.console.lines().back().find("HELP: Opening Help File."), std::string::npos);
}

TEST_F(Forms, FastHelpShowsTheEntryOfTheControlInHand) {
    openDatabase();
    run("mnuNew");
    auto* field = windows.generalConfig()->findChild<QWidget*>("txtRPM");
    ASSERT_NE(field, nullptr);
    field->setFocus();
    run("mnuFastHelp");
    ASSERT_NE(windows.fastHelpWindow(), nullptr);
    EXPECT_TRUE(windows.fastHelpWindow()->isVisible());
    const auto row = fake.session.database->help("helprevl");
    ASSERT_TRUE(row.has_value());
    QString shown;
    for (const QLabel* label : windows.fastHelpWindow()->findChildren<QLabel*>()) shown += label->text();
    EXPECT_TRUE(shown.contains(QString::fromStdString(row->topic))) << shown.toStdString();
    windows.generalConfig()->close();
}

TEST_F(Forms, F2InTheSensorManagerTellsAboutTheControlInHand) {
    openDatabase();
    run("mnuMAPSensors");
    auto* form = windows.sensorEditor();
    ASSERT_NE(form, nullptr);
    const auto topicAt = [&](const char* control) {
        auto* widget = form->findChild<QWidget*>(QLatin1String(control));
        form->activateWindow();
        widget->setFocus();
        QCoreApplication::processEvents();
        pressKey(Qt::Key_F2);
        QCoreApplication::processEvents();
        const FrmFastHelp* help = windows.fastHelpWindow();
        if (help == nullptr || !help->isVisible()) return std::string("no help");
        const std::string topic = help->findChild<QLabel*>("lblTopic")->text().toStdString();
        pressKey(Qt::Key_F2);
        QCoreApplication::processEvents();
        return topic;
    };
    EXPECT_EQ(topicAt("lstMAPSensors"), "Installed MAP Sensors");
    EXPECT_EQ(topicAt("cmdNew"), "Installed MAP Sensors");
    EXPECT_EQ(topicAt("cmdExit"), "Installed MAP Sensors");
    fake.dialogs.answers.push_back(Answer::Yes);
    form->findChild<QPushButton*>("cmdNew")->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(topicAt("txtPV_0"), "Sensor Volts");
    EXPECT_EQ(topicAt("optUnits_1"), "Sensor Unit");
}

TEST_F(Forms, AFieldWithoutAnEntryIsToldInABox) {
    openDatabase();
    run("mnuFastHelp");
    EXPECT_EQ(lastBox().title, "Help");
    EXPECT_EQ(lastBox().text, "There is no help on this field.");
}

TEST_F(Forms, WithoutADatabaseFastHelpTellsWhyThereIsNone) {
    fake.session.database.reset();
    run("mnuFastHelp");
    EXPECT_EQ(lastBox().text, "There are no help texts: the reference database could not be opened.");
}

TEST_F(Forms, AWarningGivesTheFocusBackToTheFormNamed) {
    run("mnuNew");
    fake.session.messages.ActiveFormName = "frmGeneralConfig";
    windows.focus("frmGeneralConfig");
    settle();
    EXPECT_TRUE(windows.generalConfig()->isVisible());
    EXPECT_TRUE(windows.generalConfig()->isActiveWindow());
    windows.generalConfig()->close();
}

TEST_F(Forms, TheButtonsOfTheStartTabRunTheirEntries) {
    auto* create = find<QPushButton>("cmdStartNew");
    ASSERT_NE(create, nullptr);
    create->click();
    ASSERT_NE(windows.generalConfig(), nullptr);
    windows.generalConfig()->close();
    settle();
    find<QPushButton>("cmdStartGuide")->click();
    EXPECT_NE(windows.help(), nullptr);
    fake.dialogs.requests.clear();
    find<QPushButton>("cmdStartOpen")->click();
    EXPECT_EQ(fake.dialogs.requests.size(), 1u);
}

TEST_F(Forms, ClosingTheFrameClosesThemAll) {
    run("mnuOptions");
    run("mnuHelpContents");
    windows.main().close();
    settle();
    EXPECT_TRUE(windows.closed());
    EXPECT_TRUE(windows.options() == nullptr || !windows.options()->isVisible());
    EXPECT_TRUE(windows.help() == nullptr || !windows.help()->isVisible());
}

}  // namespace
}  // namespace zentaq
