#include "windows/log_plot_view.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <algorithm>

#include "app/data_points.h"
#include "logs/log_channel.h"
#include "logs/plot_measures.h"
#include "qt/kept_splitter.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/wrap_layout.h"
#include "windows/log_picture.h"

namespace zentaq {

namespace {

constexpr int spokenMs = 1000;
constexpr int measureLines = 5;

/// The last one that was chosen, in section "Plots".
constexpr const char* chosenKey = "Chosen";

}  // namespace

LogPlotView::LogPlotView(SettingsStore& settings, QWidget* parent)
    : QWidget(parent), settings_(settings), layouts_(settings) {
    named(this, "viewLogPlot", "Plot of the datalog");
    area_ = new LogPlotArea(this);
    list_ = new LogChannelList(this);
    find_ = new LogFindBar(settings, this);
    auto* splitter = new KeptSplitter(
        Qt::Horizontal, "splLogPlot", settings,
        [this](int length) {
            constexpr int letters = 30;
            const int side = std::min(fontMetrics().averageCharWidth() * letters, length / 3);
            return QList<int>{side, length - side};
        },
        this);
    splitter->addWidget(makeSide());
    splitter->addWidget(makeMain());
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(margins(fontMetrics(), Space::None));
    whole->addWidget(splitter);
    tmrSpeak_.setSingleShot(true);
    connect(&tmrSpeak_, &QTimer::timeout, this, &LogPlotView::speak);
    connectArea();
    connectFinding();
    connectLayouts();
    fillLayouts(qString(settings.get("Plots", chosenKey)));
    area_->panes(firstPanes());
    showLog(nullptr, {});
}

// ---- What stands where

QWidget* LogPlotView::makeSide() {
    tabLogSide_ = named(new QTabWidget(this), "tabLogSide", "Channels and hits");
    tabLogSide_->setDocumentMode(true);
    tabLogSide_->setUsesScrollButtons(false);
    auto* side = new QWidget(tabLogSide_);
    lstHits_ = new LogHitList(find_->search(), tabLogSide_);
    tabLogSide_->addTab(side, "Channels");
    tabLogSide_->addTab(lstHits_, "Hits");
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(margins(fontMetrics(), Space::None));
    column->setSpacing(space(fontMetrics(), Space::Tight));
    column->addWidget(list_, 1);
    cboLayouts_ = named(new QComboBox(side), "cboLayouts", "Layout of the plot");
    cboLayouts_->setEditable(true);
    cboLayouts_->setInsertPolicy(QComboBox::NoInsert);
    cboLayouts_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboLayouts_->lineEdit()->setPlaceholderText("Name of a layout");
    cboLayouts_->lineEdit()->setAccessibleName("Name of the layout");
    cboLayouts_->setToolTip("Choose a saved layout, or type a name and save the panes as they are");
    cmdSaveLayout_ = namedButton("cmdSaveLayout", "Save la&yout", side);
    cmdDeleteLayout_ = namedButton("cmdDeleteLayout", "De&lete layout", side);
    auto* buttons = new WrapLayout(nullptr);
    buttons->setContentsMargins(margins(fontMetrics(), Space::None));
    column->addWidget(cboLayouts_);
    for (QPushButton* button : {cmdSaveLayout_, cmdDeleteLayout_}) buttons->addWidget(button);
    column->addLayout(buttons);
    return tabLogSide_;
}

QWidget* LogPlotView::makeButtons() {
    auto* bar = new QWidget(this);
    auto* row = new WrapLayout(nullptr);
    bar->setLayout(row);
    row->setContentsMargins(margins(fontMetrics(), Space::None));
    const auto button = [&](const char* name, const QString& caption, const QString& tip, auto act) {
        QPushButton* one = namedButton(name, caption, bar);
        one->setToolTip(tip);
        connect(one, &QPushButton::clicked, area_, act);
        row->addWidget(one);
        needLog_.push_back(one);
        return one;
    };
    button("cmdZoomIn", "Zoom &in", "Key + in the plot; or the wheel, or a box with the mouse",
           [this] { area_->zoomBy(0.5); });
    button("cmdZoomOut", "Zoom &out", "Key - in the plot", [this] { area_->zoomBy(2); });
    button("cmdShowAll", "Show &all", "Key 0 in the plot, or a double click", [this] { area_->showAll(); });
    button("cmdZoomBack", "Zoom bac&k", "Key Backspace in the plot", [this] { area_->zoomBack(); });
    button("cmdMeasure", "Meas&ure",
           "Two cursors A and B to drag; keys A and B set them at the cursor, Escape takes them away",
           [this] { area_->toggleMeasuring(); });
    button("cmdAddMark", "Add &marker", "Key M in the plot", [this] { area_->addMark(); });
    cmdSavePicture_ =
        button("cmdSavePicture", "Save pictu&re...", "As PNG, SVG or PDF", [this] { askAndSavePicture(); });
    cmdSavePicture_->hide();
    return bar;
}

QWidget* LogPlotView::makeOverlayLine() {
    auto* line = new QWidget(this);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(margins(fontMetrics(), Space::None));
    row->setSpacing(space(fontMetrics(), Space::Tight));
    lblOverlay_ = new ElidedLabel("lblOverlay", "The log that is laid over", line);
    spnOverlayShift_ = named(new QDoubleSpinBox(line), "spnOverlayShift", "Shift of the overlay in seconds");
    spnOverlayShift_->setRange(-LogPlotArea::farthestShift, LogPlotArea::farthestShift);
    spnOverlayShift_->setDecimals(2);
    spnOverlayShift_->setSingleStep(secondsPerFrame);
    spnOverlayShift_->setSuffix(" s");
    spnOverlayShift_->setToolTip("Or drag the overlay with Alt held down");
    auto* caption = new QLabel("Shift &by:", line);
    caption->setBuddy(spnOverlayShift_);
    row->addWidget(lblOverlay_, 1);
    row->addWidget(caption);
    row->addWidget(spnOverlayShift_);
    line->hide();
    return line;
}

QWidget* LogPlotView::makeMain() {
    auto* main = new QWidget(this);
    auto* column = new QVBoxLayout(main);
    column->setContentsMargins(margins(fontMetrics(), Space::None));
    column->setSpacing(space(fontMetrics(), Space::Tight));
    lblPlot_ = new ElidedLabel("lblPlot", "The datalog that is shown", main);
    overlayLine_ = makeOverlayLine();
    lblMeasures_ = plainLines("lblMeasures", "Measuring cursors", main);
    tblMeasures_ = named(new QTableWidget(0, 7, main), "tblMeasures", "Values at the measuring cursors");
    tblMeasures_->setHorizontalHeaderLabels({"Channel", "A", "B", "B - A", "Minimum", "Maximum", "Mean"});
    tblMeasures_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tblMeasures_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblMeasures_->verticalHeader()->hide();
    tblMeasures_->verticalHeader()->setMinimumSectionSize(0);
    tblMeasures_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() +
                                                          space(fontMetrics(), Space::Tight));
    tblMeasures_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tblMeasures_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    auto* line = new QHBoxLayout;
    line->setSpacing(space(fontMetrics(), Space::Normal));
    line->addWidget(lblPlot_, 1);
    line->addWidget(&find_->said(), 1);
    find_->said().setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    column->addWidget(makeButtons());
    column->addWidget(find_);
    column->addLayout(line);
    column->addWidget(overlayLine_);
    column->addWidget(area_, 1);
    column->addWidget(lblMeasures_);
    column->addWidget(tblMeasures_);
    return main;
}

