// What docs/how-to/add-a-window.md adds opens from its entry and follows the frames; walk.py compiles and
// runs this, and tests/windows/window_registry_test.cpp, on the edited sources.
#include <QAction>
#include <QListWidget>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using AddedWindow = WindowTest;

QListWidget* listOfChannels() {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->objectName() == "frmChannels") return widget->findChild<QListWidget*>("lstChannels");
    }
    return nullptr;
}

TEST_F(AddedWindow, OpensFromItsEntryAndShowsWhatEachFrameTells) {
    find<QAction>("mnuChannels")->trigger();
    QListWidget* list = listOfChannels();
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(list->isVisible());
    EXPECT_EQ(list->item(0)->text(), "RPM 0");
    fake.session.live.RPM = 3000;
    windows.tell(&WindowNews::updateDisplay);
    EXPECT_EQ(list->item(0)->text(), "RPM 3000");
}

}  // namespace
}  // namespace zentaq
