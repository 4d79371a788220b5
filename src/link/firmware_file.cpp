#include "link/firmware_file.h"

#include <filesystem>
#include <optional>

#include "base/errors.h"
#include "base/file_reader.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

/// Characters of type and count: "S1" and two digits.
constexpr std::size_t headLength = 4;

enum class RecordUse { Other, Data, End };

struct RecordType {
    char digit;
    int addressBytes;
    RecordUse use;
};

/// Motorola's S-records: S0 is a header, S5 and S6 count records, S4 is reserved.
constexpr RecordType recordTypes[] = {
    {'0', 2, RecordUse::Other}, {'1', 2, RecordUse::Data},  {'2', 3, RecordUse::Data},
    {'3', 4, RecordUse::Data},  {'5', 2, RecordUse::Other}, {'6', 3, RecordUse::Other},
    {'7', 4, RecordUse::End},   {'8', 3, RecordUse::End},   {'9', 2, RecordUse::End},
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
    RecordUse use = RecordUse::Other;
    int dataBytes = 0;
};

/// One line without its end. Throws Failure with what is wrong.
Record readRecord(std::string_view line) {
    if (line.empty()) throw Failure("the line is empty");
    const RecordType* type = typeOf(line);
    if (type == nullptr) throw Failure("this is no S-record");
    const auto count = byteAt(line, 2);
    if (!count) throw Failure("the length is no number");
    if (line.size() != headLength + 2 * std::size_t{*count}) throw Failure("the record has a wrong length");
    // Address and checksum are counted as well.
    const int dataBytes = static_cast<int>(*count) - type->addressBytes - 1;
    if (dataBytes < 0) throw Failure("the record is too short for its address");
    unsigned sum = *count;
    for (std::size_t at = headLength; at < line.size(); at += 2) {
        const auto byte = byteAt(line, at);
        if (!byte) throw Failure("the record holds something else than the digits 0 to 9 and A to F");
        sum += *byte;
    }
    // The checksum is the complement of the sum of all before it, so everything together gives 255.
    if ((sum & 0xFFU) != 0xFFU) throw Failure("the checksum is wrong");
    return {type->use, dataBytes};
}

/// Takes the first line off a text, and the line end off the line.
std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

}  // namespace

FirmwareFile checkFirmware(std::string_view text) {
    FirmwareFile file;
    bool ended = false;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        ++file.lines;
        try {
            if (ended) throw Failure("there is something behind the end record");
            const Record record = readRecord(line);
            ended = record.use == RecordUse::End;
            if (record.use == RecordUse::Data) file.dataBytes += record.dataBytes;
        } catch (const Failure& failure) {
            throw Failure("Line " + std::to_string(file.lines) + ": " + failure.what() + ".");
        }
    }
    if (file.lines == 0) throw Failure("The file is empty.");
    if (!ended) {
        throw Failure("The end record is missing behind line " + std::to_string(file.lines) +
                      ": the file is not whole.");
    }
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
    constexpr int lastSlot = 8;
    for (int slot = 1; slot <= lastSlot; ++slot) {
        const UnitKind* kind = unitKindOfSlot(slot);
        if (kind == nullptr || kind->firmwarePrefix.empty()) continue;
        if (fileName.starts_with(kind->firmwarePrefix)) return slot;
    }
    return 0;
}

std::string firmwareWarning() {
    // The odd spelling and the tabs are the system's own.
    return "You are about to upgrade the firmware on your Norvalia product.\n"
           "Ensure that your laptop is connected to A/C power, before proceeding.\n"
           "Before going on, consult the software user's guide appendix on firmware\n"
           "upgrades to ensure that the unit is ready to recieve a new firmware.\n"
           "INFO: Select the latest firmware file correct to the type of unit being upgraded.\n"
           "ORB A\tZQAxxxxxxx\n"
           "ORB L\tZQLxxxxxxx\n"
           "ORB C\tZQCxxxxxxx\n"
           "ORB D\tZQDxxxxxxx\n"
           "PZK-2\tZPKxxxxxxx";
}

}  // namespace zentaq
