#include "qt/look.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QPalette>
#include <QVariant>
#include <algorithm>

#include "qt/outlined_style.h"

namespace zentaq {

namespace {

constexpr auto modeProperty = "zentaqDisplayMode";
constexpr qreal baseSizePoints = 11.0;
constexpr qreal consoleSizePoints = 10.0;

struct ColourRow {
    QColor LookColors::*part;
    QRgb day;
    QRgb night;
};

constexpr ColourRow colourRows[] = {
    {&LookColors::background, 0xEEF0F3, 0x14171C},    {&LookColors::surface, 0xFFFFFF, 0x0B0D10},
    {&LookColors::alternate, 0xF4F6F9, 0x12151A},     {&LookColors::text, 0x10141A, 0xF0F2F5},
    {&LookColors::mutedText, 0x3C4654, 0xB4BECA},     {&LookColors::disabledText, 0x7A828E, 0x747E8C},
    {&LookColors::border, 0xB4BCC8, 0x3A424E},        {&LookColors::accent, 0x0B4F9E, 0x6CB4FF},
    {&LookColors::accentText, 0xFFFFFF, 0x06101C},    {&LookColors::button, 0xE0E4EA, 0x242A33},
    {&LookColors::good, 0x0B6B2C, 0x5CE084},          {&LookColors::warning, 0x8A4B00, 0xFFC24D},
    {&LookColors::alarm, 0xB01010, 0xFF7B72},         {&LookColors::highlight, 0xFFF3B0, 0x4A4008},
    {&LookColors::highlightText, 0x10141A, 0xFFF3B0}, {&LookColors::liveMarker, 0xC2185B, 0xFF6FB5},
};

QPalette paletteOf(const LookColors& colors) {
    QPalette palette;
    palette.setColor(QPalette::Window, colors.background);
    palette.setColor(QPalette::WindowText, colors.text);
    palette.setColor(QPalette::Base, colors.surface);
    palette.setColor(QPalette::AlternateBase, colors.alternate);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.mutedText);
    palette.setColor(QPalette::Button, colors.button);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::BrightText, colors.alarm);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, colors.accentText);
    palette.setColor(QPalette::Link, colors.accent);
    palette.setColor(QPalette::ToolTipBase, colors.surface);
    palette.setColor(QPalette::ToolTipText, colors.text);
    palette.setColor(QPalette::Mid, colors.border);
    palette.setColor(QPalette::Dark, colors.border.darker(130));
    palette.setColor(QPalette::Light, colors.button.lighter(115));
    palette.setColor(QPalette::Midlight, colors.button.lighter(107));
    palette.setColor(QPalette::Shadow, QColor(0, 0, 0));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.disabledText);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, colors.border);
    return palette;
}

QString styleSheetOf(const LookColors& colors) {
    return QStringLiteral(
               "QToolTip { border: 1px solid %1; }"
               "QSplitter::handle { background: %1; }"
               "QSplitter::handle:hover { background: %2; }"
               "QTreeView:focus, QListView:focus, QTableView:focus { border: 2px solid %2; }"
               "QStatusBar QLabel { padding-left: 0.4em; padding-right: 0.4em; }")
        .arg(colors.border.name(), colors.accent.name());
}

}  // namespace

LookColors lookColors(DisplayMode mode) {
    LookColors colors;
    for (const auto& [part, day, night] : colourRows) {
        colors.*part = QColor(mode == DisplayMode::Day ? day : night);
    }
    return colors;
}

QColor sendLampColor() {
    return {255, 0, 0};
}

QColor receiveLampColor() {
    return {0, 192, 0};
}

void applyLook(QApplication& application, DisplayMode mode) {
    if (!application.property(modeProperty).isValid()) {
        QApplication::setStyle(new OutlinedStyle);  // the application takes it over
        QApplication::setFont(baseFont());
    } else if (appliedLook(application) == mode) {
        return;
    }
    application.setProperty(modeProperty, static_cast<int>(mode));
    const LookColors colors = lookColors(mode);
    QApplication::setPalette(paletteOf(colors));
    application.setStyleSheet(styleSheetOf(colors));
    // A style sheet leaves the inside of a list, tree or table with the palette of the former mode.
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* area = qobject_cast<QAbstractScrollArea*>(widget))
            area->viewport()->setPalette(area->palette());
    }
}

DisplayMode appliedLook(const QApplication& application) {
    return application.property(modeProperty).toInt() == static_cast<int>(DisplayMode::Night)
               ? DisplayMode::Night
               : DisplayMode::Day;
}

QFont baseFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(std::max(font.pointSizeF(), baseSizePoints));
    return font;
}

QFont consoleFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPointSizeF(std::max(font.pointSizeF(), consoleSizePoints));
    return font;
}

QFont valueFont(qreal factor) {
    QFont font = baseFont();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(true);
    return font;
}

int digitsWidth(const QFontMetrics& metrics, int count) {
    int widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    }
    return widest * count;
}

}  // namespace zentaq
