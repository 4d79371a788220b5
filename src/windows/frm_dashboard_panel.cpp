#include "windows/frm_dashboard_panel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "live/dashboard_readings.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

using Tick = GaugeFace::Tick;

/// The only text of fraNoConnect that lasts; the others come and go within milliseconds while frames flow.
constexpr auto waitingForUnit = "Connecting...";
constexpr float veilOpacity = 0.7F;

constexpr Channel::Span spanOf(Channel::Number value) {
    return channelOf(value).span;
}

/// Ticks over a span; those on a whole `major` bear the value divided by `divisor`.
std::vector<Tick> ticks(DialAngle angle, Channel::Span span, int minor, int major, int divisor = 1) {
    std::vector<Tick> result;
    const int low = static_cast<int>(span.low);
    for (int value = low; value <= static_cast<int>(span.high); value += minor) {
        const bool numbered = (value - low) % major == 0;
        result.push_back({angle(value), numbered ? QString::number(value / divisor) : QString()});
    }
    return result;
}

GaugeFace tachometer(const DialAngles& angles) {
    const int red = angles.revScale * 8 / 9;
    return {.name = "Tachometer",
            .caption = "rpm x 1000",
            .bounds = {-1.05, -1.05, 2.1, 2.1},
            .readout = {-0.52, 0.44, 0.66, 0.42},
            .captionAt = {0, -0.36},
            .ticks = ticks(angles.tachometer, {0, static_cast<float>(angles.revScale)}, angles.revScale / 36,
                           angles.revScale / 9, 1000),
            .zones = {{angles.tachometer(red), angles.tachometer(angles.revScale), &DashColors::redZone}},
            .twoLines = false,
            .restAngle = -123};
}

GaugeFace throttle(const DialAngles& angles) {
    GaugeFace face{.name = "TPS",
                   .caption = {},
                   .bounds = {-0.95, -1.06, 1.55, 1.72},
                   .readout = {-0.74, 0.14, 1.1, 0.52},
                   .captionAt = {},
                   .ticks = {},
                   .zones = {},
                   .restAngle = angles.throttle(spanOf(&LiveValues::TPS).low)};
    for (int tenths = 0; tenths <= 50; tenths += 5) {
        const bool numbered = tenths % 10 == 0;
        face.ticks.push_back(
            {angles.throttle(tenths / 10.0), numbered ? QString::number(tenths / 10) : QString()});
    }
    return face;
}

GaugeFace volt(const DialAngles& angles) {
    constexpr Channel::Span span = spanOf(&LiveValues::BATTV);
    GaugeFace face{.name = "VOLT",
                   .caption = {},
                   .bounds = {-0.95, -0.66, 1.55, 1.72},
                   .readout = {-0.74, -0.66, 1.1, 0.52},
                   .captionAt = {},
                   .ticks = ticks(angles.volt, span, 1, 12),
                   .zones = {{angles.volt(span.low), angles.volt(11), &DashColors::redZone},
                             {angles.volt(15.5), angles.volt(span.high), &DashColors::redZone}},
                   .restAngle = angles.volt(span.low)};
    for (const int numbered : {8, 12, 16}) {
        face.ticks[static_cast<std::size_t>(numbered - 7)].label = QString::number(numbered);
    }
    face.ticks.front().label.clear();
    return face;
}

GaugeFace idle(const DialAngles& angles) {
    return {.name = "IAC",
            .caption = {},
            .bounds = {-0.95, -0.66, 1.55, 1.72},
            .readout = {-0.74, -0.66, 1.1, 0.52},
            .captionAt = {},
            .ticks = ticks(angles.idle, spanOf(&LiveValues::IACP), 10, 50),
            .zones = {},
            .restAngle = angles.idle(spanOf(&LiveValues::IACP).low)};
}

/// The needle goes by degrees Celsius whatever the face says.
GaugeFace temperature(const QString& name, DialAngle angle, bool fahrenheit) {
    constexpr Channel::Span span = spanOf(&LiveValues::CLT);
    GaugeFace face{.name = name,
                   .caption = {},
                   .bounds = {-0.5, -0.8, 1.56, 1.72},
                   .readout = {-0.5, 0.42, 0.74, 0.5},
                   .captionAt = {},
                   .ticks = {},
                   .zones = {{angle(110), angle(span.high), &DashColors::redZone}},
                   .restAngle = angle(span.low)};
    const int highest = fahrenheit ? 300 : 150;
    const int step = fahrenheit ? 20 : 10;
    const int numbered = fahrenheit ? 100 : 50;
    for (int value = -40; value <= highest; value += step) {
        const double celsius = fahrenheit ? (value - 32) / 1.8 : value;
        face.ticks.push_back({angle(celsius), value % numbered == 0 ? QString::number(value) : QString()});
    }
    return face;
}

