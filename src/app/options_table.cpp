#include <algorithm>
#include <array>

#include "app/data_points.h"
#include "app/options.h"
#include "base/settings_keys.h"
#include "base/number_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

using enum OptionKind;

constexpr std::array pages{
    OptionPageRow{OptionPage::Communications, "&Communications", "helpoptcomm"},
    OptionPageRow{OptionPage::Start, "&Start && log", "helpoptstart"},
    OptionPageRow{OptionPage::Display, "&Display && temperatures", "helpopttemp"},
    OptionPageRow{OptionPage::Tables, "&Tables && graphs", "helpopttable"},
    OptionPageRow{OptionPage::Dashboard, "Dash&board && monitor", "helpoptmonitor"},
    OptionPageRow{OptionPage::DataPoints, "Data &points", "helpoptdatalog"},
    OptionPageRow{OptionPage::Print, "P&rint", "helpoptprint"},
};

// A design value is what the program does while the setting has never been written, so that an Apply that
// changes nothing on the screen changes nothing in the program either.
constexpr std::array table{
    OptionRow{.control = "cmbCOMM",
              .caption = "COMM PORT",
              .access = 'M',
              .page = OptionPage::Communications,
              .kind = Port,
              .key = settings::CommPort,
              .design = "1",
              .helpKey = "helpoptcomm",
              .help = "The serial port that the unit is connected to. A changed port is opened when "
                      "monitoring begins anew, or at the next start; the link panel changes it at once.",
              .words = "serial cable usb adapter connection"},
    OptionRow{.control = "cmdAutoDetectPort",
              .caption = "Auto Detect Port",
              .access = 'u',
              .page = OptionPage::Communications,
              .kind = Port,
              .helpKey = "helpoptcomm",
              .help = "Searches ports 1 to 12 for a unit and keeps the one that answers.",
              .words = "serial cable usb adapter find search connect"},
    // kept: CommCnsl is stored and shown here and read by nobody else.
    OptionRow{.control = "chkCOMM",
              .caption = "Show Communication Console",
              .access = 'w',
              .page = OptionPage::Communications,
              .key = settings::CommCnsl,
              .design = "0",
              .helpKey = "helpoptcomm",
              .help = "Remembered with the other options; nothing depends on it.",
              .words = "link list"},
    OptionRow{.control = "chkShowCommDialog",
              .caption = "Show Communications Dialog",
              .access = 'g',
              .page = OptionPage::Communications,
              .key = settings::CommDialog,
              .design = "1",
              .helpKey = "helpoptcomm",
              .help = "Shows the list of what is sent and received below the workspace. Stored at once; the "
                      "list follows with Apply.",
              .words = "console link messages list"},
    // kept: PollRate is stored and shown here and read by nobody else.
    OptionRow{.control = "txtPollRate",
              .caption = "Polling Rate in Seconds",
              .access = 'l',
              .page = OptionPage::Communications,
              .kind = Number,
              .key = settings::PollRate,
              .helpKey = "helpoptcomm",
              .help = "Remembered with the other options; nothing depends on it.",
              .words = "interval sync"},
    OptionRow{.control = "chkWireTrace",
              .caption = "Record what passes over the serial line",
              .access = 'e',
              .page = OptionPage::Communications,
              .key = settings::WireTrace,
              .design = "0",
              .helpKey = "helpoptcomm",
              .help = "Writes every byte that is sent and received, with its time and meaning, to the file "
                      "zentaq.trace beside the program, for whoever helps you. The link stays as fast.",
              .words = "wire trace log bytes support protocol problem help"},

    OptionRow{.control = "chkFileOpen",
              .caption = "Start Program with BIN File Open Prompt",
              .access = 'm',
              .page = OptionPage::Start,
              .key = settings::FileOpen,
              .design = "1",
              .helpKey = "helpoptstart",
              .help = "Asks for a calibration file when the program starts.",
              .words = "startup calibration dialog"},
    // kept: Cnsl is stored and shown here and read by nobody else.
    OptionRow{.control = "chkConsole",
              .caption = "Show Console at Start Up",
              .access = 'w',
              .page = OptionPage::Start,
              .key = settings::Cnsl,
              .design = "0",
              .helpKey = "helpoptstart",
              .help = "Remembered with the other options; nothing depends on it.",
              .words = "startup log"},
    OptionRow{.control = "chkAutoLog",
              .caption = "Automatically Create System Log File",
              .access = 'u',
              .page = OptionPage::Start,
              .key = settings::AutoLog,
              .design = "1",
              .helpKey = "helpoptlog",
              .help = "Writes every line of the system console to the file zentaq.log beside the program.",
              .words = "console record support"},

    OptionRow{.control = "chkTemperature",
              .caption = "Show Temperature in Fahrenheit",
              .access = 'w',
              .page = OptionPage::Display,
              .key = settings::TemperatureToggle,
              .design = "1",
              .helpKey = "helpopttemp",
              .help = "Degrees Fahrenheit in place of degrees Celsius, everywhere and at once.",
              .words = "celsius degrees units clt mat"},
    OptionRow{.control = "txtCLTvalue",
              .caption = "CLT Alarm",
              .access = 'L',
              .page = OptionPage::Display,
              .kind = Temperature,
              .key = settings::CLTAlarmValue,
              .design = "-",
              .helpKey = "helpoptalarm",
              .help = "Coolant temperature from which its reading on the dashboard flashes. A - keeps the "
                      "alarm as it is.",
              .words = "coolant overheat hot warning threshold"},
    OptionRow{.control = "txtMATvalue",
              .caption = "MAT Alarm",
              .access = 'M',
              .page = OptionPage::Display,
              .kind = Temperature,
              .key = settings::MATAlarmValue,
              .design = "-",
              .helpKey = "helpoptalarm",
              .help =
                  "Manifold air temperature from which its reading on the dashboard flashes. A - keeps the "
                  "alarm as it is.",
              .words = "manifold intake air hot warning threshold"},

    OptionRow{.control = "chkGraphs",
              .caption = "Dock 2D Graphs in lower portion of the screen",
              .access = 'k',
              .page = OptionPage::Tables,
              .key = settings::Graphs,
              .design = "0",
              .helpKey = "helpopttable",
              .help = "Puts the curve of a table below the table.",
              .words = "curve window layout"},
    OptionRow{.control = "chkColumnType",
              .caption = "Override Automatic Column Resizing with Fixed Width (Tables)",
              .access = 'w',
              .page = OptionPage::Tables,
              .key = settings::Column_Type,
              .design = "0",
              .helpKey = "helpopttable",
              .help = "All columns of a table take one width.",
              .words = "grid cells layout"},
    OptionRow{.control = "chkAFRColors",
              .caption = "Overlay AFR Colors (R,G,Y) on Tables while monitoring",
              .access = 'v',
              .page = OptionPage::Tables,
              .key = settings::TableColor,
              .design = "0",
              .helpKey = "helpopttable",
              .help = "Cells that the engine has run in show whether it was lean, rich or on target.",
              .words = "red green yellow air fuel ratio mixture colours paint"},

    OptionRow{.control = "chkAutoMonitor",
              .caption = "Automatically begin monitoring ORB unit upon startup",
              .access = 'g',
              .page = OptionPage::Dashboard,
              .key = settings::AutoMonitor,
              .design = "0",
              .helpKey = "helpoptmonitor",
              .help = "A monitor session begins as soon as a unit is found.",
              .words = "live connect start"},
    // kept: a check box without a setting; it starts unchecked each time and changes nothing.
    OptionRow{.control = "chkAutoOutput",
              .caption = "Enable Automatic Monitoring on ORB unit",
              .access = 'u',
              .page = OptionPage::Dashboard,
              .design = "0",
              .helpKey = "helpoptmonitor",
              .help = "Not in use.",
              .words = "live output"},
    OptionRow{.control = "optMonitorMode",
              .index = 0,
              .caption = "Night Mode (Black)",
              .access = 'N',
              .page = OptionPage::Dashboard,
              .kind = Choice,
              .key = settings::MonitorMode,
              .design = "0",
              .helpKey = "helpoptdash",
              .help = "A dark screen for a dark car. Stored at once; a monitor session follows with Apply, "
                      "and the next start.",
              .words = "dark black colours theme background brightness"},
    OptionRow{.control = "optMonitorMode",
              .index = 1,
              .caption = "Day Mode (White)",
              .access = 'y',
              .page = OptionPage::Dashboard,
              .kind = Choice,
              .key = settings::MonitorMode,
              .design = "0",
              .helpKey = "helpoptdash",
              .help = "A bright screen for daylight. Stored at once; a monitor session follows with Apply, "
                      "and the next start.",
              .words = "bright light white colours theme background brightness sun"},
    OptionRow{.control = "sldDashAdjust",
              .caption = "Adjustable Dashboard Update Rate",
              .access = 'j',
              .page = OptionPage::Dashboard,
              .kind = Slider,
              .key = settings::ADUR,
              .design = "125",  // what an empty setting gives: one update in 8 ms
              .helpKey = "helpoptdash",
              .help = "How often a second the unit is asked for its values. Lower it when the link cannot "
                      "keep up.",
              .words = "speed polling refresh frames second"},
    OptionRow{.control = "txtNeedleColor",
              .caption = "Needle Color",
              .access = 'l',
              .page = OptionPage::Dashboard,
              .kind = Colour,
              .key = settings::NeedleColor,
              .helpKey = "helpoptcolor",
              .help =
                  "Color of the dashboard's needles, as red + 256 x green + 65536 x blue. Empty takes the "
                  "mode's own.",
              .words = "colour gauge pointer choose"},
    OptionRow{.control = "txtDashLights",
              .caption = "Dash Lights",
              .access = 'h',
              .page = OptionPage::Dashboard,
              .kind = Colour,
              .key = settings::DashLights,
              .helpKey = "helpoptcolor",
              .help =
                  "Color of the dashboard's scales and values, as red + 256 x green + 65536 x blue. Empty "
                  "takes the mode's own.",
              .words = "colour gauge numbers ticks choose"},
    // kept: LabelLights is stored and shown here and read by nobody else.
    OptionRow{.control = "txtLabelLights",
              .caption = "Dash Labels",
              .access = 'e',
              .page = OptionPage::Dashboard,
              .kind = Colour,
              .key = settings::LabelLights,
              .helpKey = "helpoptcolor",
              .help = "Remembered with the other colors; no label takes it.",
              .words = "colour caption text choose"},

    OptionRow{.control = "viewList",
              .caption = "Choose 10 data points for graphing during flight recording",
              .access = 'h',
              .page = OptionPage::DataPoints,
              .kind = DataPoints,
              .helpKey = "helpoptdatalog",
              .help = "The values that are drawn while a log is recorded or played.",
              .words = "datalog recorder playback channels log graph curves"},

    OptionRow{.control = "optPrintButton",
              .index = 0,
              .caption = "Print Current Form",
              .access = 'm',
              .page = OptionPage::Print,
              .kind = Choice,
              .key = settings::Print,
              .design = "0",
              .helpKey = "helpoptprint",
              .help = "The toolbar's print button prints what is on the screen.",
              .words = "paper printer toolbar window"},
    OptionRow{.control = "optPrintButton",
              .index = 1,
              .caption = "Print BIN File",
              .access = 'l',
              .page = OptionPage::Print,
              .kind = Choice,
              .key = settings::Print,
              .design = "0",
              .helpKey = "helpoptprint",
              .help = "The toolbar's print button prints the calibration.",
              .words = "paper printer toolbar calibration listing"},
};

std::string_view pageTitle(OptionPage page) {
    return pages.at(static_cast<std::size_t>(page)).title;
}

std::string withoutAccessKeys(std::string_view text) {
    std::string plain{text};
    std::erase(plain, '&');
    return plain;
}

std::string searchedText(const OptionRow& row) {
    std::string text = std::string(row.caption) + ' ' + withoutAccessKeys(pageTitle(row.page)) + ' ' +
                       std::string(row.help) + ' ' + std::string(row.words);
    if (row.kind == DataPoints) {
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
    std::stable_partition(found.begin(), found.end(),
                          [&](const OptionRow* row) { return holdsAll(upper(row->caption), words); });
    return found;
}

}  // namespace zentaq
