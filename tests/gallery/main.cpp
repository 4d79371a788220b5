#include <QApplication>
#include <QDir>
#include <QPixmap>

#include "gallery/gallery.h"
#include "qt/look.h"

/// With "--pictures folder" it leaves what it shows as two pictures there, and ends.
int main(int count, char** arguments) {
    QApplication application(count, arguments);
    zentaq::applyLook(application, zentaq::DisplayMode::Day);
    const QStringList words = QApplication::arguments();
    const auto at = words.indexOf("--pictures");
    if (at < 0 || at + 1 >= words.size()) {
        zentaq::Gallery gallery;
        gallery.show();
        return QApplication::exec();
    }
    const QString folder = words[at + 1];
    if (!QDir().mkpath(folder)) {
        qCritical("%s cannot be made", qPrintable(folder));
        return 1;
    }
    int unsaved = 0;
    for (const auto& [mode, name] : {std::pair(zentaq::DisplayMode::Day, "gallery-day.png"),
                                     std::pair(zentaq::DisplayMode::Night, "gallery-night.png")}) {
        zentaq::applyLook(application, mode);
        zentaq::Gallery gallery;
        gallery.resize(gallery.width(), gallery.wholeHeight());
        const QString file = folder + '/' + name;
        if (gallery.grab().save(file)) continue;
        qCritical("%s cannot be written", qPrintable(file));
        ++unsaved;
    }
    return unsaved;
}
