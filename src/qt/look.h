// The one place for colours, type, spacing and style of the program's windows, by day and by night.
// docs/look.md says which to take when. Sizes come from fonts, never from pixels.
#pragma once

#include <QColor>
#include <QFont>
#include <QMargins>
#include <span>

class QApplication;
class QFontMetrics;

namespace zentaq {

enum class DisplayMode { Day, Night };

/// Colours by meaning. Which text may stand on which ground is a row of lookPairs().
struct LookColors {
    QColor background;      ///< of windows
    QColor surface;         ///< of lists, grids, trees, entry fields, menus and dials
    QColor alternate;       ///< every second row of a list
    QColor button;          ///< of buttons and headers
    QColor disabledGround;  ///< of a field or box that takes nothing now
    QColor text;
    QColor mutedText;  ///< captions and units beside a value
    QColor disabledText;
    QColor border;  ///< thin lines that part and mean nothing: grids, groups
    QColor edge;    ///< around what one can enter or press, around menus and boxes, between groups of a menu
    QColor focus;   ///< the frame around what has the keyboard

    QColor accent;  ///< a selection with the keyboard, links, progress
    QColor accentText;
    QColor restingSelection;  ///< a selection without the keyboard
    QColor restingText;
    QColor hover;    ///< a button under the pointer
    QColor checked;  ///< a button that is pressed in or switched on; `text` stands on it

    QColor live;           ///< comes from the unit at this moment
    QColor changed;        ///< differs from what is stored
    QColor good;           ///< in range, connected
    QColor warning;        ///< needs a look soon
    QColor alarm;          ///< needs a hand now
    QColor highlight;      ///< acts on the running engine
    QColor highlightText;  ///< on `highlight`

    // A badge: a short word on a ground of its own. On the fly takes `highlight`.
    QColor badge;  ///< tells, and asks for nothing
    QColor badgeText;
    QColor goodBadge;
    QColor goodBadgeText;
    QColor changedBadge;
    QColor changedBadgeText;
    QColor warningBadge;
    QColor warningBadgeText;
    QColor alarmBadge;
    QColor alarmBadgeText;

    // Instruments. The user's own colours stand in their place where there are some.
    QColor needle;
    QColor redZone;
    QColor yellowZone;
    QColor greenZone;
    QColor lampOff;
    QColor sendLamp;  ///< of the link panel; told, the same by day and by night
    QColor receiveLamp;
    QColor lampText;    ///< on a lamp of the link that is lit
    QColor liveMarker;  ///< the engine's present point on a table
};

const LookColors& lookColors(DisplayMode mode);

/// The colors of lines in a plot, the most different ones first: seen and read on `surface` and `background`,
/// and told apart also by eyes that are blind to red or green. The running program's mode chooses.
std::span<const QColor> plotColors(DisplayMode mode);
std::span<const QColor> plotColors();

/// A colour as docs/look.md lists it.
struct LookColor {
    const char* name;
    QColor LookColors::*part;
    QRgb day;
    QRgb night;
};
std::span<const LookColor> lookTable();

/// The least contrast of text on its ground, and of a mark, a frame or an edge beside what it stands on.
constexpr double leastTextContrast = 4.5;
constexpr double leastMarkContrast = 3;

/// What may stand on what. A pair that is not here is not to be used.
struct LookPair {
    QColor LookColors::*ink;
    QColor LookColors::*ground;
    double least;
};
std::span<const LookPair> lookPairs();

/// Sets style, palette and base font of the whole program.
void applyLook(QApplication& application, DisplayMode mode);
/// The mode that applyLook() set last; Day before.
DisplayMode appliedLook(const QApplication& application);
/// The colours of that mode in the running program.
const LookColors& lookNow();

/// The type scale: every text of the program has one of these.
enum class Type {
    Remark,   ///< what stands under a field, the second line of an entry
    Body,     ///< everything else
    Strong,   ///< body in bold: what counts in a line
    Caption,  ///< above or beside a live value, readable at arm's length
    Badge,    ///< a short word on a ground of its own
    Strip,    ///< the state strip, readable from a metre
    Heading,  ///< of a page or a group
    Value,    ///< a live value
    Title,    ///< of a window that stands by itself
    Display,  ///< the program's name
};

/// The size of a type as a factor of the base font.
qreal typeFactor(Type type);
QFont typeFont(Type type);

/// Base font of the program's windows: readable at arm's length.
QFont baseFont();
/// Fixed pitch, for the consoles and listings.
QFont consoleFont();
/// Bold, with a size relative to the base font, for what fits its type into a room of its own.
QFont valueFont(qreal factor = 1.0);

/// The steps of spacing, as parts of the font's height.
enum class Space {
    None,
    Line,     ///< an eighth: between lines that belong together, the width of a frame
    Tight,    ///< a quarter: inside a badge, between a caption and its value
    Normal,   ///< a half: between controls, around a panel
    Wide,     ///< the height: between groups, around a window
    Section,  ///< one and a half: between parts of a page
};

/// In device-independent pixels, one at least where there is a space at all.
int space(const QFontMetrics& metrics, Space step);
/// The same margin at all four sides, or one at the left and right and another above and below.
QMargins margins(const QFontMetrics& metrics, Space around);
QMargins margins(const QFontMetrics& metrics, Space sides, Space ends);

/// The width of a focus frame and of the frame around a tile that says something: two pixels at least.
int edgeWidth(const QFontMetrics& metrics);

/// Width of `count` digits in a font, in device-independent pixels.
int digitsWidth(const QFontMetrics& metrics, int count);

}  // namespace zentaq
