// What the core asks of the windows, by their names, and what it tells all of them. A program without windows
// uses the quiet defaults.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tables/calibration_check.h"

namespace zentaq {

/// The windows by name. One that no window bears yet is opened and closed without effect.
namespace window {
inline constexpr std::string_view main = "mdiMain";
inline constexpr std::string_view splash = "frmSplash";  ///< on a status text, which it holds for a moment
inline constexpr std::string_view config = "frmConfig";
inline constexpr std::string_view link = "frmCOMM";
inline constexpr std::string_view dashboard = "frmDashBoard";
inline constexpr std::string_view table = "frmTABLE";        ///< on a table, with its title
inline constexpr std::string_view gpio = "frmGPIO";          ///< the input/output manager
inline constexpr std::string_view curve = "frmGraph_DX_2D";  ///< on the name of a curve
inline constexpr std::string_view generalConfig = "frmGeneralConfig";
inline constexpr std::string_view sensorEditor = "frmEditMAPSensors";
inline constexpr std::string_view options =
    "frmOptions";                                    ///< on a page: `monitorPage`; empty: the page in hand
inline constexpr std::string_view help = "frmHelp";  ///< on a topic of the user guide; empty: its contents
inline constexpr std::string_view fastHelp = "frmFastHelp";
}  // namespace window

/// The page of the options with the dashboard's mode and colours.
inline constexpr std::string_view monitorPage = "Monitor";

/// The tab of the flight recorder in the workspace.
inline constexpr std::string_view recorderTab = "Flight Recorder";

/// News that the core tells all windows; each takes what concerns it.
class WindowNews {
 public:
    virtual ~WindowNews() = default;

    // ---- Start and end
    virtual void enableToolbar(bool) {}
    virtual void makeGraphPools() {}    ///< kept: a step of the start, for the graphs of a later release
    virtual void showCommList(bool) {}  ///< lstCommInfo
    virtual void showTip(const std::string&) {}
    virtual void killTimers() {}

    // ---- The calibration in hand
    virtual void titleChanged(const std::string&) {}
    virtual void setupNodes() {}        ///< the tree, the pages and their rules for the unit in hand
    virtual void showStartTab() {}      ///< back to the first tab, second one hidden
    virtual void onFlyChanged(bool) {}  ///< colours of fields and the panel "ONFLY"
    virtual void onFlyLock(bool) {
    }                           ///< the table grid waits while a change is on its way; with each idle tick
    virtual void showUnit() {}  ///< the unit's values are read again
    virtual void saveNew() {}   ///< the calibration that is being made gets its file
    /// An entry of the pop-up of a table was chosen, by its name.
    virtual void tableCommand(const std::string& /*name*/) {}
    /// A surface has changed a cell: an open table shows it, and what "Discard" brings back stays.
    virtual void cellsChanged() {}
    /// The user has moved in a table: the status bar tells of another cell.
    virtual void cellContextChanged() {}

    // ---- Options
    virtual void temperaturesChanged() { showUnit(); }
    virtual void updateRateChanged() {}  ///< the dashboard's timer takes the setting ADUR
    virtual void clearTableColours() {}  ///< the grid of an open table gets a white background
    /// As stored.
    virtual void dashboardColours(const std::string& /*lights*/, const std::string& /*needle*/) {}
    virtual void initializeRecorderRows() {}  ///< the recorder's graphs take the chosen data points
    virtual void sensorsChanged() {}          ///< lists of MAP sensors are filled again

    /// Docked windows and what else the user has moved stand as at the first start again; splitters that are
    /// kept are brought back by themselves, and the folds were told before.
    virtual void restoreLayout() {}
    /// A part is to be folded or opened, as the session's folds say.
    virtual void foldsChanged() {}

    // ---- Live
    virtual void look(bool /*day*/) {}
    virtual void unitKindFound(int /*slot*/) {}
    virtual void codesChanged() {}
    virtual void updateDisplay() {}  ///< the dashboard is due; it draws at most 60 times a second
    virtual void resetDashboard() {}
    virtual void clearPanel3() {}

    // ---- Recorder
    virtual void recorderChanged() {}  ///< buttons, status, frame: the page draws what the recorder holds
    virtual void logChanged() {}       ///< another log is in hand, or none
    /// A row of a log is on show: tables mark where the engine was.
    virtual void logRowShown(float /*rpm*/, float /*map*/) {}
    /// AutoVE has begun or ended.
    virtual void autoVeChanged() {}
};

/// How a print ended.
enum class PrintEnd { Printed, GivenUp, Failed };

class WindowSet {
 public:
    virtual ~WindowSet() = default;

    /// Opens a window, or brings the open one to the front. `on` is what it shows, where it can show
    /// different things, and `title` what that is called.
    virtual void open(std::string_view /*name*/, const std::string& /*on*/ = {},
                      const std::string& /*title*/ = {}) {}
    /// False: it stays, since the user keeps what it holds. The main window takes all others along.
    virtual bool close(std::string_view /*name*/) { return true; }
    /// The keyboard goes back to a window, behind a box about an entry in it.
    virtual void focus(std::string_view /*name*/) {}
    /// Closes the windows that stand on the calibration in hand: frmTABLE and frmGPIO.
    virtual void removeForms() {}

    /// Runs a command that stores, programs, saves or closes behind the edits typed before it: entries that
    /// wait for the link and those still in their boxes. `caption` tells the user which command it was when
    /// one of these is refused: then it does not run.
    virtual void afterEdits(const std::string& /*caption*/, const std::function<void()>& command) {
        command();
    }
    /// Shows what is in doubt before a program run, as a panel that one key leaves. False: the user goes back
    /// to the calibration.
    virtual bool showDoubts(const std::vector<Doubt>& /*doubts*/) { return true; }
    /// A box or a list over a window waits for the user.
    virtual bool boxOpen() const { return false; }
    /// The user works where the state strip is seen, not in a window in front of it.
    virtual bool noticesSeen() const { return true; }
    /// Shows the printer dialog and prints what `pages` answers behind it: pages that end with '\f', lines
    /// with '\n'.
    virtual PrintEnd printText(const std::string& /*title*/, const std::function<std::string()>& /*pages*/) {
        return PrintEnd::GivenUp;
    }
    /// The same for what is in front on the screen; `begins` is called behind the dialog.
    virtual PrintEnd printForm(const std::function<void()>& /*begins*/) { return PrintEnd::GivenUp; }
    /// Runs something from the event loop, soon. Without windows at once.
    virtual void later(const std::function<void()>& something) { something(); }

    /// Tells all windows: `tell(&WindowNews::showTip, text)`.
    template <typename... Taken, typename... Given>
    void tell(void (WindowNews::*news)(Taken...), const Given&... given) {
        toEach([&](WindowNews& one) { (one.*news)(given...); });
    }

 protected:
    virtual void toEach(const std::function<void(WindowNews&)>& /*tell*/) {}
};

}  // namespace zentaq
