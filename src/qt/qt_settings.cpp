#include "qt/qt_settings.h"

#include <QFileInfo>
#include <QLockFile>
#include <filesystem>
#include <utility>

#include "app/settings_keys.h"
#include "base/errors.h"
#include "base/file_reader.h"

namespace zentaq {

namespace {

/// A program that writes its settings holds the lock for milliseconds. One that was killed leaves it behind,
/// and the window stands still while it is waited for.
constexpr int patienceMs = 700;
/// How often a lock that stayed is looked at.
constexpr int againMs = 5000;

QString pathOfKey(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + u'/' + QString::fromStdString(key);
}

QString nameOfStore() {
    return QString::fromLatin1(settings::application);
}

/// Asked of a store that nobody has, since a store reads its file when it is made.
std::string fileOfUser() {
    const QSettings neighbor(QSettings::IniFormat, QSettings::UserScope, nameOfStore(),
                             nameOfStore() + QStringLiteral(".none"));
    return (QFileInfo(neighbor.fileName()).path() + u'/' + nameOfStore() + QStringLiteral(".ini"))
        .toStdString();
}

}  // namespace

// By its path and so without a store of all users, which would make one user's missing value another's
// choice.
QtSettings::QtSettings() : QtSettings(fileOfUser()) {}

QtSettings::QtSettings(const std::string& path) : path_(path) {
    if (isFile()) open();
    tendWaiting();
}

bool QtSettings::isFile() {
    return endOnFailure(
        [&] { checkFile(path_, limits::settings); },
        [&](const std::string& why) {
            if (!std::exchange(writeFailed_, true)) {
                trouble(why + ". Changed settings last for this run; remove what stands there.");
            }
        });
}

void QtSettings::tendWaiting() {
    again_.setSingleShot(true);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { writeWaiting(); });
}

QtSettings::~QtSettings() {
    writeWaiting();
}

bool QtSettings::opens(QFile::OpenMode mode) const {
    return QFile(settings_->fileName()).open(mode);
}

/// The store would read what stands there when it is closed, and so it never is.
void QtSettings::leaveFile() {
    for (const QString& name : settings_->allKeys()) {
        const std::string section = name.section(u'/', 0, 0).toStdString();
        const std::string key = name.section(u'/', 1).toStdString();
        ofThisRun_[{section, key}] = get(section, key);
    }
    [[maybe_unused]] const auto* left = settings_.release();
}

void QtSettings::open() {
    settings_ = std::make_unique<QSettings>(QString::fromStdString(path_), QSettings::IniFormat);
    const bool exists = QFile::exists(settings_->fileName());
    settings_->allKeys();  // sections are read when they are asked for, and only then found damaged
    if (settings_->status() == QSettings::FormatError) {
        // The next value written replaces the file, so what a user could still read out of it is kept.
        std::error_code failed;
        std::filesystem::copy_file(path(), path() + ".damaged",
                                   std::filesystem::copy_options::overwrite_existing, failed);
        trouble("Settings file " + path() + " is damaged; what can be read of it is used.");
        return;
    }
    if (settings_->status() == QSettings::AccessError || (exists && !opens(QFile::ReadOnly))) {
        trouble("Settings file " + path() + " cannot be read; the program starts as newly installed.");
        return;
    }
    if (exists && !opens(QFile::ReadWrite)) {
        trouble("Settings file " + path() + " is write-protected; changed settings last for this run.");
        writeFailed_ = true;
    }
}

std::string QtSettings::get(const std::string& section, const std::string& key,
                            const std::string& fallback) const {
    if (const auto found = waiting_.find({section, key}); found != waiting_.end()) return found->second;
    if (!settings_) {
        const auto found = ofThisRun_.find({section, key});
        return found == ofThisRun_.end() ? fallback : found->second;
    }
    const QVariant value = settings_->value(pathOfKey(section, key));
    if (!value.isValid()) return fallback;
    // A hand-edited line with a comma reads as a list.
    if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(u',').toStdString();
    return value.toString().toStdString();
}

void QtSettings::set(const std::string& section, const std::string& key, const std::string& value) {
    waiting_[{section, key}] = value;
    writeWaiting();
}

// The store would wait for the lock itself, for half a minute: it gets nothing before the lock is free.
bool QtSettings::lockIsFree() {
    QLockFile lock(settings_->fileName() + QStringLiteral(".lock"));
    if (lock.tryLock(locked_ ? 0 : patienceMs)) {
        locked_ = false;
        return true;
    }
    // A folder that takes no lock takes no settings either, which is told when they are written.
    if (lock.error() != QLockFile::LockFailedError) return true;
    if (!std::exchange(locked_, true)) {
        trouble("Settings file " + path() + " is locked by another program; it is written when " + path() +
                ".lock has gone.");
    }
    if (!again_.isActive()) again_.start(againMs);
    return false;
}

void QtSettings::writeWaiting() {
    if (waiting_.empty()) return;
    if (settings_ && !isFile()) leaveFile();
    if (!settings_) {
        for (auto& [name, value] : std::exchange(waiting_, {})) ofThisRun_[name] = std::move(value);
        return;
    }
    if (!lockIsFree()) return;
    for (const auto& [name, value] : std::exchange(waiting_, {})) {
        settings_->setValue(pathOfKey(name.first, name.second), QString::fromStdString(value));
    }
    settings_->sync();
    if (settings_->status() != QSettings::AccessError || writeFailed_) return;
    writeFailed_ = true;
    trouble("Settings file " + path() + " cannot be written; changed settings last for this run.");
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
