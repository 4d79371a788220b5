#include "qt/qt_clock.h"

#include <QDate>
#include <QLocale>

namespace zentaq {

std::string QtClock::dateText() const {
    return QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
}

}  // namespace zentaq
