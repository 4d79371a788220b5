// The one place for colours, fonts and style of the program's windows, by day and by night.
// Sizes come from fonts; a window takes its colours from here and its sizes from QFontMetrics.
#pragma once

#include <QColor>
#include <QFont>

class QApplication;
class QFontMetrics;

namespace zentaq {

enum class DisplayMode { Day, Night };

/// Colours by meaning. Text on `background` and `surface` keeps a contrast of at least 7 to 1.
struct LookColors {
    QColor background;  ///< of windows
    QColor surface;     ///< of lists, grids, trees and entry fields
    QColor alternate;   ///< every second row of a list
    QColor text;
    QColor mutedText;  ///< captions and units beside a value
    QColor disabledText;
    QColor border;
    QColor accent;  ///< selection and focus
    QColor accentText;
    QColor button;
    QColor good;  ///< in range, connected
    QColor warning;
    QColor alarm;
    QColor highlight;  ///< fields that act on the running engine
    QColor highlightText;
    QColor liveMarker;  ///< the engine's present point on a table
};

LookColors lookColors(DisplayMode mode);

/// Lamps of the link panel; the same by day and by night.
QColor sendLampColor();     ///< red, 255 0 0
QColor receiveLampColor();  ///< green, 0 192 0

/// Sets style, palette, style sheet and base font of the whole program.
void applyLook(QApplication& application, DisplayMode mode);
/// The mode that applyLook() set last; Day before.
DisplayMode appliedLook(const QApplication& application);

/// Base font of the program's windows: readable at arm's length.
QFont baseFont();
/// Fixed pitch, for the consoles and listings.
QFont consoleFont();
/// Bold, with a size relative to the base font, for live values.
QFont valueFont(qreal factor = 1.0);

/// Width of `count` digits in a font, in device-independent pixels.
int digitsWidth(const QFontMetrics& metrics, int count);

}  // namespace zentaq
