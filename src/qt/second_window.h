// Windows of their own beside the main one: they stay in front of it and go with it.
#pragma once

#include <QWidget>

namespace zentaq {

/// Window systems keep only dialogs in front of the window that they belong to; a plain window would vanish
/// behind the main one with the first box over that. The user sizes and maximises them like any other.
constexpr Qt::WindowFlags secondWindow() {
    return Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint;
}

}  // namespace zentaq
