#include "windows/recorder_page.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/text.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/value_label.h"
#include "qt/wrap_layout.h"

namespace zentaq {

namespace {

struct ButtonText {
    const char* caption;
    const char* meaning;
    const char* key;
};
constexpr std::array<ButtonText, recorderButtons> buttonTexts{{{"|<", "To the start", "Home"},
                                                               {"<|", "Step back", "Left"},
                                                               {"<", "Play backward", "Shift+Space"},
                                                               {"Stop", "Stop", "S"},
                                                               {">", "Play", "Space"},
                                                               {"Record", "Record", "R"},
                                                               {"|>", "Step forward", "Right"},
                                                               {">|", "To the end", "End"}}};
constexpr int positionSteps = 10000;
constexpr int mostSpeed = 100;
constexpr int speedStep = 25;
constexpr int importMs = 15;
constexpr int percent = 100;

/// As wide as its caption needs, and no narrower than the pause mark: eight of them stand side by side.
class KeyOfRecorder : public QPushButton {
 public:
    using QPushButton::QPushButton;

    QSize sizeHint() const override {
        const QFontMetrics metrics = fontMetrics();
        const int letters = std::max(metrics.horizontalAdvance(text()), metrics.horizontalAdvance("||"));
        return {letters + 2 * space(metrics, Space::Normal), QPushButton::sizeHint().height()};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }
};

QPushButton* recorderButton(int number, QWidget* parent) {
    const ButtonText& text = buttonTexts[static_cast<std::size_t>(number)];
    auto* button = named(new KeyOfRecorder(text.caption, parent), QString("cmdFlightRecord_%1").arg(number),
                         text.meaning);
    button->setToolTip(QString("%1 (%2)").arg(text.meaning, text.key));
    // A click leaves the keys with the page, where each of them has its own meaning.
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

}  // namespace

RecorderPage::RecorderPage(Session& session, QWidget* parent)
    : QWidget(parent), session_(session), recorder_(*session.recorder) {
    named(this, "fraFlightRecorder", "Flight recorder");
    setFocusPolicy(Qt::ClickFocus);
    redraw_ = new RedrawGate(
        session.platform().clock, [this] { draw(); }, this);
    tmrFlightRecord1_ = named(new QTimer(this), "tmrFlightRecord1");
    tmrFlightRecord2_ = named(new QTimer(this), "tmrFlightRecord2");
    for (QTimer* timer : {tmrFlightRecord1_, tmrFlightRecord2_}) timer->setTimerType(Qt::PreciseTimer);
    connect(tmrFlightRecord1_, &QTimer::timeout, this, [this] { recorder_.firePlayback(); });
    connect(tmrFlightRecord2_, &QTimer::timeout, this, [this] { recorder_.RecordData(); });
    tmrImport_ = named(new QTimer(this), "tmrImport");
    tmrImport_->setInterval(importMs);
    connect(tmrImport_, &QTimer::timeout, this, [this] {
        recorder_.takeLoaded();
        takeOverlay();
        if (!recorder_.busy() && otherName_.isEmpty()) tmrImport_->stop();
        redraw_->request();
    });

    auto* top = named(new QWidget(this), "fraRecorderBar");
    auto* bar = new WrapLayout(top);
    bar->setContentsMargins(0, 0, 0, 0);
    bar->setSpacing(space(fontMetrics(), Space::Normal));
    addButtons(*bar);
    bar->addWidget(makeState());
    bar->addWidget(makeSpeed());
    bar->addWidget(makeFileButtons());
    QWidget* position = makePosition();
    tabs_ = named(new QTabWidget(this), "tabLog", "Views of the datalog");
    tabs_->setDocumentMode(true);
    plots_ = new LogPlotView(session.settings(), this);
    plots_->askPathBy([this](const FileRequest& request) {
        FileRequest here = request;
        here.folder = session_.platform().userFolder;
        return session_.dialogs().saveFile(here);
    });
    connect(plots_, &LogPlotView::timeChosen, this, [this](double seconds) { recorder_.goTo(seconds); });
    connect(plots_, &LogPlotView::marksEdited, this,
            [this](const std::vector<LogMark>& marks) { recorder_.marks(marks); });
    values_ = new LogValues(this);
    tabs_->addTab(plots_, "Plots");
    tabs_->addTab(values_, "Values");
    histogram_ = new LogHistogramPanel(session.settings(), this);
    connect(histogram_, &LogHistogramPanel::conditionChosen, this, [this](const QString& condition) {
        tabs_->setCurrentWidget(plots_);
        plots_->searchFor(condition);
    });
    tabs_->addTab(histogram_, "Histogram");
    scatter_ = new LogScatterPanel(session.settings(), this);
    connect(scatter_, &LogScatterPanel::timeChosen, this,
            [this](double seconds) { recorder_.goTo(seconds); });
    tabs_->addTab(scatter_, "Scatter");
    auto* whole = new QVBoxLayout(this);
    const int gap = space(fontMetrics(), Space::Tight);
    whole->setContentsMargins(gap, gap, gap, gap);
    whole->setSpacing(gap);
    whole->addWidget(top);
    whole->addWidget(position);
    whole->addWidget(tabs_, 1);
    draw();
}

void RecorderPage::addButtons(QLayout& bar) {
    for (int i = 0; i < recorderButtons; ++i) {
        QPushButton* button = recorderButton(i, this);
        cmdFlightRecord_[static_cast<std::size_t>(i)] = button;
        bar.addWidget(button);
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, i] { press(static_cast<RecorderButton>(i)); });
    }
}

