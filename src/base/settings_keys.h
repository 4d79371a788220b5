// The keys of the per-user settings store that more than one file names, each with what its value means.
// All values are texts: check boxes "0" or "1", option groups the index, numbers in plain decimal form.
#pragma once

#include <string>

namespace zentaq::settings {

inline constexpr const char* application = "Zentaq4";

inline constexpr const char* system = "System";    ///< section of the preferences
inline constexpr const char* datalog = "Datalog";  ///< section of the recorder's data points
inline constexpr const char* forms = "Forms";      ///< section of the windows' places, by window name

inline constexpr const char* RecentFiles = "RecentFiles";  ///< of that section: paths, newest first

// Section "System". A key that the options alone read and store stands in its row of app/options_table.cpp.
inline constexpr const char* CommPort = "CommPort";  ///< serial port number; a port search stores it too
/// Identity of the device behind the number, which moves; stored with it.
inline constexpr const char* CommPortIdentity = "CommPortIdentity";
inline constexpr const char* AutoLog = "AutoLog";          ///< 1: write the log file
inline constexpr const char* MonitorMode = "MonitorMode";  ///< 0: night mode (black); 1: day mode (white)
inline constexpr const char* NeedleColor = "NeedleColor";  ///< red + 256 * green + 65536 * blue
inline constexpr const char* DashLights = "DashLights";    ///< a color as above
/// Dashboard updates a second; the timer's interval is 1000 / value ms.
inline constexpr const char* ADUR = "ADUR";
inline constexpr const char* FileOpen = "FileOpen";  ///< 1: offer the file open prompt at start
inline constexpr const char* Print =
    "Print";  ///< toolbar print button; 0: the current form, 1: the calibration
/// 1: overlay AFR colors on tables; the table's toolbar stores it.
inline constexpr const char* TableColor = "TableColor";
/// 1: cells of all tables by the heat scale; else each table in its own way.
inline constexpr const char* CellScale = "CellScale";
/// 1: curve graphs show where the engine was last.
inline constexpr const char* CurveTrace = "CurveTrace";
/// 0: a curve graph is a window of its own; else it is docked in the workspace.
inline constexpr const char* Graphs = "Graphs";
inline constexpr const char* CommDialog = "CommDialog";  ///< 1: show the communications list lstCommInfo
/// 1: fixed column width in tables; 0: columns size themselves.
inline constexpr const char* Column_Type = "Column_Type";
inline constexpr const char* AutoMonitor = "AutoMonitor";  ///< 1: start monitoring the unit at connection
inline constexpr const char* TemperatureToggle = "TemperatureToggle";  ///< "0": Celsius; else Fahrenheit
inline constexpr const char* CLTAlarmValue = "CLTAlarmValue";  ///< coolant alarm, degrees Celsius always
inline constexpr const char* MATAlarmValue = "MATAlarmValue";  ///< manifold air alarm, degrees Celsius always
inline constexpr const char* WireTrace = "WireTrace";  ///< 1: write what passes over the line to a file

/// Section "Datalog": the data points graphed during recording and playback, "Datalog1" to "Datalog10". A
/// value counts the entries of the options' list from 1; "0" is an unused slot. Higher numbers are not read.
inline constexpr int datalogSlots = 10;
inline std::string datalogKey(int slot) {
    return "Datalog" + std::to_string(slot);
}

}  // namespace zentaq::settings
