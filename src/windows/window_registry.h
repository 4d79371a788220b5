// The windows of the program, one row each: a new one is its pair of files and its row here.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "app/main_commands.h"
#include "app/menu.h"
#include "app/session.h"
#include "windows/form.h"

namespace zentaq {

/// What a window is made with.
struct FormNeeds {
    Session& session;
    MainCommands& commands;
    QWidget* parent;                                    ///< the main window, or where the place of its row is
    std::function<void(std::string_view entry)> run{};  ///< an entry of the menu, as a click on it does
    std::string_view name{};                            ///< of its row, where several rows make such a window
};

/// Makes a window of this class; each window's own file brings it (windows/form_maker.h).
template <typename F>
Form* makeForm(const FormNeeds& needs);

enum class FormPlace {
    Above,   ///< the upper part of the main window
    Below,   ///< the lower part
    Docked,  ///< in the workspace (a DockingForm)
    Beside,  ///< a window of its own in front of the main one, which it goes with
};

/// The entry of the menu that opens a window, behind those that the core's tree has under the same parent.
struct WindowEntry {
    std::string_view name = {};     ///< "mnuFlightRecorder"
    std::string_view caption = {};  ///< with "&" before a mnemonic
    std::string_view parent = {};   ///< "mnuTools"
    std::string_view shortcut = {};
};

struct WindowRow {
    std::string_view name;  ///< of the object, too
    FormPlace place = FormPlace::Beside;
    Form* (*make)(const FormNeeds& needs);
    /// It has entries that are checked: behind the box about one the keyboard comes back to it.
    bool hasEntries = false;
    /// Others open from it: it comes to the front again when one of them goes.
    bool opensOthers = false;
    /// It stands on the calibration in hand, and goes with it.
    bool ofCalibration = false;
    /// Whether it may be opened on this now; null for always.
    bool (*offered)(Session& session, const std::string& on) = nullptr;
    WindowEntry menu = {};  ///< empty where the core's tree has one, or none opens it
};

/// In the order in which news come to them.
std::span<const WindowRow> windowRows();

/// The entries of the core's tree and behind them those of the windows' rows.
std::span<const MenuEntry> menuEntries();

}  // namespace zentaq