void LogPlotView::connectArea() {
    connect(area_, &LogPlotArea::timeChosen, this, &LogPlotView::timeChosen);
    connect(area_, &LogPlotArea::marksEdited, this, &LogPlotView::marksEdited);
    connect(area_, &LogPlotArea::panesChanged, this, &LogPlotView::panesChanged);
    connect(area_, &LogPlotArea::measured, this, &LogPlotView::measured);
    connect(area_, &LogPlotArea::cursorMoved, this, &LogPlotView::cursorMoved);
    connect(area_, &LogPlotArea::pictureAsked, this, &LogPlotView::askAndSavePicture);
    connect(area_, &LogPlotArea::overlayShifted, spnOverlayShift_, &QDoubleSpinBox::setValue);
    connect(spnOverlayShift_, &QDoubleSpinBox::valueChanged, area_, [this](double seconds) {
        // The box shows hundredths of what the mouse has shifted.
        constexpr double half = 0.005;
        if (std::abs(seconds - area_->scene().shift) > half) area_->overlayShift(seconds);
    });
    connect(list_, &LogChannelList::ticked, this, [this](const QString& channel, bool on) {
        if (on) return addChannel(channel.toStdString());
        auto panes = area_->panes();
        removeChannel(panes, channel.toStdString());
        area_->panes(panes);
    });
}

void LogPlotView::connectFinding() {
    connect(find_, &LogFindBar::timeChosen, this, &LogPlotView::timeChosen);
    connect(find_, &LogFindBar::hitsFound, this, [this](const std::vector<LogHit>& found) {
        area_->hits(found);
        lstHits_->refresh();
    });
    connect(find_, &LogFindBar::left, this, [this] { area_->setFocus(); });
    connect(lstHits_, &LogHitList::timeChosen, this, &LogPlotView::timeChosen);
}

// ---- Logs

