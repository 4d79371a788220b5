// Qt's Fusion with outlines that can be seen by night: Fusion darkens the window's colour for the edge of an
// entry box, a check box and a radio button, which leaves nothing of it on a dark window.
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
