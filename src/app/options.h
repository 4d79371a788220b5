// The options window without a window: one table tells every option, and one object holds what its controls
// show, writes what is written on the click itself and applies the rest in its fixed order.
#pragma once

#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/session.h"
#include "app/unit_commands.h"
#include "base/field.h"
#include "link/poller.h"

namespace zentaq {

/// The pages of SSTab1, in their order.
enum class OptionPage { Communications, Start, Display, Tables, Dashboard, DataPoints, Print };

/// When a value is stored.
enum class Stored {
    OnApply,
    AtOnce,         ///< with the click
    AtOnceAndApply  ///< with the click, and again by Apply
};

struct OptionPageRow {
    OptionPage page;
    std::string_view title;  ///< with '&' before its access key, "&&" for an ampersand
    std::string_view help;   ///< key of its fast help
};

/// Rows of one help key that follow each other stand in a group.
struct OptionGroupRow {
    std::string_view help;
    std::string_view title;
};

class Options;

/// What an option does beyond being stored.
using OptionAct = void (*)(Options& options, Session& session);

/// All that there is to know of an option: its setting, its control, and what it does.
struct OptionRow {
    static constexpr int lastTurn = 100;

    /// Of what an Apply does, each thing has its turn.
    struct Applied {
        int turn = lastTurn;
        OptionAct act = nullptr;
    };

    std::string_view control;
    int index = -1;            ///< of a button in its group, which shares the control's name
    std::string_view caption;  ///< with '&' before its access key
    OptionPage page = OptionPage::Communications;
    FieldKind kind = FieldKind::Check;
    std::string_view key;     ///< in section "System"; empty: no setting
    std::string_view design;  ///< shown when the store holds nothing or an odd text; a slider shows its end
    Stored stored = Stored::OnApply;
    int turn = lastTurn;      ///< of its storing in an Apply; rows of one turn in the table's order
    std::string_view help;    ///< key of its fast help
    std::string_view tip;     ///< a sentence for the tuner; also searched
    std::string_view words;   ///< further words that a tuner may search by
    std::string_view beside;  ///< name of what stands beside the control
    int least = 0;            ///< of a slider
    int most = 0;
    std::string_view unit;
    OptionAct clicked = nullptr;  ///< behind a value that was stored with the click
    Applied applied{};            ///< behind the storing, in its own turn
};

/// Updates a second that the slider can yield; it cannot yield 0. The fastest is also what an empty setting
/// gives.
inline constexpr int slowestUpdateRate = 1;
inline constexpr int fastestUpdateRate = 1000 / defaultPollIntervalMs;

std::span<const OptionPageRow> optionPages();
std::span<const OptionGroupRow> optionGroups();
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

    /// The control of a row as it is to be shown now.
    Field field(const OptionRow& row) const;
    /// The unit behind the alarm fields, with its degree sign.
    std::string temperatureUnit() const;
    /// Day mode takes its own colours: nothing to choose.
    bool coloursChoosable() const { return value("optMonitorMode") == "0"; }

    /// The fields keep what the user has typed, in the new unit. A text that is no number stays.
    void convertAlarms();
    /// The colours as they are stored.
    void loadColours();

    /// Stores and acts in a fixed order. Answers the controls whose entries were refused, in that order: the
    /// user has been told, their stored values stay, and everything else has been applied.
    std::vector<std::string> apply();

    /// Searches the unit; the port found is stored and shown. 0 and a box without one.
    int detectPort(UnitCommands& commands);

 private:
    void loadRow(const OptionRow& row);
    void loadAll(FieldKind kind);
    void loadPort();
    std::string shownNumber(const OptionRow& row, double number) const;
    std::string shownTemperature(double celsius) const;
    std::string stored(const OptionRow& row) const;
    void store(std::string_view key, const std::string& text);
    void storeRow(const OptionRow& row);
    void storePort();
    void storeDataPoints();
    void storeAlarm(const OptionRow& row);
    void storeSetting(const OptionRow& row);
    bool taken(std::string_view control, const EntryOutcome& outcome);
    EntryOutcome checkAlarm(const std::string& text) const;

    Session& session_;
    std::map<std::string, std::string, std::less<>> values_;
    std::map<std::string, std::string, std::less<>> seen_;  ///< stored texts when they were last looked at
    std::string portIdentity_;
    std::set<int> dataPoints_;
    std::vector<std::string> refused_;
    std::vector<Refusal> refusals_;
};

}  // namespace zentaq
