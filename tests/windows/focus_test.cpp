// Where the keyboard is after each window and table has come, moved or gone: in the grid, in the tree or in
// the field that was in hand, and over which window a box stands.
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QMessageBox>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QWindow>

#include "qt/qt_dialogs.h"
#include "windows/frm_general_config.h"
#include "windows/key_press.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class Focus : public TableWindowsTest {
 protected:
    void dockOrUndock() {
        tableAction("Docking")->trigger();
        settle();
    }
    std::pair<int, int> cell() { return {form().model()->cursor().row(), form().model()->cursor().column()}; }
    void typeTimeOfGap(const QString& text) {
        timeOfGap()->setFocus();
        timeOfGap()->selectAll();
        typeText(text);
    }
    /// A letter to what has the keyboard in the table's window, which has to be this.
    void typeWhileMoving(const std::string& name, const char* letter) {
        QWidget* window = form().window();
        ASSERT_EQ(focusOf(*window), name);
        keyTo(*window->focusWidget(), Qt::Key_0, letter);
    }
    /// What gets the keys while the window is the active one. When a window becomes a part of another one,
    /// the platform of the tests makes no window active again, as a window manager does.
    static std::string focusOf(const QWidget& window) {
        const QWidget* widget = window.focusWidget();
        return widget == nullptr ? "nothing" : widget->objectName().toStdString();
    }
};

TEST_F(Focus, AnOpenedCalibrationIsInTheTreeAndAnOpenedTableInItsGrid) {
    EXPECT_EQ(focusName(), "treeZentaq");
    openVe();
    EXPECT_EQ(focusName(), "Grid1");
}

TEST_F(Focus, ADigitAfterUndockGoesIntoTheCellAndNotIntoTheTimeOfGap) {
    openVe();
    dockOrUndock();
    ASSERT_TRUE(windows.table()->isWindow());
    EXPECT_EQ(focusName(), "Grid1");
    pressKey(Qt::Key_5, Qt::NoModifier, "5");
    pressKey(Qt::Key_Return);
    EXPECT_EQ(unit().get("scale1"), 5);
    const auto [row, column] = cell();
    EXPECT_EQ(ve(form().model()->sheet().tableIndex(row, column)), 5);
}

TEST_F(Focus, DockingGivesTheGridTheKeyboardAgain) {
    openVe();
    for (int i = 0; i < 2; ++i) {
        dockOrUndock();
    }
    ASSERT_FALSE(windows.table()->isWindow());
    EXPECT_EQ(focusOf(windows.main()), "Grid1");
}

TEST_F(Focus, AnEntryGoesOnWhileTheTableMovesIntoAWindowOfItsOwnAndBack) {
    openVe();
    pressKey(Qt::Key_1, Qt::NoModifier, "1");
    ASSERT_EQ(focusName(), "txtInputValue");
    for (const char* digit : {"2", "3"}) {
        dockOrUndock();
        typeWhileMoving("txtInputValue", digit);
    }
    EXPECT_EQ(form().inputBox().text(), "123");
}

TEST_F(Focus, ARebuildKeepsTheFieldThatIsBeingEdited) {
    openVe();
    pressKey(Qt::Key_1, Qt::NoModifier, "1");
    unit().set("REV_Limiter", 7000);
    windows.showUnit();
    settle();
    EXPECT_EQ(focusName(), "txtInputValue");
    EXPECT_EQ(form().inputBox().text(), "1");
    pressKey(Qt::Key_2, Qt::NoModifier, "2");
    pressKey(Qt::Key_Return);
    const auto [row, column] = cell();
    EXPECT_EQ(form().model()->sheet().grid().text(row, column), "12");
}

TEST_F(Focus, AClosedTableLeavesTheKeyboardToTheTree) {
    for (const bool undocked : {false, true}) {
        openVe();
        if (undocked) tableAction("Docking")->trigger();
        settle();
        tableAction("Close")->trigger();
        settle();
        EXPECT_EQ(windows.table(), nullptr);
        EXPECT_EQ(focusName(), "treeZentaq") << undocked;
    }
}

TEST_F(Focus, AClosedCalibrationLeavesItToTheStartPage) {
    openVe();
    commands.files.close();
    settle();
    EXPECT_EQ(focusName(), "cmdStartNew");
}

