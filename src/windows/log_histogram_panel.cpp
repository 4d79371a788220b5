#include "windows/log_histogram_panel.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "base/rounding.h"
#include "logs/log_channel.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "qt/wrap_layout.h"
#include "tables/heat_scale.h"
#include "tables/table_badges.h"
#include "windows/channel_choices.h"

namespace zentaq {

namespace {

constexpr std::size_t countedRows = 1024;
constexpr const char* firstTable = "VE";
constexpr const char* firstChannel = "AAFR";

QString captionOf(HistogramShows shows) {
    const std::string_view word = histogramWord(shows);
    return QString(QChar(word.front()).toUpper()) + qString(word.substr(1));
}

}  // namespace

LogHistogramPanel::LogHistogramPanel(SettingsStore& settings, QWidget* parent)
    : QWidget(parent), work_([this] { return slice(); }, [this] { draw(); }, this) {
    named(this, "fraHistogram", "A channel of the datalog over a table");
    auto* choices = new QWidget(this);
    auto* line = new WrapLayout(choices);
    line->setContentsMargins(margins(fontMetrics(), Space::None));
    line->setSpacing(space(fontMetrics(), Space::Tight));
    cboTable_ = addChoice(*line, "cboHistogramTable", "Ta&ble:", "Table whose cells are counted in", choices);
    cboChannel_ = addChoice(*line, "cboHistogramChannel", "Cha&nnel:", "Channel of the datalog", choices);
    cboShows_ = addChoice(*line, "cboHistogramShows", "Sh&ows:", "What a cell shows of the channel", choices);
    for (const HistogramShows shows : histogramShows) cboShows_->addItem(captionOf(shows));
    chkBeside_ = named(new QCheckBox("Beside the table's val&ues", choices), "chkBeside");
    chkBeside_->setToolTip("The value of the table stands in the corner of each cell");
    line->addWidget(chkBeside_);
    cboCondition_ = new LogConditionEntry("cboHistogramCondition", settings, this);
    cboCondition_->setToolTip("Counts only the rows for which it holds. Enter counts.");
    lblHistogram_ = new ElidedLabel("lblHistogram", "What was counted", this);
    lblCell_ = new ElidedLabel("lblHistogramCell", "The cell in hand", this);
    grid_ = named(new TableGridView(this), "grdHistogram", "A channel of the datalog over the table");
    grid_->setMode(appliedLook(*qApp));
    constexpr int leastRows = 5;
    grid_->setMinimumHeight(TableGridView::leastHeight(leastRows));
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->setToolTip("A double click shows the rows of the datalog that fall into a cell");
    grid_->cells().speakBy([this](int row, int column) { return inWords(row, column); });

    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(margins(fontMetrics(), Space::None));
    whole->setSpacing(space(fontMetrics(), Space::Tight));
    whole->addWidget(choices);
    whole->addWidget(cboCondition_);
    whole->addWidget(lblHistogram_);
    whole->addWidget(grid_, 1);
    whole->addWidget(lblCell_);
    for (QComboBox* combo : {cboTable_, cboChannel_})
        connect(combo, &QComboBox::currentIndexChanged, this, &LogHistogramPanel::renew);
    connect(cboShows_, &QComboBox::currentIndexChanged, this, &LogHistogramPanel::drawCells);
    connect(chkBeside_, &QCheckBox::toggled, this, &LogHistogramPanel::drawCells);
    connect(cboCondition_, &LogConditionEntry::entered, this, &LogHistogramPanel::renew);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &LogHistogramPanel::tellCell);
    connect(grid_, &QAbstractItemView::doubleClicked, this, &LogHistogramPanel::askRows);
    connect(grid_, &QAbstractItemView::activated, this, &LogHistogramPanel::askRows);
    draw();
}

// ---- What it is about

void LogHistogramPanel::showLog(const LogColumns* log) {
    log_ = log;
    work_.stop();
    sweep_.stop();
    fillChannels();
    renew();
}

void LogHistogramPanel::grown() {
    if (histogram_ && sweep_.valid() && isVisible()) work_.start();
}

void LogHistogramPanel::showCalibration(Unit* unit) {
    unit_ = unit;
    fillTables();
    renew();
}