void LogPlotView::showLog(const LogColumns* log, const QString& name) {
    log_ = log;
    name_ = name;
    area_->showLog(log);
    find_->showLog(log);
    overlay(nullptr, {});
    lblPlot_->show(shownString(name.toStdString()));
    lblPlot_->setVisible(log != nullptr && !name.isEmpty());
    for (QPushButton* button : needLog_) button->setEnabled(log != nullptr);
    Initialize_Rows();
    speak();
}

void LogPlotView::grown() {
    area_->grown();
    find_->grown();
    measured();
}

void LogPlotView::overlay(const LogColumns* other, const QString& name) {
    area_->overlayShift(0);
    area_->overlay(other);
    lblOverlay_->show("Overlay, paler: " + shownString(name.toStdString()));
    overlayLine_->setVisible(other != nullptr);
}

void LogPlotView::overlayShift(double seconds) {
    area_->overlayShift(seconds);
}

void LogPlotView::cursorAt(double seconds) {
    area_->cursorAt(seconds);
    find_->cursorAt(seconds);
}

void LogPlotView::hits(const std::vector<LogHit>& hits) {
    area_->hits(hits);
}

void LogPlotView::marks(const std::vector<LogMark>& marks) {
    area_->marks(marks);
}

// ---- Channels

std::vector<std::string> LogPlotView::channels() const {
    return channelsOf(area_->panes());
}

void LogPlotView::channels(const std::vector<std::string>& shown) {
    std::vector<std::string> newer;
    for (const std::string& channel : shown) {
        const std::string name(newerChannelName(channel));
        if (std::ranges::find(newer, name) == newer.end()) newer.push_back(name);
    }
    area_->panes(panesOf(newer));
}

void LogPlotView::Initialize_Rows() {
    std::vector<std::string> rows;
    if (log_ != nullptr) {
        for (const std::string& name : log_->names()) {
            if (!isTimeColumn(name)) rows.emplace_back(newerChannelName(name));
        }
    }
    list_->fill(rows);
    list_->tick(channels());
}

std::string LogPlotView::GraphSelect(const std::string& caption) const {
    if (log_ == nullptr) return {};
    const auto found = std::ranges::find_if(log_->names(), [&](const std::string& name) {
        return !isTimeColumn(name) && channelCaption(name) == caption;
    });
    return found == log_->names().end() ? std::string() : *found;
}

void LogPlotView::Graph(const std::string& channel) {
    const std::string name(newerChannelName(channel));
    const auto shown = channels();
    if (std::ranges::find(shown, name) == shown.end()) addChannel(name);
}

void LogPlotView::addChannel(const std::string& channel) {
    auto panes = area_->panes();
    if (panes.empty() || area_->hasRoomForPane()) {
        newPane(panes, channel, panes.size());
    } else {
        joinPane(panes, channel, area_->paneInHand());
    }
    area_->panes(panes);
}

std::vector<PlotPane> LogPlotView::firstPanes() const {
    const auto saved = layouts_.all();
    const std::string chosen = settings_.get("Plots", chosenKey);
    const auto same = std::ranges::find(saved, chosen, &PlotLayout::name);
    if (same != saved.end()) return same->panes;
    if (!saved.empty()) return saved.front().panes;
    std::vector<std::string> points;
    for (const int place : storedDataPoints(settings_)) {
        const std::string channel(dataPointChannel(place));
        const bool known = std::ranges::find(points, channel) != points.end();
        if (!channel.empty() && !known) points.push_back(channel);
    }
    if (!points.empty()) return panesOf(points);
    return {{{"RPM"}}, {{"MAP", "TPS"}}, {{"DAFR", "AAFR"}, true}, {{"PRIADV"}}};
}

void LogPlotView::panesChanged() {
    list_->tick(channels());
    measured();
    cursorMoved();
}

// ---- Layouts

void LogPlotView::connectLayouts() {
    connect(cboLayouts_, &QComboBox::textActivated, this, &LogPlotView::chooseLayout);
    connect(cboLayouts_, &QComboBox::editTextChanged, this, [this](const QString& text) {
        cmdSaveLayout_->setEnabled(!text.trimmed().isEmpty());
        cmdDeleteLayout_->setEnabled(
            cboLayouts_->findText(text.trimmed(), Qt::MatchFixedString | Qt::MatchCaseSensitive) >= 0);
    });
    connect(cmdSaveLayout_, &QPushButton::clicked, this, &LogPlotView::saveLayout);
    connect(cmdDeleteLayout_, &QPushButton::clicked, this, &LogPlotView::removeLayout);
}

void LogPlotView::fillLayouts(const QString& chosen) {
    cboLayouts_->clear();
    for (const PlotLayout& layout : layouts_.all()) cboLayouts_->addItem(qString(layout.name));
    cboLayouts_->setCurrentIndex(cboLayouts_->findText(chosen));
    cboLayouts_->setEditText(cboLayouts_->currentIndex() < 0 ? QString() : chosen);
    Q_EMIT cboLayouts_->editTextChanged(cboLayouts_->currentText());
}

