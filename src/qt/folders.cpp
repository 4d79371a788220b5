#include "qt/folders.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace zentaq {

std::string applicationFolder() {
    return QCoreApplication::applicationDirPath().toStdString();
}

namespace {

/// Where the desktop keeps the user's folders. Qt reads it whatever it is, and would wait at a pipe for good.
bool isPlaceOfFolders() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    struct stat status {};
    const bool found = ::stat((config + "/user-dirs.dirs").toStdString().c_str(), &status) == 0;
    return !found || S_ISREG(status.st_mode);
}

}  // namespace

std::string userFolder() {
    const QString documents = isPlaceOfFolders()
                                  ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                                  : QDir::homePath() + "/Documents";
    return (documents + "/Zentaq").toStdString();
}

}  // namespace zentaq
