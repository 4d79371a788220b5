#include "windows/mdi_main.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QToolButton>

#include "qt/look.h"
#include "windows/mdi_main_edit.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

class MainWindow : public WindowTest {
 protected:
    QAction* action(const char* name) { return find<QAction>(name); }
    QMenu* menu(const char* name) { return find<QMenu>(name); }
    /// The texts of a menu's entries, one a line, with submenus indented.
    static std::string drawing(const QMenu* menu, const std::string& indent = {}) {
        std::string text;
        for (const QAction* entry : menu->actions()) {
            const QString name = entry->menu() != nullptr ? entry->menu()->objectName() : entry->objectName();
            if (entry->isSeparator()) {
                text += indent + "----\n";
                continue;
            }
            text +=
                indent + name.toStdString() + ": " + QString(entry->text()).remove(u'&').toStdString() + "\n";
            if (entry->menu() != nullptr) text += drawing(entry->menu(), indent + "  ");
        }
        return text;
    }
};

TEST_F(MainWindow, TheButtonForWhatHasNoRoomInTheToolBarHasAName) {
    windows.main().resize(400, 600);
    QApplication::processEvents();
    auto* rest = find<QToolBar>("Toolbar1")->findChild<QToolButton*>("qt_toolbar_ext_button");
    ASSERT_NE(rest, nullptr);
    ASSERT_TRUE(rest->isVisible());
    EXPECT_EQ(rest->accessibleName(), "More commands");
}

TEST_F(MainWindow, HasTheTitleOfTheSystem) {
    EXPECT_EQ(windows.main().windowTitle(), "Norvalia Zentaq Engine Management System");
    EXPECT_EQ(windows.main().objectName(), "mdiMain");
}

TEST_F(MainWindow, HasTheFileMenuWithItsSubmenus) {
    EXPECT_EQ(drawing(menu("mnuFile")),
              "mnuNew: Create a New Calibration File\n"
              "mnuOpen: Open an Existing Calibration File\n"
              "mnuRecent: Open Recent\n"
              "----\n"
              "mnuSave: Save\n"
              "mnuSaveAs: Save As\n"
              "----\n"
              "mnuConvertBINFile: Convert BIN File\n"
              "  mnuConvertORBA: ORB A\n"
              "  mnuConvertORBALite: ORB A-Lite\n"
              "mnuPrint: Print\n"
              "  mnuPrintBIN: Calibration File\n"
              "  mnuPrintCurrentForm: Current Form\n"
              "----\n"
              "mnuClose: Close\n"
              "----\n"
              "mnuExit: Exit Program\n");
}

TEST_F(MainWindow, HasEveryMenuOfTheBarInOrder) {
    std::vector<std::string> names;
    for (const QAction* entry : windows.main().menuBar()->actions()) {
        names.push_back(entry->menu()->objectName().toStdString());
    }
    EXPECT_THAT(names, ElementsAre("mnuFile", "mnuEdit", "mnuTools", "mnuView", "mnuWindow", "mnuHelp"));
    EXPECT_NE(menu("mnuPopupTable"), nullptr) << "the pop-up exists beside the bar";
}

TEST_F(MainWindow, ShowsEveryEntryOfTheMenuTableWithItsCaption) {
    for (const MenuEntry& entry : menuTree()) {
        const std::string name(entry.name);
        QAction* shown = action(name.c_str());
        if (shown == nullptr) {
            ASSERT_NE(menu(name.c_str()), nullptr) << name;
            shown = menu(name.c_str())->menuAction();
        }
        EXPECT_EQ(shown->text().toStdString(), entry.caption) << name;
    }
}

