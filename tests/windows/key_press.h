// Presses keys as the window system does: shortcuts are asked first, then the control that has the focus.
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

QT_BEGIN_NAMESPACE
// Qt's own test library presses keys by this; it has no header that programs may include.
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* target, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers, const QString& text,
                                               bool autorepeat, ushort count);
QT_END_NAMESPACE

namespace zentaq {

inline void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    QWidget* target = QApplication::focusWidget();
    if (target == nullptr) target = QApplication::activeWindow();
    if (target == nullptr) return;
    if (qt_sendShortcutOverrideEvent(target, 0, key, modifiers, text, false, 1)) return;
    QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(target, &down);
    QApplication::processEvents();
}

inline void typeText(const QString& text) {
    for (const QChar letter : text) pressKey(letter.toUpper().unicode(), Qt::NoModifier, QString(letter));
}

}  // namespace zentaq
