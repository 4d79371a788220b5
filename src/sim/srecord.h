// Motorola S-records as a unit receives them: found in a stream by their own count field, then checked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq::sim {

/// What a calibration comes in: data and end with addresses of two bytes.
inline constexpr std::string_view calibrationRecords = "19";
/// What firmware comes in: header, data and end with addresses of two, three or four bytes, and the number of
/// the data records in the place of an address.
inline constexpr std::string_view firmwareRecords = "012356789";

struct SRecord {
    char type = '1';  ///< '0' header, '1' to '3' data, '5' and '6' their number, '7' to '9' end
    std::int64_t address = 0;
    std::vector<std::uint8_t> data;
};

/// Reads one record of one of the `types`. Nothing if a digit, the count or the checksum is wrong.
std::optional<SRecord> parseSRecord(const std::string& text, std::string_view types = calibrationRecords);

/// The record as text, without a line end. At most 250 bytes of data.
std::string sRecordText(const SRecord& record);

/// Gathers the characters of one record. A record ends where its count says, as no line end is needed.
class SRecordCollector {
 public:
    enum class State { Empty, Partial, Complete, Broken };

    /// `types` are the digits that may follow the S; the text they stand in must outlive the collector.
    explicit SRecordCollector(std::string_view types = calibrationRecords) : types_(types) {}

    /// Broken: what has come can be no record. Carriage returns and line feeds are passed over.
    State push(std::uint8_t byte);
    State state() const { return state_; }
    const std::string& text() const { return text_; }
    void clear();

 private:
    State judge() const;

    std::string_view types_;
    std::string text_;
    State state_ = State::Empty;
};

}  // namespace zentaq::sim
