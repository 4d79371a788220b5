#include "qt/look.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPalette>
#include <QVariant>

#include "qt/outlined_style.h"

namespace zentaq {

namespace {

constexpr auto modeProperty = "zentaqDisplayMode";

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

}  // namespace zentaq
