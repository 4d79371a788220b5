// The keys of the menu: not through a dialog, not through the list of one of its fields.
#include <gtest/gtest.h>

#include <QCompleter>
#include <QDialog>
#include <QVBoxLayout>

#include "windows/key_press.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class Shortcuts : public WindowTest {
 protected:
    Shortcuts() {
        windows.main().activateWindow();
        openCalibration();
    }
    QAction* action(const char* name) { return find<QAction>(name); }
};

TEST_F(Shortcuts, ActNotThroughADialogWhileTheListOfItsFieldIsOpen) {
    QDialog dialog(&windows.main());
    auto* field = new QLineEdit(&dialog);
    auto* names = new QCompleter({"tune one", "tune two"}, field);
    field->setCompleter(names);
    dialog.setModal(true);
    dialog.show();
    dialog.activateWindow();
    QApplication::processEvents();
    field->setFocus();
    field->setText("tune");
    names->complete();
    QApplication::processEvents();
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    fake.dialogs.requests.clear();
    pressKey(Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(fake.dialogs.requests.empty());
    action("mnuOpen")->trigger();
    EXPECT_TRUE(fake.dialogs.requests.empty());
    QApplication::activePopupWidget()->close();
    action("mnuOpen")->trigger();
    EXPECT_TRUE(fake.dialogs.requests.empty()) << "the dialog alone";
    dialog.close();
    windows.main().activateWindow();
    QApplication::processEvents();
    windows.config()->focusTree();
    pressKey(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(fake.dialogs.requests.size(), 1u);
}

TEST_F(Shortcuts, AnEntryThatIsClickedInItsMenuRuns) {
    auto* menu = find<QMenu>("mnuFile");
    menu->popup(windows.main().mapToGlobal(QPoint(10, 10)));
    QApplication::processEvents();
    ASSERT_EQ(QApplication::activePopupWidget(), menu);
    menu->setActiveAction(action("mnuOpen"));
    fake.dialogs.requests.clear();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(menu, &enter);
    QApplication::processEvents();
    EXPECT_EQ(fake.dialogs.requests.size(), 1u);
}

TEST_F(Shortcuts, KillEngineHasAKeyThatNoTextFieldKnows) {
    EXPECT_EQ(action("mnuMonitor_KillEngine")->shortcut(), QKeySequence("Ctrl+Shift+K"));
    QLineEdit field;
    field.setText("name");
    field.show();
    field.setFocus();
    QKeyEvent over(QEvent::ShortcutOverride, Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier, "K");
    over.ignore();
    QApplication::sendEvent(&field, &over);
    EXPECT_FALSE(over.isAccepted());
}

}  // namespace
}  // namespace zentaq
