// The program's style: Qt's Fusion for the places of things, and what shows a state drawn by the look. Edges
// and focus frames that are seen by day and by night, selections that tell where the keyboard is, and what
// cannot be used looks so. Colours that a window gave a control (on the fly, the user's own) stay its ground.
#pragma once

#include <QIcon>
#include <QProxyStyle>
#include <QStyleOptionViewItem>

namespace zentaq {

class OutlinedStyle : public QProxyStyle {
    Q_OBJECT

 public:
    OutlinedStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    QIcon standardIcon(StandardPixmap what, const QStyleOption* option, const QWidget* widget) const override;
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QWidget* widget) override;
    void unpolish(QWidget* widget) override;
    /// Draws the edge of a box: a dialog has none of its own.
    bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
    /// Whether a selection in this list is drawn as one with the keyboard.
    virtual bool hasKeyboard(const QWidget& view) const;

 private:
    QStyleOptionViewItem ofItem(const QStyleOptionViewItem& option, const QWidget* widget) const;
};

}  // namespace zentaq
