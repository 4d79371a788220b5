#include "windows/frm_dashboard.h"

#include <QHBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "app/flight_record.h"
#include "app/state_strip.h"
#include "base/settings_keys.h"
#include "link/poller.h"
#include "qt/colour_swatch.h"
#include "qt/icons.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "windows/form_maker.h"
#include "windows/own_picture.h"

namespace zentaq {
namespace {

constexpr int flashMs = 350;
constexpr int codeStepMs = 1500;
/// Digits that change more often than so many microseconds are a blur.
constexpr std::int64_t numbersUs = 50'000;

/// Units of the readings in the short signs of an instrument.
QString sign(const std::string& unit) {
    if (unit == "deg") return QStringLiteral("\u00B0");
    if (unit == "C" || unit == "F") return QStringLiteral("\u00B0") + QString::fromStdString(unit);
    if (unit == "v") return QStringLiteral("V");
    return QString::fromStdString(unit);
}

std::optional<QColor> lampColor(std::int32_t color) {
    if (color == colours::black) return std::nullopt;
    return colorOfNumber(color);
}

}  // namespace

FrmDashBoard::FrmDashBoard(Session& session, MainCommands& commands, QWidget* parent)
    : QWidget(parent),
      Form(this),
      session_(session),
      panel_(new FrmDashBoardPanel(dialAngles(gauges_.revScale()), this)),
      tmrUpdate_(named(new QTimer(this), "tmrUpdate")),
      flashTimer_(named(new QTimer(this), "flashTimer")),
      tmrCHKE_Status_(named(new QTimer(this), "tmrCHKE_Status")),
      redraw_(new RedrawGate(
          session.platform().clock, [this] { draw(); }, this)),
      numbers_(new RedrawGate(
          session.platform().clock, [this] { drawReadings(); }, this, numbersUs)),
      secondTabShowing_([] { return false; }) {
    named(this, qString(window::dashboard), "Dashboard");
    cmdFold_ = named(new QToolButton(this), "cmdFoldDashboard");
    cmdFold_->setAutoRaise(true);
    cmdFold_->setFocusPolicy(Qt::TabFocus);
    connect(cmdFold_, &QToolButton::clicked, this, [&commands] { commands.toggleDashboard(); });
    setTabOrder(cmdFold_, panel_);
    auto* whole = new QHBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(cmdFold_, 0, Qt::AlignTop);
    whole->addWidget(panel_, 1);
    detail_ = new FrmDetailInfo(this);
    whole->addWidget(detail_, 1);
    connect(panel_->btnShowDetail, &QPushButton::clicked, this, [this] { showDetail(true); });
    connect(detail_, &FrmDetailInfo::dashAsked, this, [this] { showDetail(false); });
    FrmDashBoard::foldsChanged();

    tmrUpdate_->setTimerType(Qt::PreciseTimer);
    connect(tmrUpdate_, &QTimer::timeout, this, &FrmDashBoard::poll);
    flashTimer_->setInterval(flashMs);
    connect(flashTimer_, &QTimer::timeout, this, &FrmDashBoard::flash);
    tmrCHKE_Status_->setInterval(codeStepMs);
    connect(tmrCHKE_Status_, &QTimer::timeout, this, &FrmDashBoard::stepCodes);
    connect(panel_->lstGPO, &QListWidget::currentRowChanged, this, &FrmDashBoard::showChosenPin);
    nameReadings();
    dashLights_ = storedColor(session.settings().get(settings::system, settings::DashLights));
    needleColor_ = storedColor(session.settings().get(settings::system, settings::NeedleColor));
    setMode(session.dayMode());
    Reset_Dashboard();
}

void FrmDashBoard::openOn(const std::string& /*on*/, const std::string& /*title*/) {
    session_.applyMonitorMode();
    show();
    startTimers();
}

void FrmDashBoard::startTimers() {
    tmrUpdate_->start(pollIntervalMs(session_.settings()));
    tmrCHKE_Status_->start();
}

void FrmDashBoard::Kill_Timers() {
    tmrUpdate_->stop();
    flashTimer_->stop();
    tmrCHKE_Status_->stop();
    redraw_->cancel();
    numbers_->cancel();
}

void FrmDashBoard::poll() {
    session_.poll(secondTabShowing_());
    showWhetherLive();
    showLinkState();
}

void FrmDashBoard::showLinkState() {
    const LinkStatus& status = session_.linkDisplay.status();
    panel_->showNoConnect(status.noConnectPanel, shownString(status.noConnectText));
}

// ---- Folding

void FrmDashBoard::foldsChanged() {
    const bool fold = session_.folds.dashboard.folded();
    const QString meaning = fold ? "Open the dashboard" : "Fold the dashboard";
    cmdFold_->setIcon(icon(fold ? "Fold" : "Unfold"));
    cmdFold_->setAccessibleName(meaning);
    tellFold();
    // As with the messages: not to the next field, which may be a cell.
    if (fold && panel_->isAncestorOf(window()->focusWidget())) cmdFold_->setFocus();
    // One line has no room for a grid.
    if (fold && detail_ != nullptr && detail_->isVisible()) showDetail(false);
    panel_->setFolded(fold);
    setMaximumHeight(fold ? std::max(panel_->minimumSizeHint().height(), cmdFold_->sizeHint().height())
                          : QWIDGETSIZE_MAX);
}

void FrmDashBoard::tellFold() {
    QString tip = cmdFold_->accessibleName() + " (Ctrl+F9)";
    if (session_.folds.dashboard.folded()) tip += "\nNot on this line: " + panel_->behindTheLine().join(", ");
    cmdFold_->setToolTip(tip);
}

// ---- Colours

void FrmDashBoard::Day_Mode() {
    setMode(true);
}
void FrmDashBoard::Night_Mode() {
    setMode(false);
}

void FrmDashBoard::setMode(bool day) {
    day_ = day;
    applyColors();
    picture_.clear();  // it may have been replaced meanwhile
    followPicture();
}

void FrmDashBoard::followPicture() {
    const std::string name = dashboardPictureName(day_, gauges_.revScale(), shownUnit().kind().fuelSide);
    if (std::exchange(picture_, name) == name) return;
    const OwnPicture own = ownPicture(session_.applicationFolder(), name);
    panel_->setPicture(own.image);
    if (own.trouble.empty() || std::exchange(pictureTrouble_, own.trouble) == own.trouble) return;
    session_.sysLog("Picture of the dashboard not shown: " + own.trouble);
}

// Kept: LabelLights is stored and shown by the options and changes nothing.
void FrmDashBoard::look(bool day) {
    setMode(day);
    const SettingsStore& settings = session_.settings();
    dashboardColours(settings.get(settings::system, settings::DashLights),
                     settings.get(settings::system, settings::NeedleColor));
}

void FrmDashBoard::dashboardColours(const std::string& lights, const std::string& needle) {
    Set_DashBoard_Color(lights);
    Set_Needle_Color(needle);
}

void FrmDashBoard::Set_DashBoard_Color(const std::string& color) {
    dashLights_ = storedColor(color);
    applyColors();
}

void FrmDashBoard::Set_Needle_Color(const std::string& color) {
    needleColor_ = storedColor(color);
    applyColors();
}

void FrmDashBoard::Set_Label_Color(const std::string& color) {
    labelLights_ = storedColor(color);
    applyColors();
}

void FrmDashBoard::applyColors() {
    colors_ = dashColors(day_);
    colors_.lights = dashLights_.value_or(colors_.lights);
    colors_.needle = needleColor_.value_or(colors_.needle);
    colors_.labels = labelLights_.value_or(colors_.labels);
    panel_->setColors(colors_);
}

// ---- Display

Unit& FrmDashBoard::shownUnit() {
    const int linked = session_.link.linked().LinkedUnitKind;
    return session_.hasUnit(linked) ? session_.Units(linked) : session_.currentUnitObject();
}

void FrmDashBoard::followUnit() {
    const UnitKind& kind = shownUnit().kind();
    if (std::exchange(shownKind_, &kind) == &kind) return;
    panel_->showFuel(kind.fuelSide);
    followPicture();
    if (!kind.fuelSide && detail_->isVisible()) showDetail(false);
    nameReadings();
    tellFold();
}

void FrmDashBoard::draw() {
    ++redraws_;
    Unit& unit = shownUnit();
    const DashboardSettings settings = DashboardSettings::from(session_.settings());
    // The object of a linked unit without a calibration has a ratio too, but nobody has chosen it.
    std::optional<float> ratio;
    if (session_.slotInHand() != 0) ratio = session_.currentUnitObject().get("AFR");
    gauges_.UPDATE_DISPLAY(session_.live, unit, settings, ratio);
    showWhetherLive();
    drawNeedles();
    numbers_->request();
    drawAlarms();
}

void FrmDashBoard::showWhetherLive() {
    const bool live = gaugesLive(session_) || session_.recorder->showsLog();
    panel_->setLive(live);
    detail_->setLive(live);
}

void FrmDashBoard::showDetail(bool on) {
    // One line has no room for a grid.
    if (on && session_.folds.dashboard.folded()) return;
    panel_->setVisible(!on);
    if (!on) {
        detail_->hideForm();
        return panel_->btnShowDetail->isVisible() ? panel_->btnShowDetail->setFocus() : cmdFold_->setFocus();
    }
    drawDetail();
    detail_->showForm();
}

void FrmDashBoard::drawDetail() {
    detail_->updateDetailInfoValues(detailInfo(session_.live, shownUnit(), session_.fahrenheit()));
}

void FrmDashBoard::drawNeedles() {
    panel_->setAngles(dialAngles(gauges_.revScale()));
    followPicture();
    for (std::size_t i = 0; i < needleNames.size(); ++i) {
        panel_->setAngle(static_cast<Needle>(i), gauges_.angle(static_cast<Needle>(i)));
    }
    panel_->setMixtureColor(colorOfNumber(gauges_.afrColour()));
    panel_->checkEngineLamp->light(lampColor(gauges_.checkEngineColour()));
    // Without a calibration there is no limiter to exceed, only the 0 of an empty cell.
    const bool knownLimiter = shownUnit().get("REV_Limiter") > 0;
    panel_->overRevLamp->light(knownLimiter ? lampColor(gauges_.overRevColour()) : std::nullopt);
    panel_->lampsChanged();
}

void FrmDashBoard::drawReadings() {
    if (detail_->isVisible()) drawDetail();
    const auto settings = DashboardSettings::from(session_.settings());
    const auto readings = dashboardReadings(session_.live, shownUnit(), settings);
    panel_->setFahrenheit(settings.fahrenheit);
    panel_->showReadouts(shownReadouts(readings));
    for (const auto& reading : readings) {
        LiveLabel* label = panel_->findLabel(QString::fromStdString(reading.name));
        if (label == nullptr) continue;
        label->setText(reading.name == "lblTemp" ? sign(reading.text) : QString::fromStdString(reading.text));
        label->setUnit(sign(reading.unit));
    }
    drawPins(readings);
}

void FrmDashBoard::drawPins(const std::vector<DashboardReading>& readings) {
    int row = 0;
    const int before = panel_->lstGPO->count();
    for (const auto& reading : readings) {
        if (!reading.name.starts_with("GPIO") || !reading.inUse) continue;
        if (row == panel_->lstGPO->count()) panel_->lstGPO->addItem(QString());
        QListWidgetItem* item = panel_->lstGPO->item(row++);
        const QString text = QString::fromStdString(reading.caption + "  " + reading.text);
        if (item->text() != text) item->setText(text);
    }
    while (panel_->lstGPO->count() > row) delete panel_->lstGPO->takeItem(row);
    if (panel_->lstGPO->currentRow() < 0 && row > 0) panel_->lstGPO->setCurrentRow(0);
    if ((before > 0) != (row > 0)) {
        panel_->arrange();
        tellFold();
    }
    showChosenPin();
}

void FrmDashBoard::showChosenPin() {
    const QListWidgetItem* item = panel_->lstGPO->currentItem();
    const QString chosen = item == nullptr ? QString() : item->text();
    const QString text = tellsCleared() ? panel_->lblCheckEngine->fields().simplified() : chosen;
    if (panel_->txtGPIO->text() == text) return;
    panel_->txtGPIO->setText(text);
    panel_->txtGPIO->setCursorPosition(0);
}

void FrmDashBoard::drawAlarms() {
    const bool any = gauges_.cltAlarm() || gauges_.matAlarm();
    if (!gauges_.cltAlarm()) panel_->label("lblCLT").setAlarm(std::nullopt);
    if (!gauges_.matAlarm()) panel_->label("lblMAT").setAlarm(std::nullopt);
    if (any == flashTimer_->isActive()) return;
    if (any) {
        panel_->bringIntoView(gauges_.cltAlarm() ? "lblCLT" : "lblMAT");
        flashTimer_->start();
        flash();
    } else {
        flashTimer_->stop();
    }
}

void FrmDashBoard::flash() {
    const QColor color = colorOfNumber(gauges_.flash());
    if (gauges_.cltAlarm()) panel_->label("lblCLT").setAlarm(color);
    if (gauges_.matAlarm()) panel_->label("lblMAT").setAlarm(color);
}

void FrmDashBoard::Reset_Dashboard() {
    redraw_->cancel();
    numbers_->cancel();
    const int revScale = gauges_.revScale();
    gauges_ = Gauges();
    gauges_.revScale(revScale);
    gauges_.Reset_Dashboard();
    drawNeedles();
    panel_->setMixtureColor(std::nullopt);
    panel_->setFahrenheit(session_.fahrenheit());  // without a frame, too
    panel_->emptyLabels();
    nameReadings();
    panel_->lstGPO->clear();
    panel_->arrange();
    tellFold();
    showChosenPin();
    drawAlarms();
}

// ---- Check-engine codes

void FrmDashBoard::codesChanged() {
    if (session_.codes.silent()) {
        panel_->showCodes({}, {}, {});
    } else if (session_.codes.empty()) {
        if (!tellsCleared()) stepCodes();
    } else if (!panel_->lblCheckEngine->tells()) {
        stepCodes();
    }
}

void FrmDashBoard::stepCodes() {
    const auto code = session_.codes.step();
    if (code) {
        const auto all = session_.codes.texts();
        panel_->showCodes(QString::fromStdString(code->top + '\n' + code->bottom),
                          QString::fromStdString(codeLine(*code, all.size())),
                          QString::fromStdString(codeTip(*code, all)));
    } else {
        panel_->showCodes({}, {}, {});
    }
    showChosenPin();
}

/// That the codes were cleared stands in both fields of the column.
bool FrmDashBoard::tellsCleared() const {
    return panel_->lblCheckEngine->fields().startsWith(QLatin1String("CODES"));
}

/// Captions of the core, in full, as tips and for a screen reader; and what is shown before a frame came.
void FrmDashBoard::nameReadings() {
    auto readings =
        dashboardReadings(session_.live, shownUnit(), DashboardSettings::from(session_.settings()));
    for (auto& reading : readings) {
        LiveLabel* label = panel_->findLabel(QString::fromStdString(reading.name));
        if (label != nullptr) label->setMeaning(QString::fromStdString(reading.caption));
        if (label == nullptr || label->text().isEmpty()) reading.text.clear();
    }
    panel_->showReadouts(shownReadouts(readings));
}

template <>
Form* makeForm<FrmDashBoard>(const FormNeeds& needs) {
    return new FrmDashBoard(needs.session, needs.commands, needs.parent);
}

}  // namespace zentaq
