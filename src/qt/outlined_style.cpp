#include "qt/outlined_style.h"

#include <QStyleFactory>
#include <QStyleOption>

namespace zentaq {

namespace {

/// Fusion's outline is the window's colour made darker by this many percent.
constexpr int fusionDarker = 140;
constexpr int darkBaseBelow = 128;

bool isIndicator(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_IndicatorCheckBox || element == QStyle::PE_IndicatorRadioButton ||
           element == QStyle::PE_IndicatorItemViewItemCheck;
}

/// The window's colour that makes Fusion draw an outline which is seen; nothing where its own one is.
/// A check box inside a list is drawn by way of a plain one, so this must give the same when it is asked
/// twice.
QColor lentWindow(QStyle::PrimitiveElement element, const QPalette& palette) {
    const QColor border = palette.color(QPalette::Mid);
    const bool dark = palette.color(QPalette::Base).lightness() < darkBaseBelow;
    if (isIndicator(element))
        return dark ? border.lighter(fusionDarker * 2) : border.darker(fusionDarker - 20);
    const bool entry = element == QStyle::PE_FrameLineEdit;
    return dark && entry ? border.lighter(fusionDarker * 3 / 2) : QColor();
}

}  // namespace

OutlinedStyle::OutlinedStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void OutlinedStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
    const QColor window = lentWindow(element, option->palette);
    if (!window.isValid()) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    const QPalette shown = option->palette;
    auto* lent = const_cast<QStyleOption*>(option);  // NOLINT: given back below; a copy would lose its type
    lent->palette.setColor(QPalette::Window, window);
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    lent->palette = shown;
}

}  // namespace zentaq
