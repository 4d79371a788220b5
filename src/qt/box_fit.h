// Fits a box to the screen: as wide as its longest line where there is room, and never higher than the
// screen, since its buttons stand below its text.
#pragma once

class QMessageBox;

namespace zentaq {

/// Before the box is shown, with its text, icon and buttons in place.
void fitToScreen(QMessageBox& message);

}  // namespace zentaq
