#include "qt/outlined_style.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "qt/icons.h"
#include "qt/look.h"
#include "qt/style_controls.h"
#include "qt/style_primitives.h"

namespace zentaq {

namespace {

bool isOfItem(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_PanelItemViewItem || element == QStyle::PE_PanelItemViewRow;
}

}  // namespace

OutlinedStyle::OutlinedStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void OutlinedStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
    if (isOfItem(element) && item != nullptr) {
        const QStyleOptionViewItem row = ofItem(*item, widget);
        if (!drawOwnPrimitive(element, row, *painter, widget)) {
            QProxyStyle::drawPrimitive(element, &row, painter, widget);
        }
        const State resting = row.state & (State_Selected | State_Active);
        if (element == PE_PanelItemViewItem && resting == State_Selected) drawRestingEdge(row, *painter);
        return;
    }
    if (!drawOwnPrimitive(element, *option, *painter, widget)) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void OutlinedStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
    if (element == CE_ItemViewItem && item != nullptr) {
        const QStyleOptionViewItem row = ofItem(*item, widget);
        return QProxyStyle::drawControl(element, &row, painter, widget);
    }
    const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const State chosen = State_Selected | State_Enabled;
    if (element == CE_MenuItem && entry != nullptr && (entry->state & chosen) == chosen) {
        // The toolkit asks for the icon as it asks for one under the pointer, which lies on another ground.
        const int side = pixelMetric(PM_SmallIconSize, option, widget);
        QStyleOptionMenuItem shown = *entry;
        shown.icon =
            entry->icon.pixmap(QSize(side, side), painter->device()->devicePixelRatioF(), QIcon::Selected);
        return QProxyStyle::drawControl(element, &shown, painter, widget);
    }
    if (!drawOwnControl(element, *option, *painter, widget)) {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void OutlinedStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                       QPainter* painter, const QWidget* widget) const {
    if (!drawOwnComplex(*proxy(), control, *option, *painter, widget)) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

int OutlinedStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    const QFontMetrics metrics =
        widget != nullptr ? widget->fontMetrics() : QFontMetrics(QApplication::font());
    switch (metric) {
        case PM_DefaultFrameWidth:
        case PM_MenuPanelWidth:
        case PM_ToolTipLabelFrameWidth:
            return edgeWidth(metrics);
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
        case PM_ExclusiveIndicatorWidth:
        case PM_ExclusiveIndicatorHeight:
            return metrics.height() * 7 / 8;
        case PM_ToolBarExtensionExtent:
            return metrics.height() * 5 / 4;
        case PM_SplitterWidth:
            return std::max(6, metrics.height() / 3);
        case PM_ScrollBarExtent:
            return metrics.height() * 7 / 8;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int OutlinedStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                             QStyleHintReturn* data) const {
    switch (hint) {
        case SH_Widget_Animation_Duration:  // nothing moves that tells nothing
        case SH_DialogButtonBox_ButtonsHaveIcons:
        case SH_EtchDisabledText:
        case SH_DitherDisabledText:
        case SH_Menu_FadeOutOnHide:
            return 0;
        default:
            return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

bool OutlinedStyle::hasKeyboard(const QWidget& view) const {
    // A list that opens above everything has it, whoever holds the focus.
    if (view.window()->windowType() == Qt::Popup) return true;
    const QWidget* holder = QApplication::focusWidget();
    return holder != nullptr && (holder == &view || view.isAncestorOf(holder));
}

/// The toolkit asks the window alone, so that every list of a window looks as if it had the keyboard.
QStyleOptionViewItem OutlinedStyle::ofItem(const QStyleOptionViewItem& option, const QWidget* widget) const {
    QStyleOptionViewItem row = option;
    if (const auto* view = qobject_cast<const QAbstractItemView*>(widget)) {
        row.state.setFlag(State_Active, hasKeyboard(*view));
    }
    return row;
}

QIcon OutlinedStyle::standardIcon(StandardPixmap what, const QStyleOption* option,
                                  const QWidget* widget) const {
    const LookColors& look = lookColors(appliedLook(*qApp));
    switch (what) {
        case SP_MessageBoxInformation:
            return icon(QStringLiteral("Information"), look.accent);
        case SP_MessageBoxQuestion:
            return icon(QStringLiteral("Help"), look.accent);
        case SP_MessageBoxWarning:
            return icon(QStringLiteral("Warning"), look.warning);
        case SP_MessageBoxCritical:
            return icon(QStringLiteral("Critical"), look.alarm);
        case SP_ToolBarHorizontalExtensionButton:
        case SP_ToolBarVerticalExtensionButton:
            return icon(QStringLiteral("More"));
        default:
            return QProxyStyle::standardIcon(what, option, widget);
    }
}

void OutlinedStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (qobject_cast<QDialog*>(widget) != nullptr) widget->installEventFilter(this);
}

void OutlinedStyle::unpolish(QWidget* widget) {
    widget->removeEventFilter(this);
    QProxyStyle::unpolish(widget);
}

bool OutlinedStyle::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QDialog*>(watched);
    if (event->type() == QEvent::Paint && box != nullptr && box->isWindow()) {
        QPainter painter(box);
        drawBoxEdge(painter, box->rect());
    }
    return QProxyStyle::eventFilter(watched, event);
}

}  // namespace zentaq
