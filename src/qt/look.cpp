#include "qt/look.h"

#include <QApplication>
#include <QEvent>
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
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText}) {
        palette.setColor(QPalette::Disabled, role, colors.disabledText);
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, colors.disabledGround);
    palette.setColor(QPalette::Disabled, QPalette::Button, colors.disabledGround);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, colors.restingSelection);
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, colors.restingText);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, colors.disabledGround);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, colors.disabledText);
    return palette;
}

}  // namespace

void applyLook(QApplication& application, DisplayMode mode) {
    if (!application.property(modeProperty).isValid()) {
        QApplication::setStyle(new OutlinedStyle);  // the application takes it over
        QApplication::setFont(baseFont());
        QApplication::setCursorFlashTime(0);  // nothing blinks but an alarm
        for (const auto effect : {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo,
                                  Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip, Qt::UI_AnimateToolBox}) {
            QApplication::setEffectEnabled(effect, false);
        }
    } else if (appliedLook(application) == mode) {
        return;
    }
    application.setProperty(modeProperty, static_cast<int>(mode));
    QApplication::setPalette(paletteOf(lookColors(mode)));
    // Now, and not with the next events: what is made or drawn before them belongs to the new mode already.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::ApplicationPaletteChange);
}

DisplayMode appliedLook(const QApplication& application) {
    return application.property(modeProperty).toInt() == static_cast<int>(DisplayMode::Night)
               ? DisplayMode::Night
               : DisplayMode::Day;
}

const LookColors& lookNow() {
    return lookColors(appliedLook(*qApp));
}

std::span<const QColor> plotColors() {
    return plotColors(appliedLook(*qApp));
}

}  // namespace zentaq
