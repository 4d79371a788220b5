#include "windows/log_plot_area.h"

#include <algorithm>
#include <cmath>

#include "logs/log_channel.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr int leastPaneLines = 6;

}  // namespace

LogPlotArea::LogPlotArea(QWidget* parent) : QCustomPlot(parent) {
    named(this, "picPlot", "Plot of the datalog");
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAcceptDrops(true);
    setMouseTracking(true);
    setNotAntialiasedElements(QCP::aeAll);
    setPlottingHint(QCP::phCacheLabels);
    plotLayout()->clear();
    plotLayout()->setRowSpacing(0);
    margins_ = new QCPMarginGroup(this);
    band_ = new QRubberBand(QRubberBand::Rectangle, this);
    txtMark_ = named(new QLineEdit(this), "txtMark", "Text of the marker");
    txtMark_->hide();
    txtMark_->installEventFilter(this);
    lblEmpty_ = plainLines("lblPlotEmpty", "The plot", this);
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setAttribute(Qt::WA_TransparentForMouseEvents);
    due_.setSingleShot(true);
    connect(&due_, &QTimer::timeout, this, &LogPlotArea::drawNow);
    connect(this, &QCustomPlot::afterLayout, this, &LogPlotArea::fillBuckets);
    connect(txtMark_, &QLineEdit::editingFinished, this, [this] { takeMark(txtMark_->text()); });
    showEmptiness();
    dress();
}

LogPlotArea::~LogPlotArea() {
    disconnect(txtMark_, nullptr, this, nullptr);
}

QSize LogPlotArea::minimumSizeHint() const {
    constexpr int letters = 34;
    constexpr int lines = 8;
    return {fontMetrics().averageCharWidth() * letters, fontMetrics().height() * lines};
}

QSize LogPlotArea::sizeHint() const {
    return minimumSizeHint() * 2;
}

bool LogPlotArea::hasRoomForPane() const {
    return static_cast<int>(drawn_.size() + 1) * fontMetrics().height() * leastPaneLines <= height();
}

// ---- What is shown

void LogPlotArea::showLog(const LogColumns* log) {
    scene_.log = log;
    // The one that was laid over may have gone with the log before.
    scene_.other = nullptr;
    scene_.cursor.reset();
    scene_.a.reset();
    scene_.b.reset();
    scene_.hits.clear();
    scene_.marks.clear();
    named_.reset();
    txtMark_->hide();
    if (scene_.hasLog()) {
        scene_.window.reset(log->seconds(0), log->lastSeconds());
        scene_.cursor = log->seconds(0);
    }
    for (const auto& pane : drawn_) pane->follow();
    showEmptiness();
    linesChanged();
    Q_EMIT measured();
}

void LogPlotArea::overlay(const LogColumns* other) {
    scene_.other = other;
    for (const auto& pane : drawn_) pane->follow();
    dress();
    linesChanged();
}

void LogPlotArea::grown() {
    if (!scene_.hasLog()) return;
    if (!scene_.cursor) {
        scene_.cursor = scene_.log->seconds(0);
        scene_.window.reset(scene_.log->seconds(0), scene_.log->lastSeconds());
    }
    scene_.window.limits(scene_.log->seconds(0), scene_.log->lastSeconds());
    for (const auto& pane : drawn_) pane->follow();
    showEmptiness();
    linesChanged();
}

void LogPlotArea::overlayShift(double seconds) {
    seconds = std::clamp(seconds, -farthestShift, farthestShift);
    if (seconds == scene_.shift) return;
    scene_.shift = seconds;
    linesChanged();
    Q_EMIT overlayShifted(seconds);
}

void LogPlotArea::cursorAt(double seconds) {
    if (!scene_.hasLog()) return;
    scene_.cursor = clamped(seconds);
    const double from = scene_.window.from();
    scene_.window.bring(*scene_.cursor);
    if (from != scene_.window.from()) {
        linesChanged();
    } else {
        cursorsChanged();
    }
    Q_EMIT cursorMoved();
}

