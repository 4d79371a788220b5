#include "qt/folders.h"

#include <QCoreApplication>
#include <QStandardPaths>

namespace zentaq {

std::string applicationFolder() {
    return QCoreApplication::applicationDirPath().toStdString();
}

std::string userFolder() {
    return (QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + "/Zentaq").toStdString();
}

}  // namespace zentaq
