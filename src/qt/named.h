// How a control says what it is.
#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QToolButton>

namespace zentaq {

template <typename Object>
Object* named(Object* object, const QString& name) {
    object->setObjectName(name);
    return object;
}

/// `meaning` is what a screen reader says.
template <typename Control>
Control* named(Control* control, const QString& name, const QString& meaning) {
    control->setAccessibleName(meaning);
    return named(control, name);
}

/// With a button that empties it, which is called by what it does.
inline void makeClearable(QLineEdit* field) {
    field->setClearButtonEnabled(true);
    for (auto* button : field->findChildren<QToolButton*>()) {
        button->setAccessibleName(QStringLiteral("Empty: ") + field->accessibleName());
    }
}

/// A screen reader says its caption.
inline QPushButton* namedButton(const QString& name, const QString& caption, QWidget* parent) {
    return named(new QPushButton(caption, parent), name, QString(caption).remove(u'&'));
}

}  // namespace zentaq
