// The MAP sensor manager without its window: the list of table MAPCals, the two points of a sensor's line,
// the checks of an entry in their order, and all questions and changes. The window shows what this answers.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/session.h"

namespace zentaq {

/// The boxes of the form by their place in `txtPV`. Entries are checked in this order.
enum SensorBox { firstVolts, secondVolts, firstPressure, secondPressure, sensorBoxes };

/// One option of `optUnits`.
struct SensorUnit {
    std::string_view caption;
    int code = 0;  ///< column Units
};
/// The options in the order of the form.
std::span<const SensorUnit> sensorUnits();

/// What the user has typed and chosen.
struct SensorEntry {
    std::array<std::string, sensorBoxes> points;  ///< texts of the boxes, by SensorBox
    int unitsCode = 1;                            ///< 1 kPa, 2 PSIA, 3 PSIG, 4 mmHg, 5 inHg, 6 %Flow
};

/// volts = scale * pressure + offset.
struct SensorLine {
    double scale = 0;   ///< volts per unit of pressure
    double offset = 0;  ///< volts at pressure 0
};

/// Why an entry makes no sensor: a box for the user, and the text box that is at fault.
struct SensorFault {
    std::string title;
    std::string text;
    SensorBox box = firstVolts;
};

/// The first of the checks that an entry fails, in the order in which saving makes them.
std::optional<SensorFault> sensorFault(const SensorEntry& entry);
/// The line through the two points. Throws Failure, with the fault's text, for an entry that fails a check.
SensorLine sensorLine(const SensorEntry& entry);

/// What the picture of a line shows. Volts are 0 to 5, pressures in `unit`.
struct SensorSketch {
    struct Point {
        double volts = 0;
        double pressure = 0;
    };
    bool drawn = false;         ///< there is a line
    double lowest = 0;          ///< pressure at 0 volts
    double highest = 0;         ///< pressure at 5 volts
    std::string lowestText;     ///< "-9.1 kPa"
    std::string highestText;    ///< "278.8 kPa"
    std::vector<Point> points;  ///< the two points entered
    std::string unit;           ///< empty while there is no sensor
    std::string why;            ///< without a line: the reason
    std::string words;          ///< the picture for those who do not see it
    /// While a sensor is edited: its stored line, at 0 and 5 volts.
    std::optional<std::array<double, 2>> former;
};

enum class SensorTask { None, Edit, Create };

class SensorManager {
 public:
    explicit SensorManager(Session& session);

    /// Fills the list anew. The selection stays as long as its sensor is listed.
    void load();
    const std::vector<std::string>& sensors() const { return sensors_; }
    /// Why the list is empty or nothing can be changed: the database is missing, locked or write-protected.
    /// Empty when all works.
    std::string problem() const;

    /// Shows a sensor of the list; an empty name selects none. Not while an entry is in hand.
    void select(const std::string& name);
    const std::string& selected() const { return selected_; }
    /// "Sensor Info": "None Selected", or the range in whole numbers and the sensor's own unit.
    const std::string& lblGeneral() const { return lblGeneral_; }

    // ---- The commands. Each asks, tells and logs by itself.
    /// True: an entry has begun, and entry() is what the boxes show.
    bool edit();
    bool create();
    bool remove();  ///< true: a sensor is gone
    void cancel();  ///< ends the entry, nothing is stored

    struct Saved {
        bool done = false;             ///< the sensor is stored and selected, the entry has ended
        std::optional<SensorBox> box;  ///< takes the focus
    };
    Saved save(const SensorEntry& entry);

    SensorTask task() const { return task_; }
    /// What the boxes begin with. A sensor that is edited comes with pressures in whole numbers.
    const SensorEntry& entry() const { return entry_; }
    /// What is being entered, in words. For a sensor that is edited with its stored points where the whole
    /// numbers of the boxes are only near them. Empty while nothing is.
    std::string inHand() const;

    // ---- Why a command cannot work now; empty: it can.
    std::string whyNotEdit() const;
    std::string whyNotCreate() const;
    std::string whyNotRemove() const { return whyNotEdit(); }
    std::string whyNotSave() const;

    /// The picture of an entry in hand, and without one that of the selected sensor.
    SensorSketch sketch(const SensorEntry& entry) const;

 private:
    bool warned(std::string_view first) const;
    void begin(SensorTask task, SensorEntry entry);
    bool store(const MapSensorRow& row);
    bool attempt(const std::function<void()>& command);
    void tell(const std::string& text) const;
    std::string whyNotWrite() const;
    void showSelected();
    std::string storedPoints() const;

    Session& session_;
    std::vector<std::string> sensors_;
    std::string selected_;
    std::string lblGeneral_;
    std::string failure_;                ///< of the last reading of the list
    std::optional<MapSensorRow> shown_;  ///< the row of selected_
    SensorTask task_ = SensorTask::None;
    SensorEntry entry_;
};

/// Asks for a sensor's name until one is free: the name with " (unit)" behind it, or nothing when the user
/// gives none. Throws Failure when the database cannot be read.
std::optional<std::string> askSensorName(Session& session, const std::string& title,
                                         const std::string& prompt, std::string_view unit);

/// volts and pressure of a stored sensor, on the numbers as the user reads them. A slope of 0 gives no
/// pressure.
std::optional<double> sensorPressure(const MapSensorRow& sensor, double volts);

}  // namespace zentaq
