// Where windows stood: restored at load, stored at unload, by the window's name.
// A place on a screen that no longer exists is pulled back onto one that does.
#pragma once

#include <QWidget>

#include "platform/settings_store.h"

namespace zentaq {

/// Gives a top-level window its stored size and place (key: its objectName), whole and on an existing screen.
/// False, and nothing changed, when none is stored or the stored text is unreadable.
bool restorePlacement(QWidget& window, const SettingsStore& settings);

/// Stores the place of a top-level window. A store that cannot be written is passed over.
void storePlacement(const QWidget& window, SettingsStore& settings);

/// CentreForm: puts `form` in the middle of `frame`, inside the screen.
void centreForm(QWidget& form, const QWidget& frame);

}  // namespace zentaq