TEST_F(Focus, AClosedGeneralConfigurationLeavesItToTheGridOrTheTree) {
    for (const bool table : {false, true}) {
        if (table) openVe();
        for (const bool saved : {false, true}) {
            windows.openGeneralConfig();
            settle();
            auto* form = windows.main().findChild<FrmGeneralConfig*>();
            ASSERT_NE(form, nullptr);
            if (saved) windows.showUnit();
            form->close();
            settle();
            EXPECT_EQ(focusOf(windows.main()), table ? "Grid1" : "treeZentaq") << saved;
        }
    }
}

TEST_F(Focus, AFormClosedOverAControlThatWentLeavesItToTheTree) {
    for (const char* hidden : {"cmdAutoDetectPort", "cmbCOMM", "lstLog"}) {
        auto* inHand = find<QWidget>(hidden);
        ASSERT_NE(inHand, nullptr) << hidden;
        inHand->setFocus();
        windows.openGeneralConfig();
        settle();
        inHand->setVisible(false);
        windows.main().findChild<FrmGeneralConfig*>()->close();
        settle();
        EXPECT_NE(focusOf(windows.main()), "nothing") << hidden;
        EXPECT_EQ(qobject_cast<QToolButton*>(windows.main().focusWidget()), nullptr) << hidden;
        inHand->setVisible(true);
    }
}

TEST_F(Focus, NoButtonOfTheToolBarTakesTheKeyboardFromAControlThatGoes) {
    auto* bar = find<QToolBar>("Toolbar1");
    ASSERT_NE(bar, nullptr);
    ASSERT_FALSE(bar->actions().isEmpty());
    for (QAction* action : bar->actions())
        EXPECT_EQ(bar->widgetForAction(action)->focusPolicy(), Qt::NoFocus) << action->text().toStdString();
}

TEST_F(Focus, ASearchOfThePortGivesTheButtonItsKeyboardBack) {
    openVe();
    auto* button = find<QPushButton>("cmdAutoDetectPort");
    ASSERT_NE(button, nullptr);
    button->setFocus();
    fake.port.presentNumber = 0;
    button->click();
    settle();
    EXPECT_EQ(focusName(), "cmdAutoDetectPort");
}

TEST_F(Focus, TheEndOfTheLockTakesNoFieldFromUnderTheFingers) {
    openVe();
    windows.onFlyLock(true);
    typeTimeOfGap("5.5");
    windows.onFlyLock(false);
    settle();
    EXPECT_EQ(focusName(), "txtTOG");
}