TEST_F(MainWindow, EntriesWithoutAHandlerOrACalibrationAreDisabled) {
    for (const char* name : {"mnuConvertORBA", "mnuConvertORBALite", "mnuPrintBIN"}) {
        EXPECT_FALSE(action(name)->isEnabled()) << name;
    }
    for (const char* name :
         {"mnuNew", "mnuOpen", "mnuPrintCurrentForm", "mnuExit", "mnuProgramORB", "mnuVETbl", "mnuAbout",
          "mnuFastHelp", "mnuHelpContents", "mnuOptions", "mnuControlPanel", "mnuMonitor_ChangeColors",
          "mnuMAPSensors", "mnuFirmwareUpgrade"}) {
        EXPECT_TRUE(action(name)->isEnabled()) << name;
    }
}

TEST_F(MainWindow, SaveAndCloseWaitForAFile) {
    EXPECT_FALSE(action("mnuSave")->isEnabled());
    EXPECT_FALSE(action("mnuClose")->isEnabled());
    openCalibration();
    EXPECT_TRUE(action("mnuSave")->isEnabled());
    EXPECT_TRUE(action("mnuSaveAs")->isEnabled());
    EXPECT_TRUE(action("mnuClose")->isEnabled());
}

TEST_F(MainWindow, RecentFilesStandInAMenuOfTheirOwnAndOpen) {
    EXPECT_FALSE(menu("mnuRecent")->menuAction()->isEnabled());
    openCalibration();
    const std::string path = fake.session.CurrentFile;
    EXPECT_TRUE(menu("mnuRecent")->menuAction()->isEnabled());
    commands.files.close();
    Q_EMIT menu("mnuRecent")->aboutToShow();
    ASSERT_EQ(menu("mnuRecent")->actions().size(), 1);
    EXPECT_TRUE(action("mnuRecent_1")->text().startsWith("&1  tune.ZQ4OA  ("));
    action("mnuRecent_1")->trigger();
    EXPECT_EQ(fake.session.CurrentFile, path);
}

TEST_F(MainWindow, TheModeInForceIsMarked) {
    action("mnuMonitor_DayMode")->trigger();
    EXPECT_TRUE(action("mnuMonitor_DayMode")->isChecked());
    EXPECT_FALSE(action("mnuMonitor_NightMode")->isChecked());
    action("mnuMonitor_DayMode")->trigger();
    EXPECT_TRUE(action("mnuMonitor_DayMode")->isChecked()) << "a mode that is in force stays";
    action("mnuMonitor_NightMode")->trigger();
    EXPECT_FALSE(action("mnuMonitor_DayMode")->isChecked());
    EXPECT_TRUE(action("mnuMonitor_NightMode")->isChecked());
}

TEST_F(MainWindow, TheFrameIsSaidWithItsFile) {
    openCalibration();
    EXPECT_EQ(windows.main().accessibleName().toStdString(),
              "Current Calibration File: " + fake.session.CurrentFile);
    commands.files.close();
    EXPECT_EQ(windows.main().accessibleName(), "Norvalia Zentaq Engine Management System");
}

TEST_F(MainWindow, F2OpensFastHelp) {
    EXPECT_EQ(action("mnuFastHelp")->shortcut(), QKeySequence(Qt::Key_F2));
    action("mnuFastHelp")->trigger();
    EXPECT_EQ(lastBox().title, "Help");
}

TEST_F(MainWindow, HasTheToolbarButtonsByKey) {
    auto* toolbar = find<QToolBar>("Toolbar1");
    ASSERT_NE(toolbar, nullptr);
    std::vector<std::string> keys;
    for (const QAction* button : toolbar->actions()) keys.push_back(button->objectName().toStdString());
    EXPECT_THAT(keys, ElementsAre("New", "Open", "Save", "Program", "Print", "Options", "Help", "Shutdown"));
}

TEST_F(MainWindow, TheToolbarOpensACalibrationLikeTheMenu) {
    fake.dialogs.files.push_back(calibrationFile());
    find<QToolBar>("Toolbar1")->findChild<QAction*>("Open")->trigger();
    EXPECT_EQ(fake.session.slotInHand(), 3);
    EXPECT_EQ(windows.main().windowTitle().toStdString(),
              "Current Calibration File: " + fake.session.CurrentFile);
}

