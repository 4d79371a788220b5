// The commands of the main window. Windows call them and show what the session holds afterwards.
#pragma once

#include <string>

#include "app/file_commands.h"
#include "app/print_commands.h"
#include "app/program_commands.h"
#include "app/save_commands.h"
#include "app/session.h"
#include "app/unit_commands.h"

namespace zentaq {

class MainCommands {
 public:
    explicit MainCommands(Session& session)
        : files(session),
          saves(session),
          programming(session),
          unit(session),
          printing(session),
          session_(session) {}

    FileCommands files;
    SaveCommands saves;
    ProgramCommands programming;
    UnitCommands unit;
    PrintCommands printing;

    // ---- The display
    void help();  ///< mnuHelpContents
    void dayMode();
    void nightMode();
    void toggleMessages();   ///< mnuFoldMessages
    void toggleTree();       ///< mnuFoldTree
    void toggleDashboard();  ///< mnuFoldDashboard
    void restoreLayout();    ///< mnuRestoreLayout
    /// Opens a table window; tells error NoCalibration without a calibration.
    void openTable(const std::string& table, const std::string& title);
    /// Tree click: opens a table or answers the page of `sstMenu`; -1 for a table.
    int treeClick(const std::string& key);
    /// "Edit Table": opens the output table that a pin goes by; nothing for a pin without one.
    void editPinTable(int pin);

    /// The door for other windows: 0 and 1 open the advance and the VE table, 2 starts a monitor session, 3
    /// ends it; other codes do nothing.
    void Load_Command(int code);

 private:
    void toggle(Fold& fold);

    Session& session_;
};

}  // namespace zentaq