GaugeFace mixture(const DialAngles& angles) {
    GaugeFace face{.name = "AFR",
                   .caption = {},
                   .bounds = {-1.06, -1.0, 1.46, 1.98},
                   .readout = {-0.36, 0.34, 0.76, 0.44},
                   .captionAt = {},
                   .ticks = {},
                   .zones = {},
                   .twoLines = true,
                   .restAngle = angles.mixture(spanOf(&LiveValues::AAFR).low)};
    for (int tenths = 90; tenths < 140; tenths += 5) {
        const bool numbered = tenths % 20 == 0;
        face.ticks.push_back(
            {angles.mixture(tenths / 10.0), numbered ? QString::number(tenths / 10) : QString()});
    }
    // The scale has a gap at 14 where neither formula holds: the number stands in the middle of it.
    face.ticks.push_back({(angles.mixture(13.99) + angles.mixture(14.01)) / 2, "14"});
    face.ticks.push_back({angles.mixture(14.5), {}});
    face.ticks.push_back({angles.mixture(14.99), "15"});
    for (int value = 16; value <= 20; ++value) {
        face.ticks.push_back({angles.mixture(value), value == 20 ? QString("20") : QString()});
    }
    return face;
}

/// The read-outs that stand beside the dials, row by row.
const std::array<LiveLabel::Form, 20>& readoutForms() {
    // One width for all, so that all numbers have one size.
    static const QString widest = QStringLiteral("88.88");
    static const std::array<LiveLabel::Form, 20> forms{{
        {"lblMAP", "MAP", "kPa", widest},     {"lblADV", "Advance", "\u00B0", widest},
        {"lblPPW", "Pri PW", "ms", widest},   {"lblDAFR", "Des AFR", "", widest},
        {"lblAMAP", "Air mass", "%", widest}, {"lblSADV", "Sec Adv", "\u00B0", widest},
        {"lblSPW", "Sec PW", "ms", widest},   {"lblEGOV", "EGO", "V", widest},
        {"lblKNK", "Knock", "%", widest},     {"lblADVSplit", "Split", "\u00B0", widest},
        {"lblPID", "Pri Duty", "%", widest},  {"lblEGOC", "EGO Corr", "%", widest},
        {"lblTFPW", "Gamma", "%", widest},    {"lblRetard", "Knk Ret", "\u00B0", widest},
        {"lblSID", "Sec Duty", "%", widest},  {"lblIACDirection", "IAC Dir", "", widest},
        {"lblSIP", "Staged", "%", widest},    {"lblPOT", "Pri Off", "ms", widest},
        {"lblSOT", "Sec Off", "ms", widest},  {"lblTemp", "Temp", "", widest},
    }};
    return forms;
}

}  // namespace

DashBoardVeil::DashBoardVeil(QWidget* parent) : QWidget(parent) {
    named(this, "dashBoardVeil", "The values shown are not live");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DashBoardVeil::setColor(const QColor& color) {
    color_ = color;
    color_.setAlphaF(veilOpacity);
    update();
}

void DashBoardVeil::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), color_);
}

FrmDashBoardPanel::FrmDashBoardPanel(const DialAngles& angles, QWidget* parent)
    : QWidget(parent), angles_(angles), colors_(dashColors(false)) {
    auto* strip = new QHBoxLayout(this);
    strip->setContentsMargins(margins(fontMetrics(), Space::Tight));
    strip->setSpacing(space(fontMetrics(), Space::Tight));
    auto* afr = makeGauge(mixture(angles));
    afr->setReadout(makeLabel({"lblAAFR", "AFR", "", "88.88"}));
    auto* tach = makeGauge(tachometer(angles));
    tach->setReadout(makeLabel({"lblTach", "", "rpm", "88888"}));
    strip->addWidget(afr, 195);
    strip->addWidget(tach, 288);
    strip->addLayout(makeSmallDials(), 390);
    strip->addLayout(makeReadouts(), 390);
    strip->addLayout(makeStatus(), 140);
    fuelParts_.push_back(afr);
    makeNoConnect();
    setColors(colors_);
}

GaugeWidget* FrmDashBoardPanel::makeGauge(const GaugeFace& face) {
    auto* gauge = new GaugeWidget(face, this);
    gauges_[face.name] = gauge;
    return gauge;
}

LiveLabel* FrmDashBoardPanel::makeLabel(const LiveLabel::Form& form) {
    auto* label = new LiveLabel(form, this);
    labels_[form.name] = label;
    return label;
}

