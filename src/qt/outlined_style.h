// Qt's Fusion with outlines that can be seen: Fusion darkens the window's colour for the edge of an entry
// box, a check box and a radio button, which leaves nothing of it by night and little on a white list by day.
#pragma once

#include <QProxyStyle>

namespace zentaq {

class OutlinedStyle : public QProxyStyle {
    Q_OBJECT

 public:
    OutlinedStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

}  // namespace zentaq
