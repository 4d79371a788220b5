// The options window without a window: one table tells every option, and one object holds what its controls
// show, writes what is written on the click itself and applies the rest in its fixed order.
#pragma once

#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/main_commands.h"
#include "app/session.h"

namespace zentaq {

/// The pages of SSTab1, in their order.
enum class OptionPage { Communications, Start, Display, Tables, Dashboard, DataPoints, Print };

enum class OptionKind {
    Port,         ///< number of a serial port
    Check,        ///< "0" or "1"
    Choice,       ///< index of the chosen button of a group
    Number,       ///< a field that takes any number, or nothing
    Temperature,  ///< a field in the user's unit, stored in degrees Celsius
    Slider,       ///< a whole number from slowestUpdateRate to fastestUpdateRate
    Colour,       ///< red + 256 * green + 65536 * blue in decimal; nothing takes the mode's own colour
    DataPoints,   ///< the check list of data points; its value is held apart
};

struct OptionPageRow {
    OptionPage page;
    std::string_view title;  ///< with '&' before its access key, "&&" for an ampersand
    std::string_view help;   ///< key of its fast help
};

struct OptionRow {
    std::string_view control;
    int index = -1;  ///< of a button in its group, which shares the control's name
    std::string_view caption;
    char access = 0;  ///< letter of the caption that reaches the control with Alt
    OptionPage page = OptionPage::Communications;
    OptionKind kind = OptionKind::Check;
    std::string_view key;      ///< in section "System", which tells when it is stored; empty: no setting
    std::string_view design;   ///< shown when the store holds nothing or an odd text
    std::string_view helpKey;  ///< of its fast help
    std::string_view help;     ///< a sentence for the tuner; also searched
    std::string_view words;    ///< further words that a tuner may search by
};

/// Updates a second that the slider can yield; it cannot yield 0.
inline constexpr int slowestUpdateRate = 1;
inline constexpr int fastestUpdateRate = 125;

std::span<const OptionPageRow> optionPages();
std::span<const OptionRow> optionTable();

/// "optMonitorMode(0)" for a button of a group, else the control's name.
std::string controlName(const OptionRow& row);

/// Options in which every word of `query` occurs, those with all of them in the caption first. Case does not
/// matter. Nothing for an empty query.
std::vector<const OptionRow*> findOptions(std::string_view query);

class Options {
 public:
    explicit Options(Session& session);

    /// Reads everything from the store.
    void load();
    /// Reads again what others have stored meanwhile and keeps the user's other entries. True if any was.
    bool refresh();

    /// What a control shows: a text field's text, "0" or "1", the index of a chosen button, a number.
    /// BoundsError for a name that is not in the table.
    const std::string& value(std::string_view control) const;
    bool on(std::string_view control) const { return value(control) == "1"; }
    /// The user's entry. Controls that are written on the click itself store it and act at once.
    void change(std::string_view control, std::string_view value);

    /// The user's choice of a port, of which the number alone may mean another device soon.
    void choosePort(int number, const std::string& identity);
    /// Of the device behind the port that is shown; empty where only the number is known.
    const std::string& portIdentity() const { return portIdentity_; }

    /// The checked data points, as places from 1 in list order.
    const std::set<int>& dataPoints() const { return dataPoints_; }
    void checkDataPoint(int place, bool checked);

    /// The unit behind the alarm fields, with its degree sign.
    std::string temperatureUnit() const;
    /// Day mode takes its own colours: nothing to choose.
    bool coloursChoosable() const { return value("optMonitorMode") == "0"; }

    /// Stores and acts in a fixed order. Answers the controls whose entries were refused, in that order: the
    /// user has been told, their stored values stay, and everything else has been applied.
    std::vector<std::string> apply();

    /// Searches the unit; the port found is stored and shown. 0 and a box without one.
    int detectPort(MainCommands& commands);

 private:
    void loadRow(const OptionRow& row);
    void loadPort();
    std::string shownNumber(const OptionRow& row, double number) const;
    std::string shownTemperature(double celsius) const;
    std::string stored(const OptionRow& row) const;
    void store(std::string_view key, const std::string& text);
    void convertAlarms();
    void applyPort();
    void applyLog();
    void applyTrace();
    void applySettings();
    void applySetting(const OptionRow& row);
    bool taken(std::string_view control, const EntryOutcome& outcome);
    void applyAlarms();
    EntryOutcome checkAlarm(const std::string& text) const;
    void applyTableColours();
    void applyDataPoints();
    void applyDashboard();

    Session& session_;
    std::map<std::string, std::string, std::less<>> values_;
    std::map<std::string, std::string, std::less<>> seen_;  ///< stored texts when they were last looked at
    std::string portIdentity_;
    std::set<int> dataPoints_;
    std::vector<std::string> refused_;
    std::vector<Refusal> refusals_;
};

}  // namespace zentaq