QWidget* RecorderPage::makeState() {
    auto* box = new QWidget(this);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(space(fontMetrics(), Space::Line));
    lblFRFrame_ = explained(new ValueLabel("0000000", box), "lblFRFrame", "Frame");
    lblFRTime_ = explained(new ValueLabel("000:00.00", box), "lblFRTime", "Time");
    lblFRStatus_ = new ElidedLabel("lblFRStatus", "State of the recorder", box);
    lblFRStatus_->setFont(typeFont(Type::Strong));
    auto* line = new QHBoxLayout;
    line->setSpacing(space(fontMetrics(), Space::Normal));
    QLabel* caption = plainLabel("lblFrameCaption", {}, box);
    caption->setText("Frame");
    line->addWidget(caption);
    line->addWidget(lblFRFrame_);
    line->addWidget(lblFRTime_);
    line->addStretch(1);
    layout->addWidget(lblFRStatus_);
    layout->addLayout(line);
    return box;
}

QWidget* RecorderPage::makePosition() {
    sldPosition_ = named(new QSlider(Qt::Horizontal, this), "sldPosition", "Place in the log");
    sldPosition_->setRange(0, positionSteps);
    sldPosition_->setPageStep(positionSteps / 20);
    connect(sldPosition_, &QSlider::valueChanged, this, [this](int value) {
        const LogColumns& log = recorder_.log();
        if (log.empty()) return;
        const double share = static_cast<double>(value) / positionSteps;
        recorder_.goTo(log.seconds(static_cast<std::size_t>(share * static_cast<double>(log.rows() - 1))));
    });
    return sldPosition_;
}

QWidget* RecorderPage::makeSpeed() {
    auto* box = new QWidget(this);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(space(fontMetrics(), Space::Line));
    auto* line = new QHBoxLayout;
    const auto label = [&](const char* name, const char* text) {
        QLabel* made = plainLabel(name, {}, box);
        made->setText(text);
        return made;
    };
    auto* caption = label("lblPlaybackSpeed", "Playback Speed");
    sldPlaybackSpeed_ = named(new QSlider(Qt::Horizontal, box), "sldPlaybackSpeed", "Playback Speed");
    sldPlaybackSpeed_->setRange(0, mostSpeed);
    sldPlaybackSpeed_->setSingleStep(speedStep);
    sldPlaybackSpeed_->setPageStep(speedStep);
    sldPlaybackSpeed_->setValue(mostSpeed / 2);
    sldPlaybackSpeed_->setToolTip("Keys 1 to 5");
    connect(sldPlaybackSpeed_, &QSlider::valueChanged, this,
            [this](int value) { recorder_.playbackSpeed(value); });
    line->addWidget(label("lblSlow", "Slow"));
    line->addStretch(1);
    line->addWidget(label("lblNorm", "Norm"));
    line->addStretch(1);
    line->addWidget(label("lblFast", "Fast"));
    layout->addWidget(caption, 0, Qt::AlignHCenter);
    layout->addWidget(sldPlaybackSpeed_);
    layout->addLayout(line);
    return box;
}

