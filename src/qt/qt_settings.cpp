#include "qt/qt_settings.h"

#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QFileInfo>
#include <QSettings>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/settings_keys.h"
#include "unit/safe_file.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

/// A program that writes its settings holds the lock for milliseconds. One that was killed leaves it behind,
/// and the window stands still while it is waited for.
constexpr int patienceMs = 700;
/// How often a file or a lock that is not as it should be is looked at.
constexpr int againMs = 5000;

QString nameOfStore() {
    return QString::fromLatin1(settings::application);
}

/// Asked of a store that nobody has, and of which nothing but its place is wanted.
std::string fileOfUser() {
    const QSettings neighbor(QSettings::IniFormat, QSettings::UserScope, nameOfStore(),
                             nameOfStore() + QStringLiteral(".none"));
    return (QFileInfo(neighbor.fileName()).path() + u'/' + nameOfStore() + QStringLiteral(".ini"))
        .toStdString();
}

bool isWriteProtected(const std::string& path) {
    return ::access(path.c_str(), W_OK) != 0 && (errno == EACCES || errno == EPERM || errno == EROFS);
}

void makeFolderOf(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    std::error_code failed;
    if (!folder.empty()) fs::create_directories(folder, failed);
    if (failed) throw FileError("Cannot write " + path + ": its folder cannot be made: " + failed.message());
}

}  // namespace

// By its path and so without a store of all users, which would make one user's missing value another's
// choice.
QtSettings::QtSettings() : QtSettings(fileOfUser()) {}

QtSettings::QtSettings(const std::string& path) : path_(path) {
    again_.setSingleShot(true);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { catchUp(); });
    start();
}

QtSettings::~QtSettings() {
    catchUp();
}

void QtSettings::start() {
    try {
        read();
        if (!isWriteProtected(path_)) return;
        failureTold_ = true;
        trouble("Settings file " + path_ + " is write-protected; changed settings last for this run.");
    } catch (const UnfitFile& failure) {
        tellOfFailure(failure);
    } catch (const std::exception& failure) {
        trouble(textOfFailure(failure) +
                ". The settings file cannot be read; the program starts as newly installed.");
        tryAgain();
    }
}

void QtSettings::read() {
    std::string text = readFileIfThere(path_, limits::settings).value_or(std::string());
    values_ = IniText(text);
    text_ = std::move(text);
    isRead_ = true;
    if (!values_.isDamaged()) damageTold_ = false;
    if (values_.isDamaged() && !std::exchange(damageTold_, true))
        trouble("Settings file " + path_ + " is damaged; what can be read of it is used.");
}

std::string QtSettings::get(const std::string& section, const std::string& key,
                            const std::string& fallback) const {
    if (const auto found = waiting_.find({section, key}); found != waiting_.end()) return found->second;
    return values_.value(section, key).value_or(fallback);
}

void QtSettings::set(const std::string& section, const std::string& key, const std::string& value) {
    waiting_[{section, key}] = value;
    catchUp();
}

void QtSettings::catchUp() {
    if (waiting_.empty() && isRead_) return;
    try {
        if (waiting_.empty()) return read();
        storeWaiting();
    } catch (const std::exception& failure) {
        if (!waiting_.empty()) tellOfFailure(failure);
    }
    if (!waiting_.empty() || !isRead_) tryAgain();
}

void QtSettings::tryAgain() {
    const bool ticks = QAbstractEventDispatcher::instance() != nullptr;
    if (ticks && !again_.isActive()) again_.start(againMs);
}

void QtSettings::tellOfFailure(const std::exception& failure) {
    if (std::exchange(failureTold_, true)) return;
    const bool unfit = dynamic_cast<const UnfitFile*>(&failure) != nullptr;
    trouble(textOfFailure(failure) +
            (unfit ? ". Changed settings last for this run; remove what stands there."
                   : ". Changed settings are kept for this run, and written as soon as that is over."));
}

void QtSettings::storeWaiting() {
    read();
    if (isThere()) return wereStored();
    storeUnderLock();
}

/// Whether the file, as it was read last, has the values that wait.
bool QtSettings::isThere() const {
    return std::ranges::all_of(waiting_, [this](const auto& entry) {
        return values_.value(entry.first.first, entry.first.second) == entry.second;
    });
}

void QtSettings::wereStored() {
    waiting_.clear();
    failureTold_ = false;
}

void QtSettings::storeUnderLock() {
    makeFolderOf(path_);
    // The lock is read by a library, which would wait for the other end of a pipe.
    checkFile(path_ + ".lock", limits::lock);
    // From the read to the rename: another program's change in between would be lost.
    QLockFile lock(QString::fromStdString(path_ + ".lock"));
    if (!takes(lock)) return;
    read();
    writeMerged();
    wereStored();
}

/// False when another program has the lock.
bool QtSettings::takes(QLockFile& lock) {
    if (lock.tryLock(locked_ ? 0 : patienceMs)) {
        locked_ = false;
        return true;
    }
    // A folder that takes no lock takes no settings either, which is told when they are written.
    if (lock.error() == QLockFile::PermissionError) return true;
    if (lock.error() != QLockFile::LockFailedError)
        throw FileError("Cannot write " + path_ + ": its folder takes no lock " + path_ + ".lock");
    if (!std::exchange(locked_, true)) {
        trouble("Settings file " + path_ + " is locked by another program; it is written when " + path_ +
                ".lock has gone.");
    }
    return false;
}

void QtSettings::writeMerged() {
    if (values_.isDamaged()) keepDamaged();
    IniText merged = values_;
    for (const auto& [name, value] : waiting_) merged.set(name.first, name.second, value);
    std::string text = merged.text();
    if (text.size() > limits::settings.bytes) {
        throw FileError("Cannot write " + path_ + ": it would have " + std::to_string(text.size()) +
                        " bytes; " + std::string(limits::settings.what) + " has at most " +
                        std::to_string(limits::settings.bytes));
    }
    writeFileSafely(path_, text);
    values_ = IniText(text);
    text_ = std::move(text);
}

/// What is written next leaves out what was no setting, and a user may still find something in it.
void QtSettings::keepDamaged() const {
    const std::string kept = path_ + ".damaged";
    writeFileSafely(kept, text_);
    std::error_code ignored;
    fs::permissions(kept, fs::status(path_, ignored).permissions(), ignored);
}

void QtSettings::onTrouble(std::function<void(const std::string&)> report) {
    report_ = std::move(report);
    for (const std::string& what : std::exchange(untold_, {})) trouble(what);
}

void QtSettings::trouble(const std::string& what) {
    if (report_) {
        report_(what);
    } else {
        untold_.push_back(what);
    }
}

}  // namespace zentaq
