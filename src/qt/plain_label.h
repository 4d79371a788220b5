// A label for what comes from outside: a name that looks like HTML is a name.
#pragma once

#include <QLabel>

namespace zentaq {

/// `meaning` is for a screen reader.
inline QLabel* plainLabel(const char* name, const QString& meaning, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setAccessibleName(meaning);
    label->setTextFormat(Qt::PlainText);
    return label;
}

/// For lines of text, broken at the width that there is.
inline QLabel* plainLines(const char* name, const QString& meaning, QWidget* parent) {
    QLabel* label = plainLabel(name, meaning, parent);
    label->setWordWrap(true);
    return label;
}

}  // namespace zentaq