QWidget* RecorderPage::makeFileButtons() {
    auto* box = new QWidget(this);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(space(fontMetrics(), Space::Line));
    cmdFlightRecord_Import_ = named(new QToolButton(box), "cmdFlightRecord_Import", "Open Datalog");
    cmdFlightRecord_Import_->setText("Open Datalo&g...");
    cmdFlightRecord_Import_->setPopupMode(QToolButton::MenuButtonPopup);
    cmdFlightRecord_Import_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(cmdFlightRecord_Import_, &QToolButton::clicked, this, [this] { recorder_.importLog(); });
    auto* more = named(new QMenu(cmdFlightRecord_Import_), "mnuOpenDatalog");
    mnuOverlay_ = named(more->addAction("&Lay another datalog over it..."), "mnuOverlay");
    connect(mnuOverlay_, &QAction::triggered, this, &RecorderPage::askOverlay);
    mnuNoOverlay_ = named(more->addAction("&Take the second datalog away"), "mnuNoOverlay");
    connect(mnuNoOverlay_, &QAction::triggered, this, [this] {
        plots_->overlay(nullptr, {});
        mnuNoOverlay_->setEnabled(false);
    });
    mnuNoOverlay_->setEnabled(false);
    cmdFlightRecord_Import_->setMenu(more);
    cmdFlightRecord_Export_ = named(new QToolButton(box), "cmdFlightRecord_Export", "Save As");
    cmdFlightRecord_Export_->setText("&Save As");
    cmdFlightRecord_Export_->setPopupMode(QToolButton::InstantPopup);
    cmdFlightRecord_Export_->setToolTip("Write the log for other programs");
    cmdFlightRecord_Export_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    makeExports(cmdFlightRecord_Export_);
    prgImport_ = named(new QProgressBar(box), "prgImport", "Import");
    prgImport_->setRange(0, percent);
    cmdCancelImport_ = namedButton("cmdCancelImport", "&Cancel", box);
    connect(cmdCancelImport_, &QPushButton::clicked, this, [this] {
        recorder_.cancelAll();
        redraw_->request();
    });
    layout->addWidget(cmdFlightRecord_Import_);
    layout->addWidget(cmdFlightRecord_Export_);
    layout->addWidget(prgImport_);
    layout->addWidget(cmdCancelImport_);
    return box;
}

void RecorderPage::makeExports(QToolButton* button) {
    auto* menu = named(new QMenu(button), "mnuExports");
    for (const LogExport format : {LogExport::Csv, LogExport::Msl, LogExport::Mlg}) {
        QAction* entry = named(menu->addAction(qString(exportCaption(format) + "...")),
                               "mnuExport_" + qString(exportName(format)));
        connect(entry, &QAction::triggered, this, [this, format] { recorder_.exportLog(format); });
    }
    button->setMenu(menu);
}

// ---- What the user does

void RecorderPage::press(RecorderButton button) {
    endOnFailure([&] { recorder_.Toolbar(static_cast<int>(button)); },
                 [&](const std::string& why) { session_.inform(why); });
    draw();
}

