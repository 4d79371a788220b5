#include "link/firmware_file.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "unit/kinds_in_lists.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

/// Characters of type and count: "S1" and two digits.
constexpr std::size_t headLength = 4;

enum class RecordUse { Header, Data, Count, End };

struct RecordType {
    char digit;
    int addressBytes;
    RecordUse use;
};

/// Motorola's S-records: S0 is a header, S5 and S6 tell the number of data records in the place of an
/// address, S4 is reserved.
constexpr RecordType recordTypes[] = {
    {'0', 2, RecordUse::Header}, {'1', 2, RecordUse::Data},  {'2', 3, RecordUse::Data},
    {'3', 4, RecordUse::Data},   {'5', 2, RecordUse::Count}, {'6', 3, RecordUse::Count},
    {'7', 4, RecordUse::End},    {'8', 3, RecordUse::End},   {'9', 2, RecordUse::End},
};

const RecordType* typeOf(std::string_view line) {
    if (line.size() < headLength || line[0] != 'S') return nullptr;
    for (const RecordType& type : recordTypes) {
        if (type.digit == line[1]) return &type;
    }
    return nullptr;
}

/// Capital letters only, as in every record that units are known to take: the file goes out as it is.
std::optional<unsigned> digitOf(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10U;
    return std::nullopt;
}

/// The two digits at a place inside the line.
std::optional<unsigned> byteAt(std::string_view line, std::size_t at) {
    const auto high = digitOf(line[at]), low = digitOf(line[at + 1]);
    if (!high || !low) return std::nullopt;
    return *high * 16U + *low;
}

struct Record {
    RecordUse use = RecordUse::Header;
    std::int64_t address = 0;
    int addressBytes = 0;
    int dataBytes = 0;
};

/// One line without its end. Throws Failure with what is wrong.
Record readRecord(std::string_view line) {
    const RecordType* type = typeOf(line);
    if (type == nullptr) throw Failure("this is no S-record");
    const auto count = byteAt(line, 2);
    if (!count) throw Failure("the length is no number");
    if (line.size() != headLength + 2 * std::size_t{*count}) throw Failure("the record has a wrong length");
    // Address and checksum are counted as well.
    const int dataBytes = static_cast<int>(*count) - type->addressBytes - 1;
    if (dataBytes < 0) throw Failure("the record is too short for its address");
    const std::size_t behindAddress = headLength + 2 * static_cast<std::size_t>(type->addressBytes);
    unsigned sum = *count;
    std::int64_t address = 0;
    for (std::size_t at = headLength; at < line.size(); at += 2) {
        const auto byte = byteAt(line, at);
        if (!byte) throw Failure("the record holds something else than the digits 0 to 9 and A to F");
        sum += *byte;
        if (at < behindAddress) address = address * 256 + *byte;
    }
    // The checksum is the complement of the sum of all before it, so everything together gives 255.
    if ((sum & 0xFFU) != 0xFFU) throw Failure("the checksum is wrong");
    return {type->use, address, type->addressBytes, dataBytes};
}

std::string hexAddress(std::int64_t address) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (; address > 0 || text.size() < 4; address /= 16)
        text.insert(text.begin(), digits[static_cast<std::size_t>(address % 16)]);
    return text;
}

/// What the records of a file say about each other: a line that got lost or came twice on the file's own way
/// here has a right checksum all the same.
class Sequence {
 public:
    /// Throws Failure with what is wrong.
    void take(const Record& record) {
        if (ended_) throw Failure("there is something behind the end record");
        if (record.use == RecordUse::Header && taken_) throw Failure("a header stands behind other records");
        if (counted_ && record.use != RecordUse::End)
            throw Failure("there is something between the number of data records and the end record");
        taken_ = true;
        if (record.use == RecordUse::Data) takeData(record);
        if (record.use == RecordUse::Count) takeCount(record);
        ended_ = record.use == RecordUse::End;
    }
    bool ended() const { return ended_; }
    int dataBytes() const { return dataBytes_; }

 private:
    struct Range {
        std::int64_t first, behind;
    };

