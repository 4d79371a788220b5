#include <algorithm>
#include <array>

#include "app/data_points.h"
#include "app/options.h"
#include "base/number_text.h"
#include "base/settings_keys.h"
#include "base/text.h"

namespace zentaq {

namespace {

using enum FieldKind;

constexpr std::array pages{
    OptionPageRow{OptionPage::Communications, "&Communications", "helpoptcomm"},
    OptionPageRow{OptionPage::Start, "&Start && log", "helpoptstart"},
    OptionPageRow{OptionPage::Display, "&Display && temperatures", "helpopttemp"},
    OptionPageRow{OptionPage::Tables, "&Tables && graphs", "helpopttable"},
    OptionPageRow{OptionPage::Dashboard, "Dash&board && monitor", "helpoptmonitor"},
    OptionPageRow{OptionPage::DataPoints, "Data &points", "helpoptdatalog"},
    OptionPageRow{OptionPage::Print, "P&rint", "helpoptprint"},
};

constexpr std::array groups{
    OptionGroupRow{"helpoptcomm", "Serial link"},
    OptionGroupRow{"helpoptstart", "Start of the program"},
    OptionGroupRow{"helpoptlog", "System log"},
    OptionGroupRow{"helpopttemp", "Unit of temperatures"},
    OptionGroupRow{"helpoptalarm", "Temperature alarms"},
    OptionGroupRow{"helpopttable", "Tables and graphs"},
    OptionGroupRow{"helpoptcells", "Cell Colors"},
    OptionGroupRow{"helpoptmonitor", "Monitoring"},
    OptionGroupRow{"helpoptdash", "Dashboard"},
    OptionGroupRow{"helpoptcolor", "Dashboard colors"},
    OptionGroupRow{"helpoptdatalog", "Flight recorder"},
    OptionGroupRow{"helpoptprint", "The toolbar's print button"},
};

// ---- What options do beyond being stored

void convertAlarms(Options& options, Session& session) {
    options.convertAlarms();
    session.windows().tell(&WindowNews::temperaturesChanged);
}
void tellUpdateRate(Options&, Session& session) {
    session.windows().tell(&WindowNews::updateRateChanged);
}
void showStoredColours(Options& options, Session&) {
    options.loadColours();
}
void switchLog(Options& options, Session& session) {
    session.console.LogToFile(options.on("chkAutoLog"));
}
void switchTableColours(Options& options, Session& session) {
    session.TableColorMode = options.on("chkAFRColors") ? 1 : 0;
    session.windows().tell(&WindowNews::clearTableColours);
}
void turnDashboard(Options& options, Session& session) {
    if (!session.Monitoring) return;
    WindowSet& windows = session.windows();
    windows.tell(&WindowNews::look, options.on("optMonitorMode"));
    // A colour that was refused leaves the stored one in force.
    const SettingsStore& store = session.settings();
    windows.tell(&WindowNews::dashboardColours, store.get(settings::system, settings::DashLights),
                 store.get(settings::system, settings::NeedleColor));
}
void showCommList(Options& options, Session& session) {
    session.windows().tell(&WindowNews::showCommList, options.on("chkShowCommDialog"));
}
void showRecorderRows(Options&, Session& session) {
    session.windows().tell(&WindowNews::initializeRecorderRows);
}
void switchTrace(Options&, Session& session) {
    session.applyTrace();
}

// Turns are the order in which Apply stores and acts; what has none comes behind all that have one.
// A design value is what the program does while the setting has never been written, so that an Apply that
// changes nothing on the screen changes nothing in the program either.
// clang-format off
constexpr OptionRow table[] = {
    {.control = "cmbCOMM", .caption = "CO&MM PORT", .page = OptionPage::Communications, .kind = Port,
     .key = settings::CommPort, .design = "1", .turn = 1, .help = "helpoptcomm",
     .tip = "The serial port that the unit is connected to. A changed port is opened when monitoring begins "
         "anew, or at the next start; the link panel changes it at once.",
     .words = "serial cable usb adapter connection"},
    {.control = "cmdAutoDetectPort", .caption = "A&uto Detect Port", .page = OptionPage::Communications,
     .kind = Action, .help = "helpoptcomm",
     .tip = "Searches ports 1 to 12 for a unit and keeps the one that answers.",
     .words = "serial cable usb adapter find search connect"},
    // kept: CommCnsl is stored and shown here and read by nobody else.
    {.control = "chkCOMM", .caption = "Sho&w Communication Console", .page = OptionPage::Communications,
     .key = "CommCnsl", .design = "0", .turn = 4, .help = "helpoptcomm",
     .tip = "Remembered with the other options; nothing depends on it.", .words = "link list"},
    {.control = "chkShowCommDialog", .caption = "Show Communications Dialo&g",
     .page = OptionPage::Communications, .key = settings::CommDialog, .design = "1", .stored = Stored::AtOnce,
     .help = "helpoptcomm",
     .tip = "Shows the list of what is sent and received below the workspace. Stored at once; the list "
         "follows with Apply.", .words = "console link messages list", .applied = {19, showCommList}},
    // kept: PollRate is stored and shown here and read by nobody else.
    {.control = "txtPollRate", .caption = "Po&lling Rate in Seconds", .page = OptionPage::Communications,
     .kind = Text, .key = "PollRate", .turn = 11, .help = "helpoptcomm",
     .tip = "Remembered with the other options; nothing depends on it.", .words = "interval sync"},
    {.control = "chkWireTrace", .caption = "R&ecord what passes over the serial line",
     .page = OptionPage::Communications, .key = settings::WireTrace, .design = "0", .help = "helpoptcomm",
     .tip = "Writes every byte that is sent and received, with its time and meaning, to the file "
         "zentaq.trace beside the program, for whoever helps you. The link stays as fast.",
     .words = "wire trace log bytes support protocol problem help",
     .applied = {OptionRow::lastTurn, switchTrace}},

    {.control = "chkFileOpen", .caption = "Start Progra&m with BIN File Open Prompt",
     .page = OptionPage::Start, .key = settings::FileOpen, .design = "1", .turn = 9, .help = "helpoptstart",
     .tip = "Asks for a calibration file when the program starts.", .words = "startup calibration dialog"},
    // kept: Cnsl is stored and shown here and read by nobody else.
    {.control = "chkConsole", .caption = "Sho&w Console at Start Up", .page = OptionPage::Start,
     .key = "Cnsl", .design = "0", .turn = 3, .help = "helpoptstart",
     .tip = "Remembered with the other options; nothing depends on it.", .words = "startup log"},
    {.control = "chkAutoLog", .caption = "A&utomatically Create System Log File", .page = OptionPage::Start,
     .key = settings::AutoLog, .design = "1", .turn = 2, .help = "helpoptlog",
     .tip = "Writes every line of the system console to the file zentaq.log beside the program.",
     .words = "console record support", .applied = {2, switchLog}},

    {.control = "chkTemperature", .caption = "Sho&w Temperature in Fahrenheit", .page = OptionPage::Display,
     .key = settings::TemperatureToggle, .design = "1", .stored = Stored::AtOnceAndApply, .turn = 13,
     .help = "helpopttemp", .tip = "Degrees Fahrenheit in place of degrees Celsius, everywhere and at once.",
     .words = "celsius degrees units clt mat", .clicked = convertAlarms},
    {.control = "txtCLTvalue", .caption = "C&LT Alarm", .page = OptionPage::Display, .kind = Alarm,
     .key = settings::CLTAlarmValue, .design = "-", .turn = 14, .help = "helpoptalarm",
     .tip = "Coolant temperature from which its reading on the dashboard flashes. A - keeps the alarm as it "
         "is.", .words = "coolant overheat hot warning threshold", .beside = "lblCLTunits"},
    {.control = "txtMATvalue", .caption = "&MAT Alarm", .page = OptionPage::Display, .kind = Alarm,
     .key = settings::MATAlarmValue, .design = "-", .turn = 15, .help = "helpoptalarm",
     .tip = "Manifold air temperature from which its reading on the dashboard flashes. A - keeps the alarm "
         "as it is.", .words = "manifold intake air hot warning threshold", .beside = "lblMATunits"},

    {.control = "chkGraphs", .caption = "Doc&k 2D Graphs in lower portion of the screen",
     .page = OptionPage::Tables, .key = settings::Graphs, .design = "0", .turn = 8, .help = "helpopttable",
     .tip = "Puts the curve of a table below the table.", .words = "curve window layout"},
    {.control = "chkColumnType", .caption = "Override Automatic Column Resizing &with Fixed Width (Tables)",
     .page = OptionPage::Tables, .key = settings::Column_Type, .design = "0", .stored = Stored::AtOnce,
     .help = "helpopttable", .tip = "All columns of a table take one width.", .words = "grid cells layout"},
    {.control = "chkAFRColors", .caption = "O&verlay AFR Colors (R,G,Y) on Tables while monitoring",
     .page = OptionPage::Tables, .key = settings::TableColor, .design = "0", .turn = 10,
     .help = "helpopttable",
     .tip = "Cells that the engine has run in show whether it was lean, rich or on target.",
     .words = "red green yellow air fuel ratio mixture colours paint", .applied = {16, switchTableColours}},
    {.control = "optCellColors", .index = 0, .caption = "As always: VE in &green and red, other tables plain",
     .page = OptionPage::Tables, .kind = Option, .key = settings::CellScale, .design = "0", .turn = 10,
     .help = "helpoptcells",
     .tip = "Cells of the VE table turn green above 0 and red below it, the cells of the other tables are "
         "plain.", .words = "colours ground background white"},
    {.control = "optCellColors", .index = 1, .caption = "&Heat scale: every table from blue to yellow",
     .page = OptionPage::Tables, .kind = Option, .key = settings::CellScale, .design = "0", .turn = 10,
     .help = "helpoptcells",
     .tip = "The lowest value of a table is dark blue, the highest bright yellow. The brightness rises with "
         "the value, so that the scale reads without color vision, too.",
     .words = "colours heatmap gradient color blind ground background"},

    {.control = "chkAutoMonitor", .caption = "Automatically be&gin monitoring ORB unit upon startup",
     .page = OptionPage::Dashboard, .key = settings::AutoMonitor, .design = "0",
     .stored = Stored::AtOnceAndApply, .turn = 12, .help = "helpoptmonitor",
     .tip = "A monitor session begins as soon as a unit is found.", .words = "live connect start"},
    // kept: a check box without a setting; it starts unchecked each time and changes nothing.
    {.control = "chkAutoOutput", .caption = "Enable A&utomatic Monitoring on ORB unit",
     .page = OptionPage::Dashboard, .design = "0", .help = "helpoptmonitor", .tip = "Not in use.",
     .words = "live output"},
    {.control = "optMonitorMode", .index = 0, .caption = "&Night Mode (Black)", .page = OptionPage::Dashboard,
     .kind = Option, .key = settings::MonitorMode, .design = "0", .stored = Stored::AtOnce,
     .help = "helpoptdash",
     .tip = "A dark screen for a dark car. Stored at once; a monitor session follows with Apply, and the "
         "next start.", .words = "dark black colours theme background brightness",
     .clicked = showStoredColours, .applied = {18, turnDashboard}},
    {.control = "optMonitorMode", .index = 1, .caption = "Da&y Mode (White)", .page = OptionPage::Dashboard,
     .kind = Option, .key = settings::MonitorMode, .design = "0", .stored = Stored::AtOnce,
     .help = "helpoptdash",
     .tip = "A bright screen for daylight. Stored at once; a monitor session follows with Apply, and the "
         "next start.", .words = "bright light white colours theme background brightness sun"},
    {.control = "sldDashAdjust", .caption = "Ad&justable Dashboard Update Rate",
     .page = OptionPage::Dashboard, .kind = Slider, .key = settings::ADUR,
     .stored = Stored::AtOnce, .help = "helpoptdash",
     .tip = "How often a second the unit is asked for its values. Lower it when the link cannot keep up.",
     .words = "speed polling refresh frames second", .beside = "lblADUR", .least = slowestUpdateRate,
     .most = fastestUpdateRate, .unit = "updates a second", .clicked = tellUpdateRate},
    {.control = "txtNeedleColor", .caption = "Need&le Color", .page = OptionPage::Dashboard, .kind = Colour,
     .key = settings::NeedleColor, .turn = 5, .help = "helpoptcolor",
     .tip = "Color of the dashboard's needles, as red + 256 x green + 65536 x blue. Empty takes the mode's "
         "own.", .words = "colour gauge pointer choose", .beside = "cmdChoose"},
    {.control = "txtDashLights", .caption = "Das&h Lights", .page = OptionPage::Dashboard, .kind = Colour,
     .key = settings::DashLights, .turn = 6, .help = "helpoptcolor",
     .tip = "Color of the dashboard's scales and values, as red + 256 x green + 65536 x blue. Empty takes "
         "the mode's own.", .words = "colour gauge numbers ticks choose", .beside = "cmdChoose2"},
    // kept: LabelLights is stored and shown here and read by nobody else.
    {.control = "txtLabelLights", .caption = "Dash Lab&els", .page = OptionPage::Dashboard, .kind = Colour,
     .key = "LabelLights", .turn = 7, .help = "helpoptcolor",
     .tip = "Remembered with the other colors; no label takes it.", .words = "colour caption text choose",
     .beside = "cmdChoose3"},

    {.control = "viewList", .caption = "C&hoose 10 data points for graphing during flight recording",
     .page = OptionPage::DataPoints, .kind = List, .turn = 17, .help = "helpoptdatalog",
     .tip = "The values that are drawn while a log is recorded or played.",
     .words = "datalog recorder playback channels log graph curves", .applied = {20, showRecorderRows}},

    {.control = "optPrintButton", .index = 0, .caption = "Print Current For&m", .page = OptionPage::Print,
     .kind = Option, .key = settings::Print, .design = "0", .stored = Stored::AtOnce, .help = "helpoptprint",
     .tip = "The toolbar's print button prints what is on the screen.",
     .words = "paper printer toolbar window"},
    {.control = "optPrintButton", .index = 1, .caption = "Print BIN Fi&le", .page = OptionPage::Print,
     .kind = Option, .key = settings::Print, .design = "0", .stored = Stored::AtOnce, .help = "helpoptprint",
     .tip = "The toolbar's print button prints the calibration.",
     .words = "paper printer toolbar calibration listing"},
};
// clang-format on

std::string_view pageTitle(OptionPage page) {
    return pages.at(static_cast<std::size_t>(page)).title;
}

std::string searchedText(const OptionRow& row) {
    std::string text = plainCaption(row.caption) + ' ' + plainCaption(pageTitle(row.page)) + ' ' +
                       std::string(row.tip) + ' ' + std::string(row.words);
    if (row.kind == List) {
        for (const std::string_view name : dataPointNames()) text += ' ' + std::string(name);
    }
    return upper(text);
}

bool holdsAll(const std::string& text, const std::vector<std::string>& words) {
    return std::all_of(words.begin(), words.end(),
                       [&](const std::string& word) { return text.find(word) != std::string::npos; });
}

}  // namespace

std::span<const OptionPageRow> optionPages() {
    return pages;
}

std::span<const OptionGroupRow> optionGroups() {
    return groups;
}

std::span<const OptionRow> optionTable() {
    return table;
}

std::string controlName(const OptionRow& row) {
    const std::string name{row.control};
    return row.index < 0 ? name : name + "(" + numberText(row.index) + ")";
}

std::vector<const OptionRow*> findOptions(std::string_view query) {
    std::vector<std::string> words = split(upper(trimmed(query)), ' ');
    std::erase(words, "");
    std::vector<const OptionRow*> found;
    if (words.empty()) return found;
    for (const OptionRow& row : table) {
        if (holdsAll(searchedText(row), words)) found.push_back(&row);
    }
    std::stable_partition(found.begin(), found.end(), [&](const OptionRow* row) {
        return holdsAll(upper(plainCaption(row->caption)), words);
    });
    return found;
}

}  // namespace zentaq
