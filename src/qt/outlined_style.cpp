#include "qt/outlined_style.h"

#include <QStyleFactory>
#include <QStyleOption>

namespace zentaq {

namespace {

/// Fusion's outline is the window's colour made darker by this many percent.
constexpr int fusionDarker = 140;
constexpr int darkWindowBelow = 128;

bool hasOutline(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_FrameLineEdit || element == QStyle::PE_IndicatorCheckBox ||
           element == QStyle::PE_IndicatorRadioButton || element == QStyle::PE_IndicatorItemViewItemCheck;
}

}  // namespace

OutlinedStyle::OutlinedStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void OutlinedStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
    const bool dark = option->palette.color(QPalette::Window).lightness() < darkWindowBelow;
    if (!dark || !hasOutline(element)) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    const QPalette shown = option->palette;
    auto* lent = const_cast<QStyleOption*>(option);  // NOLINT: given back below; a copy would lose its type
    lent->palette.setColor(QPalette::Window, shown.color(QPalette::Mid).lighter(fusionDarker * 3 / 2));
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    lent->palette = shown;
}

}  // namespace zentaq
