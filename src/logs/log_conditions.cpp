#include "logs/log_conditions.h"

#include <algorithm>

#include "base/text.h"

namespace zentaq {

namespace {

constexpr const char* section = "Logs";

std::string keyOfCondition(int place) {
    return "Condition" + std::to_string(place);
}

}  // namespace

std::vector<std::string> LogConditions::all() const {
    std::vector<std::string> conditions;
    for (int place = 1; place <= most; ++place) {
        const std::string condition = settings_.get(section, keyOfCondition(place));
        if (!condition.empty()) conditions.push_back(condition);
    }
    return conditions;
}

void LogConditions::used(const std::string& condition) {
    const std::string wanted(trimmed(condition));
    if (wanted.empty()) return;
    auto conditions = all();
    std::erase(conditions, wanted);
    conditions.insert(conditions.begin(), wanted);
    const auto kept = std::min<std::size_t>(conditions.size(), most);
    for (std::size_t i = 0; i < kept; ++i)
        settings_.set(section, keyOfCondition(static_cast<int>(i) + 1), conditions[i]);
}

}  // namespace zentaq
