// What a Unit object needs of the program around it, and to whom it tells what happens: the log, the link,
// reference data. The program implements it once; tests implement a recording one.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "unit/linked_state.h"
#include "unit/unit_news.h"

namespace zentaq {

/// The row of an engine that a Unit object reads. A column that is empty in the row has its default here.
struct EngineFacts {
    float toothMin = 0;
    float toothMax = 0;
    float p2EgTp = 0;
    bool editDfub = false;
    int defaultSplit = 0;
    float engType = 0;
    float injMode = 0;
    float phdSeq = 0;
    float injReset = 0;
    std::array<float, 8> injTbl{};
};

/// The row of a MAP sensor: volts per user unit, volts at user zero, units code (0 to 6).
struct SensorFacts {
    float scale = 0;
    float offset = 0;
    int unitsCode = 0;
};

/// Which calibration is in hand, shared by all Unit objects.
struct FileHeader {
    float currentUnit = 0;  ///< unit kind of the calibration in hand, 0 for none
    std::string fileState;  ///< "", "NEW" or "OLD"
};

class UnitHost {
 public:
    virtual ~UnitHost() = default;

    virtual void sysLog(std::string_view text) = 0;
    virtual void addToLastLine(std::string_view text) = 0;
    virtual void heard(const UnitNews& news) = 0;

    /// Queues one on-the-fly record with the link. Throws on failure.
    virtual void sendOnFly(std::string_view record) = 0;

    // Nothing where the reference data has no such row. Throws Failure, with the reason, where it cannot be
    // asked: a calibration is not made or moved by guesses.
    virtual std::optional<EngineFacts> engine(int kind, int optionType) = 0;
    virtual std::optional<SensorFacts> mapSensor(int id) = 0;

    /// Setting TemperatureToggle: anything but "0" is Fahrenheit.
    virtual bool fahrenheit() const = 0;
    /// The unit on the link is of the kind of this slot and has told its own firmware. It says nothing about
    /// the objects of other kinds.
    virtual bool firmwareKnownFromLink(int slot) const = 0;
    /// What the unit of a slot has told on the link.
    virtual LinkedState& linkedState(int slot) = 0;
    virtual FileHeader& header() = 0;
    /// Folder of the programs; "/ORB.s19" is written there.
    virtual std::string applicationFolder() const = 0;
    virtual void yield() = 0;
    /// The calibration changed as a whole: forms show it anew.
    virtual void formsChanged() = 0;
};

}  // namespace zentaq
