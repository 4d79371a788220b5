#include "link/firmware_memory.h"

namespace zentaq {

void FirmwareMemory::begin(int linkedSlot, int meantSlot, bool lineThere) {
    // A second run for the same unit knows no less of it than the one that broke off.
    if (linkedSlot != 0) {
        slot_ = linkedSlot;
    } else if (meantSlot != 0 || !lost_) {
        slot_ = meantSlot;
    }
    lineBroke_ = !lineThere;
}

// A unit erases its firmware when it takes the start of programming. One that refused the start still has
// what it had; of one that did not answer nobody knows, and the user is told the worse of the two.
FirmwareLeft FirmwareMemory::failed(Start start, int linesSent, bool portOpen) {
    if (linesSent > 0 || start == Start::Taken) {
        lost_ = true;
        brokeAfterLines_ = brokeAfterLines_ || linesSent > 0;
        silentStarts_ = 0;
        return FirmwareLeft::None;
    }
    if (start == Start::Refused) {
        silentStarts_ = 0;
        return FirmwareLeft::Former;
    }
    if (start == Start::NotAnswered) return silentStart(portOpen);
    return lost_ ? FirmwareLeft::None : FirmwareLeft::Former;
}

// That a unit will never answer again cannot be known after one silent try, nor where the line was not there
// to reach it.
FirmwareLeft FirmwareMemory::silentStart(bool portOpen) {
    constexpr int triesUntilLost = 3;
    if (!brokeAfterLines_ || !portOpen || lineBroke_) return FirmwareLeft::None;
    return ++silentStarts_ >= triesUntilLost ? FirmwareLeft::Lost : FirmwareLeft::None;
}

void FirmwareMemory::mended() {
    lost_ = false;
    brokeAfterLines_ = false;
    silentStarts_ = 0;
}

}  // namespace zentaq