QLayout* FrmDashBoardPanel::makeSmallDials() {
    auto* grid = new QGridLayout;
    grid->setSpacing(space(fontMetrics(), Space::Tight));
    auto* tps = makeGauge(throttle(angles_));
    tps->setReadout(makeLabel({"lblTPS", "TPS", "V", "8.88"}));
    auto* battery = makeGauge(volt(angles_));
    battery->setReadout(makeLabel({"lblVolt", "VOLT", "V", "88.8"}));
    auto* iac = makeGauge(idle(angles_));
    iac->setReadout(makeLabel({"lblIAC", "IAC", "%", "888"}));
    auto* clt = makeGauge(temperature("Coolant", angles_.coolant, fahrenheit_));
    clt->setReadout(makeLabel({"lblCLT", "CLT", "", "-888"}));
    auto* mat = makeGauge(temperature("MAT", angles_.manifoldAir, fahrenheit_));
    mat->setReadout(makeLabel({"lblMAT", "MAT", "", "-888"}));
    checkEngineLamp = new LiveLamp("shpCheckEngine", "CHECK ENGINE", this);
    overRevLamp = new LiveLamp("shpOverRev", "OVER REV", this);

    auto* lamps = new QVBoxLayout;
    lamps->addStretch(1);
    lamps->addWidget(checkEngineLamp, 3);
    lamps->addWidget(overRevLamp, 3);
    lamps->addStretch(1);
    grid->addWidget(tps, 0, 0);
    grid->addWidget(battery, 1, 0);
    grid->addLayout(lamps, 0, 1);
    grid->addWidget(iac, 1, 1);
    grid->addWidget(clt, 0, 2);
    grid->addWidget(mat, 1, 2);
    for (int i = 0; i < 3; ++i) grid->setColumnStretch(i, 1);
    for (int i = 0; i < 2; ++i) grid->setRowStretch(i, 1);
    fuelParts_.insert(fuelParts_.end(), {iac, clt, mat});
    return grid;
}

QLayout* FrmDashBoardPanel::makeReadouts() {
    constexpr int columns = 4;
    auto* grid = new QGridLayout;
    grid->setSpacing(space(fontMetrics(), Space::Tight));
    int place = 0;
    for (const auto& form : readoutForms()) {
        auto* label = makeLabel(form);
        grid->addWidget(label, place / columns, place % columns);
        ++place;
        if (!isOfIgnition(form.name.toStdString())) fuelParts_.push_back(label);
    }
    for (int i = 0; i < columns; ++i) grid->setColumnStretch(i, 1);
    for (int i = 0; i < place / columns; ++i) grid->setRowStretch(i, 1);
    return grid;
}

QLayout* FrmDashBoardPanel::makeStatus() {
    auto* box = new QVBoxLayout;
    box->setSpacing(space(fontMetrics(), Space::Tight));
    lblCheckEngine = explained(new QLabel(this), "lblCheckEngine", "Check engine codes");
    lblCheckEngine->setAlignment(Qt::AlignCenter);
    lblCheckEngine->setFrameShape(QFrame::StyledPanel);
    lblCheckEngine->setAutoFillBackground(true);
    lblCheckEngine->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    txtGPIO = named(new OutlinedField(this), "txtGPIO", "State of the chosen input or output");
    txtGPIO->setReadOnly(true);
    txtGPIO->setFocusPolicy(Qt::NoFocus);
    lstGPO = named(new QListWidget(this), "lstGPO", "Inputs and outputs");
    lstGPO->setItemDelegate(new OutlinedRows(lstGPO));
    lstGPO->setUniformItemSizes(true);
    lstGPO->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstGPO->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    btnShowDetail = named(new QPushButton("Detail", this), "btnShowDetail", "Show all live values");
    box->addWidget(lblCheckEngine, 3);
    box->addWidget(lstGPO, 7);
    box->addWidget(txtGPIO);
    box->addWidget(btnShowDetail);
    return box;
}

void FrmDashBoardPanel::makeNoConnect() {
    veil = new DashBoardVeil(this);
    fraNoConnect = named(new QFrame(this), "fraNoConnect", "State of the link");
    fraNoConnect->setFrameShape(QFrame::Box);
    fraNoConnect->setLineWidth(2);
    fraNoConnect->setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(fraNoConnect);
    lblGeneral = named(new OutlinedLabel(fraNoConnect), "lblGeneral");
    lblGeneral->setAlignment(Qt::AlignCenter);
    lblGeneral->setTextFormat(Qt::PlainText);
    lblGeneral->setFont(valueFont(1.6));
    layout->addWidget(lblGeneral);
    fraNoConnect->hide();
}

