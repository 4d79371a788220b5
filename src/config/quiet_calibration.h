// A calibration in a program without windows: a Unit object with its quiet surroundings,
// empty or read from a file.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "config/database_host.h"
#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

class QuietCalibration {
 public:
    /// An empty calibration. `database` may be nullptr and must outlive the object.
    explicit QuietCalibration(const UnitKind& kind, DatabaseSource database = {})
        : host(std::move(database)), unit(kind, host) {}
    QuietCalibration(const QuietCalibration&) = delete;
    QuietCalibration& operator=(const QuietCalibration&) = delete;

    /// Reads a calibration file; the first number in it names the unit kind, or the exact length of a file
    /// from before it did. The calibration keeps the name that it carries. Throws FileError when the file
    /// cannot be read or is no calibration of a known kind.
    static std::unique_ptr<QuietCalibration> open(const std::string& path, DatabaseSource database = {});

    /// Reads a file of the older generation (".BIN"), whose length tells the unit kind. It carries no name;
    /// the one of the file it is saved to takes its place. Throws FileError when the file cannot be read or
    /// no kind has files of its length.
    static std::unique_ptr<QuietCalibration> importOld(const std::string& path, DatabaseSource database = {});

    DatabaseHost host;
    Unit unit;
};

}  // namespace zentaq
