#include "windows/frm_dashboard_panel.h"

#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "live/dashboard_plan.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

/// The only text of fraNoConnect that lasts; the others come and go within milliseconds while frames flow.
constexpr auto waitingForUnit = "Connecting...";
constexpr float veilOpacity = 0.7F;
constexpr double pictureShape = static_cast<double>(pictureWidth) / pictureHeight;

/// The read-outs. One width for most, so that their numbers have one size.
const std::array<LiveLabel::Form, 27>& readoutForms() {
    static const QString widest = QStringLiteral("88.88");
    static const QString wider = QStringLiteral("888.88");
    static const std::array<LiveLabel::Form, 27> forms{{
        {"lblTach", "RPM", "rpm", widest},
        {"lblAAFR", "AFR", ":1", widest},
        {"lblTPS", "TPS", "V", "8.88"},
        {"lblVolt", "VOLT", "V", "88.8"},
        {"lblIAC", "IAC", "%", "888"},
        {"lblCLT", "CLT", "\u00B0C", "-888"},
        {"lblMAT", "MAT", "\u00B0C", "-888"},
        {"lblMAP", "MAP", "kPa", widest},
        {"lblADV", "Advance", "\u00B0", widest},
        {"lblPPW", "Pri PW", "ms", widest},
        {"lblDAFR", "Des AFR", ":1", widest},
        {"lblAMAP", "Air mass", "%", widest},
        {"lblSADV", "Sec Adv", "\u00B0", widest},
        {"lblSPW", "Sec PW", "ms", widest},
        {"lblEGOV", "EGO", "V", widest},
        {"lblKNK", "Knock", "%", widest},
        {"lblADVSplit", "Split", "\u00B0", widest},
        {"lblPID", "Pri Duty", "%", widest},
        {"lblEGOC", "EGO Corr", "%", widest},
        {"lblTFPW", "Gamma", "%", widest},
        {"lblRetard", "Knk Ret", "\u00B0", widest},
        {"lblSID", "Sec Duty", "%", widest},
        {"lblIACDirection", "IAC Dir", "", widest},
        {"lblSIP", "Staged", "%", widest},
        {"lblPOT", "Pri Off", "ms", wider},
        {"lblSOT", "Sec Off", "ms", wider},
        {"lblTemp", "Temp", "", widest},
    }};
    return forms;
}

QRect rectOf(const DashArea& area, QPoint at) {
    return QRect(area.x, area.y, area.width, area.height).translated(at);
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
    for (const auto& form : readoutForms()) labels_[form.name] = new LiveLabel(form, this);
    makeGauge(mixtureFace(angles));
    makeGauge(tachometerFace(angles));
    makeGauge(throttleFace(angles));
    makeGauge(voltFace(angles));
    makeGauge(idleFace(angles));
    makeGauge(temperatureFace("Coolant", angles.coolant, fahrenheit_));
    makeGauge(temperatureFace("MAT", angles.manifoldAir, fahrenheit_));
    picture = new DashboardPicture(this);
    checkEngineLamp = new LiveLamp("shpCheckEngine", "CHECK ENGINE", this);
    overRevLamp = new LiveLamp("shpOverRev", "OVER REV", this);
    makeStatus();
    makeNoConnect();
    setColors(colors_);
}

void FrmDashBoardPanel::makeGauge(const GaugeFace& face) {
    const auto readout = QString::fromUtf8(readoutLikeDial(face.name.toStdString()));
    gauges_[face.name] = new GaugeWidget(face, findLabel(readout), this);
}

void FrmDashBoardPanel::makeStatus() {
    btnMore = named(new QPushButton(this), "btnMore", "Further readings");
    btnMore->setFocusPolicy(Qt::TabFocus);  // a click leaves the keyboard in the table
    btnMore->setToolTip("Shows the readings that have no room here");
    connect(btnMore, &QPushButton::clicked, this, [this] {
        ++page_;
        arrange();
    });
    lblCheckEngine = new CodeBox(this);
    txtGPIO = named(new OutlinedField(this), "txtGPIO", "State of the chosen input or output");
    txtGPIO->setReadOnly(true);
    txtGPIO->setFocusPolicy(Qt::NoFocus);
    lstGPO = named(new QListWidget(this), "lstGPO", "Inputs and outputs");
    lstGPO->setItemDelegate(new OutlinedRows(lstGPO));
    lstGPO->setUniformItemSizes(true);
    btnShowDetail = named(new QPushButton("Detail", this), "btnShowDetail", "Show all live values");
}

