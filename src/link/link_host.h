// What the link needs of the program around it.
#pragma once

#include <string>
#include <string_view>

#include "platform/dialogs.h"
#include "unit/unit.h"

namespace zentaq {

class LinkHost {
 public:
    virtual ~LinkHost() = default;

    /// Units(slot); slot 0 answers for slots without an object.
    virtual Unit& unit(int slot) = 0;
    /// Kind of the calibration in hand, 0 for none.
    virtual int currentUnit() const = 0;
    /// The firmware number of the calibration in hand: release * 1000 + build.
    virtual float fileFirmwareCode() const = 0;

    virtual void sysLog(std::string_view text) = 0;
    virtual void commLog(std::string_view text) = 0;
    virtual void addToLastLine(std::string_view text) = 0;
    virtual void displayMessage(int code) = 0;
    virtual void show(const Box& box) = 0;

    /// The unit and the file agree (true), or the link is lost (false).
    virtual void initializeOnFly(bool on) = 0;
    /// Called on each idle tick; while busy the table grid is disabled.
    virtual void onFlyLock(bool busy) = 0;
    /// A unit of this kind is on the link: the dashboard's face and the file filter follow it, and a
    /// calibration in hand of the other slot of its class is in this slot from now on.
    virtual void unitKindFound(int slot) = 0;
    /// Check-engine words have been stored in the unit, or (cleared) the unit has cleared them.
    virtual void codesReceived() = 0;
    virtual void codesCleared() = 0;
    /// A frame has been decoded into the live values.
    virtual void frameDecoded() = 0;

    virtual std::string applicationFolder() const = 0;
    virtual int expectedRelease(int slot) const = 0;  ///< FW_ReleaseTable
    virtual int expectedBuild(int slot) const = 0;    ///< FW_BuildTable
};

}  // namespace zentaq
