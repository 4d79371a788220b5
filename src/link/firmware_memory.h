// What is known of a unit's firmware after upgrades that broke off: whether it has one, and for which kind
// the last one was.
#pragma once

#include "link/link_news.h"

namespace zentaq {

class FirmwareMemory {
 public:
    /// What became of the command that starts a run.
    enum class Start { NotWritten, NotAnswered, Refused, Taken };

    /// A run begins. `linkedSlot`: the kind of the unit on the link, `meantSlot`: the one that the firmware
    /// is for; 0: not known. `lineThere`: the unit can be reached.
    void begin(int linkedSlot, int meantSlot, bool lineThere);
    /// The line was closed, opened or lost.
    void lineBroke() { lineBroke_ = true; }
    /// A run failed; what it leaves in the unit.
    FirmwareLeft failed(Start start, int linesSent, bool portOpen);
    /// A run ended well, or a unit has told its firmware.
    void mended();

    /// A firmware run broke off between its lines, and nothing has mended that since.
    bool lost() const { return lost_; }
    /// The kind of the unit that lost its firmware, as the run was for; 0: none did, or not known.
    int lostSlot() const { return lost_ ? slot_ : 0; }
    /// The kind that the last firmware was for; 0: not known.
    int slot() const { return slot_; }

 private:
    FirmwareLeft silentStart(bool portOpen);

    bool lost_ = false;
    bool brokeAfterLines_ = false;  ///< it was lost by a run of which lines had gone out
    int silentStarts_ = 0;          ///< starts since then that got no answer at all, one behind the other
    int slot_ = 0;
    bool lineBroke_ = false;  ///< the line was not there all the time since the run began
};

}  // namespace zentaq