void LogHistogramPanel::fillTables() {
    const QSignalBlocker quiet(cboTable_);
    const QString before =
        cboTable_->count() == 0 ? QString(firstTable) : cboTable_->currentData().toString();
    cboTable_->clear();
    if (unit_ == nullptr) return;
    for (const TableKind& table : tableKinds()) {
        if (hasTable(unit_->kind(), table))
            cboTable_->addItem(qString(tableTitle(table.name)), qString(table.name));
    }
    choose(*cboTable_, before);
}

void LogHistogramPanel::fillChannels() {
    cboCondition_->channels(log_ == nullptr ? std::vector<std::string>{} : log_->names());
    zentaq::fillChannels(*cboChannel_, log_, firstChannel);
}

void LogHistogramPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (stale_) begin();
}

void LogHistogramPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) grid_->setMode(appliedLook(*qApp));
}

// ---- Counting

void LogHistogramPanel::renew() {
    stale_ = true;
    if (isVisible()) begin();
}

void LogHistogramPanel::begin() {
    stale_ = false;
    work_.stop();
    histogram_.reset();
    if (log_ != nullptr && unit_ != nullptr && cboTable_->currentIndex() >= 0 &&
        cboChannel_->currentIndex() >= 0) {
        try {
            const std::string table = cboTable_->currentData().toString().toStdString();
            // Reading it would give it the axes of the main tables, and a log changes no calibration.
            if (findTable(table)->isGpo() && hasEmptyAxis(*unit_, table))
                throw Failure(
                    "The table has no axes yet. Open it once, and it gets those of the main tables.");
            TableSheet sheet(*unit_);
            sheet.read(table, {}, false);
            auto made = std::make_unique<LogHistogram>(sheet);
            const auto placeOf = [&](const std::string& channel) {
                const int place = log_->column(channel);
                if (place < 0)
                    throw Failure("The datalog has no channel " + channel + ", along which the table runs.");
                return place;
            };
            atColumn_ = placeOf(made->columns().channel);
            atRow_ = placeOf(made->rows().channel);
            value_ = placeOf(cboChannel_->currentData().toString().toStdString());
            sweep_.begin(*log_, cboCondition_->condition());
            if (!cboCondition_->condition().empty()) cboCondition_->used();
            const bool pressures = made->rows().channel == "MAP" || made->columns().channel == "MAP";
            const bool differ = !log_->head().mapUnits.empty() && log_->head().mapUnits != unit_->MAPUnits();
            units_ = pressures && differ ? log_->head().mapUnits : std::string();
            stored_ = sheet.grid();
            histogram_ = std::move(made);
            grid_->nameAxes(qString(cornerOf(sheet)), qString(axesInWords(sheet)));
            work_.start();
        } catch (const ExpressionError& wrong) {
            say(shownString(wrong.what()));
            cboCondition_->showPlace(wrong.place);
            return drawCells();
        } catch (const std::exception& wrong) {
            say(shownString(wrong.what()));
            return drawCells();
        }
    }
    draw();
}

bool LogHistogramPanel::slice() {
    if (!histogram_) return false;
    sweep_.step(countedRows, [&](std::size_t row) {
        const auto at = [&](int column) { return static_cast<double>(log_->value(column, row)); };
        histogram_->add(at(atColumn_), at(atRow_), at(value_));
    });
    return sweep_.left();
}

// ---- What is shown

void LogHistogramPanel::say(const QString& text) {
    lblHistogram_->show(text);
}

void LogHistogramPanel::draw() {
    drawCells();
    if (log_ == nullptr) return say("Open a datalog to see what a channel did in each cell of a table.");
    if (unit_ == nullptr)
        return say("Open a calibration to see what a channel did in each cell of its tables.");
    if (!histogram_) return;
    constexpr double percent = 100;
    QString text = work_.running() ? QString("Counting %1 %").arg(static_cast<int>(sweep_.share() * percent))
                                   : qString(many(histogram_->count(), "row", "rows") + " of " +
                                             numberText(static_cast<int>(log_->rows())) + " counted");
    if (!units_.empty()) {
        text += ". The datalog's pressures are in " + shownString(units_) + ", those of the calibration in " +
                shownString(unit_->MAPUnits()) + ": the rows do not fit";
    }
    say(text);
}

