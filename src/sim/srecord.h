// Motorola S-records as a unit receives them: found in a stream by their own count field, then checked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zentaq::sim {

struct SRecord {
    char type = '1';  ///< '1' data, '9' end
    int address = 0;
    std::vector<std::uint8_t> data;
};

/// Reads one record, "S1..." or "S9...". Nothing if a digit, the count or the checksum is wrong.
std::optional<SRecord> parseSRecord(const std::string& text);

/// Gathers the characters of one record. A record ends where its count says, as no line end is needed.
class SRecordCollector {
 public:
    enum class State { Empty, Partial, Complete, Broken };

    /// Broken: what has come can be no record. Carriage returns and line feeds are passed over.
    State push(std::uint8_t byte);
    State state() const { return state_; }
    const std::string& text() const { return text_; }
    void clear();

 private:
    State judge() const;

    std::string text_;
    State state_ = State::Empty;
};

}  // namespace zentaq::sim
