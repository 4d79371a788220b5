// The menu tree and the toolbar as data: control name, caption, parent, keys, what must hold for the entry to
// be enabled, and what it does.
#pragma once

#include <span>
#include <string_view>

#include "app/session.h"
#include "app/window_set.h"

namespace zentaq {

class MainCommands;

struct MenuEntry {
    std::string_view name;      ///< control name, "mnuSaveAs"
    std::string_view caption;   ///< with "&" before a mnemonic
    std::string_view parent;    ///< control name of the parent; empty for a menu of the bar
    std::string_view shortcut;  ///< "Ctrl+S"; empty for none
    bool (*enabled)(const Session& session) = nullptr;  ///< null: the command comes later, stay disabled
    std::string_view window = {};                       ///< that it opens; empty for a command
    std::string_view on = {};                           ///< what the window opens on
    bool (*checked)(const Session& session) = nullptr;  ///< null: it bears no mark
    void (*run)(MainCommands& commands) = nullptr;      ///< where it is one call into the core
    bool afterEdits = false;  ///< what it stores, programs, saves or closes includes the edits typed before
    bool group = false;       ///< a line stands above it
    bool isMenu = false;      ///< what it holds is made when it opens
};

/// Parents before children, in the order of the menus. A menu whose caption is empty is a pop-up.
std::span<const MenuEntry> menuTree();

struct ToolbarButton {
    std::string_view key;      ///< "Program"
    std::string_view command;  ///< the menu entry it stands for
    std::string_view tip;
};
std::span<const ToolbarButton> toolbarButtons();

}  // namespace zentaq
