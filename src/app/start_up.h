// Kernel: the fixed start sequence and the one shutdown path of the process.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/main_commands.h"
#include "app/policy.h"
#include "app/session.h"
#include "platform/single_instance.h"

namespace zentaq {

/// The first step of the start, before anything is shown, logged or written: whether this process may go on.
/// Otherwise the user has been told that another instance runs.
bool firstInstance(const SingleInstance& instance, Dialogs& dialogs);

/// The version of the program: major, minor and revision, each without blanks.
std::string versionText();

/// The number of a random tip: the whole part of `random` * `count` + 1, 1 to `count`.
/// `random` lies from 0 to below 1; 0 when there is no tip.
int tipNumber(double random, int count);

class Kernel {
 public:
    /// The hidden start window has this title, which nobody sees.
    static constexpr std::string_view title = "Norvalia Zentaq Engine Management System";

    Kernel(Session& session, MainCommands& commands) : session_(session), commands_(commands) {}

    /// The start sequence, once firstInstance() has agreed. A failing statement is skipped and the next one
    /// runs; when the user closes the main window meanwhile the rest is left out.
    void load();

    /// Trouble that no command reports: a line of the log, behind the banner when it does not stand yet.
    void report(const std::string& trouble);

    /// The only place that ends the process once the main window exists. False: the user stays, or what was
    /// typed before it is written first or a save has to reach the disk: the program ends behind it.
    bool System_Shutdown(bool confirmed);

    /// The main window is being closed by other means: offers to save, then shuts down.
    void closeRequested();

 private:
    bool shutDown(bool confirmed);
    void closeNow();
    void setUpEnvironment();
    void takeStoredPort();
    void clearRunState();
    void startConsole();
    void openDatabase();
    void writeBanner();
    void activate();
    void showLinkAndDashboard();
    void showTip();
    /// Offers to save, and goes on when nothing is left that would be lost.
    void afterSaving(UnitCommands::LeftBehind agreed, const std::function<void()>& goOn);
    void end();
    /// A setting of section "System" reads 1. TypeMismatch where its value is no number.
    bool readsOne(const char* key) const { return session_.settingNumber(key) == 1; }

    Session& session_;
    MainCommands& commands_;
    bool ended_ = false;  ///< the shutdown has begun and cannot be declined any more
    const ResumeNext resumeNext_{ended_};
    bool bannerStands_ = false;
    std::vector<std::string> early_;  ///< troubles told before the banner stood
};

}  // namespace zentaq
