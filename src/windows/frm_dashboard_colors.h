// The colours of the instrument panel: one set for day, one for night, and the user's own three on top.
// Every piece of the panel paints from this set and from nothing else.
#pragma once

#include <QColor>

namespace zentaq {

struct DashColors {
    QColor back;    ///< behind everything
    QColor face;    ///< a dial's disc, a read-out's field
    QColor edge;    ///< thin lines around faces and fields
    QColor lights;  ///< ticks, numbers, values
    QColor labels;  ///< captions and units
    QColor needle;
    QColor redZone;
    QColor yellowZone;
    QColor greenZone;
    QColor lampOff;
    QColor badge;  ///< says that nothing here is live
    QColor badgeText;
    QColor alarm;  ///< a code on one line
    QColor alarmText;
};

DashColors dashColors(bool day);

}  // namespace zentaq
