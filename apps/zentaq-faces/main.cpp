// zentaq-faces FOLDER: draws the pictures of the dashboard and lists them, at build time. Those that a user
// has replaced stay.
#include <QApplication>
#include <QBuffer>
#include <QSaveFile>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "live/dashboard_picture.h"
#include "qt/look.h"
#include "windows/dashboard_drawn.h"
#include "windows/own_picture.h"

namespace {

using namespace zentaq;

void write(const std::string& path, const QByteArray& content) {
    QSaveFile file(QString::fromStdString(path));
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit()) return;
    throw std::runtime_error(path + ": " + file.errorString().toStdString());
}

QByteArray encoded(const QImage& picture, bool day) {
    constexpr int quality = 95;
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, day ? "BMP" : "JPG", quality)) throw std::runtime_error("no such format");
    return content;
}

void makeAll(const std::string& folder) {
    std::string list;
    for (const bool day : {false, true}) {
        for (const int revScale : {9000, 18000}) {
            for (const bool fuel : {true, false}) {
                const std::string name = dashboardPictureName(day, revScale, fuel);
                const QByteArray content = encoded(drawnDashboard(day, revScale, fuel), day);
                if (!isOwnPicture(folder, name)) write(folder + name, content);
                list += madeLine(content, name);
            }
        }
    }
    write(folder + madePictures, QByteArray::fromStdString(list));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 2) {
        std::cerr << "usage: zentaq-faces FOLDER\n";
        return 2;
    }
    applyLook(application, DisplayMode::Day);
    try {
        makeAll(std::string(argv[1]) + '/');
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
