// Settings without a store on the disk.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/settings_store.h"

namespace zentaq {

/// Settings that live as long as the object.
class MemorySettings : public SettingsStore {
 public:
    std::string get(const std::string& section, const std::string& key,
                    const std::string& fallback = {}) const override {
        const auto found = values_.find({section, key});
        return found == values_.end() ? fallback : found->second;
    }
    void set(const std::string& section, const std::string& key, const std::string& value) override {
        values_[{section, key}] = value;
    }

 private:
    std::map<std::pair<std::string, std::string>, std::string> values_;
};

}  // namespace zentaq
