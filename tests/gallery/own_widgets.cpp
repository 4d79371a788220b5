#include "gallery/own_widgets.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QListWidget>
#include <QProgressBar>
#include <QVBoxLayout>
#include <array>
#include <cmath>

#include "app/sensor_manager.h"
#include "gallery/posing_style.h"
#include "live/gauges.h"
#include "qt/colour_swatch.h"
#include "qt/elided_label.h"
#include "qt/entry_box.h"
#include "qt/kept_splitter.h"
#include "qt/value_label.h"
#include "tables/cell_colours.h"
#include "tables/heat_scale.h"
#include "tables/table_badges.h"
#include "windows/cell_box.h"
#include "windows/curve_picture.h"
#include "windows/formula_line.h"
#include "windows/frm_config_console.h"
#include "windows/frm_config_link_panel.h"
#include "windows/frm_config_page_view.h"
#include "windows/frm_dashboard_panel.h"
#include "windows/guide_page.h"
#include "windows/link_lamp.h"
#include "windows/log_plot_view.h"
#include "windows/outlined.h"
#include "windows/sensor_line_picture.h"
#include "windows/sketch_picture.h"
#include "windows/state_strip_view.h"
#include "windows/surface_picture.h"
#include "windows/table_toolbar.h"

namespace zentaq {

namespace {

constexpr int columns = 8;
constexpr std::array shades{-30, -20, -10, 0, 5, 10, 20, 30};
constexpr std::array paints{Paint::White, Paint::Yellow, Paint::Green,      Paint::Red,
                            Paint::Blue,  Paint::Cyan,   Paint::LightGreen, Paint::LightRed};
constexpr int trailSteps = 4;

/// Values, the colors of the mixture, the trail with its steps and the heat scale, one a row.
TableGrid everyGround() {
    TableGrid grid;
    constexpr int heatRow = 3 + trailSteps;
    grid.resize(heatRow, columns);
    for (int column = 1; column <= columns; ++column) {
        const auto at = static_cast<std::size_t>(column - 1);
        grid.text(0, column, std::to_string(column * 1000));
        for (int row = 1; row <= grid.rows(); ++row) grid.text(row, column, std::to_string(shades[at]));
        grid.colour(1, column, shadeOf(static_cast<float>(shades[at]), 0, 50));
        grid.colour(2, column, paintColour(paints[at]));
        grid.colour(heatRow, column, heatColour((column - 1.0) / (columns - 1)));
        for (int step = 0; step < trailSteps; ++step) {
            grid.colour(3 + step, column, paintColour(paints[at]));
            grid.trail(3 + step, column, step);
        }
    }
    grid.text(1, 0, "value");
    grid.text(2, 0, "mixture");
    grid.text(heatRow, 0, "heat scale");
    for (int step = 0; step < trailSteps; ++step) grid.text(3 + step, 0, "trail " + std::to_string(step));
    return grid;
}

class PosedTable : public TableGridView {
 public:
    PosedTable(bool keyboard, QWidget* parent) : TableGridView(parent), keyboard_(keyboard) {}
    bool hasKeyboard() const override { return keyboard_; }

