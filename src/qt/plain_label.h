// A label for what comes from outside: a name that looks like HTML is a name.
#pragma once

#include <QLabel>

#include "qt/named.h"

namespace zentaq {

/// `meaning` is for a screen reader.
inline QLabel* plainLabel(const QString& name, const QString& meaning, QWidget* parent) {
    auto* label = named(new QLabel(parent), name, meaning);
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
