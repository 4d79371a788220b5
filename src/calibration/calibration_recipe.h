// A calibration told by a short text: the engine, the sensor, a few figures, and what differs from the
// default values. The sample calibrations are made of such texts.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "config/new_calibration.h"
#include "config/quiet_calibration.h"

namespace zentaq {

/// A recipe is wrong. The text begins with "file:line: ".
class RecipeError : public FileError {
 public:
    RecipeError(std::string_view file, int line, std::string_view what);
};

/// Values for a member from one element on.
struct RecipeValues {
    int line = 0;
    std::string member;
    int firstElement = 0;
    std::vector<std::string> values;
};

struct CalibrationRecipe {
    std::string file;    ///< for messages
    std::string model;   ///< "ORB A"
    std::string engine;  ///< name in the engine list
    std::string sensor;  ///< name in the sensor list
    EngineFigures figures;
    std::string notes;
    std::vector<RecipeValues> values;

    /// The form is told in data/samples/README.md. Throws RecipeError on the first line that is wrong.
    static CalibrationRecipe parse(std::string_view text, const std::string& file);
};

/// Makes the calibration. Throws RecipeError when the database lacks the engine or the sensor, or a member
/// refuses a value. `database` must outlive the result.
std::unique_ptr<QuietCalibration> makeCalibration(const CalibrationRecipe& recipe, const Database& database);

}  // namespace zentaq