TEST_F(MainWindow, TheTitleShowsANameOfAFileEscaped) {
    const std::string odd = fake.folder.path("x\x1B[31m\xE2\x80\xAE.ZQ4OA");
    std::filesystem::copy_file(calibrationFile(), odd);
    fake.dialogs.files.push_back(odd);
    find<QToolBar>("Toolbar1")->findChild<QAction*>("Open")->trigger();
    ASSERT_EQ(fake.session.CurrentFile, odd);
    EXPECT_TRUE(windows.main().windowTitle().endsWith("x\\x1B[31m\\u{202E}.ZQ4OA"))
        << windows.main().windowTitle().toStdString();
    EXPECT_FALSE(windows.main().windowTitle().contains(u'\u202E'));
}

TEST_F(MainWindow, Panel3TellsTheFirmwareUntilItIsCleared) {
    const auto panel = [this] { return find<StripButton>("StatusBar1_Panel3")->accessibleName(); };
    fake.session.linkDisplay.editStatus().panel3 = "ZQA5099";
    windows.refresh();
    EXPECT_EQ(panel(), "ZQA5099");
    windows.tell(&WindowNews::clearPanel3);
    windows.main().refresh();
    EXPECT_EQ(panel(), "");
    fake.session.linkDisplay.editStatus().panel3 = "ZQA5100";
    windows.refresh();
    EXPECT_EQ(panel(), "ZQA5100");
}

TEST_F(MainWindow, ExitAsksAndCancelKeepsTheProgram) {
    fake.dialogs.answers.push_back(Answer::Cancel);
    action("mnuExit")->trigger();
    EXPECT_EQ(lastBox().text, "Would you like to Shutdown Zentaq?");
    EXPECT_FALSE(windows.closed());
    EXPECT_TRUE(windows.main().isVisible());
}

TEST_F(MainWindow, ShutdownButtonEndsARunningSessionFirstAndLeavesTheDashboardAloneWithoutOne) {
    const auto press = [this] {
        fake.dialogs.answers.push_back(Answer::Cancel);
        find<QToolBar>("Toolbar1")->findChild<QAction*>("Shutdown")->trigger();
    };
    LiveLabel& speed = windows.dashboard()->panel().label("lblTach");
    speed.setText("3250");
    press();
    EXPECT_EQ(speed.text(), "3250");
    fake.session.Monitoring = true;
    press();
    EXPECT_FALSE(fake.session.Monitoring);
    EXPECT_EQ(speed.text(), "");
}

TEST_F(MainWindow, ExitEndsTheProgramOnOk) {
    action("mnuExit")->trigger();
    EXPECT_TRUE(windows.closed());
    EXPECT_FALSE(windows.main().isVisible());
    EXPECT_FALSE(fake.ticker.running());
}

TEST_F(MainWindow, ClosingWithUnsavedChangesAsksAndSavesOnOk) {
    openCalibration();
    fake.session.currentUnitObject().set("REV_Limiter", 7000);
    fake.session.DataModified = true;
    fake.dialogs.boxes.clear();
    windows.main().close();
    ASSERT_FALSE(fake.dialogs.boxes.empty());
    EXPECT_EQ(fake.dialogs.boxes[0].title, "SAVE");
    EXPECT_EQ(fake.dialogs.boxes[0].text, "Save changes?");
    EXPECT_TRUE(windows.closed());
    EXPECT_FALSE(fake.session.DataModified);
}

TEST_F(MainWindow, RemembersItsPlace) {
    windows.main().showNormal();
    windows.main().setGeometry(40, 60, 900, 600);
    windows.main().close();
    EXPECT_EQ(fake.settings.get("Forms", "mdiMain"), "40 60 900 600 0");
}

