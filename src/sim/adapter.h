// A USB serial adapter between the wire and a program: it hands what it receives to the program in lumps, and
// cheap ones come to grief over long writes. Reckons on a clock that the caller drives.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "sim/wire_pacing.h"

namespace zentaq::sim {

struct AdapterOptions {
    std::chrono::milliseconds burst{0};       ///< 0: every byte reaches the program at once
    std::optional<std::size_t> dropWrites;    ///< bytes of one write that get through
    std::optional<std::size_t> vanishWrites;  ///< bytes of one write that it survives
};

class Adapter {
 public:
    using Bytes = std::vector<std::uint8_t>;

    /// What a full packet holds: 64 bytes, two of which are the adapter's own.
    static constexpr std::size_t lumpBytes = 62;
    /// How long it is gone when a write was too much for it.
    static constexpr std::chrono::milliseconds vanishTime{700};

    /// Its timer runs free from `start`, whatever comes in.
    Adapter(const AdapterOptions& options, Moment start);

    /// What of one write of the program gets to the wire; nothing at all when the adapter vanishes over it.
    std::optional<Bytes> written(Bytes bytes) const;

    /// Bytes that have come off the wire at `now`.
    void receive(Moment now, const Bytes& bytes);
    /// What the program gets at `now`, joined.
    Bytes takeForProgram(Moment now);
    /// When the timer hands over what waits; nothing if nothing waits.
    std::optional<Moment> nextDue() const { return due_; }

 private:
    Moment nextFiring(Moment after) const;

    AdapterOptions options_;
    Moment start_;
    Bytes waiting_;
    std::optional<Moment> due_;
};

}  // namespace zentaq::sim
