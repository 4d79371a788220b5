#include "qt/style_controls.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

#include "qt/look.h"
#include "qt/style_shapes.h"

namespace zentaq {

namespace {

bool is(const QStyleOption& option, QStyle::StateFlag flag) {
    return (option.state & flag) != 0;
}

bool enabled(const QStyleOption& option) {
    return is(option, QStyle::State_Enabled);
}

// ---- Frames of lists, trees, tables and texts

bool drawPanel(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget* widget) {
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(&option);
    if (frame == nullptr || frame->frameShape != QFrame::StyledPanel) return false;
    const auto* area = qobject_cast<const QAbstractScrollArea*>(widget);
    if (area == nullptr) {
        drawFrame(painter, option.rect, 0, look.border, hairline(painter));
        return true;
    }
    const QWidget* inside = area->viewport();
    const QColor ground = inside->palette().color(inside->backgroundRole());
    const bool entered = area->focusPolicy() != Qt::NoFocus && enabled(option);
    const int width = edgeWidth(option.fontMetrics);
    drawFrame(painter, option.rect, 0, ground, width);
    const bool focus = is(option, QStyle::State_HasFocus);
    if (focus) {
        drawFrame(painter, option.rect, 0, seenOn(look.focus, ground), width);
    } else {
        drawFrame(painter, option.rect, 0, entered ? seenOn(look.edge, ground) : look.border,
                  hairline(painter));
    }
    return true;
}

bool drawSplitter(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    const bool upright = is(option, QStyle::State_Horizontal);
    const bool held = (option.state & (QStyle::State_MouseOver | QStyle::State_Sunken)) != 0;
    painter.fillRect(option.rect, held ? look.checked : look.background);
    drawGrip(painter, option.rect, upright, held ? look.focus : look.edge);
    return true;
}

// ---- Headers and tabs

bool drawHeader(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(&option);
    const bool beside = header != nullptr && header->orientation == Qt::Vertical;
    const QRectF area(option.rect);
    const qreal line = hairline(painter);
    painter.fillRect(
        area, is(option, QStyle::State_Sunken) ? look.checked : option.palette.color(QPalette::Button));
    painter.fillRect(QRectF(area.right() - line, area.top(), line, area.height()), look.border);
    painter.fillRect(QRectF(area.left(), area.bottom() - line, area.width(), line), look.border);
    if (beside || !is(option, QStyle::State_HasFocus)) return true;
    drawFrame(painter, area, 0, look.focus, edgeWidth(option.fontMetrics));
    return true;
}

bool drawHeaderRest(const QStyleOption& option, QPainter& painter, const LookColors&, const QWidget*) {
    painter.fillRect(option.rect, option.palette.color(QPalette::Button));
    return true;
}

bool drawTab(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(&option);
    if (tab == nullptr || tab->shape != QTabBar::RoundedNorth) return false;
    const bool selected = is(option, QStyle::State_Selected);
    const bool over = is(option, QStyle::State_MouseOver) && enabled(option);
    const qreal line = hairline(painter);
    const int bar = edgeWidth(option.fontMetrics) + 1;
    QRectF area(option.rect);
    if (!selected) area.setTop(area.top() + bar);
    painter.fillRect(area, selected ? look.background : over ? look.hover : look.button);
    painter.fillRect(QRectF(area.left(), area.top(), line, area.height()), look.border);
    painter.fillRect(QRectF(area.right() - line, area.top(), line, area.height()), look.border);
    painter.fillRect(QRectF(area.left(), area.top(), area.width(), line), look.border);
    if (selected) {
        painter.fillRect(QRectF(area.left(), area.top(), area.width(), bar),
                         enabled(option) ? look.accent : look.border);
        if (is(option, QStyle::State_HasFocus)) {
            drawFrame(painter, area.adjusted(bar, 2 * bar, -bar, -bar), rounding(option.fontMetrics) / 2,
                      look.focus, edgeWidth(option.fontMetrics));
        }
    }
    return true;
}

// ---- Progress

bool drawGroove(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    drawFramed(painter, option.rect, rounding(option.fontMetrics),
               enabled(option) ? look.surface : look.disabledGround,
               enabled(option) ? look.edge : look.border);
    return true;
}

bool drawProgress(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(&option);
    if (bar == nullptr || bar->maximum <= bar->minimum) return false;  // one without an end moves
    const qreal done = static_cast<qreal>(bar->progress - bar->minimum) / (bar->maximum - bar->minimum);
    QRectF area = QRectF(option.rect).adjusted(2, 2, -2, -2);
    const qreal length = area.width() * std::clamp(done, 0.0, 1.0);
    if (bar->direction == Qt::RightToLeft) area.setLeft(area.right() - length);
    area.setWidth(length);
    painter.fillRect(area, enabled(option) ? look.accent : look.border);
    return true;
}

bool drawToolBar(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    const qreal line = hairline(painter);
    const QRectF area(option.rect);
    painter.fillRect(area, option.palette.color(QPalette::Window));
    painter.fillRect(QRectF(area.left(), area.bottom() - line, area.width(), line), look.border);
    return true;
}

// ---- Menus

/// The line between two groups of a menu, which it tells apart.
bool drawMenuLine(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget*) {
    const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(&option);
    if (entry == nullptr || entry->menuItemType != QStyleOptionMenuItem::Separator || !entry->text.isEmpty())
        return false;
    const QRectF area(option.rect);
    const qreal line = hairline(painter);
    const int gap = space(option.fontMetrics, Space::Normal);
    painter.fillRect(area, look.surface);
    painter.fillRect(QRectF(area.left() + gap, area.top() + std::floor((area.height() - line) / 2),
                            area.width() - 2 * gap, line),
                     look.edge);
    return true;
}

// ---- Lists that open

void drawComboBox(const QStyle& style, const QStyleOptionComplex& option, QPainter& painter,
                  const LookColors& look, const QWidget* widget) {
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(&option);
    const bool typed = combo != nullptr && combo->editable;
    const auto role = typed ? QPalette::Base : QPalette::Button;
    QColor ground = enabled(option) ? option.palette.color(QPalette::Active, role) : look.disabledGround;
    const bool plain = ground == look.button;
    if (plain && (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0)
        ground = look.checked;
    else if (plain && is(option, QStyle::State_MouseOver))
        ground = look.hover;
    const qreal radius = rounding(option.fontMetrics);
    drawFramed(painter, option.rect, radius, ground,
               enabled(option) ? seenOn(look.edge, ground) : look.border);
    if (is(option, QStyle::State_HasFocus)) {
        drawFrame(painter, option.rect, radius, seenOn(look.focus, ground), edgeWidth(option.fontMetrics));
    }
    const QRect arrow = style.subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, widget);
    drawArrow(painter, arrow, Qt::DownArrow, option.fontMetrics.height() * 0.5,
              enabled(option) ? seenOn(look.text, ground) : look.disabledText);
}

// ---- Sliders and scroll bars

void drawSlider(const QStyle& style, const QStyleOptionComplex& option, QPainter& painter,
                const LookColors& look, const QWidget* widget) {
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(&option);
    const bool flat = slider == nullptr || slider->orientation == Qt::Horizontal;
    const QRectF groove = style.subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, widget);
    const QRectF handle = style.subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, widget);
    const qreal thick = std::max(3.0, option.fontMetrics.height() / 4.0);
    QRectF way = groove;
    if (flat)
        way = QRectF(groove.left(), groove.center().y() - thick / 2, groove.width(), thick);
    else
        way = QRectF(groove.center().x() - thick / 2, groove.top(), thick, groove.height());
    const QColor edge = enabled(option) ? look.edge : look.border;
    drawFramed(painter, way, thick / 2, look.surface, edge);
    QRectF done = way;
    if (flat && slider != nullptr && slider->upsideDown)
        done.setLeft(handle.center().x());
    else if (flat)
        done.setRight(handle.center().x());
    else
        done.setTop(handle.center().y());
    if (enabled(option)) drawFramed(painter, done, thick / 2, look.accent, look.accent);
    const bool held = (option.state & (QStyle::State_Sunken | QStyle::State_MouseOver)) != 0;
    const QColor ground = !enabled(option) ? look.disabledGround : held ? look.checked : look.button;
    drawFramed(painter, handle, handle.width() / 2, ground, edge);
    if (is(option, QStyle::State_HasFocus)) {
        drawFrame(painter, handle, handle.width() / 2, look.focus, edgeWidth(option.fontMetrics));
        drawFrame(painter, option.rect, rounding(option.fontMetrics), look.focus,
                  edgeWidth(option.fontMetrics));
    }
}

