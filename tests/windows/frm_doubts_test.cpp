// What is in doubt, shown before a program run: one key leaves it either way.
#include "windows/frm_doubts.h"

#include <gtest/gtest.h>

#include <QPointer>
#include <QTableWidget>

#include "windows/key_press.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class DoubtsPanel : public WindowTest {
 protected:
    DoubtsPanel() {
        activate(windows.main());
        openCalibration();
    }
    /// Runs it, and does this while it stands.
    bool shown(const std::function<void(QDialog&)>& meanwhile) {
        QTimer::singleShot(0, [&] {
            QApplication::processEvents();
            auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            EXPECT_TRUE(windows.boxOpen());
            meanwhile(*box);
        });
        return windows.showDoubts(doubts);
    }
    const std::vector<Doubt> doubts{{"VE", "cell 3,12: 14.7", "far from its neighbors", "look at it"},
                                    {"SECLT", "0", "it is zero", "enter one"}};
};

TEST_F(DoubtsPanel, ShowsEachOnALineOfItsOwn) {
    shown([](QDialog& box) {
        auto* list = box.findChild<QTableWidget*>("lstDoubts");
        ASSERT_EQ(list->rowCount(), 2);
        EXPECT_EQ(list->item(0, 0)->text(), "VE");
        EXPECT_EQ(list->item(0, 1)->text(), "cell 3,12: 14.7");
        EXPECT_EQ(list->item(1, 2)->text(), "it is zero");
        EXPECT_EQ(list->item(1, 3)->text(), "enter one");
        box.reject();
    });
}

TEST_F(DoubtsPanel, EnterProgramsAndEscapeGoesBackToTheTree) {
    EXPECT_TRUE(shown([](QDialog& box) {
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(box.focusWidget(), &enter);
    }));
    EXPECT_FALSE(shown([](QDialog& box) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(box.focusWidget(), &escape);
    }));
    QApplication::processEvents();
    activate(windows.main());
    EXPECT_EQ(focusName(), "treeZentaq");
}

TEST_F(DoubtsPanel, TheProgramMayEndWhileItStands) {
    EXPECT_FALSE(shown([this](QDialog& box) {
        windows.close(window::main);
        box.accept();
    }));
}

}  // namespace
}  // namespace zentaq
