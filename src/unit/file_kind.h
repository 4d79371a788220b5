// Which unit kind a file on the disk is for: by its first number, or by its exact length.
// The main window and the tools ask here, so that they take the same files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "unit/unit_kind.h"

namespace zentaq {

/// What the head of a calibration file tells.
struct CalibrationFileKind {
    int slot = 0;              ///< kind of the unit; 0: no calibration file
    bool byLength = false;     ///< the first number names no kind, the length does
    float programVersion = 0;  ///< of the program that wrote it; of no meaning when known by its length
};

/// Throws FileError when the file cannot be read or ends inside its header of 12 bytes.
CalibrationFileKind kindOfCalibrationFile(const std::string& path);

/// The same of a file's first bytes, all of one that is no longer than 16384.
CalibrationFileKind kindOfCalibrationStart(std::string_view start, const std::string& path);

/// The kind of an older generation's file (".BIN") of so many bytes; 0 for none.
int kindOfOldFile(std::uintmax_t length);

/// What this program writes into files: its version behind the first number, 10.2 of "4.10.2".
float programVersion();

/// How many cells a file of so many bytes, its header among them, lacks at its end because it was cut. 0 for
/// a whole one, and for one as short as an older program wrote them.
int cellsCutOff(const UnitKind& kind, std::uintmax_t length);

/// "The file ends early: 1081 of its 2828 cells are missing and were taken as 0."
std::string cutOffText(const UnitKind& kind, int cells);

/// The extension of the older generation's files, ".BIN".
bool isOldFileName(std::string_view path);

/// The name under which a calibration of the kind is stored when a user has typed `path`: the kind's
/// extension is added unless the name has the extension of a calibration, so "Street 1.2" keeps its dot.
/// ".BIN" names files of the older generation and is replaced.
std::string calibrationFileName(std::string_view path, const UnitKind& kind);

}  // namespace zentaq
