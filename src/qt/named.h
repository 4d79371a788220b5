// How a control says what it is.
#pragma once

#include <QPushButton>
#include <QString>

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

/// A screen reader says its caption.
inline QPushButton* namedButton(const QString& name, const QString& caption, QWidget* parent) {
    return named(new QPushButton(caption, parent), name, QString(caption).remove(u'&'));
}

}  // namespace zentaq
