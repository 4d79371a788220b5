// What the core asks of the windows. A program without windows uses the quiet defaults.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zentaq {

/// Where frmOptions opens.
enum class OptionsPage { First, Monitor };

class WindowSet {
 public:
    virtual ~WindowSet() = default;

    // ---- Start and end, in the order of the start sequence
    virtual void showMain() {}
    virtual void enableToolbar(bool) {}
    virtual void splash(std::string_view) {}  ///< shows a status text and holds it for a moment
    virtual void makeGraphPools() {}
    virtual void showConfig() {}  ///< first tab selected, second one hidden
    virtual void showLink() {}    ///< loads the link's timers
    virtual void showDashboard() {}
    virtual void showCommList(bool) {}  ///< lstCommInfo
    virtual void focusForm(const std::string&) {}
    virtual void showTip(const std::string&) {}
    virtual void killTimers() {}
    virtual void closeMain() {}

    // ---- The calibration in hand
    virtual void titleChanged(const std::string&) {}
    virtual void setupNodes() {}        ///< the tree, the pages and their rules for the unit in hand
    virtual void showStartTab() {}      ///< back to the first tab, second one hidden
    virtual void onFlyChanged(bool) {}  ///< colours of fields and the panel "ONFLY"
    virtual void onFlyLock(bool) {}     ///< the table grid waits while a change is on its way
    virtual void removeForms() {}       ///< closes frmTABLE and frmGPIO
    virtual void openTable(const std::string& table, const std::string& title) {
        (void)table;
        (void)title;
    }
    virtual void showUnit() {}  ///< forms read the unit's values again

    /// Runs a command that stores, programs, saves or closes behind the edits typed before it: entries that
    /// wait for the link and those still in their boxes. `caption` tells the user which command it was when
    /// one of these is refused: then it does not run.
    virtual void afterEdits(const std::string& caption, const std::function<void()>& command) {
        (void)caption;
        command();
    }

    // ---- Windows of their own; a second call brings the open one to the front
    virtual void openGeneralConfig() {}  ///< frmGeneralConfig
    /// Another calibration takes its place. False: the user keeps the new one that it holds.
    virtual bool closeGeneralConfig() { return true; }
    virtual void saveGeneralConfig() {}                ///< its key "Save"
    virtual void openSensorEditor() {}                 ///< frmEditMAPSensors
    virtual void openOptions(OptionsPage) {}           ///< frmOptions
    virtual void openHelp(const std::string& topic) {  ///< the user guide; empty: its contents
        (void)topic;
    }

    // ---- Options
    virtual void temperaturesChanged() {}  ///< windows that show temperatures read them again
    virtual void updateRateChanged() {}    ///< the dashboard's timer takes the setting ADUR
    virtual void clearTableColours() {}    ///< the grid of an open table gets a white background
    virtual void dashboardColours(const std::string& lights, const std::string& needle) {
        (void)lights;
        (void)needle;
    }
    virtual void initializeRecorderRows() {}  ///< the recorder's graphs take the chosen data points
    virtual void sensorsChanged() {}          ///< lists of MAP sensors are filled again

    // ---- Live
    virtual void dayMode() {}
    virtual void nightMode() {}
    virtual void unitKindFound(int slot) { (void)slot; }
    virtual void codesReceived() {}
    virtual void codesCleared() {}
    virtual void frameDecoded() {}
    virtual void updateDisplay() {}  ///< the dashboard is due; it draws at most 60 times a second
    virtual void resetDashboard() {}
    virtual void clearPanel3() {}

    /// A box or a list over a window waits for the user.
    virtual bool boxOpen() const { return false; }

    /// Runs something from the event loop, soon. Without windows at once.
    virtual void later(const std::function<void()>& something) { something(); }
};

}  // namespace zentaq
