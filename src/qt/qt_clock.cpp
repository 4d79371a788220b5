#include "qt/qt_clock.h"

#include <QDate>
#include <QLocale>
#include <QTime>
#include <chrono>

namespace zentaq {

std::int64_t QtClock::monotonicUs() const {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(sinceStart).count();
}

std::string QtClock::timeText() const {
    return QTime::currentTime().toString(u"HH:mm:ss").toStdString();
}

std::string QtClock::dateText() const {
    return QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
}

}  // namespace zentaq
