#include "windows/own_picture.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QImageReader>
#include <optional>

#include "base/file_reader.h"

namespace zentaq {
namespace {

/// More than any screen shows.
constexpr int largestSide = 8192;

bool cameWithTheProgram(const std::string& folder, const std::string& name, const QByteArray& content) {
    const auto list = readFileIfThere(folder + madePictures, limits::pictureList);
    return list && list->find(madeLine(content, name)) != std::string::npos;
}

std::optional<QByteArray> contentOf(const std::string& path) {
    const auto content = readFileIfThere(path, limits::picture);
    if (!content) return std::nullopt;
    return QByteArray(content->data(), static_cast<qsizetype>(content->size()));
}

OwnPicture decoded(const QByteArray& content, const std::string& path) {
    QBuffer buffer;
    buffer.setData(content);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.width() > largestSide || size.height() > largestSide)
        return {{}, path + " has more than 8192 pixels on a side."};
    OwnPicture result{reader.read(), {}};
    if (result.image.isNull())
        result.trouble =
            path + " is no picture that can be read: " + reader.errorString().toStdString() + ".";
    return result;
}

}  // namespace

std::string madeLine(const QByteArray& content, const std::string& name) {
    const QByteArray hash = QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
    return hash.toStdString() + "  " + name + "\n";
}

bool isOwnPicture(const std::string& folder, const std::string& name) {
    const auto content = contentOf(folder + name);
    return content && !cameWithTheProgram(folder, name, *content);
}

OwnPicture ownPicture(const std::string& applicationFolder, const std::string& name) {
    const std::string folder = applicationFolder + "/bin/images/";
    try {
        const auto content = contentOf(folder + name);
        if (!content || cameWithTheProgram(folder, name, *content)) return {};
        return decoded(*content, folder + name);
    } catch (const FileError& error) {
        return {{}, error.what()};
    }
}

}  // namespace zentaq
