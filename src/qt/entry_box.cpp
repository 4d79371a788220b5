#include "qt/entry_box.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPointer>

#include "qt/enter_key.h"
#include "qt/field_focus.h"

namespace zentaq {

EntryBox::EntryBox(Accept accept, QWidget* parent) : QLineEdit(parent), accept_(std::move(accept)) {
    setAlignment(Qt::AlignRight);
}

void EntryBox::showText(const QString& text) {
    // Also while another window is in front of what is being typed.
    const bool typing = committing_ || (pending() && (hasFocus() || isModified()));
    shown_ = text;
    if (!typing && pending()) setText(shown_);
}

void EntryBox::bringBack() {
    if (pending()) setText(shown_);
}

bool EntryBox::commit() {
    if (committing_ || !pending()) return true;
    const QPointer<EntryBox> self(this);
    committing_ = true;
    const bool taken = accept_(text());
    if (!self) return taken;
    bringBack();  // also after a success: the core may write the number in another way
    if (!taken) {
        // Still committing: the focus may be on its way to another box, and passes this one once more.
        setFocus(Qt::OtherFocusReason);
        selectAll();
    }
    committing_ = false;
    return taken;
}

void EntryBox::keyPressEvent(QKeyEvent* event) {
    if (isEnterKey(*event)) {
        if (commit()) selectAll();
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        // With nothing typed the key belongs to the window.
        event->setAccepted(pending());
        bringBack();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void EntryBox::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (staysInField(event->reason())) return;
    if (!commit() && event->reason() == Qt::MouseFocusReason) Q_EMIT clickRefused();
}

}  // namespace zentaq
