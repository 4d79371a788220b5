// The keys of the per-user settings store, each with what its value means: the one place that names them.
// All values are texts: check boxes "0" or "1", option groups the index, numbers in plain decimal form.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace zentaq::settings {

inline constexpr const char* application = "Zentaq4";

inline constexpr const char* system = "System";    ///< section of the preferences
inline constexpr const char* datalog = "Datalog";  ///< section of the recorder's data points
inline constexpr const char* forms = "Forms";      ///< section of the windows' places, by window name

inline constexpr const char* CommPort = "CommPort";
inline constexpr const char* CommPortIdentity = "CommPortIdentity";
inline constexpr const char* AutoLog = "AutoLog";
inline constexpr const char* Cnsl = "Cnsl";
inline constexpr const char* CommCnsl = "CommCnsl";
inline constexpr const char* MonitorMode = "MonitorMode";
inline constexpr const char* NeedleColor = "NeedleColor";
inline constexpr const char* DashLights = "DashLights";
inline constexpr const char* LabelLights = "LabelLights";
inline constexpr const char* ADUR = "ADUR";
inline constexpr const char* Graphs = "Graphs";
inline constexpr const char* FileOpen = "FileOpen";
inline constexpr const char* Print = "Print";
inline constexpr const char* TableColor = "TableColor";
inline constexpr const char* CommDialog = "CommDialog";
inline constexpr const char* PollRate = "PollRate";
inline constexpr const char* Column_Type = "Column_Type";
inline constexpr const char* AutoMonitor = "AutoMonitor";
inline constexpr const char* TemperatureToggle = "TemperatureToggle";
inline constexpr const char* CLTAlarmValue = "CLTAlarmValue";
inline constexpr const char* MATAlarmValue = "MATAlarmValue";
inline constexpr const char* WireTrace = "WireTrace";

/// When the options store a value.
enum class Stored {
    OnApply,
    AtOnce,         ///< with the click
    AtOnceAndApply  ///< with the click, and again by Apply
};

struct Key {
    const char* name;
    const char* fallback;  ///< what a read of a key that was never written gives
    Stored stored;
    bool used;  ///< kept: without effect where false; the options store and show it, nothing else reads it
    std::string_view meaning;
};

inline constexpr std::array systemKeys{
    Key{CommPort, "1", Stored::OnApply, true, "serial port number; a port search stores it too"},
    Key{CommPortIdentity, "", Stored::OnApply, true,
        "identity of the device behind the number, which moves; stored with it"},
    Key{AutoLog, "", Stored::OnApply, true, "1: write the log file"},
    Key{Cnsl, "", Stored::OnApply, false, "check box \"Show Console at Start Up\""},
    Key{CommCnsl, "", Stored::OnApply, false, "check box \"Show Communication Console\""},
    Key{MonitorMode, "", Stored::AtOnce, true, "0: night mode (black); 1: day mode (white)"},
    Key{NeedleColor, "", Stored::OnApply, true, "dashboard needles: red + 256 * green + 65536 * blue"},
    Key{DashLights, "", Stored::OnApply, true, "dashboard lights, a color as above"},
    Key{LabelLights, "", Stored::OnApply, false, "dashboard labels, a color as above"},
    Key{ADUR, "", Stored::AtOnce, true,
        "dashboard updates a second; the timer's interval is 1000 / value ms"},
    Key{Graphs, "", Stored::OnApply, true, "1: dock 2D graphs in the lower part of the screen"},
    Key{FileOpen, "", Stored::OnApply, true, "1: offer the file open prompt at start"},
    Key{Print, "", Stored::AtOnce, true, "toolbar print button; 0: the current form, 1: the calibration"},
    Key{TableColor, "", Stored::OnApply, true,
        "1: overlay AFR colors on tables; the table's toolbar stores it"},
    Key{CommDialog, "", Stored::AtOnce, true, "1: show the communications list lstCommInfo"},
    Key{PollRate, "", Stored::OnApply, false, "automatic poll and sync interval in seconds"},
    Key{Column_Type, "", Stored::AtOnce, true, "1: fixed column width in tables; 0: columns size themselves"},
    Key{AutoMonitor, "", Stored::AtOnceAndApply, true, "1: start monitoring the unit at connection"},
    Key{TemperatureToggle, "", Stored::AtOnceAndApply, true, "\"0\": Celsius; any other value: Fahrenheit"},
    Key{CLTAlarmValue, "", Stored::OnApply, true, "coolant alarm, degrees Celsius, never Fahrenheit"},
    Key{MATAlarmValue, "", Stored::OnApply, true, "manifold air alarm, degrees Celsius, never Fahrenheit"},
    Key{WireTrace, "", Stored::OnApply, true, "1: write what passes over the serial line to a file"},
};

/// Section "Datalog": the data points graphed during recording and playback, "Datalog1" to "Datalog10". A
/// value counts the entries of the options' list from 1; "0" is an unused slot. Higher numbers are not read.
inline constexpr int datalogSlots = 10;
inline std::string datalogKey(int slot) {
    return "Datalog" + std::to_string(slot);
}

}  // namespace zentaq::settings
