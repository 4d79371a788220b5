#include "open_table.h"

#include <algorithm>

#include "base/number_text.h"

namespace zentaq::ctl {

namespace {

std::string whatOf(const Refusal& refusal) {
    return refusal.where + ": " +
           (refusal.entry.empty() ? refusal.line() : refusal.entry + " is outside " + refusal.text);
}

}  // namespace

std::string cellsOf(const std::vector<Refusal>& refused) {
    constexpr std::size_t mostTold = 10;
    std::string line;
    for (std::size_t i = 0; i < std::min(refused.size(), mostTold); ++i)
        line += (i == 0 ? "" : "; ") + whatOf(refused[i]);
    if (refused.size() > mostTold)
        line += "; and " + numberText(static_cast<int>(refused.size() - mostTold)) + " more";
    return line;
}

}  // namespace zentaq::ctl
