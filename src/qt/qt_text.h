// Texts of the core as Qt takes them.
#pragma once

#include <QString>
#include <QTextDocument>
#include <string_view>

#include "base/shown_text.h"

namespace zentaq {

/// UTF-8 as the core holds it.
inline QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The same for a label or a title, as it may be shown: names of units and files are in it.
inline QString shownString(std::string_view text) {
    return qString(shownLine(text));
}

/// The same for a text of several lines.
inline QString shownStringOfLines(std::string_view text) {
    return qString(shownLines(text));
}

/// For a tool tip, which would draw a name as HTML that looks like it.
inline QString plainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}
inline QString shownTip(std::string_view text) {
    return plainTip(shownStringOfLines(text));
}

}  // namespace zentaq
