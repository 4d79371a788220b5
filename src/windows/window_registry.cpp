#include "windows/window_registry.h"

#include <vector>

#include "config/curve_graph.h"
#include "unit/table_kinds.h"

namespace zentaq {

class FrmGraph2D;
class FrmGraph3D;

namespace {

bool tableOffered(Session& session, const std::string& table) {
    if (session.slotInHand() == 0 || session.creating()) return false;
    return hasTable(session.currentUnitObject().kind(), table);
}

bool pinsOffered(Session& session, const std::string& /*on*/) {
    return session.slotInHand() != 0 && !session.creating();
}

bool surfaceOffered(Session& session, const std::string& on) {
    return tableOffered(session, on.substr(0, on.find('/')));
}

bool curveOffered(Session& session, const std::string& on) {
    const CurveKind* kind = curveNamed(on);
    return pinsOffered(session, on) && kind != nullptr && hasCurve(session.currentUnitObject(), *kind);
}

/// One of the curve graphs that may be open at a time.
constexpr WindowRow curve(std::size_t number) {
    return {CurveWindows::names[number],
            FormPlace::Beside,
            makeForm<FrmGraph2D>,
            true,
            false,
            true,
            curveOffered};
}

/// One of the surface graphs that may be open at a time.
constexpr WindowRow surface(std::size_t number) {
    return {SurfaceWindows::names[number],
            FormPlace::Beside,
            makeForm<FrmGraph3D>,
            true,
            false,
            true,
            surfaceOffered};
}

}  // namespace

constexpr WindowRow rows[] = {
    {window::config, FormPlace::Below, makeForm<class FrmConfig>, true},
    {window::dashboard, FormPlace::Above, makeForm<class FrmDashBoard>},
    {window::generalConfig, FormPlace::Beside, makeForm<class FrmGeneralConfig>, true, true},
    {window::table, FormPlace::Docked, makeForm<class FrmTable>, true, false, true, tableOffered},
    {window::gpio, FormPlace::Docked, makeForm<class FrmGpio>, true, false, true, pinsOffered},
    {window::curve, FormPlace::Docked, makeForm<FrmGraph2D>, true, false, true, curveOffered},
    {window::sensorEditor, FormPlace::Beside, makeForm<class FrmEditMAPSensors>, true},
    {window::options, FormPlace::Beside, makeForm<class FrmOptions>, true},
    {window::fastHelp, FormPlace::Beside, makeForm<class FrmFastHelp>},
    {window::help, FormPlace::Beside, makeForm<class FrmHelp>},
    {window::splash, FormPlace::Beside, makeForm<class FrmSplash>},
    surface(0),
    surface(1),
    surface(2),
    surface(3),
    surface(4),
    surface(5),
    surface(6),
    surface(7),
    surface(8),
    surface(9),
    surface(10),
    curve(0),
    curve(1),
    curve(2),
    curve(3),
    curve(4),
    curve(5),
    curve(6),
    curve(7),
    curve(8),
    curve(9),
    curve(10),
};

std::span<const WindowRow> windowRows() {
    return rows;
}

std::span<const MenuEntry> menuEntries() {
    static const std::vector<MenuEntry> all = [] {
        std::vector<MenuEntry> entries(menuTree().begin(), menuTree().end());
        for (const WindowRow& row : rows) {
            const WindowEntry& entry = row.menu;
            if (entry.name.empty()) continue;
            entries.push_back({entry.name, entry.caption, entry.parent, entry.shortcut,
                               [](const Session&) { return true; }, row.name});
        }
        return entries;
    }();
    return all;
}

}  // namespace zentaq