const RunningFigures& LogHistogramPanel::cellAt(int row, int column) const {
    return histogram_->cell(static_cast<std::size_t>(cells_.rows() - row),
                            static_cast<std::size_t>(column) - 1);
}

void LogHistogramPanel::drawCells() {
    const QPersistentModelIndex current = grid_->currentIndex();
    if (!histogram_) {
        grid_->cells().show(nullptr);
        return tellCell();
    }
    const bool same = cells_.rows() == stored_.rows() && cells_.columns() == stored_.columns();
    if (!same) grid_->cells().show(nullptr);
    cells_.resize(stored_.rows(), stored_.columns());
    HeatMap heat;
    heat.resize(cells_.rows(), cells_.columns());
    const auto shows = static_cast<HistogramShows>(std::max(cboShows_->currentIndex(), 0));
    for (int row = 1; row <= cells_.rows(); ++row) {
        for (int column = 1; column <= cells_.columns(); ++column) {
            const RunningFigures& cell = cellAt(row, column);
            if (cell.count > 0) heat.put(row, column, static_cast<float>(shownOf(cell, shows)));
        }
    }
    heat.measure();
    for (int row = 0; row <= cells_.rows(); ++row) cells_.text(row, 0, stored_.text(row, 0));
    for (int column = 1; column <= cells_.columns(); ++column)
        cells_.text(0, column, stored_.text(0, column));
    for (int row = 1; row <= cells_.rows(); ++row) {
        for (int column = 1; column <= cells_.columns(); ++column) {
            drawCell(row, column);
            cells_.colour(row, column, heat.colour(row, column));
        }
    }
    if (grid_->model()->rowCount() == 0) {
        grid_->cells().show(&cells_);
    } else {
        grid_->cells().refresh();
    }
    grid_->sizeColumns(false);
    if (!current.isValid()) grid_->setCurrentIndex(grid_->cells().index(0, 0));
    tellCell();
}

void LogHistogramPanel::drawCell(int row, int column) {
    const auto shows = static_cast<HistogramShows>(std::max(cboShows_->currentIndex(), 0));
    const RunningFigures& cell = cellAt(row, column);
    if (chkBeside_->isChecked()) cells_.note(row, column, stored_.text(row, column));
    if (cell.count == 0) return;
    const double value = shownOf(cell, shows);
    const QString text = shows == HistogramShows::Count
                             ? qString(numberText(value))
                             : digits(value, shows == HistogramShows::Mean ? 1 : 0);
    cells_.text(row, column, text.toStdString());
}

QString LogHistogramPanel::digits(double value, int more) const {
    constexpr int most = 2;
    const int channel = channelDecimals(cboChannel_->currentData().toString().toStdString());
    const int places = std::max(channel, std::min(channel + more, most));
    const std::string pattern = places == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(places), '0');
    return qString(formatNumber(roundTo(value, places), pattern));
}

QString LogHistogramPanel::inWords(int row, int column) const {
    if (!histogram_ || !cells_.hasCell(row, column)) return {};
    const RunningFigures& cell = cellAt(row, column);
    const QString place = qString("row " + cells_.text(row, 0) + ", column " + cells_.text(0, column));
    const QString table = "; the table holds " + qString(stored_.text(row, column));
    if (cell.count == 0) return "No row of the datalog: " + place + table;
    return cboChannel_->currentText() + " at " + place + ": mean " + digits(cell.mean(), 1) + ", minimum " +
           digits(cell.least, 0) + ", maximum " + digits(cell.most, 0) + ", " +
           qString(many(cell.count, "row", "rows")) + table;
}

void LogHistogramPanel::tellCell() {
    const QModelIndex cell = grid_->currentIndex();
    lblCell_->show(cell.isValid() ? inWords(cell.row() + 1, cell.column() + 1) : QString());
}

void LogHistogramPanel::askRows(const QModelIndex& cell) {
    if (!histogram_ || !cells_.hasCell(cell.row() + 1, cell.column() + 1)) return;
    const std::string inCell = histogram_->conditionOf(
        static_cast<std::size_t>(cells_.rows() - cell.row() - 1), static_cast<std::size_t>(cell.column()));
    const std::string condition = cboCondition_->condition();
    if (inCell.empty()) return;
    Q_EMIT conditionChosen(shownString(condition.empty() ? inCell : "(" + condition + ") and " + inCell));
}

}  // namespace zentaq
