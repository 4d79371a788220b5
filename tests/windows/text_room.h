// What the text of a control needs, and what the control has for it.
#pragma once

#include <QSize>
#include <QString>
#include <QWidget>
#include <vector>

namespace zentaq {

struct TextRoom {
    QString text;
    QSize needed;
    QSize given;

    bool clipped() const { return needed.width() > given.width() || needed.height() > given.height(); }
};

/// Each text that the control shows by itself: a label's, a button's, one a tab, a header's section, an entry
/// of a list. A text that is cut on purpose, with all of it in the tool tip, is left out.
std::vector<TextRoom> textRooms(const QWidget& widget);

}  // namespace zentaq
