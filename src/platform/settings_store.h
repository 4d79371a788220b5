// Per-user preferences: texts by section and key. A key never written reads as the default passed.
#pragma once

#include <string>

namespace zentaq {

class SettingsStore {
 public:
    virtual ~SettingsStore() = default;
    virtual std::string get(const std::string& section, const std::string& key,
                            const std::string& fallback = {}) const = 0;
    virtual void set(const std::string& section, const std::string& key, const std::string& value) = 0;
};

}  // namespace zentaq
