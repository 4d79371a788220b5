// The memory of a unit that holds its calibration: the running one and the permanent one, changes to a byte
// or two, and programming of the whole, which works on a copy until it is complete.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "sim/frame_layout.h"
#include "sim/srecord.h"

namespace zentaq::sim {

class CalibrationMemory {
 public:
    /// `size` bytes of 0 from the address `base`.
    CalibrationMemory(int base, int size);

    /// What the unit runs by.
    const Bytes& running() const { return running_; }
    /// What a power cycle leaves.
    const Bytes& permanent() const { return permanent_; }
    /// Grow with every write.
    unsigned runningRevision() const { return runningRevision_; }
    unsigned permanentRevision() const { return permanentRevision_; }
    /// Grows with every content that came in as a whole.
    unsigned wholeRevision() const { return wholeRevision_; }

    /// Replaces both by a content of the same size.
    void keepForGood(Bytes content);
    /// Writes a text, cut or padded with blanks to `width`, into both.
    void keepText(int offset, std::string_view text, int width);
    /// Takes a data record of one or two bytes into the running memory. False if it is another or lies
    /// outside.
    bool change(const SRecord& record);
    /// Keeps what is running for good.
    void store();
    /// Running memory falls back to the permanent one; programming in progress is gone.
    void cyclePower();

    void beginProgramming();
    bool programming() const { return programming_.has_value(); }
    void abandonProgramming() { programming_.reset(); }
    /// Takes a data record of the new content. False if it lies outside of the first `size` bytes.
    bool program(const SRecord& record, int size);
    /// Keeps the new content for good if all of the first `size` bytes have come. False otherwise.
    bool finishProgramming(int size);

 private:
    // On a copy, so that a transfer that fails leaves the old calibration whole.
    struct Programming {
        Bytes staging;
        std::vector<bool> covered;
    };

    bool fitsIn(int size, const SRecord& record) const;
    void write(Bytes& target, const SRecord& record) const;

    int base_;
    Bytes running_;
    Bytes permanent_;
    unsigned runningRevision_ = 0;
    unsigned permanentRevision_ = 0;
    unsigned wholeRevision_ = 0;
    std::optional<Programming> programming_;
};

/// Writes a text into bytes, cut or padded with blanks to `width`.
void placeText(Bytes& target, int at, std::string_view text, int width);

}  // namespace zentaq::sim