void FrmDashBoardPanel::makeNoConnect() {
    veil = new DashBoardVeil(this);
    lblNotLive = explained(new QLabel("NOT LIVE", veil), "lblNotLive", "The values shown are not live");
    lblNotLive->setAlignment(Qt::AlignCenter);
    lblNotLive->setAutoFillBackground(true);
    lblNotLive->setFont(typeFont(Type::Strip));
    fraNoConnect = named(new QFrame(this), "fraNoConnect", "State of the link");
    fraNoConnect->setFrameShape(QFrame::Box);
    fraNoConnect->setLineWidth(edgeWidth(fontMetrics()));
    fraNoConnect->setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(fraNoConnect);
    layout->setContentsMargins(margins(fontMetrics(), Space::Normal, Space::Tight));
    lblGeneral = named(new OutlinedLabel(fraNoConnect), "lblGeneral");
    lblGeneral->setAlignment(Qt::AlignCenter);
    lblGeneral->setTextFormat(Qt::PlainText);
    lblGeneral->setFont(typeFont(Type::Value));
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
    gauge("Tachometer").setFace(tachometerFace(angles));
}

void FrmDashBoardPanel::setFahrenheit(bool on) {
    if (on == fahrenheit_) return;
    fahrenheit_ = on;
    gauge("Coolant").setFace(temperatureFace("Coolant", angles_.coolant, on));
    gauge("MAT").setFace(temperatureFace("MAT", angles_.manifoldAir, on));
}

void FrmDashBoardPanel::setPicture(const QImage& image) {
    if (image.isNull() && !picture->hasImage()) return;
    picture->setImage(image);
    arrange();
}

void FrmDashBoardPanel::setAngle(Needle needle, double degrees) {
    gauge(qString(needleNames[static_cast<std::size_t>(needle)])).setAngle(degrees);
    picture->setAngle(needle, degrees);
}

void FrmDashBoardPanel::setMixtureColor(std::optional<QColor> color) {
    gauge("AFR").setNeedleColor(color);
    picture->setMixtureColor(color);
}

void FrmDashBoardPanel::setColors(const DashColors& colors) {
    colors_ = colors;
    for (const auto& [name, gauge] : gauges_) gauge->setColors(colors);
    picture->setColors(colors);
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
    lblCheckEngine->setColors(colors);
    fraNoConnect->setPalette(field);
    // The viewport too: the program's style sheet leaves it a palette of its own, that of the former mode.
    for (QWidget* widget : std::initializer_list<QWidget*>{txtGPIO, lstGPO, lstGPO->viewport()}) {
        widget->setPalette(palette);
    }
    QPalette badge;
    badge.setColor(QPalette::Window, colors.badge);
    badge.setColor(QPalette::WindowText, colors.badgeText);
    lblNotLive->setPalette(badge);
    update();
}

void FrmDashBoardPanel::showFuel(bool on) {
    if (on == fuel_) return;
    fuel_ = on;
    picture->showFuel(on);
    arrange();
}

void FrmDashBoardPanel::showReadouts(const std::vector<std::string_view>& names) {
    if (names == readouts_) return;
    readouts_ = names;
    arrange();
}

void FrmDashBoardPanel::showCodes(const QString& fields, const QString& line, const QString& tip) {
    if (lblCheckEngine->tell(fields, line, tip)) arrange();
}

void FrmDashBoardPanel::bringIntoView(const QString& name) {
    const auto isAbove = [&] { return !label(name).isHidden(); };
    for (int turn = 0; turn < pages_ && !isAbove(); ++turn) {
        ++page_;
        arrange();
    }
}

void FrmDashBoardPanel::setFolded(bool folded) {
    if (std::exchange(folded_, folded) == folded) return;
    for (const auto& [name, label] : labels_) label->setInLine(folded);
    lblCheckEngine->setInLine(folded);
    lblGeneral->setFont(typeFont(folded ? Type::Strong : Type::Value));
    fraNoConnect->layout()->setContentsMargins(
        margins(fontMetrics(), Space::Normal, folded ? Space::None : Space::Tight));
    placeNoConnect();
    page_ = 0;
    updateGeometry();
    arrange();
}

void FrmDashBoardPanel::lampsChanged() {
    const int lit = int{checkEngineLamp->lit()} + 2 * int{overRevLamp->lit()};
    if (folded_ && lit != lampsShown_) arrange();
}

void FrmDashBoardPanel::setLive(bool live) {
    live_ = live;
    placeVeil();
}

void FrmDashBoardPanel::showNoConnect(bool on, const QString& text) {
    if (lblGeneral->text() != text) {
        lblGeneral->setText(text);
        placeNoConnect();
    }
    waits_ = on && text == QLatin1String(waitingForUnit);
    if (fraNoConnect->isHidden() == on) {
        fraNoConnect->setVisible(on);
        if (on) placeNoConnect();
    }
    placeVeil();
}