    void takeData(const Record& record) {
        ++dataRecords_;
        if (record.dataBytes == 0) return;
        dataBytes_ += record.dataBytes;
        const std::int64_t behind = record.address + record.dataBytes;
        const std::int64_t end = std::int64_t{1} << 8 * record.addressBytes;
        if (behind > end) {
            throw Failure("the " + std::to_string(record.dataBytes) + " bytes at the address " +
                          hexAddress(record.address) + " run past the last one that the record can tell, " +
                          hexAddress(end - 1));
        }
        if (!ranges_.empty() && record.address < ranges_.back().behind) refuse({record.address, behind});
        if (ranges_.empty() || ranges_.back().behind != record.address) {
            ranges_.push_back({record.address, behind});
        } else {
            ranges_.back().behind = behind;
        }
    }
    void refuse(Range wanted) const {
        const std::string address = "the address " + hexAddress(wanted.first);
        for (const Range& range : ranges_) {
            if (wanted.first < range.behind && range.first < wanted.behind)
                throw Failure(address + " comes a second time");
        }
        throw Failure(address + " stands behind higher ones");
    }
    void takeCount(const Record& record) {
        if (record.dataBytes != 0) throw Failure("the number of data records has data of its own");
        if (record.address != dataRecords_) {
            throw Failure("the file says that it has " + std::to_string(record.address) +
                          " data records, and there are " + std::to_string(dataRecords_));
        }
        counted_ = true;
    }

    bool taken_ = false;
    bool counted_ = false;
    bool ended_ = false;
    int dataBytes_ = 0;
    std::int64_t dataRecords_ = 0;
    std::vector<Range> ranges_;  ///< of addresses without a gap, in their order
};

/// Takes the first line off a text, and the line end and blanks in front of it off the line.
std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    while (line.ends_with(' ') || line.ends_with('\t')) line.remove_suffix(1);
    return line;
}

}  // namespace

FirmwareFile checkFirmware(std::string_view text) {
    FirmwareFile file;
    file.text.reserve(text.size());
    Sequence sequence;
    int lastRecord = 0;
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        // Nothing that a unit would be sent: an editor has left it there.
        if (line.empty()) continue;
        try {
            sequence.take(readRecord(line));
        } catch (const Failure& failure) {
            throw Failure("Line " + std::to_string(number) + ": " + failure.what() + ".");
        }
        file.text.append(line).append("\r\n");
        ++file.lines;
        lastRecord = number;
    }
    if (file.lines == 0) throw Failure("The file is empty.");
    if (!sequence.ended()) {
        throw Failure("The end record is missing behind line " + std::to_string(lastRecord) +
                      ": the file is not whole.");
    }
    file.dataBytes = sequence.dataBytes();
    if (file.dataBytes == 0) throw Failure("The file holds no data.");
    return file;
}

std::string readFirmwareFile(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    std::string text = readFile(path, limits::firmware);
    // A file that grows or shrinks while it is read is being written: none that anybody should send.
    if (error || size != text.size() || std::filesystem::file_size(path, error) != size) {
        throw FileError("Cannot read " + path + ": it is being written");
    }
    return text;
}

int slotOfFirmware(std::string_view fileName) {
    for (const UnitKind& kind : unitKinds()) {
        if (fileName.starts_with(kind.firmwarePrefix)) return kind.slot;
    }
    return 0;
}

std::string firmwareWarning() {
    // The odd spelling and the tabs are the system's own.
    std::string text =
        "You are about to upgrade the firmware on your Norvalia product.\n"
        "Ensure that your laptop is connected to A/C power, before proceeding.\n"
        "Before going on, consult the software user's guide appendix on firmware\n"
        "upgrades to ensure that the unit is ready to recieve a new firmware.\n"
        "INFO: Select the latest firmware file correct to the type of unit being upgraded.";
    for (const UnitKind* kind : kindsInLists()) {
        if (kind->models.empty()) continue;  // the second kind of a class, with the same firmware
        text.append("\n").append(kind->model).append("\t").append(kind->firmwarePrefix).append("xxxxxxx");
    }
    return text;
}

}  // namespace zentaq
