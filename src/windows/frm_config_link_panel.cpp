#include "windows/frm_config_link_panel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QStackedWidget>

#include "base/number_text.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "windows/link_lamp.h"

namespace zentaq {

namespace {

/// The size of the letters of what is for the curious.

void setText(QLabel* label, const std::string& text) {
    const QString shown = shownStringOfLines(text);
    if (label->text() == shown) return;
    label->setTextFormat(Qt::PlainText);  // a name that looks like HTML is a name
    label->setText(shown);
}

void keepPlace(QWidget* widget) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

QString iconName(LinkImage image) {
    switch (image) {
        case LinkImage::Connected:
            return QStringLiteral("Connected");
        case LinkImage::Monitor:
            return QStringLiteral("Monitor");
        case LinkImage::NoConnect:
            return QStringLiteral("NoConnect");
        case LinkImage::Transfer:
            return QStringLiteral("Transfer");
        case LinkImage::Warning:
            return QStringLiteral("Warning");
        case LinkImage::None:
            break;
    }
    return {};
}

QColor iconColor(LinkImage image, const LookColors& colors) {
    switch (image) {
        case LinkImage::Connected:
        case LinkImage::Monitor:
            return colors.good;
        case LinkImage::NoConnect:
            return colors.alarm;
        case LinkImage::Transfer:
            return colors.accent;
        case LinkImage::Warning:
            return colors.warning;
        case LinkImage::None:
            break;
    }
    return colors.text;
}

}  // namespace

PortCombo::PortCombo(std::function<std::vector<PortInfo>()> ports, QWidget* parent)
    : QComboBox(parent), ports_(std::move(ports)) {
    named(this, "cmbCOMM", "COMM port");
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(14);
}

void PortCombo::add(const QString& text, int number, const std::string& identity) {
    addItem(text, number);
    setItemData(count() - 1, QString::fromStdString(identity), identityRole);
}

void PortCombo::fill(int selected, const std::string& identity) {
    QSignalBlocker quiet(this);
    clear();
    for (const PortInfo& port : ports_()) {
        add(shownString(numberText(port.number) + "  " + port.device + "  " + port.description), port.number,
            port.identity);
    }
    const QString wanted = QString::fromStdString(identity);
    const int place = identity.empty() ? findData(selected) : findData(wanted, identityRole);
    // By its number it would pass for the device that has it now.
    const bool taken = place < 0 && findData(selected) >= 0;
    numberTold_ = taken ? QStringLiteral("\u2013") : QString::number(selected);
    if (place < 0) add(numberTold_ + "  (not present)", selected, identity);
    setCurrentIndex(place < 0 ? count() - 1 : place);
    if (place >= 0) numberTold_ = QString::number(selectedNumber());
    setToolTip(plainTip(currentText()));
    quiet.unblock();
    Q_EMIT filled();
}

void PortCombo::showPopup() {
    fill(selectedNumber(), selectedIdentity());
    QComboBox::showPopup();
}

LinkPanel::LinkPanel(std::function<std::vector<PortInfo>()> ports, QWidget* parent) : QFrame(parent) {
    named(this, "fraComm", "Communications");
    setFrameShape(StyledPanel);

    imgNotify_ = makeLabel("imgNotify", "State of the link");
    const int iconSize = fontMetrics().height() * 2;
    imgNotify_->setFixedSize(iconSize, iconSize);
    title_ = makeLabel("lblCommTitle", "Link");
    QFont bold = font();
    bold.setBold(true);
    title_->setFont(bold);
    title_->setMinimumWidth(
        title_->fontMetrics().horizontalAdvance(QStringLiteral("Programming Firmware... ")));
    line1_ = makeLabel("lblCommStatus1", "Link status, first line");
    line2_ = makeLabel("lblCommStatus2", "Link status, second line");
    frameTimes_ = makeLabel("lblFrameTimes", "Where the time of a frame goes");
    activity_ = makeLabel("lblActivity", "Link activity");
    activity_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    activity_->setMinimumWidth(
        activity_->fontMetrics().horizontalAdvance(QStringLiteral("{Transfer ONFLY} ")));
    send_ = makeLinkLamp("lblComm_Send_Icon", "TX", "Send lamp", this);
    receive_ = makeLinkLamp("lblComm_Rcv_Icon", "RX", "Receive lamp", this);

    auto* grid = new QGridLayout(this);
    const int gap = space(fontMetrics(), Space::Tight);
    grid->setSpacing(gap);
    grid->setContentsMargins(gap, gap, gap, gap);
    grid->setVerticalSpacing(gap / 2);
    grid->addWidget(imgNotify_, 0, 0, 2, 1);
    grid->addWidget(title_, 0, 1);
    grid->addWidget(activity_, 0, 2);
    grid->addWidget(send_, 0, 3);
    grid->addWidget(receive_, 0, 4);
    // While frames come the first line says no more than that: their times take its place, all in small
    // letters.
    frameTimes_->setFont(typeFont(Type::Remark));
    line1OrTimes_ = new QStackedWidget(this);
    line1OrTimes_->addWidget(line1_);
    line1OrTimes_->addWidget(frameTimes_);
    grid->addWidget(line1OrTimes_, 1, 1, 1, 4);
    // Four rows leave the height of a small screen to the tables: a second line of the status takes the place
    // of the unit's facts, and a transfer's progress that of the port, which nobody changes meanwhile.
    factsOrLine2_ = new QStackedWidget(this);
    factsOrLine2_->addWidget(makeFacts());
    factsOrLine2_->addWidget(line2_);
    grid->addWidget(factsOrLine2_, 2, 0, 1, 5);
    portOrProgress_ = new QStackedWidget(this);
    portOrProgress_->addWidget(makePortRow(std::move(ports)));
    portOrProgress_->addWidget(makeProgress());
    grid->addWidget(portOrProgress_, 3, 0, 1, 5);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(4, 1);
    render({});
}

QLabel* LinkPanel::makeLabel(const char* name, const QString& meaning) {
    QLabel* label = plainLabel(name, meaning, this);
    label->setTextInteractionFlags(Qt::NoTextInteraction);
    // Long texts are cut, never allowed to push the panel wider.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    label->setMinimumHeight(label->fontMetrics().height());
    return label;
}

QWidget* LinkPanel::makeFacts() {
    auto* facts = new QWidget(this);
    auto* row = new QHBoxLayout(facts);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](QLabel*& label, const char* name, const QString& caption, const QString& meaning,
                         const char* widest, int stretch) {
        auto* title = new QLabel(caption, facts);
        row->addWidget(title);
        label = makeLabel(name, meaning);
        label->setSizePolicy(stretch > 0 ? QSizePolicy::Ignored : QSizePolicy::Fixed, QSizePolicy::Fixed);
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QLatin1String(widest)));
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        row->addWidget(label, stretch);
    };
    add(unit_, "lblOrbUnit", "ORB", "Unit on the link", "A Stdd", 0);
    add(serial_, "lblSerialNumber", "S/N", "Serial number of the unit", "0000000", 0);
    add(firmware_, "lblFirmware", "F/W", "Firmware of the unit", "ZQA0000", 1);
    return facts;
}

