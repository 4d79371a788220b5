// The colours of the instrument panel: one set for day, one for night, and the user's own three on top.
// Every piece of the panel paints from this set and from nothing else.
#pragma once

#include <QColor>
#include <QString>
#include <optional>

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
};

DashColors dashColors(bool day);

/// A stored colour, red + 256 * green + 65536 * blue as decimal text; nothing for a text that is no such
/// number.
std::optional<QColor> storedColor(const QString& text);
QColor colorOfNumber(int number);

}  // namespace zentaq
