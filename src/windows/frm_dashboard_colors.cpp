#include "windows/frm_dashboard_colors.h"

#include "qt/look.h"

namespace zentaq {

DashColors dashColors(bool day) {
    const LookColors& look = lookColors(day ? DisplayMode::Day : DisplayMode::Night);
    DashColors colors;
    colors.back = look.background;
    colors.face = look.surface;
    colors.edge = look.edge;
    colors.lights = look.text;
    colors.labels = look.mutedText;
    colors.needle = look.needle;
    colors.redZone = look.redZone;
    colors.yellowZone = look.yellowZone;
    colors.greenZone = look.greenZone;
    colors.lampOff = look.lampOff;
    colors.badge = look.warningBadge;
    colors.badgeText = look.warningBadgeText;
    colors.alarm = look.alarmBadge;
    colors.alarmText = look.alarmBadgeText;
    return colors;
}

}  // namespace zentaq
