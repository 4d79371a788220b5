#include "qt/style_primitives.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QGroupBox>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>

#include "qt/look.h"
#include "qt/style_shapes.h"

namespace zentaq {

namespace {

using Draw = void (*)(const QStyleOption& option, QPainter& painter, const LookColors& look);

bool usable(const QStyleOption& option) {
    return (option.state & QStyle::State_Enabled) != 0;
}

bool has(const QStyleOption& option, QStyle::StateFlag flag) {
    return (option.state & flag) != 0;
}

QColor ground(const QStyleOption& option, QPalette::ColorRole role) {
    return option.palette.color(usable(option) ? QPalette::Active : QPalette::Disabled, role);
}

/// What cannot be used has the line of what means nothing.
QColor edgeOn(const QColor& ground, const QStyleOption& option, const LookColors& look) {
    return usable(option) ? seenOn(look.edge, ground) : look.border;
}

void frameOfFocus(const QStyleOption& option, QPainter& painter, const LookColors& look, const QColor& on) {
    drawFrame(painter, option.rect, rounding(option.fontMetrics), seenOn(look.focus, on),
              edgeWidth(option.fontMetrics));
}

// ---- Fields

void drawFieldFrame(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const QColor base = ground(option, QPalette::Base);
    drawFramed(painter, option.rect, rounding(option.fontMetrics), Qt::transparent,
               edgeOn(base, option, look));
    if (has(option, QStyle::State_HasFocus)) frameOfFocus(option, painter, look, base);
}

void drawField(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const QColor base = ground(option, QPalette::Base);
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(&option);
    if (frame != nullptr && frame->lineWidth == 0) {  // inside of something that has the frame
        painter.fillRect(option.rect, base);
        return;
    }
    drawFramed(painter, option.rect, rounding(option.fontMetrics), base, edgeOn(base, option, look));
    if (has(option, QStyle::State_HasFocus)) frameOfFocus(option, painter, look, base);
}

// ---- Boxes to tick

QColor boxGround(const QStyleOption& option, const LookColors& look) {
    if (has(option, QStyle::State_Sunken)) return look.checked;
    return ground(option, QPalette::Base);
}

void drawCheckBox(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const QColor inside = boxGround(option, look);
    const QRectF box(option.rect);
    drawFramed(painter, box, rounding(option.fontMetrics) / 2, inside, edgeOn(inside, option, look));
    const QColor ink = usable(option) ? seenOn(look.text, inside) : look.disabledText;
    if (has(option, QStyle::State_On)) drawTick(painter, box, ink);
    if (has(option, QStyle::State_NoChange)) drawBar(painter, box, ink);
}

void drawRadioButton(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const QColor inside = boxGround(option, look);
    const QRectF box(option.rect);
    drawFramed(painter, box, box.width() / 2, inside, edgeOn(inside, option, look));
    if (!has(option, QStyle::State_On)) return;
    const QColor ink = usable(option) ? seenOn(look.text, inside) : look.disabledText;
    const qreal inset = box.width() * 0.27;
    drawFramed(painter, box.adjusted(inset, inset, -inset, -inset), box.width() / 2, ink, ink);
}

// ---- Buttons

QColor buttonGround(const QStyleOption& option, const LookColors& look) {
    if (!usable(option)) return look.disabledGround;
    const QColor button = option.palette.color(QPalette::Active, QPalette::Button);
    const bool own = button != look.button;  // acts on the running engine, and goes on saying so
    if (!own && (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0) return look.checked;
    if (has(option, QStyle::State_Sunken)) return button.darker(115);
    if (has(option, QStyle::State_MouseOver)) return own ? button.lighter(106) : look.hover;
    return button;
}

void drawButton(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const QColor inside = buttonGround(option, look);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    const bool flat = button != nullptr && (button->features & QStyleOptionButton::Flat) != 0;
    const bool raised = (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0;
    const bool bare = flat && !raised && !has(option, QStyle::State_MouseOver);
    if (bare && !has(option, QStyle::State_HasFocus)) return;
    const bool atHand = button != nullptr && (button->features & QStyleOptionButton::DefaultButton) != 0;
    const QColor edge = atHand && usable(option) ? seenOn(look.accent, inside) : edgeOn(inside, option, look);
    drawFramed(painter, option.rect, rounding(option.fontMetrics), inside, edge);
    if (button != nullptr && has(option, QStyle::State_HasFocus)) {
        frameOfFocus(option, painter, look, inside);
    }
}

void drawToolButton(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const bool autoRaise = has(option, QStyle::State_AutoRaise);
    const bool on = (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0;
    const bool over = has(option, QStyle::State_MouseOver) && usable(option);
    if (autoRaise && !on && !over) return;
    const QColor inside = buttonGround(option, look);
    const QColor edge = autoRaise && !on ? look.border : edgeOn(inside, option, look);
    drawFramed(painter, option.rect, rounding(option.fontMetrics), inside, edge);
}

// ---- Frames and panels

/// On a selected row, whose ground says it already, a thin line in the colour of its text.
void drawFocusRect(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    const auto* rect = qstyleoption_cast<const QStyleOptionFocusRect*>(&option);
    const bool known = rect != nullptr && rect->backgroundColor.isValid();
    const QColor on = known ? rect->backgroundColor : look.background;
    if (on == look.accent) return drawFrame(painter, option.rect, 0, look.accentText, hairline(painter));
    drawFrame(painter, option.rect, rounding(option.fontMetrics) / 2, seenOn(look.focus, on),
              edgeWidth(option.fontMetrics));
}

/// What opens and folds a row of a tree.
void drawBranch(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    if (!has(option, QStyle::State_Children)) return;
    const bool chosen = has(option, QStyle::State_Selected) && has(option, QStyle::State_Active);
    const QColor ink = !usable(option) ? look.disabledText : chosen ? look.accentText : look.text;
    drawArrow(painter, option.rect, has(option, QStyle::State_Open) ? Qt::DownArrow : Qt::RightArrow,
              option.fontMetrics.height() * 0.5, ink);
}

void drawPlainArrow(const QStyleOption& option, QPainter& painter, const LookColors& look, Qt::ArrowType to) {
    const qreal width =
        std::min({option.rect.width(), option.rect.height(), option.fontMetrics.height() / 2});
    drawArrow(painter, option.rect, to, std::max<qreal>(width, 6),
              usable(option) ? look.text : look.disabledText);
}

void drawMenuPanel(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    painter.fillRect(option.rect, option.palette.color(QPalette::Base));
    drawFrame(painter, option.rect, 0, look.edge, hairline(painter));
}

void drawMenuFrame(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    drawFrame(painter, option.rect, 0, look.edge, hairline(painter));
}

void drawTip(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    painter.fillRect(option.rect, look.surface);
    drawFrame(painter, option.rect, 0, look.edge, hairline(painter));
}

void drawPage(const QStyleOption& option, QPainter& painter, const LookColors& look) {
    drawFrame(painter, option.rect, 0, look.border, hairline(painter));
}

Draw drawingOf(QStyle::PrimitiveElement element) {
    switch (element) {
        case QStyle::PE_PanelLineEdit:
            return drawField;
        case QStyle::PE_FrameLineEdit:
            return drawFieldFrame;
        case QStyle::PE_IndicatorCheckBox:
        case QStyle::PE_IndicatorItemViewItemCheck:
            return drawCheckBox;
        case QStyle::PE_IndicatorRadioButton:
            return drawRadioButton;
        case QStyle::PE_PanelButtonCommand:
            return drawButton;
        case QStyle::PE_PanelButtonTool:
            return drawToolButton;
        case QStyle::PE_FrameFocusRect:
            return drawFocusRect;
        case QStyle::PE_IndicatorBranch:
            return drawBranch;
        case QStyle::PE_IndicatorArrowDown:
            return [](const QStyleOption& o, QPainter& p, const LookColors& l) {
                drawPlainArrow(o, p, l, Qt::DownArrow);
            };
        case QStyle::PE_IndicatorArrowUp:
            return [](const QStyleOption& o, QPainter& p, const LookColors& l) {
                drawPlainArrow(o, p, l, Qt::UpArrow);
            };
        case QStyle::PE_PanelMenu:
            return drawMenuPanel;
        case QStyle::PE_FrameMenu:
            return drawMenuFrame;
        case QStyle::PE_PanelTipLabel:
            return drawTip;
        case QStyle::PE_FrameTabWidget:
            return drawPage;
        default:
            return nullptr;
    }
}

/// The title stands above the frame and not in its line.
void drawGroup(const QStyleOption& option, QPainter& painter, const LookColors& look, const QWidget* widget) {
    constexpr int belowTitle = 3;  // as far as the toolkit's style leaves for it
    const auto* group = qobject_cast<const QGroupBox*>(widget);
    const bool titled = group != nullptr && !group->title().isEmpty();
    const int top = titled ? group->fontMetrics().height() + belowTitle : 0;
    drawFramed(painter, option.rect.adjusted(0, top, 0, 0), rounding(option.fontMetrics), Qt::transparent,
               look.border);
}

}  // namespace

bool drawOwnPrimitive(QStyle::PrimitiveElement element, const QStyleOption& option, QPainter& painter,
                      const QWidget* widget) {
    if (element == QStyle::PE_FrameGroupBox) {
        drawGroup(option, painter, lookColors(appliedLook(*qApp)), widget);
        return true;
    }
    const Draw draw = drawingOf(element);
    if (draw == nullptr) return element == QStyle::PE_FrameDefaultButton;  // its edge says it
    draw(option, painter, lookColors(appliedLook(*qApp)));
    return true;
}

void drawRestingEdge(const QStyleOptionViewItem& row, QPainter& painter) {
    const QColor& edge = lookColors(appliedLook(*qApp)).edge;
    const qreal line = hairline(painter);
    const QRectF area(row.rect);
    const auto position = row.viewItemPosition;
    using Row = QStyleOptionViewItem;
    painter.fillRect(QRectF(area.left(), area.top(), area.width(), line), edge);
    painter.fillRect(QRectF(area.left(), area.bottom() - line, area.width(), line), edge);
    if (position != Row::Middle && position != Row::End) {
        painter.fillRect(QRectF(area.left(), area.top(), line, area.height()), edge);
    }
    if (position != Row::Middle && position != Row::Beginning) {
        painter.fillRect(QRectF(area.right() - line, area.top(), line, area.height()), edge);
    }
}

void drawBoxEdge(QPainter& painter, const QRect& area) {
    drawFrame(painter, area, 0, lookColors(appliedLook(*qApp)).edge, hairline(painter));
}

}  // namespace zentaq