LiveLabel* FrmDashBoardPanel::findLabel(const QString& name) {
    const auto found = labels_.find(name);
    return found == labels_.end() ? nullptr : found->second;
}

void FrmDashBoardPanel::emptyLabels() {
    for (const auto& [name, label] : labels_) label->setText({});
}

void FrmDashBoardPanel::setAngles(const DialAngles& angles) {
    if (angles.revScale == angles_.revScale && angles.tachometer == angles_.tachometer) return;
    angles_ = angles;
    gauge("Tachometer").setFace(tachometer(angles));
}

void FrmDashBoardPanel::setFahrenheit(bool on) {
    if (on == fahrenheit_) return;
    fahrenheit_ = on;
    gauge("Coolant").setFace(temperature("Coolant", angles_.coolant, on));
    gauge("MAT").setFace(temperature("MAT", angles_.manifoldAir, on));
}

void FrmDashBoardPanel::setColors(const DashColors& colors) {
    colors_ = colors;
    for (const auto& [name, gauge] : gauges_) gauge->setColors(colors);
    for (const auto& [name, label] : labels_) label->setColors(colors);
    checkEngineLamp->setColors(colors);
    overRevLamp->setColors(colors);
    veil->setColor(colors.back);
    QPalette palette;
    palette.setColor(QPalette::Window, colors.back);
    palette.setColor(QPalette::Base, colors.face);
    palette.setColor(QPalette::Text, colors.lights);
    palette.setColor(QPalette::WindowText, colors.lights);
    setPalette(palette);
    QPalette field = palette;
    field.setColor(QPalette::Window, colors.face);
    field.setColor(QPalette::WindowText, colors.redZone);
    lblCheckEngine->setPalette(field);
    field.setColor(QPalette::WindowText, colors.lights);
    fraNoConnect->setPalette(field);
    // The viewport too: the program's style sheet leaves it a palette of its own, that of the former mode.
    for (QWidget* widget : std::initializer_list<QWidget*>{txtGPIO, lstGPO, lstGPO->viewport()}) {
        widget->setPalette(palette);
    }
    fitStatusFonts();  // and takes their fonts back to the program's
    update();
}

void FrmDashBoardPanel::showFuel(bool on) {
    for (QWidget* part : fuelParts_) part->setVisible(on);
}

void FrmDashBoardPanel::showNoConnect(bool on, const QString& text) {
    if (lblGeneral->text() != text) {
        lblGeneral->setText(text);
        placeNoConnect();
    }
    const bool veiled = on && text == QLatin1String(waitingForUnit);
    if (veil->isHidden() == veiled) {
        veil->setVisible(veiled);
        veil->raise();
        fraNoConnect->raise();
    }
    if (fraNoConnect->isHidden() != on) return;
    fraNoConnect->setVisible(on);
    if (on) fraNoConnect->raise();
}

QSize FrmDashBoardPanel::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 72, line * 16};
}

QSize FrmDashBoardPanel::minimumSizeHint() const {
    const int line = fontMetrics().height();
    return {line * 40, line * 10};
}

void FrmDashBoardPanel::resizeEvent(QResizeEvent*) {
    placeNoConnect();
    fitStatusFonts();
    placeVeil();
}

void FrmDashBoardPanel::placeNoConnect() {
    fraNoConnect->resize(fraNoConnect->sizeHint().expandedTo(QSize(width() / 5, height() / 4)));
    // Over the dials, which stand still meanwhile; the read-outs and codes stay in sight.
    fraNoConnect->move((width() * 2 / 3 - fraNoConnect->width()) / 2,
                       (height() - fraNoConnect->height()) / 2);
}

/// All but the column of codes, inputs and outputs, which stays readable and can be clicked.
void FrmDashBoardPanel::placeVeil() {
    veil->setGeometry(0, 0, lblCheckEngine->x(), height());
}

void FrmDashBoardPanel::fitStatusFonts() {
    layout()->activate();
    QFont codes = consoleFont();
    codes.setBold(true);
    const int byHeight = static_cast<int>(lblCheckEngine->height() * 0.36);
    const int byWidth = static_cast<int>(lblCheckEngine->width() / 7.0 * 1.35);
    codes.setPixelSize(std::max(9, std::min(byHeight, byWidth)));
    lblCheckEngine->setFont(codes);
    QFont list = font();
    list.setPixelSize(std::max(10, height() / 24));
    lstGPO->setFont(list);
    txtGPIO->setFont(list);
}

void FrmDashBoardPanel::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), colors_.back);
}

}  // namespace zentaq