bool FrmDashBoardPanel::isLive() const {
    return live_ && !waits_;
}

QSize FrmDashBoardPanel::sizeHint() const {
    const int line = fontMetrics().height();
    return {line * 72, folded_ ? minimumSizeHint().height() : line * 11};
}

/// One row of tiles.
QSize FrmDashBoardPanel::minimumSizeHint() const {
    const QSize tile = tileSize();
    const int gap = space(fontMetrics(), Space::Tight);
    return {tile.width() * 4 + 5 * gap, tile.height() + 2 * gap};
}

QSize FrmDashBoardPanel::tileSize() const {
    QSize size = checkEngineLamp->minimumSizeHint();
    // Of a button with one line of text, which the one for more pages has there.
    if (folded_) size.setHeight(btnShowDetail->minimumSizeHint().height());
    for (const auto& [name, label] : labels_) size = size.expandedTo(label->minimumSizeHint());
    return size;
}

// ---- Where all stand

void FrmDashBoardPanel::resizeEvent(QResizeEvent*) {
    arrange();
}

void FrmDashBoardPanel::arrange() {
    const int gap = space(fontMetrics(), Space::Tight);
    const QSize tile = tileSize();
    int beside = 0;
    for (const char* name : {"lblTPS", "lblVolt", "lblCLT", "lblMAT", "lblIAC"}) {
        beside = std::max(beside, label(name).minimumSizeHint().width());
    }
    const DashRoom room{.width = width() - 2 * gap,
                        .height = height() - 2 * gap,
                        .gap = gap,
                        .tileWidth = tile.width(),
                        .tileHeight = tile.height(),
                        .dialReadout = beside * 5 / 4 + gap,
                        .status = folded_ ? 0 : statusWidth(),
                        .codes = lblCheckEngine->tells() ? lblCheckEngine->leastWidth(height() - 2 * gap) : 0,
                        .picture = picture->hasImage() ? pictureShape : 0,
                        .fuel = fuel_,
                        .oneLine = folded_};
    const DashPlan plan = planDashboard(room, tilesToShow(), page_);
    lampsShown_ = int{checkEngineLamp->lit()} + 2 * int{overRevLamp->lit()};
    page_ = plan.page;
    pages_ = plan.pages;
    placeDials(plan, {gap, gap});
    placeTiles(plan, {gap, gap});
    placeStatus(rectOf(plan.status, {gap, gap}));
    instruments_ = plan.status.width > 0 ? plan.status.x : width();
    placeNoConnect();
    placeVeil();
    if (!veil->isHidden()) raiseVeil();  // a read-out that leaves its dial comes above all others
}

std::vector<std::string_view> FrmDashBoardPanel::tilesToShow() const {
    std::vector<std::string_view> tiles;
    // On a line the codes stand in its place: they say more.
    if (!folded_ || (checkEngineLamp->lit() && !lblCheckEngine->tells()))
        tiles.emplace_back("shpCheckEngine");
    if (!folded_ || overRevLamp->lit()) tiles.emplace_back("shpOverRev");
    tiles.insert(tiles.end(), readouts_.begin(), readouts_.end());
    return tiles;
}

void FrmDashBoardPanel::placeDials(const DashPlan& plan, QPoint at) {
    const auto whole = std::ranges::find(plan.dials, "dashboardPicture", &DashPlace::name);
    picture->setVisible(whole != plan.dials.end());
    if (whole != plan.dials.end()) picture->setGeometry(rectOf(whole->area, at));
    for (const auto& [name, gauge] : gauges_) {
        const auto found = std::ranges::find(plan.dials, name.toStdString(), &DashPlace::name);
        gauge->setVisible(found != plan.dials.end());
        LiveLabel* readout = findLabel(QString::fromUtf8(readoutOfDial(name.toStdString())));
        if (found == plan.dials.end()) {
            if (readout != nullptr && readout->parentWidget() == gauge) {
                gauge->setReadout(nullptr);
                readout->setParent(this);
            }
            continue;
        }
        gauge->setGeometry(rectOf(found->area, at));
        if (readout != nullptr && readout->parentWidget() != gauge) gauge->setReadout(readout);
    }
}

