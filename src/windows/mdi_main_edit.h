// The commands of the Edit menu, carried to the control that has the focus.
#pragma once

#include <string_view>

class QWidget;

namespace zentaq {

/// Undo, Cut, Copy, Paste, Delete or Select All, by the name of its menu entry ("mnuEdit_Copy"), on
/// `control`. A control that has no such operation is left alone; false then.
bool editCommand(std::string_view entry, QWidget* control);

}  // namespace zentaq
