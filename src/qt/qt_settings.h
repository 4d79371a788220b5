// The per-user settings store: one file of the user's configuration folder, texts by section and key.
#pragma once

#include <QSettings>

#include "platform/settings_store.h"

namespace zentaq {

class QtSettings : public SettingsStore {
 public:
    /// The store of this program and user.
    QtSettings();
    /// A store in a file of its own.
    explicit QtSettings(const std::string& path);

    std::string get(const std::string& section, const std::string& key,
                    const std::string& fallback = {}) const override;
    void set(const std::string& section, const std::string& key, const std::string& value) override;

    std::string path() const { return settings_.fileName().toStdString(); }

 private:
    QSettings settings_;
};

}  // namespace zentaq
