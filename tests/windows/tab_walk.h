// A walk through a window by the Tab key alone, as a user without a mouse goes.
#pragma once

#include <QWidget>
#include <string>
#include <vector>

namespace zentaq {

struct TabWalk {
    std::vector<QWidget*> controls;    ///< each once, in the order in which the key reaches them
    const QWidget* holding = nullptr;  ///< one that the key does not leave
};

/// From the control in hand until one comes for the second time.
TabWalk walkByTab(QWidget& window, bool backward = false);

/// What the key should reach: shown and enabled, and taking the keyboard by Tab. Of options that exclude each
/// other the arrow keys reach the rest.
std::vector<QWidget*> tabControls(const QWidget& window);

/// One line for each step against the eye, which goes from top to bottom and from left to right: to a control
/// above in the same column, or to the left in the same row. The order is a ring, and may be entered
/// anywhere.
std::vector<std::string> stepsAgainstTheEye(const std::vector<QWidget*>& ring, const QWidget& window);

/// With the keyboard there is more of the color of the focus on it than without, by as much as two of its
/// sides.
bool showsFocus(QWidget& control);

}  // namespace zentaq
