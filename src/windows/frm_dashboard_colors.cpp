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
<<<<<<< HEAD
=======
    colors.badge = look.warningBadge;
    colors.badgeText = look.warningBadgeText;
>>>>>>> de4f2a3 (The dashboard goes by its room: dials where they fit, tiles by rank with further pages, captions as large as the type scale says; it looks live only while frames come)
    return colors;
}

}  // namespace zentaq