QWidget* LinkPanel::makePortRow(std::function<std::vector<PortInfo>()> ports) {
    auto* area = new QWidget(this);
    auto* row = new QHBoxLayout(area);
    row->setContentsMargins(0, 0, 0, 0);
    auto* caption = new QLabel("&Port", area);
    port_ = makeLabel("lblCOMM", "Port in use");
    port_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    port_->setMinimumWidth(digitsWidth(port_->fontMetrics(), 3));
    ports_ = new PortCombo(std::move(ports), area);
    caption->setBuddy(ports_);
    autoDetect_ = namedButton("cmdAutoDetectPort", "Auto &Detect Port", area);
    autoDetect_->setToolTip("Search ports 1 to 12 for a unit");
    row->addWidget(caption);
    row->addWidget(port_);
    row->addWidget(ports_, 1);
    row->addWidget(autoDetect_);
    connect(autoDetect_, &QPushButton::clicked, this, &LinkPanel::autoDetectAsked);
    connect(ports_, &PortCombo::filled, this, &LinkPanel::showPortNumber);
    connect(ports_, &QComboBox::activated, this, [this] { Q_EMIT portChosen(ports_->selectedNumber()); });
    return area;
}

QWidget* LinkPanel::makeProgress() {
    auto* area = new QWidget(this);
    auto* row = new QHBoxLayout(area);
    row->setContentsMargins(0, 0, 0, 0);
    message_ = makeLabel("lblProgress_Message", "Progress message");
    message_->setText("Processing . . . Please Wait!");
    progress_ = named(new QProgressBar(area), "ProgressBar1", "Progress");
    progress_->setRange(0, 100);
    progress_->setTextVisible(false);
    percentage_ = makeLabel("lblProgress_Percentage", "Progress in percent");
    percentage_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    percentage_->setMinimumWidth(percentage_->fontMetrics().horizontalAdvance(QStringLiteral("100%")));
    percentage_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (QWidget* widget : {static_cast<QWidget*>(progress_), static_cast<QWidget*>(percentage_),
                            static_cast<QWidget*>(message_)}) {
        keepPlace(widget);
    }
    row->addWidget(message_, 1);
    row->addWidget(progress_, 1);
    row->addWidget(percentage_);
    return area;
}