void drawEnd(const QStyle& style, const QStyleOptionSlider& bar, QStyle::SubControl part, Qt::ArrowType to,
             QPainter& painter, const LookColors& look, const QWidget* widget) {
    const QRect area = style.subControlRect(QStyle::CC_ScrollBar, &bar, part, widget);
    if (!area.isValid()) return;
    const bool pressed = bar.activeSubControls == part && is(bar, QStyle::State_Sunken);
    painter.fillRect(area, pressed ? look.checked : look.background);
    drawArrow(painter, area, to, std::min(area.width(), area.height()) * 0.45,
              enabled(bar) ? look.mutedText : look.border);
}

void drawScrollBar(const QStyle& style, const QStyleOptionComplex& option, QPainter& painter,
                   const LookColors& look, const QWidget* widget) {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(&option);
    if (bar == nullptr) return;
    const bool flat = bar->orientation == Qt::Horizontal;
    painter.fillRect(option.rect, look.background);
    drawEnd(style, *bar, QStyle::SC_ScrollBarSubLine, flat ? Qt::LeftArrow : Qt::UpArrow, painter, look,
            widget);
    drawEnd(style, *bar, QStyle::SC_ScrollBarAddLine, flat ? Qt::RightArrow : Qt::DownArrow, painter, look,
            widget);
    if (bar->minimum >= bar->maximum) return;
    QRectF handle = style.subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, widget);
    const qreal inset = (flat ? handle.height() : handle.width()) / 5;
    handle = flat ? handle.adjusted(0, inset, 0, -inset) : handle.adjusted(inset, 0, -inset, 0);
    const bool over =
        bar->activeSubControls == QStyle::SC_ScrollBarSlider && is(option, QStyle::State_MouseOver);
    const QColor color = !enabled(option) ? look.border : over ? look.mutedText : look.edge;
    const qreal radius = std::min(handle.width(), handle.height()) / 2;
    drawFramed(painter, handle, radius, color, color);
}

}  // namespace

