#include "windows/window_registry.h"

#include <vector>

#include "unit/table_kinds.h"

namespace zentaq {

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
