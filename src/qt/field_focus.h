// When a field that loses the keyboard has been left by the user, and its text is an entry.
#pragma once

#include <Qt>

namespace zentaq {

/// A menu, a box or another window is in front; the field has not been left.
inline bool staysInField(Qt::FocusReason reason) {
    return reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
           reason == Qt::MenuBarFocusReason;
}

}  // namespace zentaq
