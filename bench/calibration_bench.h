// What the benchmarks share: a sample calibration as the build makes it.
#pragma once

#include <memory>
#include <string>

#include "config/quiet_calibration.h"

namespace zentaq::bench {

/// The sample stands in the application folder of the same build.
inline const std::string sampleFile = ZENTAQ_APP_DIR "/samples/Turbo Four.ZQ4OA";

inline std::unique_ptr<QuietCalibration> sample() {
    return QuietCalibration::open(sampleFile);
}

}  // namespace zentaq::bench
