// Enter, on the keys and on the number pad.
#pragma once

#include <QKeyEvent>

namespace zentaq {

inline bool isEnterKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace zentaq
