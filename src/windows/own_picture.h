// A picture that the user has put in the place of one that came with the program.
#pragma once

#include <QByteArray>
#include <QImage>
#include <string>

namespace zentaq {

struct OwnPicture {
    QImage image;         ///< null: there is none of the user's own, or it can't be shown
    std::string trouble;  ///< why it can't be shown
};

/// Looks into "bin/images" of the application folder. A picture that is missing is no trouble.
OwnPicture ownPicture(const std::string& applicationFolder, const std::string& name);

/// Lists the pictures that came with the program, as sha256sum does.
constexpr auto madePictures = "made.sha256";
/// Its line for a picture.
std::string madeLine(const QByteArray& content, const std::string& name);
/// Whether a user has put his own there. Throws FileError where that can't be told.
bool isOwnPicture(const std::string& folder, const std::string& name);

}  // namespace zentaq
