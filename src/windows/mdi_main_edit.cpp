#include "windows/mdi_main_edit.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QWidget>
#include <array>

namespace zentaq {

namespace {

struct EditEntry {
    std::string_view entry;
    const char* slot;  ///< what Qt's own editors call it; null: a key
};

constexpr std::array entries{
    EditEntry{"mnuEdit_Undo", "undo"},           EditEntry{"mnuEdit_Cut", "cut"},
    EditEntry{"mnuEdit_Copy", "copy"},           EditEntry{"mnuEdit_Paste", "paste"},
    EditEntry{"mnuEdit_SelectAll", "selectAll"}, EditEntry{"mnuEdit_Delete", nullptr},
};

void press(QWidget* control, Qt::Key key) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(control, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(control, &up);
}

/// Lists and grids have no slot for copying; they know the key.
void pressCopy(QWidget* control) {
    QKeyEvent down(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
    QApplication::sendEvent(control, &down);
}

}  // namespace

bool editCommand(std::string_view entry, QWidget* control) {
    if (control == nullptr) return false;
    for (const EditEntry& row : entries) {
        if (row.entry != entry) continue;
        if (row.slot == nullptr) {
            press(control, Qt::Key_Delete);
            return true;
        }
        const QByteArray signature = QByteArray(row.slot) + "()";
        const int method = control->metaObject()->indexOfMethod(signature.constData());
        if (method >= 0) return control->metaObject()->method(method).invoke(control, Qt::DirectConnection);
        if (entry != "mnuEdit_Copy") return false;
        pressCopy(control);
        return true;
    }
    return false;
}

}  // namespace zentaq