void FrmDashBoardPanel::placeTiles(const DashPlan& plan, QPoint at) {
    const auto put = [&](QWidget* tile) {
        if (tile->parentWidget() != this) return;  // it stands beside its dial
        const auto found = std::ranges::find(plan.tiles, tile->objectName().toStdString(), &DashPlace::name);
        tile->setVisible(found != plan.tiles.end());
        if (found != plan.tiles.end()) tile->setGeometry(rectOf(found->area, at));
    };
    for (const auto& [name, label] : labels_) put(label);
    put(checkEngineLamp);
    put(overRevLamp);
    btnMore->setVisible(plan.more.width > 0);
    btnMore->setGeometry(rectOf(plan.more, at));
    btnMore->setText(QStringLiteral("More\n%1 of %2").arg(plan.page + 1).arg(plan.pages));
    if (btnMore->minimumSizeHint().height() > btnMore->height())
        btnMore->setText(QStringLiteral("More %1/%2").arg(plan.page + 1).arg(plan.pages));
}

QStringList FrmDashBoardPanel::behindTheLine() const {
    QStringList parts{QStringLiteral("dials")};
    if (lstGPO->count() > 0) parts += QStringLiteral("inputs and outputs");
    if (detailOffered()) parts += QStringLiteral("Detail");
    return parts;
}

int FrmDashBoardPanel::statusWidth() const {
    const QFontMetrics metrics(typeFont(Type::Caption));
    if (lstGPO->count() > 0) return metrics.height() * 9;
    return !lblCheckEngine->tells() && !detailOffered() ? 0 : metrics.height() * 6;
}

bool FrmDashBoardPanel::detailOffered() const {
    return btnShowDetail->isEnabled() && fuel_;
}

/// Codes above, the button below, and the list between them; the chosen pin apart where there is room.
void FrmDashBoardPanel::placeStatus(QRect area) {
    const int gap = space(fontMetrics(), Space::Tight);
    const int line = QFontMetrics(typeFont(Type::Caption)).height();
    // Where there is less room, as on one line, the codes have all of it.
    const bool all = !folded_ && area.width() >= statusWidth();
    const bool pins = all && lstGPO->count() > 0;
    const bool codes = lblCheckEngine->tells() && !area.isEmpty();
    const auto takeBottom = [&](QWidget* widget, bool shown, int height) {
        widget->setVisible(shown);
        if (!shown) return;
        widget->setGeometry(area.left(), area.bottom() + 1 - height, area.width(), height);
        area.setBottom(area.bottom() - height - gap);
    };
    lblCheckEngine->setVisible(codes);
    if (codes) {
        const int height = pins ? std::min(area.height(), line * 3) : area.height();
        lblCheckEngine->setGeometry(area.left(), area.top(), area.width(), height);
        area.setTop(area.top() + height + gap);
    }
    lstGPO->setFont(typeFont(Type::Caption));
    txtGPIO->setFont(typeFont(Type::Caption));
    takeBottom(btnShowDetail, all && detailOffered() && area.height() >= 2 * line,
               std::min(area.height(), btnShowDetail->sizeHint().height()));
    takeBottom(txtGPIO, pins && area.height() >= 7 * line, txtGPIO->sizeHint().height());
    lstGPO->setVisible(pins && area.height() >= 2 * line);
    if (!lstGPO->isHidden()) lstGPO->setGeometry(area);
}

void FrmDashBoardPanel::placeNoConnect() {
    fraNoConnect->resize(fraNoConnect->sizeHint().boundedTo({instruments_, height()}));
    // Over the dials, which stand still meanwhile; the codes stay in sight.
    const int middle = instruments_ / 3;
    fraNoConnect->move(std::max(0, middle - fraNoConnect->width() / 2),
                       (height() - fraNoConnect->height()) / 2);
}

/// All but the column of codes, inputs and outputs, which stays readable and can be clicked.
void FrmDashBoardPanel::placeVeil() {
    const QRect place(0, 0, instruments_, height());
    if (veil->geometry() != place) veil->setGeometry(place);
    const bool shown = !isLive();
    const bool word = shown && fraNoConnect->isHidden();
    if (lblNotLive->isHidden() == word) lblNotLive->setVisible(word);
    if (word) {
        const QSize size =
            lblNotLive->sizeHint().grownBy(margins(fontMetrics(), Space::Normal, Space::Tight));
        lblNotLive->setGeometry(
            QRect(QPoint((instruments_ * 2 / 3 - size.width()) / 2, (height() - size.height()) / 2), size));
    }
    if (veil->isHidden() != shown) return;
    for (const auto& [name, gauge] : gauges_) gauge->setSpokenLive(!shown);
    for (const auto& [name, label] : labels_) label->setSpokenLive(!shown);
    veil->setVisible(shown);
    if (shown) raiseVeil();
}

void FrmDashBoardPanel::raiseVeil() {
    veil->raise();
    btnMore->raise();  // it works all the same
    fraNoConnect->raise();
}

void FrmDashBoardPanel::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), colors_.back);
}

}  // namespace zentaq
