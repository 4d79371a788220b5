// Kernel: the fixed start sequence and the one shutdown path of the process.
#pragma once

#include "app/main_commands.h"
#include "app/session.h"

namespace zentaq {

class Kernel {
 public:
    Kernel(Session& session, MainCommands& commands) : session_(session), commands_(commands) {}

    /// The start sequence from step 2 on; the single-instance test belongs to the program's main.
    /// A failing statement is skipped and the next one runs.
    void load();

    /// The only place that ends the process once the main window exists. False: the user stays.
    bool System_Shutdown(bool confirmed);

    /// The main window is being closed by other means: offers to save, then shuts down.
    void closeRequested();

 private:
    void setUpEnvironment();
    void startConsole();
    void openDatabase();
    void writeBanner();
    void showTip();
    /// Whether a setting reads 1; also when it has no value, because the failing condition of the start
    /// sequence runs the statement that it guards.
    bool onByPolicy(const char* key) const;

    Session& session_;
    MainCommands& commands_;
};

}  // namespace zentaq
