#include "windows/frm_dashboard_colors.h"

#include "qt/look.h"

namespace zentaq {

DashColors dashColors(bool day) {
    const LookColors look = lookColors(day ? DisplayMode::Day : DisplayMode::Night);
    DashColors colors;
    colors.back = look.background;
    colors.face = look.surface;
    colors.edge = look.border;
    colors.lights = look.text;
    colors.labels = look.mutedText;
    colors.needle = QColor(255, 0, 0);  // BorderColor 255 of a needle
    colors.redZone = day ? look.alarm : QColor(0xFF, 0x4D, 0x42);
    colors.yellowZone = day ? QColor(0xE0, 0xA0, 0x00) : look.warning;
    colors.greenZone = look.good;
    colors.lampOff = look.button;
    return colors;
}

}  // namespace zentaq
