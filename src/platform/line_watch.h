// Reads along what passes over a serial port: the trace, the timing of frames and the news of adapters.
// Watchers change nothing; they are called from inside the port and must not use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zentaq {

struct PortInfo;

/// All times are monotonic microseconds of the port's clock.
class LineWatch {
 public:
    virtual ~LineWatch() = default;

    virtual void opened(const PortInfo&, std::int64_t /*nowUs*/) {}
    virtual void closed(std::int64_t /*nowUs*/) {}
    /// Bytes were handed to the line.
    virtual void written(std::string_view /*bytes*/, std::int64_t /*nowUs*/) {}
    /// One lump of bytes as the driver gave it.
    virtual void arrived(std::span<const std::uint8_t> /*bytes*/, std::int64_t /*nowUs*/) {}
    /// So many bytes are told to the port's owner as one reply.
    virtual void delivered(std::size_t /*bytes*/, std::int64_t /*nowUs*/) {}
    /// The device of the open port has vanished; the port looks for it.
    virtual void lost(const PortInfo&, std::int64_t /*nowUs*/) {}
    /// The device is back and open, perhaps under another name or number.
    virtual void returned(const PortInfo&, std::int64_t /*nowUs*/) {}
};

}  // namespace zentaq