void LogPlotArea::hits(const std::vector<LogHit>& hits) {
    scene_.hits = hits;
    linesChanged();
}

void LogPlotArea::marks(const std::vector<LogMark>& marks) {
    named_.reset();
    txtMark_->hide();
    scene_.marks = marks;
    cursorsChanged();
}

void LogPlotArea::panes(const std::vector<PlotPane>& panes) {
    if (panes == panes_) return;
    panes_ = panes;
    scene_.paneInHand = std::min(scene_.paneInHand, panes.empty() ? 0 : panes.size() - 1);
    scene_.window.wholeHeights();
    rebuild();
    Q_EMIT panesChanged();
}

void LogPlotArea::rebuild() {
    drag_.reset();
    band_->hide();
    drawn_.clear();
    plotLayout()->clear();
    std::size_t lines = 0;
    for (std::size_t i = 0; i < panes_.size(); ++i) {
        drawn_.push_back(std::make_unique<LogPane>(*this, scene_, panes_[i], i, lines));
        drawn_.back()->axes().setMarginGroup(QCP::msLeft | QCP::msRight, margins_);
        lines += panes_[i].channels.size();
    }
    showEmptiness();
    dress();
    linesChanged();
}

void LogPlotArea::showEmptiness() {
    const bool noLog = !scene_.hasLog();
    lblEmpty_->setVisible(noLog || panes_.empty());
    lblEmpty_->setText(noLog ? QStringLiteral("Open a datalog or record one")
                             : QStringLiteral("Choose a channel in the list"));
    lblEmpty_->raise();
    for (const auto& pane : drawn_) pane->axes().setVisible(!noLog);
}

void LogPlotArea::dress() {
    setBackground(QBrush(lookNow().background));
    lblEmpty_->setFont(typeFont(Type::Heading));
    lblEmpty_->setGeometry(rect());
    txtMark_->setFont(typeFont(Type::Body));
    const int panes = std::max(static_cast<int>(drawn_.size()), 1);
    for (const auto& pane : drawn_) pane->dress(pane == drawn_.back(), {width(), height() / panes});
}

void LogPlotArea::fillBuckets() {
    if (drawn_.empty() || !scene_.hasLog()) return;
    const int pixels = std::max(drawn_.front()->axes().width(), 1);
    const double from = scene_.window.from();
    const double to = scene_.window.to();
    scene_.buckets = plotBuckets(*scene_.log, from, to, pixels);
    if (scene_.other == nullptr) return;
    scene_.otherBuckets = plotBuckets(*scene_.other, from - scene_.shift, to - scene_.shift, pixels);
}

void LogPlotArea::linesChanged() {
    linesDue_ = true;
    if (!due_.isActive()) due_.start(0);
}

void LogPlotArea::cursorsChanged() {
    if (!due_.isActive()) due_.start(0);
}

void LogPlotArea::drawNow() {
    due_.stop();
    if (!linesDue_) {
        layer(QStringLiteral("overlay"))->replot();
        return;
    }
    linesDue_ = false;
    for (const auto& pane : drawn_) pane->place();
    replot(QCustomPlot::rpQueuedRefresh);
}

void LogPlotArea::paintEvent(QPaintEvent* event) {
    // What is painted is never older than what was asked for.
    if (due_.isActive()) drawNow();
    QCustomPlot::paintEvent(event);
}

void LogPlotArea::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    dress();
    linesChanged();
}

void LogPlotArea::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    const auto type = event->type();
    if (type != QEvent::PaletteChange && type != QEvent::FontChange && type != QEvent::StyleChange) return;
    dress();
    linesChanged();
}

QString LogPlotArea::inWords() const {
    if (!scene_.hasLog()) return lblEmpty_->text();
    QString text = QStringLiteral("Time ") + qString(plotTimeText(scene_.cursor.value_or(0)));
    for (const auto& pane : drawn_) {
        for (const PaneLine& line : pane->lines()) text += QStringLiteral(", ") + legendText(scene_, line);
    }
    return text;
}