bool RecorderPage::take(const QKeyEvent& key) {
    struct Key {
        int key;
        Qt::KeyboardModifiers with;
        RecorderButton button;
    };
    static const std::array<Key, 8> keys{{{Qt::Key_Space, Qt::NoModifier, RecorderButton::Play},
                                          {Qt::Key_Space, Qt::ShiftModifier, RecorderButton::Reverse},
                                          {Qt::Key_Left, Qt::NoModifier, RecorderButton::StepBack},
                                          {Qt::Key_Right, Qt::NoModifier, RecorderButton::StepForward},
                                          {Qt::Key_Home, Qt::NoModifier, RecorderButton::FullBack},
                                          {Qt::Key_End, Qt::NoModifier, RecorderButton::FullForward},
                                          {Qt::Key_S, Qt::NoModifier, RecorderButton::Stop},
                                          {Qt::Key_R, Qt::NoModifier, RecorderButton::Record}}};
    const Qt::KeyboardModifiers with = key.modifiers() & ~Qt::KeypadModifier;
    for (const Key& one : keys) {
        if (key.key() != one.key || with != one.with) continue;
        if (recorder_.enabled(one.button)) press(one.button);
        return true;
    }
    if (key.key() == Qt::Key_F3 && (with == Qt::NoModifier || with == Qt::ShiftModifier)) {
        plots_->nextHit(with == Qt::NoModifier ? 1 : -1);
        return true;
    }
    if (with != Qt::NoModifier || key.key() < Qt::Key_1 || key.key() > Qt::Key_5) return false;
    sldPlaybackSpeed_->setValue((key.key() - Qt::Key_1) * speedStep);
    return true;
}

void RecorderPage::find() {
    tabs_->setCurrentWidget(plots_);
    plots_->focusCondition();
}

// What the page has no use for is a key of the plot, wherever the keyboard is.
void RecorderPage::keyPressEvent(QKeyEvent* event) {
    if (take(*event)) return;
    const bool plotIsBehind = !plots_->isVisible() || plots_->area().hasFocus();
    if (plotIsBehind || !plots_->area().takeKey(*event)) QWidget::keyPressEvent(event);
}

// The page itself has the keyboard when one comes to it: its keys need no button.
void RecorderPage::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    const int edge = edgeWidth(fontMetrics());
    painter.setPen(QPen(lookNow().focus, edge));
    painter.drawRect(QRectF(rect()).adjusted(edge / 2.0, edge / 2.0, -edge / 2.0, -edge / 2.0));
}

// A button that has the keyboard takes the keys of the page, but for those that press it.
bool RecorderPage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    return key.key() != Qt::Key_Space && take(key);
}

void RecorderPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    recorder_.pageShown(true);
    recorder_.Display();
    calibrationChanged();
    draw();
}

void RecorderPage::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    recorder_.pageShown(false);
}

// ---- News

void RecorderPage::recorderChanged() {
    setTimer(*tmrFlightRecord1_, recorder_.playbackIntervalMs());
    setTimer(*tmrFlightRecord2_, recorder_.recordingIntervalMs());
    if (recorder_.busy() && !tmrImport_->isActive()) tmrImport_->start();
    redraw_->request();
}

void RecorderPage::logChanged() {
    draw();
}

void RecorderPage::calibrationChanged() {
    const int slot = session_.slotInHand();
    if (isVisible()) histogram_->showCalibration(slot == 0 ? nullptr : &session_.Units(slot));
}

void RecorderPage::setTimer(QTimer& timer, int intervalMs) {
    if (intervalMs == 0) return timer.stop();
    if (!timer.isActive() || timer.interval() != intervalMs) timer.start(intervalMs);
}

void RecorderPage::killTimers() {
    for (QTimer* timer : {tmrFlightRecord1_, tmrFlightRecord2_, tmrImport_}) timer->stop();
    redraw_->cancel();
}

void RecorderPage::draw() {
    drawButtons();
    lblFRStatus_->setText(shownString(recorder_.status()));
    static_cast<ValueLabel*>(lblFRFrame_)->showValue(qString(recorder_.frameText()));
    static_cast<ValueLabel*>(lblFRTime_)->showValue(qString(recorder_.timeText()));
    const QSignalBlocker quiet(sldPosition_);
    sldPosition_->setEnabled(!recorder_.log().empty() && !recorder_.Recording);
    if (!sldPosition_->isSliderDown())
        sldPosition_->setValue(static_cast<int>(recorder_.place() * positionSteps));
    drawProgress();
    if (!isVisible()) return;
    values_->showRow(recorder_.shown());
    drawPlots();
}

