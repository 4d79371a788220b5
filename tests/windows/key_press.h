// Presses keys as the window system does: shortcuts are asked first, then the control that has the focus.
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <string>

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

/// A key for the control that has the focus, whatever shortcuts there are.
inline void sendKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QWidget* target = QApplication::focusWidget();
        if (target == nullptr) return;
        QKeyEvent event(type, key, modifiers, text);
        QApplication::sendEvent(target, &event);
    }
}

inline void sendText(const QString& text) {
    for (const QChar letter : text) sendKey(0, Qt::NoModifier, QString(letter));
}

/// What stands in the field in hand gives way to what is typed.
inline void typeInstead(const QString& text) {
    sendKey(Qt::Key_A, Qt::ControlModifier);
    sendKey(Qt::Key_Delete);
    sendText(text);
}

/// Of the control that has the focus; empty for none.
inline std::string focusName() {
    const QWidget* widget = QApplication::focusWidget();
    return widget == nullptr ? std::string() : widget->objectName().toStdString();
}

inline void typeText(const QString& text) {
    for (const QChar letter : text) pressKey(letter.toUpper().unicode(), Qt::NoModifier, QString(letter));
}

}  // namespace zentaq
