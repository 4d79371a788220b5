// Texts of the core as Qt takes them.
#pragma once

#include <QString>
#include <string_view>

namespace zentaq {

/// UTF-8 as the core holds it.
inline QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace zentaq
