// How a control says which help F2 shows for it.
#pragma once

namespace zentaq {

/// Dynamic property of a control, or of one that holds it: its key in table FastHelp.
inline constexpr auto helpKeyProperty = "fastHelpKey";

}  // namespace zentaq