 private:
    bool keyboard_;
};

LinkStatus linkStatus(bool transfer) {
    LinkStatus status;
    status.connected = true;
    status.image = LinkImage::Monitor;
    status.title = transfer ? "Programming..." : "Monitoring...";
    status.line1 = "Receiving";
    status.activity = "{Monitoring}";
    status.send = transfer ? Lamp::Sending : Lamp::Rest;
    status.receive = transfer ? Lamp::Rest : Lamp::Received;
    status.port = "1";
    status.serialNumber = "001234";
    status.firmware = "ZQA5099";
    status.unitLabel = "A Std";
    status.progressVisible = transfer;
    status.progressPercent = 42;
    status.progressText = "42%";
    return status;
}

SensorSketch sketch(bool drawn) {
    SensorSketch line;
    line.drawn = drawn;
    line.lowest = -9.1;
    line.highest = 278.8;
    line.lowestText = "-9.1 kPa";
    line.highestText = "278.8 kPa";
    line.points = {{0.5, 20}, {4.5, 250}};
    line.unit = "kPa";
    if (!drawn) line.why = "Both points have one voltage.";
    return line;
}

std::vector<PageRow> pageRowsSample() {
    std::vector<PageRow> rows(2);
    rows[0].caption = "Rev limit";
    rows[0].text = "6500";
    rows[0].unit = "RPM";
    rows[0].limits = "1000 to 20000 RPM";
    rows[0].member = "REV_Limiter";
    rows[1] = rows[0];
    rows[1].caption = "On the fly";
    rows[1].onTheFly = true;
    return rows;
}

}  // namespace

std::vector<StripFacts> stripStates() {
    std::vector<StripFacts> all(12);
    StripFacts linked;
    linked.portOpen = linked.unitFound = linked.identified = true;
    linked.port = "1";
    linked.unit = "ORB A 001234";
    linked.firmware = linked.panel3 = "ZQA5099";
    linked.framesCome = linked.framesCame = true;
    linked.inHand = linked.kindAgrees = true;
    linked.model = "ORB A";
    linked.file = "tune.ZQ4OA";
    std::fill(all.begin() + 4, all.end(), linked);
    all[4].cell = "33.1 kPa, 875 RPM: -21 % (-50 to 50%)";
    all[1].adapterAway = true;
    all[2].portOpen = true;
    all[3].searching = true;
    all[5].onFly = all[5].changesNotStored = all[5].modified = true;
    all[6].zeroAdvance = true;
    all[7].transfer = StripFacts::Transfer::Calibration;
    all[7].percent = 42;
    all[8].framesCome = all[8].unitFound = false;
    all[8].unitLost = true;
    all[9].oldFirmware = true;
    all[10].reading = true;
    all[11].notice = "Saved, but the folder could not be remembered.";
    all[11].creating = true;
    return all;
}

OwnWidgets::OwnWidgets(QStyle& posing, QWidget* parent)
    : QWidget(parent), column_(new QVBoxLayout(this)), cells_(everyGround()) {
    column_->setContentsMargins(margins(fontMetrics(), Space::None));
    for (int i = 1; i <= 6; ++i) lines_.push_back("12:34:5" + std::to_string(i) + " - a line of the console");
    addTables(posing);
    addTableBars();
    addSurface();
    addCurves();
    addStrips();
    addDashboards();
    addLink();
    addTexts();
    addPages();
    addPlot();
    showMode(appliedLook(*qApp));
}

void OwnWidgets::addHeading(const QString& text) {
    auto* heading = new QLabel(text, this);
    heading->setFont(typeFont(Type::Heading));
    column_->addWidget(heading);
}

void OwnWidgets::showMode(DisplayMode mode) {
    for (const auto& follow : followers_) follow(mode);
}

// ---- The table

TableGridView* OwnWidgets::addTable(QStyle& posing, const QString& name, bool keyboard) {
    auto* table = new PosedTable(keyboard, this);
    table->setObjectName(name);
    table->setStyle(&posing);
    pose(*table, keyboard ? Pose::Focus : Pose::Normal);
    table->cells().show(&cells_);
    table->nameAxes("kPa \\ RPM", "Rows in kPa, columns in RPM");
    table->setFixedHeight(TableGridView::leastHeight(cells_.rows() + 1));
    table->sizeColumns(false);
    const auto cell = [table](int row, int column) { return table->cells().index(row - 1, column - 1); };
    table->selectionModel()->setCurrentIndex(cell(1, 2), QItemSelectionModel::NoUpdate);
    table->selectionModel()->select(QItemSelection(cell(1, 2), cell(4, 4)),
                                    QItemSelectionModel::ClearAndSelect);
    followers_.emplace_back([table](DisplayMode mode) { table->setMode(mode); });
    return table;
}

void OwnWidgets::addTables(QStyle& posing) {
    addHeading("Cells of a table: grounds, selection with the keyboard and without it, the engine's point");
    for (const auto& [name, keyboard] :
         {std::pair("Cells with the keyboard", true), std::pair("Cells without the keyboard", false)}) {
        auto* table = addTable(posing, name, keyboard);
        column_->addWidget(table);
        table->placeMarker(true, 3.3, 6.8);
    }
    addHeading("A cell that is open, and one that brings its text back behind a refusal");
    auto* row = new QHBoxLayout;
    for (const bool refused : {false, true}) {
        auto* table = addTable(posing, refused ? "Cell with a refused entry" : "Open cell", false);
        auto* box = new CellBox(*table);
        box->open({.text = refused ? "400" : "12.5", .selectedCharacters = 0}, {2, 3}, true);
        if (refused) box->bringBack("-10");
        followers_.emplace_back([box](DisplayMode mode) { box->setMode(mode); });
        // It stands over its cell, which has its place when the table has been laid out.
        connect(table, &TableGridView::resized, box, [box] { box->place({2, 3}); });
        row->addWidget(table);
    }
    auto* table = addTable(posing, "Line for many cells", false);
    auto* line = new FormulaLine(*table);
    followers_.emplace_back([line](DisplayMode mode) { line->setMode(mode); });
    connect(table, &TableGridView::resized, line, [line] { line->open("*1.05", 2, 3); });
    row->addWidget(table);
    column_->addLayout(row);
}

void OwnWidgets::addTableBars() {
    addHeading("Badges of a table");
    auto* row = new QHBoxLayout;
    for (std::size_t i = 0; i < viewBadges.size(); ++i) {
        auto* bar = new TableToolbar(this);
        const bool follows = i % 2 == 0;
        bar->showBadges({viewBadges[i], i == 0, follows ? followBadge : holdBadge, follows});
        followers_.emplace_back([bar](DisplayMode mode) { bar->setMode(mode); });
        row->addWidget(bar);
    }
    column_->addLayout(row);
}

void OwnWidgets::addSurface() {
    addHeading("A surface with its cursor and the engine's point");
    for (int i = 0; i < 16; ++i) {
        unit_.set("RPMTBL", 500.0 * (i + 1), i);
        unit_.set("MAPTBL", 15.0 + 5 * i, i);
    }
    for (int i = 0; i < 256; ++i) unit_.set("VE", i % 16 * 3 - i / 16 * 2, i);
    live_.RPM = 4200;
    live_.MAP = 42;
    surface_ = std::make_unique<SurfaceModel>(unit_, live_, paint_, "VE", "Volumetric Efficiency Table",
                                              TableView::Values);
    surface_->frame(TableColour::Normal);
    surface_->moveTo(4, 6);
    auto* picture = new SurfacePicture(*surface_, this);
    picture->setFixedHeight(fontMetrics().height() * 22);
    column_->addWidget(picture);
}

void OwnWidgets::addCurves() {
    addHeading("A curve with its points, the engine and its trace; what settings do");
    for (int i = 0; i < 20; ++i) unit_.set("CHKTBL", 120 - 6 * i, i);
    curve_ = std::make_unique<CurveGraph>(unit_, *curveNamed("Warm_Up"));
    for (int i = 0; i < 24; ++i) {
        live_.CLT = static_cast<float>(2 * i);
        curve_->redrawDot(live_);
    }
    auto* curve = new CurvePicture(this);
    curve->setFixedHeight(fontMetrics().height() * 12);
    curve->show(curve_.get());
    curve->showTrace(true);
    column_->addWidget(curve);
    unit_.set("ACE4", 0.5);
    unit_.set("ACE2", 40);
    unit_.set("ACE6", 25);
    auto* sketch = new SketchPicture(this);
    sketch->setFixedHeight(fontMetrics().height() * 14);
    sketch->show(*settingSketch(unit_, 2));
    column_->addWidget(sketch);
}

// ---- The state strip

void OwnWidgets::addStrips() {
    addHeading("The state strip in every state, and with little room");
    const auto add = [&](const StripFacts& facts) {
        auto* strip = new StateStripView(this);
        strip->show(stripRows(facts));
        column_->addWidget(strip);
        return strip;
    };
    for (const StripFacts& facts : stripStates()) add(facts);
    add(stripStates()[5])->setMaximumWidth(fontMetrics().averageCharWidth() * 60);
}

// ---- The dashboard

void OwnWidgets::addDashboards() {
    addHeading("The dashboard: live, with alarms, not live, without a unit");
    constexpr int lines = 9;
    constexpr std::array<std::string_view, 5> names{"lblTach", "lblAAFR", "lblMAP", "lblADV", "lblKNK"};
    const std::vector<std::string_view> readouts(names.begin(), names.end());
    enum class State { Live, Alarms, NotLive, NoUnit };
    for (const State state : {State::Live, State::Alarms, State::NotLive, State::NoUnit}) {
        auto* panel = new FrmDashBoardPanel(dialAngles(9000), this);
        panel->setObjectName(QStringLiteral("Dashboard %1").arg(static_cast<int>(state)));
        panel->setFixedHeight(fontMetrics().height() * lines);
        column_->addWidget(panel);
        for (LiveLabel* label : panel->findChildren<LiveLabel*>()) label->setText("101.3");
        panel->showReadouts(readouts);
        panel->setLive(state != State::NotLive);
        if (state == State::NoUnit) panel->showNoConnect(true, "Connecting...");
        if (state == State::Alarms)
            panel->showCodes("GPO1\nFAILED", "1 code: GPO1 FAILED", "1 code: GPO1 FAILED");
        followers_.emplace_back([panel, state](DisplayMode mode) {
            const DashColors colors = dashColors(mode == DisplayMode::Day);
            panel->setColors(colors);
            if (state != State::Alarms) return;
            for (LiveLabel* label : panel->findChildren<LiveLabel*>()) label->setAlarm(colors.redZone);
            panel->checkEngineLamp->light(colors.yellowZone);
            panel->overRevLamp->light(colors.redZone);
        });
    }
}

// ---- The link

void OwnWidgets::addLink() {
    addHeading("The link: while frames come, in a transfer; its lamps");
    const auto ports = [] { return std::vector<PortInfo>{{1, "/dev/ttyUSB0", "An adapter", "usb:1"}}; };
    auto* row = new QHBoxLayout;
    for (const bool transfer : {false, true}) {
        auto* panel = new LinkPanel(ports, this);
        panel->ports().fill(1, "usb:1");
        followers_.emplace_back([panel, transfer](DisplayMode) { panel->render(linkStatus(transfer)); });
        row->addWidget(panel);
    }
    for (const bool lit : {false, true}) {
        for (const bool send : {true, false}) {
            QLabel* lamp = makeLinkLamp("lamp", send ? "TX" : "RX", "A lamp", this);
            row->addWidget(lamp);
            followers_.emplace_back([lamp, lit, send](DisplayMode mode) {
                const LookColors& look = lookColors(mode);
                light(*lamp, lit, send ? look.sendLamp : look.receiveLamp, "lit");
            });
        }
    }
    column_->addLayout(row);
}

// ---- The plot of a log

void OwnWidgets::addPlot() {
    addHeading("The plot of a log: lines, cursors, a marker, a hit, an overlay; nothing to plot");
    constexpr int rows = 3000;
    constexpr int lines = 30;
    DatalogHead head;
    head.columns = {"Frame", "RPM", "MAP", "TPS", "PRIADV", "DAFR", "AAFR"};
    head.mapUnits = "kPa";
    log_.begin(head);
    for (int row = 0; row < rows; ++row) {
        const double wave = std::sin(row / 200.0);
        log_.append(std::vector<double>{double(row), 3000 + 2000 * wave, 60 + 40 * wave, 2 + wave,
                                        20 - 10 * wave, 14.7, 14.5 + 0.01 * (row % 50)});
    }
    for (const bool empty : {false, true}) {
        auto* plot = new LogPlotView(settings_, this);
        plot->setFixedHeight(fontMetrics().height() * (empty ? lines / 3 : lines));
        column_->addWidget(plot);
        if (empty) continue;
        plot->showLog(&log_, "run.dat");
        plot->overlay(&log_, "yesterday.dat");
        plot->overlayShift(2);
        plot->marks({{20, "lean"}});
        plot->hits({{1500, 1600}});
        plot->cursorAt(24);
        plot->area().measure(10, 15);
    }
}

// ---- Texts and pages

void OwnWidgets::addTexts() {
    addHeading("Texts: cut in one line, a value, outlined, an entry, a splitter of two");
    auto* row = new QHBoxLayout;
    auto* cut = new ElidedLabel("cut", "A long line", this);
    cut->show("A line that is much longer than the room which it has here, and is cut");
    cut->setFixedWidth(fontMetrics().averageCharWidth() * 20);
    row->addWidget(cut);
    auto* value = new ValueLabel("-000.0", this);
    value->showValue("14.7");
    row->addWidget(value);
    auto* outlined = new OutlinedLabel("In the user's color", this);
    auto* field = new OutlinedField("Pin 3", this);
    field->setReadOnly(true);
    auto* rows = new QListWidget(this);
    rows->setItemDelegate(new OutlinedRows(rows));
    rows->addItems({"GPO 1 on", "GPO 2 off"});
    rows->setCurrentRow(0);
    rows->setMaximumHeight(fontMetrics().height() * 3);
    followers_.emplace_back([outlined, field, rows](DisplayMode mode) {
        for (QWidget* widget : std::initializer_list<QWidget*>{outlined, field, rows}) {
            QPalette palette;
            for (const auto role : {QPalette::WindowText, QPalette::Text}) {
                palette.setColor(role, lookColors(mode).yellowZone);
            }
            widget->setPalette(palette);
        }
    });
    for (QWidget* one : std::initializer_list<QWidget*>{outlined, field, rows}) row->addWidget(one);
    auto* entry = new EntryBox([](const QString&) { return true; }, this);
    entry->showText("12.5");
    row->addWidget(entry);
    auto* none = new ColourSwatch(this);
    none->setColour({});
    row->addWidget(none);
    auto* splitter = new KeptSplitter(
        Qt::Horizontal, "splGallery", settings_,
        [](int all) {
            return QList<int>{all / 2, all - all / 2};
        },
        this);
    splitter->addWidget(new QLabel("Left"));
    splitter->addWidget(new QLabel("Right"));
    row->addWidget(splitter);
    column_->addLayout(row);
}

void OwnWidgets::addPages() {
    addHeading("A console, a page, the guide, a sensor's line and one that cannot be drawn");
    constexpr int lines = 9;
    auto* row = new QHBoxLayout;
    auto* console = new ConsoleView("lstGallery", "A console", lines_, this);
    console->sync();
    auto* page = new PageView(this);
    page->show(pageRowsSample(), true, false);
    auto* guide = new GuidePage({}, this);
    guide->showText("Tables", "A text in the place of a page.");
    for (QWidget* one : std::initializer_list<QWidget*>{console, page, guide}) {
        one->setFixedHeight(fontMetrics().height() * lines);
        row->addWidget(one);
    }
    for (const bool drawn : {true, false}) {
        auto* picture = new SensorLinePicture(this);
        picture->show(sketch(drawn));
        picture->setFixedHeight(fontMetrics().height() * lines);
        row->addWidget(picture);
    }
    column_->addLayout(row);
}

}  // namespace zentaq
