#include "windows/log_scatter_panel.h"

#include <QVBoxLayout>

#include "base/number_text.h"
#include "qt/look.h"
#include "qt/wrap_layout.h"
#include "windows/channel_choices.h"

namespace zentaq {

namespace {

constexpr std::size_t scatteredRows = 2048;

/// A channel that stands still has room around it.
ScatterRange rangeOf(const LogColumns& log, int column) {
    const ValueReach reach = log.reach(column, 0, log.rows());
    ScatterRange range{static_cast<double>(reach.least), static_cast<double>(reach.most)};
    if (!(range.high > range.low)) range = {range.low - 1, range.low + 1};
    return range;
}

}  // namespace

LogScatterPanel::LogScatterPanel(SettingsStore& settings, QWidget* parent)
    : QWidget(parent), work_([this] { return slice(); }, [this] { drawn(); }, this) {
    named(this, "fraScatter", "Two channels of the datalog against each other");
    auto* choices = new QWidget(this);
    auto* line = new WrapLayout(choices);
    line->setContentsMargins(margins(fontMetrics(), Space::None));
    line->setSpacing(space(fontMetrics(), Space::Tight));
    cboX_ = addChoice(*line, "cboX", "&Across:", "Channel from left to right", choices);
    cboY_ = addChoice(*line, "cboY", "&Up:", "Channel from the foot to the top", choices);
    cboColour_ = addChoice(*line, "cboColour", "Co&lor:", "Channel that colors the dots", choices);
    cboCondition_ = new LogConditionEntry("cboScatterCondition", settings, this);
    cboCondition_->setToolTip("Shows only the rows for which it holds. Enter shows them.");
    lblScatter_ = new ElidedLabel("lblScatter", "What the picture shows", this);
    picture_ = new LogScatterPicture(this);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(margins(fontMetrics(), Space::None));
    whole->setSpacing(space(fontMetrics(), Space::Tight));
    whole->addWidget(choices);
    whole->addWidget(cboCondition_);
    whole->addWidget(lblScatter_);
    whole->addWidget(picture_, 1);
    for (QComboBox* combo : {cboX_, cboY_, cboColour_})
        connect(combo, &QComboBox::currentIndexChanged, this, &LogScatterPanel::renew);
    connect(cboCondition_, &LogConditionEntry::entered, this, &LogScatterPanel::renew);
    connect(picture_, &LogScatterPicture::allAsked, this, &LogScatterPanel::renew);
    connect(picture_, &LogScatterPicture::rangesChosen, this,
            [this](const ScatterRange& x, const ScatterRange& y) {
                if (!(x.high > x.low) || !(y.high > y.low)) return;
                x_ = x;
                y_ = y;
                zoomed_ = true;
                begin();
            });
    connect(picture_, &LogScatterPicture::resized, this, [this] {
        if (isVisible()) begin();
    });
    connect(picture_, &LogScatterPicture::rowChosen, this, [this](qulonglong row) {
        if (sweep_.valid() && row < log_->rows()) Q_EMIT timeChosen(log_->seconds(row));
    });
    renew();
}

void LogScatterPanel::showLog(const LogColumns* log) {
    log_ = log;
    work_.stop();
    sweep_.stop();
    fillChannels();
    renew();
}

void LogScatterPanel::fillChannels() {
    cboCondition_->channels(log_ == nullptr ? std::vector<std::string>{} : log_->names());
    zentaq::fillChannels(*cboX_, log_, "RPM");
    zentaq::fillChannels(*cboY_, log_, "MAP");
    zentaq::fillChannels(*cboColour_, log_, "AAFR");
    const QSignalBlocker quiet(cboColour_);
    if (log_ != nullptr) cboColour_->addItem("(none)", QString());
}

void LogScatterPanel::grown() {
    if (!sweep_.valid() || !isVisible()) return;
    // What came may lie outside of what was all of it.
    zoomed_ ? work_.start() : renew();
}

void LogScatterPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (stale_) renew();
}

int LogScatterPanel::columnOf(const QComboBox& combo) const {
    const std::string channel = combo.currentData().toString().toStdString();
    return channel.empty() ? -1 : log_->column(channel);
}

QString LogScatterPanel::captionOf(const QComboBox& combo) const {
    const std::string unit = channelUnit(combo.currentData().toString().toStdString(), log_->head().mapUnits);
    return unit.empty() ? combo.currentText() : combo.currentText() + " (" + shownString(unit) + ")";
}

void LogScatterPanel::renew() {
    stale_ = true;
    if (log_ == nullptr || log_->empty()) {
        picture_->showNothing();
        return lblScatter_->show("Open a datalog to see its channels against each other.");
    }
    if (!isVisible()) return;
    stale_ = false;
    zoomed_ = false;
    xColumn_ = columnOf(*cboX_);
    yColumn_ = columnOf(*cboY_);
    thirdColumn_ = columnOf(*cboColour_);
    if (xColumn_ < 0 || yColumn_ < 0) return;
    x_ = rangeOf(*log_, xColumn_);
    y_ = rangeOf(*log_, yColumn_);
    begin();
}

void LogScatterPanel::begin() {
    work_.stop();
    if (log_ == nullptr || log_->empty() || xColumn_ < 0 || yColumn_ < 0) return;
    try {
        sweep_.begin(*log_, cboCondition_->condition());
        if (!cboCondition_->condition().empty()) cboCondition_->used();
    } catch (const ExpressionError& wrong) {
        lblScatter_->show(shownString(wrong.what()));
        picture_->showNothing();
        return cboCondition_->showPlace(wrong.place);
    }
    const bool colored = thirdColumn_ >= 0;
    picture_->show({captionOf(*cboX_), captionOf(*cboY_), colored ? captionOf(*cboColour_) : QString()}, x_,
                   y_, colored ? rangeOf(*log_, thirdColumn_) : ScatterRange());
    const QSize places = picture_->places();
    scatter_ = LogScatter(x_, y_, places.width(), places.height());
    work_.start();
    cursorAt(seconds_);
}

bool LogScatterPanel::slice() {
    sweep_.step(scatteredRows, [&](std::size_t row) {
        const auto at = [&](int column) { return static_cast<double>(log_->value(column, row)); };
        scatter_.add(row, at(xColumn_), at(yColumn_), thirdColumn_ < 0 ? 0 : at(thirdColumn_));
    });
    return sweep_.left();
}

void LogScatterPanel::drawn() {
    if (!sweep_.valid()) return;
    picture_->draw(&scatter_);
    lblScatter_->show(qString(numberText(static_cast<double>(scatter_.count())) + " of " +
                              many(static_cast<std::int64_t>(log_->rows()), "row", "rows") +
                              (zoomed_ ? " in the part that is shown" : "")));
    picture_->setAccessibleDescription(captionOf(*cboY_) + " over " + captionOf(*cboX_) + ": " +
                                       lblScatter_->text());
}

void LogScatterPanel::cursorAt(double seconds) {
    seconds_ = seconds;
    const bool known = isVisible() && log_ != nullptr && !log_->empty() && sweep_.valid();
    if (!known) return picture_->now({});
    const std::size_t row = log_->rowAt(seconds);
    picture_->now(ChartPoint{static_cast<double>(log_->value(xColumn_, row)),
                             static_cast<double>(log_->value(yColumn_, row))});
}

}  // namespace zentaq