TEST_F(Focus, ATimeThatIsBeingTypedIsNoEntryWhileAMenuOrAnotherWindowIsInFront) {
    openVe();
    typeTimeOfGap("3");
    for (const Qt::FocusReason reason :
         {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
        QFocusEvent out(QEvent::FocusOut, reason);
        QApplication::sendEvent(timeOfGap(), &out);
        EXPECT_EQ(unit().get("scale1"), 5) << reason;
    }
    windows.showUnit();
    EXPECT_EQ(timeOfGap()->text(), "3") << "a change elsewhere drops nothing of it";
    windows.table()->grid().setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(unit().get("scale1"), 3);
}

TEST_F(Focus, ATimeThatIsBeingTypedGoesOnWhileTheTableMoves) {
    windows.main().resize(1366, 768);  // room for the fields in the tool bar
    openVe();
    typeTimeOfGap("3");
    for (const char* digit : {"1", "2"}) {
        dockOrUndock();
        EXPECT_EQ(unit().get("scale1"), 5);
        typeWhileMoving("txtTOG", digit);
    }
    EXPECT_EQ(timeOfGap()->text(), "312");
}

TEST_F(Focus, ATimeThatNobodyHasTouchedGivesTheGridTheKeyboardWhenTheTableMoves) {
    openVe();
    timeOfGap()->setFocus();
    dockOrUndock();
    EXPECT_EQ(focusOf(*windows.table()), "Grid1");
}

TEST_F(Focus, EverySecondWindowBelongsToTheMainOne) {
    openVe();
    tableAction("Docking")->trigger();
    for (const char* entry : {"mnuMAPSensors", "mnuOptions", "mnuHelpContents"}) windows.main().run(entry);
    windows.openGeneralConfig();
    settle();
    const std::initializer_list<QWidget*> forms{windows.table(), windows.sensorEditor(), windows.options(),
                                                windows.help(), windows.generalConfig()};
    for (QWidget* form : forms) {
        ASSERT_NE(form, nullptr);
        const std::string name = form->objectName().toStdString();
        EXPECT_EQ(form->windowType(), Qt::Dialog) << name << ": other kinds are not kept in front";
        ASSERT_NE(form->windowHandle(), nullptr) << name;
        EXPECT_EQ(form->windowHandle()->transientParent(), windows.main().windowHandle()) << name;
    }
}

TEST_F(Focus, ABoxStandsOverTheWindowThatAskedAndGivesTheFieldItsKeyboardBack) {
    QtDialogs dialogs;
    dialogs.setParent(&windows.main());
    windows.openGeneralConfig();
    settle();
    activate(*windows.generalConfig());
    auto* field = windows.generalConfig()->findChild<QLineEdit*>("txtRPM");
    ASSERT_NE(field, nullptr);
    field->setFocus();
    settle();
    QWidget* over = nullptr;
    QTimer::singleShot(0, [&] {
        QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        over = box->parentWidget();
        box->close();
    });
    dialogs.show({"Data Input Error", "Warning", Icon::Exclamation, Buttons::Ok});
    settle();
    EXPECT_EQ(over, windows.generalConfig());
    EXPECT_TRUE(windows.generalConfig()->isActiveWindow());
    EXPECT_EQ(focusName(), "txtRPM");
}

/// A box over the general parameters is read; then the window manager chooses the main window, as some do
/// whenever a dialog goes.
class BoxOverForm : public Focus {
 protected:
    BoxOverForm() {
        dialogs.setParent(&windows.main());
        windows.openGeneralConfig();
        settle();
        activate(general());
        general().findChild<QLineEdit*>("txtRPM")->setFocus();
        settle();
    }
    QWidget& general() { return *windows.generalConfig(); }
    /// Answers over which window it stood.
    QWidget* readBox() {
        QWidget* over = nullptr;
        QTimer::singleShot(0, [&] {
            over = QApplication::activeModalWidget()->parentWidget();
            QApplication::activeModalWidget()->close();
        });
        dialogs.show({"Data Input Error", "Warning", Icon::Exclamation, Buttons::Ok});
        return over;
    }
    QtDialogs dialogs;
};

TEST_F(BoxOverForm, TheFormHasTheKeyboardWhateverTheWindowManagerChooses) {
    readBox();
    for (int i = 0; i < 2; ++i) {
        windows.main().activateWindow();
        settle();
        EXPECT_TRUE(general().isActiveWindow());
        EXPECT_EQ(focusName(), "txtRPM");
    }
}

TEST_F(BoxOverForm, TheNextBoxStandsOverTheFormAsWell) {
    readBox();
    windows.main().activateWindow();
    EXPECT_EQ(readBox(), &general());
}

TEST_F(BoxOverForm, AWindowThatTheCommandOpensKeepsTheKeyboard) {
    readBox();
    windows.openSensorEditor();
    settle();
    windows.main().activateWindow();
    settle();
    EXPECT_FALSE(general().isActiveWindow());
}

TEST_F(BoxOverForm, AUserWhoGoesToTheMainWindowAfterwardsStaysThere) {
    readBox();
    QEventLoop moment;
    QTimer::singleShot(1000, &moment, &QEventLoop::quit);
    moment.exec();
    activate(windows.main());
    settle();
    EXPECT_TRUE(windows.main().isActiveWindow());
}

TEST_F(Focus, ABoxEndsWithTheWindowThatItStandsOver) {
    QtDialogs dialogs;
    dialogs.setParent(&windows.main());
    openVe();
    dockOrUndock();
    activate(*windows.table());
    QTimer::singleShot(0, [&] { windows.removeForms(); });
    EXPECT_EQ(dialogs.show({"SAVE", "Save changes?", Icon::Question, Buttons::OkCancel}), Answer::Cancel);
    EXPECT_EQ(windows.table(), nullptr);
}

TEST_F(Focus, AWarningLeavesTheWindowInFrontThatItsEntryCameFrom) {
    windows.main().run("mnuMAPSensors");
    settle();
    activate(*windows.sensorEditor());
    fake.session.messages.Display_Warning(1000, "Retype Data");
    settle();
    EXPECT_TRUE(windows.sensorEditor()->isActiveWindow());
}

TEST_F(Focus, TheSensorManagerGoesBackToTheGeneralParameters) {
    windows.openGeneralConfig();
    windows.main().run("mnuMAPSensors");
    settle();
    windows.sensorEditor()->close();
    settle();
    EXPECT_TRUE(windows.generalConfig()->isActiveWindow());
}

}  // namespace
}  // namespace zentaq
