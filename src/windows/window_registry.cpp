#include "windows/window_registry.h"

#include <concepts>
#include <vector>

#include "app/start_up.h"
#include "guide/guide.h"
#include "unit/table_kinds.h"
#include "windows/frm_config.h"
#include "windows/frm_dashboard.h"
#include "windows/frm_edit_map_sensors.h"
#include "windows/frm_fast_help.h"
#include "windows/frm_general_config.h"
#include "windows/frm_help.h"
#include "windows/frm_options.h"
#include "windows/frm_table.h"
#include "windows/splash.h"

namespace zentaq {

namespace {

template <typename F>
Form* make(const FormNeeds& needs) {
    if constexpr (std::constructible_from<F, Session&, MainCommands&, QWidget*>) {
        return new F(needs.session, needs.commands, needs.parent);
    } else {
        return new F(needs.session, needs.parent);
    }
}

Form* makeConfig(const FormNeeds& needs) {
    auto* form = new FrmConfig(needs.session, needs.commands, needs.parent);
    QObject::connect(form, &FrmConfig::entryAsked, form,
                     [run = needs.run](const char* entry) { run(entry); });
    return form;
}

Form* makeGeneralConfig(const FormNeeds& needs) {
    auto* form = new FrmGeneralConfig(needs.session, needs.parent);
    QObject::connect(form, &FrmGeneralConfig::sensorManagerAsked, form,
                     [run = needs.run] { run("mnuMAPSensors"); });
    return form;
}

/// Its parent is the workspace.
Form* makeTable(const FormNeeds& needs) {
    auto* workspace = static_cast<FrmConfig*>(needs.parent);
    auto* form = new FrmTable(needs.session, workspace);
    QObject::connect(form, &FrmTable::dockingAsked, workspace,
                     [workspace, form](bool docked) { workspace->dock().place(*form, docked); });
    return form;
}

bool tableOffered(Session& session, const std::string& table) {
    if (session.slotInHand() == 0 || session.creating()) return false;
    return hasTable(session.currentUnitObject().kind(), table);
}

Form* makeHelp(const FormNeeds& needs) {
    auto* form = new FrmHelp(guideFolder(needs.session.applicationFolder()), needs.parent);
    form->keepPlace(needs.session.settings());
    return form;
}

Form* makeSplash(const FormNeeds& needs) {
    return new FrmSplash(QString::fromStdString(versionText()), needs.parent,
                         [&session = needs.session] { return session.StartingUp == 1; });
}

constexpr WindowRow rows[] = {
    {window::config, FormPlace::Below, makeConfig, true},
    {window::dashboard, FormPlace::Above, make<FrmDashBoard>},
    {window::generalConfig, FormPlace::Beside, makeGeneralConfig, true, true},
    {window::table, FormPlace::Docked, makeTable, true, false, true, tableOffered},
    {window::sensorEditor, FormPlace::Beside, make<FrmEditMAPSensors>, true},
    {window::options, FormPlace::Beside, make<FrmOptions>, true},
    {window::fastHelp, FormPlace::Beside, make<FrmFastHelp>},
    {window::help, FormPlace::Beside, makeHelp},
    {window::splash, FormPlace::Beside, makeSplash},
};

}  // namespace

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
