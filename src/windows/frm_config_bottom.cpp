#include "windows/frm_config_bottom.h"

#include <QApplication>
#include <QHBoxLayout>
#include <algorithm>

#include "link/link_summary.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "windows/link_lamp.h"

namespace zentaq {

namespace {

constexpr int commLetters = 20;
constexpr int linkLetters = 56;
constexpr int messageShare = 3;  ///< of the line; the link has the other two
constexpr int linkShare = 2;

}  // namespace

ConfigBottom::ConfigBottom(Session& session, MainCommands& commands, QWidget* parent)
    : QWidget(parent), session_(session) {
    named(this, "fraMessages", "Messages and link");
    cmdFold_ = named(new QToolButton(this), "cmdFoldMessages");
    cmdFold_->setAutoRaise(true);
    cmdFold_->setFocusPolicy(Qt::TabFocus);
    connect(cmdFold_, &QToolButton::clicked, this, [&commands] { commands.toggleMessages(); });
    content_ = makeContent();
    line_ = makeLine();
    line_->hide();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(margins(fontMetrics(), Space::None));
    row->setSpacing(space(fontMetrics(), Space::Line));
    row->addWidget(cmdFold_, 0, Qt::AlignTop);
    row->addWidget(content_, 1);
    row->addWidget(line_, 1);
    showButton(false);
    apply();
}

KeptSplitter* ConfigBottom::makeContent() {
    const int letter = fontMetrics().averageCharWidth();
    auto* parts = new KeptSplitter(
        Qt::Horizontal, "splBottom", session_.settings(),
        [letter](int length) {
            const int log = std::max(letter, length - letter * (commLetters + linkLetters));
            return QList<int>{log, letter * commLetters, letter * linkLetters};
        },
        this);
    lstLog_ = new ConsoleView(QStringLiteral("lstLog"), "System console", session_.console.lines(), parts);
    lstCommInfo_ = new ConsoleView(QStringLiteral("lstCommInfo"), "Communication console",
                                   session_.console.commLines(), parts);
    fraComm_ = new LinkPanel([this] { return session_.platform().port.list(); }, parts);
    parts->addWidget(lstLog_);
    parts->addWidget(lstCommInfo_);
    parts->addWidget(fraComm_);
    return parts;
}

QWidget* ConfigBottom::makeLine() {
    auto* line = new QWidget(this);
    lblLastMessage_ = new ElidedLabel("lblLastMessage", "Last message", line);
    lblLink_ = new ElidedLabel("lblLinkLine", "State of the link", line);
    send_ = makeLinkLamp("lblLine_Send", "TX", "Send lamp", line);
    receive_ = makeLinkLamp("lblLine_Rcv", "RX", "Receive lamp", line);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(margins(fontMetrics(), Space::Tight, Space::None));
    row->setSpacing(space(fontMetrics(), Space::Normal));
    row->addWidget(lblLastMessage_, messageShare);
    row->addWidget(lblLink_, linkShare);
    row->addWidget(send_);
    row->addWidget(receive_);
    return line;
}

void ConfigBottom::sync() {
    lstLog_->sync();
    lstCommInfo_->sync();
    const auto& lines = session_.console.lines();
    if (!lines.empty()) lblLastMessage_->show(shownString(lines.back()).trimmed());
}

void ConfigBottom::render(const LinkStatus& status) {
    fraComm_->render(status);
    const LookColors colors = lookColors(appliedLook(*qApp));
    lblLink_->show(shownStringOfLines(linkSummary(status)));
    light(*send_, status.send == Lamp::Sending, colors.sendLamp, "sending");
    light(*receive_, status.receive == Lamp::Received, colors.receiveLamp, "received");
}

// ---- Folding

void ConfigBottom::roomShort(bool isShort) {
    session_.folds.messages.roomShort(isShort);
    apply();
}

void ConfigBottom::apply() {
    const bool fold = session_.folds.messages.folded();
    if (fold == folded()) return;
    showButton(fold);
    fraComm_->ports().hidePopup();
    // The keyboard goes to what opens them again; a digit does no harm there. Also that of a frame behind
    // another window: the toolkit would hand it to the next field, which may be a cell.
    if (fold && content_->isAncestorOf(window()->focusWidget())) cmdFold_->setFocus();
    content_->setVisible(!fold);
    line_->setVisible(fold);
    setMaximumHeight(fold ? sizeHint().height() : QWIDGETSIZE_MAX);
    Q_EMIT foldChanged();
}

void ConfigBottom::showButton(bool fold) {
    const QString meaning = fold ? "Open messages and link" : "Fold messages and link";
    cmdFold_->setIcon(icon(fold ? "Unfold" : "Fold"));
    cmdFold_->setAccessibleName(meaning);
    cmdFold_->setToolTip(meaning + " (F9)");
}

}  // namespace zentaq