// ---- Measuring and markers

void LogPlotArea::measure(std::optional<double> a, std::optional<double> b) {
    if (!scene_.hasLog()) return;
    scene_.a = a ? std::optional(clamped(*a)) : a;
    scene_.b = b ? std::optional(clamped(*b)) : b;
    cursorsChanged();
    Q_EMIT measured();
}

void LogPlotArea::toggleMeasuring() {
    if (scene_.a || scene_.b) return measure({}, {});
    const double third = scene_.window.length() / 3;
    measure(scene_.window.from() + third, scene_.window.to() - third);
}

void LogPlotArea::toggleScale() {
    if (scene_.paneInHand >= panes_.size()) return;
    auto panes = panes_;
    panes[scene_.paneInHand].sharedScale = !panes[scene_.paneInHand].sharedScale;
    this->panes(panes);
}

void LogPlotArea::tellMarks() {
    cursorsChanged();
    Q_EMIT marksEdited(scene_.marks);
}

void LogPlotArea::addMark() {
    if (!scene_.hasLog() || drawn_.empty()) return;
    scene_.window.bring(*scene_.cursor);
    scene_.marks.push_back({*scene_.cursor, ""});
    std::ranges::stable_sort(scene_.marks, {}, &LogMark::seconds);
    const auto same = std::ranges::find(scene_.marks, LogMark{*scene_.cursor, ""});
    renameMark(static_cast<std::size_t>(same - scene_.marks.begin()));
}

void LogPlotArea::renameMark(std::size_t mark) {
    if (mark >= scene_.marks.size() || drawn_.empty()) return;
    linesDue_ = true;
    drawNow();
    named_ = mark;
    const QRect flag = markFlag(*drawn_.front(), scene_.marks[mark]);
    const QSize size(fontMetrics().averageCharWidth() * 24, txtMark_->sizeHint().height());
    txtMark_->setText(qString(scene_.marks[mark].text));
    txtMark_->setGeometry(QRect(
        QPoint(std::clamp(flag.left(), 0, std::max(width() - size.width(), 0)), std::max(flag.top(), 0)),
        size));
    txtMark_->show();
    txtMark_->raise();
    txtMark_->selectAll();
    txtMark_->setFocus();
}

void LogPlotArea::takeMark(const QString& text) {
    if (!named_) return;
    const std::size_t mark = *named_;
    named_.reset();
    const bool hadKeyboard = txtMark_->hasFocus();
    txtMark_->hide();
    if (hadKeyboard) setFocus();
    if (mark >= scene_.marks.size()) return;
    const std::string entered = text.trimmed().toStdString();
    // A marker says something; one that has just been made and got no text was not wanted.
    if (!entered.empty()) scene_.marks[mark].text = entered;
    if (scene_.marks[mark].text.empty()) {
        scene_.marks.erase(scene_.marks.begin() + static_cast<std::ptrdiff_t>(mark));
        return cursorsChanged();
    }
    tellMarks();
}

void LogPlotArea::removeMark(std::size_t mark) {
    if (mark >= scene_.marks.size()) return;
    scene_.marks.erase(scene_.marks.begin() + static_cast<std::ptrdiff_t>(mark));
    tellMarks();
}

std::optional<std::size_t> LogPlotArea::markAtCursor() const {
    if (!scene_.cursor || scene_.marks.empty()) return {};
    const auto far = [this](const LogMark& mark) { return std::abs(mark.seconds - *scene_.cursor); };
    const auto nearest = std::ranges::min_element(scene_.marks, {}, far);
    constexpr double reach = 0.01;
    if (far(*nearest) > reach * scene_.window.length()) return {};
    return static_cast<std::size_t>(nearest - scene_.marks.begin());
}

}  // namespace zentaq
