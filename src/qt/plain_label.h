// A label for what comes from outside: a name that looks like HTML is a name.
#pragma once

#include <QLabel>

#include "qt/named.h"

namespace zentaq {

/// A screen reader says the label's text and, behind it, what it means. An accessible name would stand
/// instead of the text, and nobody would hear of its changes.
template <typename Label>
Label* explained(Label* label, const QString& name, const QString& meaning) {
    label->setAccessibleDescription(meaning);
    return named(label, name);
}

inline QLabel* plainLabel(const QString& name, const QString& meaning, QWidget* parent) {
    QLabel* label = explained(new QLabel(parent), name, meaning);
    label->setTextFormat(Qt::PlainText);
    return label;
}

/// For lines of text, broken at the width that there is.
inline QLabel* plainLines(const QString& name, const QString& meaning, QWidget* parent) {
    QLabel* label = plainLabel(name, meaning, parent);
    label->setWordWrap(true);
    return label;
}

}  // namespace zentaq
