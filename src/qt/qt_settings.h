// The per-user settings store: one file of the user's configuration folder, texts by section and key.
// A file that is damaged, cannot be read or cannot be written stops nothing: values last for the run, the
// trouble is told, and nothing is written over what could not be read.
#pragma once

#include <QLockFile>
#include <QTimer>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/ini_text.h"
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
    /// On the disk when it returns, unless the file cannot be read or written or another program holds its
    /// lock for longer than a moment: then it is told, and written as soon as that is over.
    void set(const std::string& section, const std::string& key, const std::string& value) override;

    std::string path() const { return path_; }
    /// Whether all that was set is on the disk.
    bool isStored() const { return waiting_.empty(); }

    /// Called once for each trouble with a sentence for the log; at once for what is known already.
    void onTrouble(std::function<void(const std::string&)> report);

 private:
    void start();
    /// Throws FileError; what is known of the file stays then.
    void read();
    void catchUp();
    void tryAgain();
    void tellOfFailure(const std::exception& failure);
    void storeWaiting();
    bool isThere() const;
    void wereStored();
    void storeUnderLock();
    bool takes(QLockFile& lock);
    void writeMerged();
    void keepDamaged() const;
    void trouble(const std::string& what);

    std::string path_;
    std::string text_;  ///< of the file, as it was read last
    IniText values_;    ///< the same, read
    bool isRead_ = false;
    std::map<std::pair<std::string, std::string>, std::string> waiting_;  ///< by section and key
    bool locked_ = false;  ///< as the last look at the lock has found
    bool damageTold_ = false;
    bool failureTold_ = false;
    QTimer again_;
    std::function<void(const std::string&)> report_;
    std::vector<std::string> untold_;
};

}  // namespace zentaq
