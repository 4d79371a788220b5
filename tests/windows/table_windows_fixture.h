// A started program with an ORB A calibration on rising axes in hand, and its table window.
#pragma once

#include "windows/window_fixture.h"

namespace zentaq {

/// Columns 500, 1000, ... 8000 rpm; rows 20, 25, ... 95 kPa from the bottom up.
inline void giveRisingAxes(Unit& unit) {
    for (int i = 0; i < 16; ++i) {
        unit.set("RPMTBL", 500 * (i + 1), i);
        unit.set("MAPTBL", 20 + 5 * i, i);
    }
}

class TableWindowsTest : public WindowTest {
 protected:
    TableWindowsTest() {
        activate(windows.main());
        openCalibration();
        giveRisingAxes(unit());
        unit().set("scale1", 5);
    }
    Unit& unit() { return fake.session.currentUnitObject(); }
    float ve(int index) { return unit().get("VE", index); }
    FrmTable& form() { return *windows.table(); }
    TableGridView& grid() { return form().grid(); }
    QLineEdit* timeOfGap() { return form().findChild<QLineEdit*>("txtTOG"); }
    QAction* tableAction(const char* name) { return form().findChild<QAction*>(name); }
    void stand(int row, int column) { grid().setCurrentIndex(grid().model()->index(row - 1, column - 1)); }
    void openVe() {
        windows.main().run("mnuVETbl");
        settle();
    }
    /// A key to the edit box where it is open, else to the grid.
    void key(int code, const QString& text = {}) {
        QWidget* box = &form().inputBox();
        keyTo(box->isVisible() ? *box : static_cast<QWidget&>(grid()), code, text);
    }
    void type(const QString& digits) {
        for (const QChar digit : digits) key(digit.unicode(), QString(digit));
    }
    static void keyTo(QWidget& target, int code, const QString& text = {},
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent press(QEvent::KeyPress, code, modifiers, text);
        QApplication::sendEvent(&target, &press);
    }
    static void settle() {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
};

}  // namespace zentaq
