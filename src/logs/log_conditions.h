// The conditions that were used last, the newest first, in section "Logs" of the settings.
#pragma once

#include <string>
#include <vector>

#include "platform/settings_store.h"

namespace zentaq {

class LogConditions {
 public:
    static constexpr int most = 20;

    explicit LogConditions(SettingsStore& settings) : settings_(settings) {}

    std::vector<std::string> all() const;
    /// To the front; one that is there already moves.
    void used(const std::string& condition);

 private:
    SettingsStore& settings_;
};

}  // namespace zentaq