TEST_F(MainWindow, ComesBackOntoTheScreenThatIsLeft) {
    fake.settings.set("Forms", "mdiMain", "5000 3000 640 480 0");  // on a screen that was unplugged
    ProgramWindows again(*qApp, fake.session, commands, kernel);
    again.open(window::main);
    QCoreApplication::processEvents();
    const QRect room = again.main().screen()->availableGeometry();
    const QRect place = again.main().geometry();
    EXPECT_TRUE(room.contains(place)) << place.x() << " " << place.y() << " " << place.width() << " "
                                      << place.height() << " in " << room.width() << " " << room.height();
    again.killTimers();
    fake.session.attach(windows);
}

TEST_F(MainWindow, TheShutdownIsTheLastThatTheConsoleTells) {
    kernel.System_Shutdown(true);
    std::vector<std::string> last;
    for (auto line = fake.session.console.lines().end() - 2; line != fake.session.console.lines().end();
         ++line)
        last.push_back(line->substr(11, line->find_last_not_of(' ') - 10));
    EXPECT_THAT(last, ElementsAre("System Shutdown!", "Config App. Terminated."));
}

TEST_F(MainWindow, NoCommandRunsBeforeTheProgramHasStarted) {
    windows.tell(&WindowNews::enableToolbar, false);
    windows.refresh();
    windows.main().refresh();
    EXPECT_FALSE(find<QToolBar>("Toolbar1")->isEnabled());
    for (const MenuEntry& entry : menuTree()) {
        QAction* shown = action(std::string(entry.name).c_str());
        if (shown == nullptr) shown = menu(std::string(entry.name).c_str())->menuAction();
        EXPECT_FALSE(shown->isEnabled()) << entry.name;
    }
    windows.tell(&WindowNews::enableToolbar, true);
    EXPECT_TRUE(action("mnuOpen")->isEnabled());
    EXPECT_TRUE(menu("mnuFile")->menuAction()->isEnabled());
}

TEST_F(MainWindow, RestoreLayoutBringsTheDashboardBack) {
    auto* centre = find<QSplitter>("splCentre");
    const int height = centre->height();
    centre->setSizes({10, height - 10});
    Q_EMIT centre->splitterMoved(10, 1);
    action("mnuRestoreLayout")->trigger();
    const int least = centre->widget(0)->minimumSizeHint().height();
    EXPECT_GE(centre->sizes().at(0), std::max(least, height * 24 / 100));
}

TEST_F(MainWindow, DayAndNightGoThroughTheWholeProgram) {
    action("mnuMonitor_DayMode")->trigger();
    EXPECT_EQ(appliedLook(*qApp), DisplayMode::Day);
    action("mnuMonitor_NightMode")->trigger();
    EXPECT_EQ(appliedLook(*qApp), DisplayMode::Night);
}

TEST_F(MainWindow, EditCommandsReachTheFieldInHand) {
    QLineEdit field("1200");
    field.selectAll();
    EXPECT_TRUE(editCommand("mnuEdit_Cut", &field));
    EXPECT_EQ(field.text(), "");
    EXPECT_TRUE(editCommand("mnuEdit_Undo", &field));
    EXPECT_EQ(field.text(), "1200");
    field.deselect();
    EXPECT_TRUE(editCommand("mnuEdit_SelectAll", &field));
    EXPECT_EQ(field.selectedText(), "1200");
    EXPECT_TRUE(editCommand("mnuEdit_Delete", &field));
    EXPECT_EQ(field.text(), "");
    EXPECT_FALSE(editCommand("mnuEdit_Copy", nullptr));
}

TEST_F(MainWindow, EveryButtonListAndFieldHasANameForTheScreenReader) {
    for (const QWidget* widget : windows.main().findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().isEmpty()) continue;
        if (widget->objectName().startsWith("qt_")) continue;
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool named =
            !widget->accessibleName().isEmpty() || (button != nullptr && !button->text().isEmpty());
        EXPECT_TRUE(named) << widget->objectName().toStdString();
    }
}

}  // namespace
}  // namespace zentaq
