// What a user could not read or reach in a window as it stands: texts cut off, controls outside of what they
// belong to, controls on top of each other.
#pragma once

#include <QRect>
#include <QWidget>
#include <string>
#include <vector>

namespace zentaq {

/// One line a fault, with the control's path, its text and the sizes; none for a window that is whole.
/// `room` is the part of the screen that windows may use.
std::vector<std::string> layoutFaults(const QWidget& window, const QRect& room);

/// "frmOptions/SSTab1/lblCaption (QLabel)"
std::string pathOf(const QWidget& widget);

/// An inner part of one of the toolkit's controls, which that control arranges itself.
bool isPartOfControl(const QWidget& widget);

}  // namespace zentaq