void RecorderPage::drawPlots() {
    const LogColumns& log = recorder_.log();
    if (std::exchange(logsSeen_, recorder_.logsLoaded()) != recorder_.logsLoaded() ||
        log.rows() < rowsSeen_) {
        rowsSeen_ = log.rows();
        plots_->showLog(&log, shownString(recorder_.SessionName));
        histogram_->showLog(&log);
        scatter_->showLog(&log);
        marksSeen_.clear();
    } else if (std::exchange(rowsSeen_, log.rows()) != log.rows()) {
        plots_->grown();
        histogram_->grown();
        scatter_->grown();
    }
    if (std::exchange(marksSeen_, recorder_.marks()) != recorder_.marks()) plots_->marks(recorder_.marks());
    plots_->cursorAt(recorder_.seconds());
    scatter_->cursorAt(recorder_.seconds());
}

void RecorderPage::askOverlay() {
    const std::string path = session_.dialogs().openFile({"Open Zentaq Datalog File",
                                                          session_.platform().userFolder,
                                                          "Zentaq Datalog (*.DAT)|*.dat",
                                                          1,
                                                          "dat",
                                                          {}});
    if (path.empty()) return;
    constexpr double sequential = 120;
    plots_->overlay(nullptr, {});
    mnuNoOverlay_->setEnabled(false);
    other_ = {};
    otherName_ = shownString(fileNameOf(path));
    otherLoading_.begin(session_.platform().side, path, sequential);
    tmrImport_->start();
    takeOverlay();
}

void RecorderPage::takeOverlay() {
    if (otherName_.isEmpty()) return;
    otherLoading_.take(other_);
    if (otherLoading_.running()) return;
    const QString name = std::exchange(otherName_, QString());
    const std::string failure = otherLoading_.failure();
    if (failure.empty() && !other_.empty()) {
        mnuNoOverlay_->setEnabled(true);
        return plots_->overlay(&other_, name);
    }
    session_.windows().later([this, failure] {
        session_.inform("The datalog cannot be read.\n" + failure + "\nChoose another file.");
    });
}

void RecorderPage::drawButtons() {
    for (int i = 0; i < recorderButtons; ++i) {
        const auto button = static_cast<RecorderButton>(i);
        QPushButton* control = cmdFlightRecord_[static_cast<std::size_t>(i)];
        control->setEnabled(recorder_.enabled(button));
        const std::string caption = recorder_.caption(button);
        if (caption.empty() || control->text().toStdString() == caption) continue;
        control->setText(qString(caption));
        const bool pauses = caption == "||";
        control->setAccessibleName(pauses ? "Pause" : buttonTexts[static_cast<std::size_t>(i)].meaning);
    }
    cmdFlightRecord_Import_->setEnabled(!recorder_.Recording);
    cmdFlightRecord_Export_->setEnabled(!recorder_.log().empty() && !recorder_.Recording);
    mnuOverlay_->setEnabled(!recorder_.log().empty());
}

void RecorderPage::drawProgress() {
    const bool runs = recorder_.busy();
    cmdFlightRecord_Import_->setVisible(!runs);
    cmdFlightRecord_Export_->setVisible(!runs);
    prgImport_->setVisible(runs);
    cmdCancelImport_->setVisible(runs);
    if (!runs) return;
    const bool writes = recorder_.exporting();
    const double share = recorder_.loading() ? recorder_.loadedShare()
                         : writes            ? recorder_.exportedShare()
                                             : recorder_.storedShare();
    prgImport_->setFormat(recorder_.loading() ? "Loading %p%" : writes ? "Writing %p%" : "Storing %p%");
    prgImport_->setValue(static_cast<int>(share * percent));
}

}  // namespace zentaq
