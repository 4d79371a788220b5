#include "qt/qt_settings.h"

namespace zentaq {

namespace {

QString pathOfKey(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + u'/' + QString::fromStdString(key);
}

}  // namespace

QtSettings::QtSettings()
    : settings_(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Zentaq4"),
                QStringLiteral("Zentaq4")) {
    // A store of all users would make one user's missing value another's choice.
    settings_.setFallbacksEnabled(false);
}

QtSettings::QtSettings(const std::string& path)
    : settings_(QString::fromStdString(path), QSettings::IniFormat) {}

std::string QtSettings::get(const std::string& section, const std::string& key,
                            const std::string& fallback) const {
    const QVariant value = settings_.value(pathOfKey(section, key));
    if (!value.isValid()) return fallback;
    // A hand-edited line with a comma reads as a list.
    if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(u',').toStdString();
    return value.toString().toStdString();
}

void QtSettings::set(const std::string& section, const std::string& key, const std::string& value) {
    settings_.setValue(pathOfKey(section, key), QString::fromStdString(value));
    settings_.sync();
}

}  // namespace zentaq
