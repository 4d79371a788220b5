// Any bytes as a condition over the channels of a log: it has a value for every row, or tells where it is wrong.
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzzing.h"
#include "logs/log_expression.h"

namespace zentaq::fuzzing {
namespace {

void readExpression(std::string_view text) {
    static const std::vector<std::string> columns{"RPM", "MAP", "AAFR", "DAFR", "TPS"};
    constexpr std::array<float, 5> row{3500.0F, 0.0F, -14.7F, 14.7F, 5.0F};
    const auto at = [&](int column) { return row[static_cast<std::size_t>(column)]; };
    try {
        const LogExpression expression(text, columns);
        require(text.size() <= LogExpression::longest, "what is too long is refused");
        const double value = expression.value(at);
        require(expression.holds(at) == (!std::isnan(value) && value != 0), "it holds where it is not 0");
    } catch (const ExpressionError& error) {
        require(error.place <= text.size(), "the place is in the text");
        require(!std::string_view(error.what()).empty(), "a refusal has a reason");
    }
}

}  // namespace
}  // namespace zentaq::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zentaq::fuzzing::readExpression({reinterpret_cast<const char*>(data), size});
    return 0;
}
