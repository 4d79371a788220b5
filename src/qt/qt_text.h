// Texts of the core as Qt takes them.
#pragma once

#include <QString>
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

}  // namespace zentaq
