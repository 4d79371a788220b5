#include "windows/log_pane.h"

#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "base/rounding.h"
#include "logs/log_channel.h"
#include "qt/look.h"
#include "qt/qt_text.h"
#include "windows/log_pane_drawings.h"

namespace zentaq {

namespace {

/// Times as they stand everywhere else, with as many digits as the marks need.
class TimeTicker : public QCPAxisTickerTime {
 protected:
    QString getTickLabel(double tick, const QLocale& /*locale*/, QChar /*format*/,
                         int /*precision*/) override {
        return qString(plotTimeText(tick, mTickStepStrategy == tssReadability && step_ < 1 ? 2 : 0));
    }
    double getTickStep(const QCPRange& range) override {
        step_ = QCPAxisTickerTime::getTickStep(range);
        return step_;
    }

 private:
    double step_ = 1;
};

class ValueTicker : public QCPAxisTicker {
 protected:
    QString getTickLabel(double tick, const QLocale& /*locale*/, QChar /*format*/,
                         int /*precision*/) override {
        constexpr int digits = 4;
        return qString(numberText(roundTo(tick, digits)));
    }
};

QString mapUnits(const LogColumns& log) {
    return shownString(log.head().mapUnits);
}

QString valueAt(const LogColumns& log, const PaneLine& line, int column, double seconds) {
    const float value = log.value(column, log.rowAt(seconds));
    return shownString(plotValueText(line.channel, static_cast<double>(value), mapUnits(log).toStdString()));
}

}  // namespace

QString legendText(const PlotScene& scene, const PaneLine& line) {
    QString text = shownString(channelCaption(line.channel));
    if (line.column < 0) return text + QStringLiteral(" not in this log");
    if (!scene.cursor || !scene.hasLog()) return text;
    text += u' ' + valueAt(*scene.log, line, line.column, *scene.cursor);
    if (scene.other != nullptr && !scene.other->empty() && line.otherColumn >= 0)
        text += QStringLiteral(" | ") +
                valueAt(*scene.other, line, line.otherColumn, *scene.cursor - scene.shift);
    return text;
}

LogPane::LogPane(QCustomPlot& plot, const PlotScene& scene, const PlotPane& shown, std::size_t number,
                 std::size_t firstColor)
    : plot_(plot), scene_(scene), number_(number), shared_(shown.sharedScale), axes_(new QCPAxisRect(&plot)) {
    for (const std::string& channel : shown.channels) lines_.push_back({channel, -1, -1, {}, firstColor++});
    plot.plotLayout()->addElement(static_cast<int>(number), 0, axes_);
    axes_->setAutoMargins(QCP::msLeft | QCP::msRight | QCP::msBottom);
    axes_->axis(QCPAxis::atBottom)->setTicker(QSharedPointer<QCPAxisTicker>(new TimeTicker));
    axes_->axis(QCPAxis::atLeft)->setTicker(QSharedPointer<QCPAxisTicker>(new ValueTicker));
    drawnLines_ = std::make_unique<Lines>(plot, scene, *this);
    drawnNow_ = std::make_unique<Now>(plot, scene, *this);
    follow();
}

LogPane::~LogPane() = default;

void LogPane::lead(std::size_t line) {
    if (line < lines_.size()) lead_ = line;
}

void LogPane::follow() {
    std::optional<PlotScale> all;
    for (PaneLine& line : lines_) {
        line.column = scene_.log == nullptr ? -1 : scene_.log->column(line.channel);
        line.otherColumn = scene_.other == nullptr ? -1 : scene_.other->column(line.channel);
        if (line.column >= 0) line.scale = plotScale(*scene_.log, line.column);
        if (line.otherColumn >= 0) {
            const PlotScale other = plotScale(*scene_.other, line.otherColumn);
            line.scale = line.column >= 0 ? joined(line.scale, other) : other;
        }
        const bool counts = line.column >= 0 || line.otherColumn >= 0;
        if (counts && !hasRangeOfItsOwn(line.channel)) all = all ? joined(*all, line.scale) : line.scale;
    }
    if (!shared_ || !all) return;
    for (PaneLine& line : lines_) {
        if (!hasRangeOfItsOwn(line.channel)) line.scale = *all;
    }
}

// ---- Places

PlotScale LogPane::shownScale(const PaneLine& line) const {
    constexpr double spare = 0.04;
    const double range = line.scale.high - line.scale.low;
    const double low = line.scale.low - spare * range;
    const double high = line.scale.high + spare * range;
    const PlotWindow::Share share = scene_.window.share(number_);
    return {low + share.low * (high - low), low + share.high * (high - low)};
}

void LogPane::place() {
    axes_->axis(QCPAxis::atBottom)->setRange(scene_.window.from(), scene_.window.to());
    if (lead() == nullptr) return;
    const PlotScale scale = shownScale(*lead());
    axes_->axis(QCPAxis::atLeft)->setRange(scale.low, scale.high);
}

double LogPane::xOf(double seconds) const {
    return axes_->axis(QCPAxis::atBottom)->coordToPixel(seconds);
}

double LogPane::yOf(const PaneLine& line, double value) const {
    const PlotScale scale = shownScale(line);
    return axes_->bottom() - (value - scale.low) / (scale.high - scale.low) * axes_->height();
}

QRect LogPane::whole() const {
    return axes_->rect().adjusted(0, -legendHeight_, 0, 0);
}

int LogPane::slotWidth() const {
    const QFontMetrics metrics(typeFont(Type::Remark));
    int widest = 0;
    // Digits that come and go would make the values jump.
    const QString value = scene_.other == nullptr ? QStringLiteral(" -0000.00 kPa")
                                                  : QStringLiteral(" -0000.00 kPa | -0000.00 kPa");
    for (const PaneLine& line : lines_) {
        widest = std::max(widest, metrics.horizontalAdvance(
                                      shownString(channelCaption(line.channel)) +
                                      (line.column < 0 ? QStringLiteral(" not in this log") : value)));
    }
    return widest + metrics.height() * 3 / 2;
}

QRect LogPane::legendSlot(std::size_t line) const {
    const QFontMetrics metrics(typeFont(Type::Remark));
    const auto row = static_cast<int>(line) / slotsInLine_;
    const auto column = static_cast<int>(line) % slotsInLine_;
    const QRect all = whole();
    const int width = all.width() / slotsInLine_;
    const int slot = std::min(width, slotWidth());
    return {all.left() + column * slot, all.top() + row * metrics.height(), slot, metrics.height()};
}

void LogPane::dress(bool isLast, QSize room) {
    const LookColors& look = lookNow();
    const QFont font = typeFont(Type::Remark);
    const QFontMetrics metrics(font);
    // The marks of the scale stand beside it.
    slotsInLine_ = std::max((room.width() - metrics.averageCharWidth() * 8) / std::max(slotWidth(), 1), 1);
    const auto rows = (static_cast<int>(lines_.size()) + slotsInLine_ - 1) / slotsInLine_;
    legendHeight_ = std::max(rows, 1) * metrics.height() + space(metrics, Space::Line);
    QMargins around = axes_->margins();
    around.setTop(legendHeight_);
    axes_->setMargins(around);
    axes_->setMinimumMargins(QMargins(0, 0, space(metrics, Space::Wide), space(metrics, Space::Tight)));
    axes_->setBackground(look.surface);
    for (QCPAxis* axis : axes_->axes()) {
        axis->setVisible(true);
        axis->setTickLabelFont(font);
        axis->setTickLabelColor(look.mutedText);
        for (const QPen& pen : {QPen(look.edge, 0)}) {
            axis->setBasePen(pen);
            axis->setTickPen(pen);
            axis->setSubTickPen(pen);
        }
        axis->grid()->setPen(QPen(look.border, 0));
        axis->grid()->setZeroLinePen(QPen(look.border, 0));
        axis->setSubTicks(false);
    }
    for (const auto type : {QCPAxis::atTop, QCPAxis::atRight}) {
        axes_->axis(type)->setTicks(false);
        axes_->axis(type)->setTickLabels(false);
    }
    axes_->axis(QCPAxis::atBottom)->setTickLabels(isLast);
    axes_->axis(QCPAxis::atBottom)
        ->ticker()
        ->setTickCount(std::clamp(room.width() / (metrics.height() * 7), 2, 12));
    axes_->axis(QCPAxis::atLeft)
        ->ticker()
        ->setTickCount(std::clamp((room.height() - legendHeight_) / (metrics.height() * 2), 1, 6));
}

}  // namespace zentaq
