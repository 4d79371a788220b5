// A calibration in a program without windows: a Unit object with its quiet surroundings,
// empty or read from a file.
#pragma once

#include <memory>
#include <string>

#include "config/quiet_host.h"
#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

class QuietCalibration {
 public:
    /// An empty calibration. `database` may be nullptr and must outlive the object.
    explicit QuietCalibration(const UnitKind& kind, const Database* database = nullptr)
        : host(database), unit(kind, host) {}
    QuietCalibration(const QuietCalibration&) = delete;
    QuietCalibration& operator=(const QuietCalibration&) = delete;

    /// Reads a calibration file; the first number in it names the unit kind. The calibration keeps the
    /// name that it carries. Throws FileError when the file cannot be read or is no calibration of a known
    /// kind.
    static std::unique_ptr<QuietCalibration> open(const std::string& path,
                                                  const Database* database = nullptr);

    QuietHost host;
    Unit unit;
};

}  // namespace zentaq
