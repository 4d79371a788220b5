// What the link needs of the program around it, and to whom it tells what happens.
#pragma once

#include "link/link_news.h"
#include "unit/unit.h"

namespace zentaq {

class LinkHost {
 public:
    virtual ~LinkHost() = default;

    /// Units(slot); slot 0 answers for slots without an object.
    virtual Unit& unit(int slot) = 0;
    /// Slot of the calibration in hand, 0 for none.
    virtual int slotInHand() const = 0;
    /// The firmware code of the calibration in hand, as its file has it.
    virtual float fileFirmwareCode() const = 0;
    /// FW_ReleaseTable and FW_BuildTable.
    virtual FirmwareVersion expectedFirmware(int slot) const = 0;

    virtual void heard(const LinkNews& news) = 0;
    /// How far a transfer is: lines sent or records read, of how many.
    virtual void transferStep(int done, int total) = 0;
    /// Each transfer that has begun ends with one.
    virtual void transferEnded(const TransferEnd& end) = 0;
};

}  // namespace zentaq