void LinkPanel::render(const LinkStatus& status) {
    showPortInUse(status);
    if (status.image != image_ || imgNotify_->pixmap(Qt::ReturnByValue).isNull()) showImage(status.image);
    setText(title_, status.title);
    setText(line1_, status.line1);
    // There is room for one line: the system's reason says more than "try again".
    setText(line2_, status.trouble.empty() ? status.line2 : status.trouble);
    factsOrLine2_->setCurrentIndex(status.line2.empty() ? 0 : 1);
    showFrameTimes(status);
    line1_->setToolTip(plainTip(line1_->text()));
    const std::string more = status.trouble.empty() ? "" : '\n' + status.line2;
    line2_->setToolTip(plainTip(line2_->text() + shownStringOfLines(more)));
    setText(activity_, status.activity);
    const LookColors colors = lookColors(appliedLook(*qApp));
    light(*send_, status.send == Lamp::Sending, colors.sendLamp, "sending");
    light(*receive_, status.receive == Lamp::Received, colors.receiveLamp, "received");
    showPortNumber();
    setText(unit_, status.unitLabel);
    setText(serial_, status.serialNumber);
    setText(firmware_, status.firmware);
    portOrProgress_->setCurrentIndex(status.progressVisible ? 1 : 0);
    progress_->setVisible(status.progressVisible);
    percentage_->setVisible(status.progressVisible);
    message_->setVisible(status.progressVisible);
    progress_->setValue(status.progressPercent);
    setText(percentage_, status.progressText);
}

// Whatever has opened another port: the options, a search, an adapter that came back under another number.
// And a unit that was found may stand on another device than the list, read a while ago, tells.
void LinkPanel::showPortInUse(const LinkStatus& status) {
    if (ports_->view()->isVisible()) return;
    const bool found = status.image == LinkImage::Monitor && image_ != LinkImage::Monitor;
    const bool moved = status.port != shownPort_ || status.portIdentity != shownIdentity_;
    if (!found && !moved) return;
    shownPort_ = status.port;
    shownIdentity_ = status.portIdentity;
    ports_->fill(static_cast<int>(numberOf(status.port)), status.portIdentity);
}

// As the list has it by now: a device that was plugged in may have moved the others on since the port was
// opened.
void LinkPanel::showPortNumber() {
    setText(port_, shownPort_.empty() ? std::string() : ports_->numberTold().toStdString());
}

void LinkPanel::showFrameTimes(const LinkStatus& status) {
    const bool none = status.frameTimes.empty();
    setText(frameTimes_, status.frameTimes);
    line1OrTimes_->setCurrentIndex(!none && status.image == LinkImage::Monitor ? 1 : 0);
    if (none == frameTimes_->toolTip().isEmpty()) return;
    frameTimes_->setToolTip(none ? QString()
                                 : "Where the time of a live frame goes, averaged over the last ones:\n"
                                   "unit: the unit thinks\n"
                                   "wire: request and reply at 38400 baud\n"
                                   "adapter: the USB adapter held bytes back\n"
                                   "program: Zentaq4, until it asks for the next frame");
}

void LinkPanel::showImage(LinkImage image) {
    image_ = image;
    const DisplayMode mode = appliedLook(*qApp);
    imgNotify_->setPixmap(iconPixmap(iconName(image), iconColor(image, lookColors(mode)), imgNotify_->width(),
                                     devicePixelRatioF()));
    imgNotify_->setAccessibleDescription(iconName(image));
}

void LinkPanel::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && imgNotify_ != nullptr) showImage(image_);
}

}  // namespace zentaq
