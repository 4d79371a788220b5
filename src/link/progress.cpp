#include "link/progress.h"

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

void Progress::Init(double maximum, double minimum, std::string_view message) {
    state_ = {true, minimum, std::max(minimum, maximum), minimum, "0%", std::string(message)};
    ++changes_;
}

void Progress::Active(double value, double maximum) {
    // A bar cannot stand outside its bounds; the percentage may tell more than 100.
    if (!std::isnan(value)) state_.value = std::clamp(value, state_.minimum, state_.maximum);
    // Progress is told beside the work, so a share that cannot be told must not end the work.
    skipFailing([&] { state_.percentage = numberText(int{toInt16(value / maximum * 100)}) + "%"; });
    ++changes_;
}

void Progress::Clear() {
    state_.value = state_.minimum;
    state_.percentage.clear();
    ++changes_;
}

void Progress::Remove() {
    Clear();
    state_.visible = false;
    ++changes_;
}

}  // namespace zentaq
