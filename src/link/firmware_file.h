// A firmware file as it is looked at before one byte of it goes to a unit: nothing but whole S-records, and
// an end record behind them. Half a firmware would leave a unit with none.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zentaq {

/// What a firmware file holds.
struct FirmwareFile {
    std::string text;   ///< what goes out: the records alone, each with CR LF
    int lines = 0;      ///< records, the end record included; each goes out as one line
    int dataBytes = 0;  ///< bytes that the data records bring to the unit
};

/// Looks at the text of a firmware file. Lines end in CR LF or LF; the last one may lack its end. Empty lines
/// and blanks at the end of a line are passed over.
/// Throws Failure with the number of the first bad line, counted from 1, and what is wrong with it. Refused
/// are, too: an empty text, one without data, one that does not end in its only end record (S7, S8 or S9), a
/// header (S0) behind another record, a number of data records (S5 or S6) that is not theirs or does not
/// stand between them and the end, and addresses that come twice or do not ascend.
FirmwareFile checkFirmware(std::string_view text);

/// The whole text of a firmware file, not looked at. What was checked is then what is sent, whatever becomes
/// of the file meanwhile. Throws FileError where it cannot be read, is no regular file or is too large.
std::string readFirmwareFile(const std::string& path);

/// Slot of the first unit kind whose firmware files have such a name; 0 where none does.
int slotOfFirmware(std::string_view fileName);

/// What a user is told before a firmware upgrade; lines are separated by '\n'.
std::string firmwareWarning();

}  // namespace zentaq