void LogPlotView::chooseLayout(const QString& name) {
    const auto all = layouts_.all();
    const auto same = std::ranges::find(all, name.toStdString(), &PlotLayout::name);
    if (same == all.end()) return;
    settings_.set("Plots", chosenKey, same->name);
    area_->panes(same->panes);
}

void LogPlotView::saveLayout() {
    const QString name = cboLayouts_->currentText().trimmed();
    if (name.isEmpty()) return;
    layouts_.save({name.toStdString(), area_->panes()});
    settings_.set("Plots", chosenKey, name.toStdString());
    fillLayouts(name);
}

void LogPlotView::removeLayout() {
    layouts_.remove(cboLayouts_->currentText().trimmed().toStdString());
    fillLayouts({});
}

// ---- Measuring

void LogPlotView::measured() {
    const PlotScene& scene = area_->scene();
    const bool both = scene.hasLog() && scene.a && scene.b;
    QString text;
    if (scene.a) text += "A " + qString(plotTimeText(*scene.a)) + "   ";
    if (scene.b) text += "B " + qString(plotTimeText(*scene.b)) + "   ";
    if (both) text += "B - A " + qString(plotTimeText(*scene.b - *scene.a));
    lblMeasures_->setText(text);
    lblMeasures_->setVisible(!text.isEmpty());
    tblMeasures_->setVisible(both);
    if (both) fillMeasures(*scene.a, *scene.b);
}

void LogPlotView::fillMeasures(double a, double b) {
    const auto rows = measureRows(*log_, channels(), a, b);
    tblMeasures_->setRowCount(static_cast<int>(rows.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        int column = 0;
        for (const std::string* text : {&rows[i].caption, &rows[i].atA, &rows[i].atB, &rows[i].difference,
                                        &rows[i].least, &rows[i].most, &rows[i].mean}) {
            const int row = static_cast<int>(i);
            QTableWidgetItem* item = tblMeasures_->item(row, column);
            if (item == nullptr) tblMeasures_->setItem(row, column, item = new QTableWidgetItem);
            item->setText(shownString(*text));
            if (column++ > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    const int lines = std::min(static_cast<int>(rows.size()), measureLines);
    const int rowHeight = rows.empty() ? 0 : tblMeasures_->rowHeight(0);
    tblMeasures_->setFixedHeight(tblMeasures_->horizontalHeader()->sizeHint().height() + lines * rowHeight +
                                 2 * tblMeasures_->frameWidth());
}

// ---- What a screen reader hears

void LogPlotView::cursorMoved() {
    if (tmrSpeak_.isActive()) return;
    const qint64 since = spoken_.isValid() ? spoken_.elapsed() : spokenMs;
    tmrSpeak_.start(static_cast<int>(std::max<qint64>(spokenMs - since, 0)));
}

void LogPlotView::speak() {
    spoken_.start();
    const PlotScene& scene = area_->scene();
    list_->speak([&](const std::string& channel) -> QString {
        const int column = log_ == nullptr ? -1 : log_->column(channel);
        if (column < 0 || !scene.hasLog() || !scene.cursor) return {};
        const float value = log_->value(column, log_->rowAt(*scene.cursor));
        return shownString(plotValueText(channel, static_cast<double>(value), log_->head().mapUnits));
    });
    const QString words = area_->inWords();
    if (words == area_->accessibleDescription()) return;
    area_->setAccessibleDescription(words);
    QAccessibleEvent told(area_, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&told);
}

// ---- Pictures

void LogPlotView::askPathBy(std::function<std::string(const FileRequest& request)> ask) {
    ask_ = std::move(ask);
    cmdSavePicture_->setVisible(ask_ != nullptr);
    area_->canSavePicture(ask_ != nullptr);
}

void LogPlotView::askAndSavePicture() {
    if (!ask_ || log_ == nullptr) return;
    FileRequest request;
    request.title = "Save picture";
    request.filter = "Picture (*.png)|*.png|Drawing (*.svg)|*.svg|Document (*.pdf)|*.pdf";
    request.defaultExtension = "png";
    request.suggestedName = name_.isEmpty() ? "plot" : name_.toStdString();
    const std::string path = ask_(request);
    if (path.empty()) return;
    const QString wrong = savePicture(qString(path));
    const QString shown = wrong.isEmpty() ? "Saved: " + shownString(path) : wrong;
    lblPlot_->show(shown);
    lblPlot_->setVisible(true);
}

QString LogPlotView::savePicture(const QString& path) {
    area_->drawNow();
    return savePlotPicture(*area_, path);
}

}  // namespace zentaq
