// The per-user settings store: one file of the user's configuration folder, texts by section and key.
// A file that is damaged or cannot be written stops nothing: values last for the run and the trouble is told.
#pragma once

#include <QFile>
#include <QSettings>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/settings_store.h"

namespace zentaq {

class QtSettings : public SettingsStore {
 public:
    /// The store of this program and user.
    QtSettings();
    /// A store in a file of its own.
    explicit QtSettings(const std::string& path);
    ~QtSettings() override;

    std::string get(const std::string& section, const std::string& key,
                    const std::string& fallback = {}) const override;
    /// On the disk when it returns, unless the file cannot be written or another program holds its lock for
    /// longer than a moment: then it is told, and written as soon as that is over.
    void set(const std::string& section, const std::string& key, const std::string& value) override;

    std::string path() const { return path_; }

    /// Called once for each trouble with a sentence for the log; at once for what is known already.
    void onTrouble(std::function<void(const std::string&)> report);

 private:
    /// Whether a file, or nothing, stands where the store is to be. A pipe would hold the program up for
    /// good.
    bool isFile();
    void open();
    void leaveFile();
    bool opens(QFile::OpenMode mode) const;
    void trouble(const std::string& what);
    void tendWaiting();
    bool lockIsFree();
    void writeWaiting();

    std::string path_;
    std::unique_ptr<QSettings> settings_;  ///< none where something else than a file stands
    std::map<std::pair<std::string, std::string>, std::string> ofThisRun_;  ///< what it then holds
    std::map<std::pair<std::string, std::string>, std::string> waiting_;  ///< by section and key
    bool locked_ = false;  ///< as the last look at the lock has found
    QTimer again_;
    std::function<void(const std::string&)> report_;
    std::vector<std::string> untold_;
    bool writeFailed_ = false;
};

}  // namespace zentaq
