// Any bytes as the markers of a log: they come in the order of their times, and written back they are the same.
#include <cmath>
#include <cstdint>
#include <string>

#include "fuzzing.h"
#include "logs/log_marks.h"

namespace zentaq::fuzzing {
namespace {

void readMarkers(std::string_view text) {
    const auto marks = marksIn(text);
    double before = -HUGE_VAL;
    for (const LogMark& mark : marks) {
        require(std::isfinite(mark.seconds), "every time is a number");
        require(mark.seconds >= before, "times rise");
        before = mark.seconds;
    }
    const std::string written = marksText(marks);
    require(marksText(marksIn(written)) == written, "what was written is read back");
}

}  // namespace
}  // namespace zentaq::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zentaq::fuzzing::readMarkers({reinterpret_cast<const char*>(data), size});
    return 0;
}