bool drawOwnControl(QStyle::ControlElement element, const QStyleOption& option, QPainter& painter,
                    const QWidget* widget) {
    const LookColors& look = lookColors(appliedLook(*qApp));
    switch (element) {
        case QStyle::CE_ShapedFrame:
            return drawPanel(option, painter, look, widget);
        case QStyle::CE_Splitter:
            return drawSplitter(option, painter, look, widget);
        case QStyle::CE_HeaderSection:
            return drawHeader(option, painter, look, widget);
        case QStyle::CE_HeaderEmptyArea:
            return drawHeaderRest(option, painter, look, widget);
        case QStyle::CE_TabBarTabShape:
            return drawTab(option, painter, look, widget);
        case QStyle::CE_ProgressBarGroove:
            return drawGroove(option, painter, look, widget);
        case QStyle::CE_ProgressBarContents:
            return drawProgress(option, painter, look, widget);
        case QStyle::CE_MenuItem:
            return drawMenuLine(option, painter, look, widget);
        case QStyle::CE_ToolBar:
            return drawToolBar(option, painter, look, widget);
        default:
            return false;
    }
}

bool drawOwnComplex(const QStyle& style, QStyle::ComplexControl control, const QStyleOptionComplex& option,
                    QPainter& painter, const QWidget* widget) {
    const LookColors& look = lookColors(appliedLook(*qApp));
    switch (control) {
        case QStyle::CC_ComboBox:
            drawComboBox(style, option, painter, look, widget);
            return true;
        case QStyle::CC_Slider:
            drawSlider(style, option, painter, look, widget);
            return true;
        case QStyle::CC_ScrollBar:
            drawScrollBar(style, option, painter, look, widget);
            return true;
        default:
            return false;
    }
}

}  // namespace zentaq
