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

LookColors dayColors() {
    LookColors colors;
    colors.background = QColor(0xEE, 0xF0, 0xF3);
    colors.surface = QColor(0xFF, 0xFF, 0xFF);
    colors.alternate = QColor(0xF4, 0xF6, 0xF9);
    colors.text = QColor(0x10, 0x14, 0x1A);
    colors.mutedText = QColor(0x3C, 0x46, 0x54);
    colors.disabledText = QColor(0x7A, 0x82, 0x8E);
    colors.border = QColor(0xB4, 0xBC, 0xC8);
    colors.accent = QColor(0x0B, 0x4F, 0x9E);
    colors.accentText = QColor(0xFF, 0xFF, 0xFF);
    colors.button = QColor(0xE0, 0xE4, 0xEA);
    colors.good = QColor(0x0B, 0x6B, 0x2C);
    colors.warning = QColor(0x8A, 0x4B, 0x00);
    colors.alarm = QColor(0xB0, 0x10, 0x10);
    colors.highlight = QColor(0xFF, 0xF3, 0xB0);
    colors.highlightText = QColor(0x10, 0x14, 0x1A);
    colors.liveMarker = QColor(0xC2, 0x18, 0x5B);
    return colors;
}

LookColors nightColors() {
    LookColors colors;
    colors.background = QColor(0x14, 0x17, 0x1C);
    colors.surface = QColor(0x0B, 0x0D, 0x10);
    colors.alternate = QColor(0x12, 0x15, 0x1A);
    colors.text = QColor(0xF0, 0xF2, 0xF5);
    colors.mutedText = QColor(0xB4, 0xBE, 0xCA);
    colors.disabledText = QColor(0x74, 0x7E, 0x8C);
    colors.border = QColor(0x3A, 0x42, 0x4E);
    colors.accent = QColor(0x6C, 0xB4, 0xFF);
    colors.accentText = QColor(0x06, 0x10, 0x1C);
    colors.button = QColor(0x24, 0x2A, 0x33);
    colors.good = QColor(0x5C, 0xE0, 0x84);
    colors.warning = QColor(0xFF, 0xC2, 0x4D);
    colors.alarm = QColor(0xFF, 0x7B, 0x72);
    colors.highlight = QColor(0x4A, 0x40, 0x08);
    colors.highlightText = QColor(0xFF, 0xF3, 0xB0);
    colors.liveMarker = QColor(0xFF, 0x6F, 0xB5);
    return colors;
}

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
    return mode == DisplayMode::Day ? dayColors() : nightColors();
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
