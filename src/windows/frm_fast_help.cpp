#include "windows/frm_fast_help.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "base/errors.h"
#include "base/message_codes.h"
#include "guide/help_topics.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "windows/form_maker.h"
#include "windows/frm_config.h"

namespace zentaq {

namespace {

/// Width of the text in letters: lines of this length are read at a glance.
constexpr int textLetters = 62;

bool isHelpKey(const QEvent* event) {
    return static_cast<const QKeyEvent*>(event)->key() == Qt::Key_F2;
}

}  // namespace

FrmFastHelp::FrmFastHelp(Session& session, QWidget* parent) : QDialog(parent), Form(this), session_(session) {
    setObjectName(qString(window::fastHelp));
    setWindowTitle("Fast Help");
    setModal(false);

    lblTopic_ = plainLines("lblTopic", "Topic", this);
    lblTopic_->setFont(typeFont(Type::Heading));
    lblHelp_ = plainLines("lblHelp", "Help text", this);
    lblHelp_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblHelp_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    cmdGuide_ = named(new QPushButton("&More in the user guide", this), "cmdGuide");
    cmdGuide_->setAutoDefault(true);
    cmdClose_ = named(new QPushButton("&Close", this), "cmdClose");
    cmdClose_->setDefault(true);
    connect(cmdGuide_, &QPushButton::clicked, this, &FrmFastHelp::askGuide);
    connect(cmdClose_, &QPushButton::clicked, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdGuide_);
    buttons->addStretch(1);
    buttons->addWidget(cmdClose_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margins(fontMetrics(), Space::Wide));
    layout->setSpacing(space(fontMetrics(), Space::Normal));
    layout->addWidget(lblTopic_);
    layout->addWidget(lblHelp_, 1);
    layout->addLayout(buttons);
    lblHelp_->setFixedWidth(fontMetrics().averageCharWidth() * textLetters);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void FrmFastHelp::openOn(const std::string& /*on*/, const std::string& /*title*/) {
    const QString key = keyInHand();
    std::optional<HelpRow> row;
    skipFailing([&] {
        if (!key.isEmpty()) row = session_.requireReference().help(key.toStdString());
    });
    if (row) return show(*row);
    session_.messages.Display_Message(
        codes::Help, session_.reference() != nullptr
                         ? "There is no help on this field."
                         : "There are no help texts: the reference database could not be opened.");
}

QString FrmFastHelp::keyInHand() const {
    for (const QWidget* one = QApplication::focusWidget(); one != nullptr; one = one->parentWidget()) {
        const QString key = one->property(helpKeyProperty).toString();
        if (!key.isEmpty()) return key;
    }
    const auto* workspace = parentWidget()->findChild<FrmConfig*>();
    return workspace == nullptr ? QString() : workspace->helpKey();
}

void FrmFastHelp::show(const HelpRow& row) {
    rememberField();
    topic_ = qString(guideTopicOf(row.key));
    lblTopic_->setText(shownString(row.topic));
    lblHelp_->setText(shownStringOfLines(row.text));
    // A screen reader says the whole entry as the window opens.
    setAccessibleDescription(lblTopic_->text() + QStringLiteral(". ") + lblHelp_->text());
    cmdGuide_->setVisible(!topic_.isEmpty());
    cmdClose_->setFocus();
    QDialog::show();
    raise();
    activateWindow();
}

/// The control in hand, unless it is one of this window's own: then the former field still waits.
void FrmFastHelp::rememberField() {
    QWidget* focus = QApplication::focusWidget();
    if (focus != nullptr && focus->window() != this) field_ = focus;
}

void FrmFastHelp::askGuide() {
    field_.clear();  // the guide takes the focus
    accept();
    session_.windows().open(window::help, topic_.toStdString());
}

bool FrmFastHelp::event(QEvent* event) {
    // The main window has the same key; in here it closes.
    if (event->type() == QEvent::ShortcutOverride && isHelpKey(event)) {
        event->accept();
        return true;
    }
    return QDialog::event(event);
}

void FrmFastHelp::keyPressEvent(QKeyEvent* event) {
    if (isHelpKey(event)) return accept();
    QDialog::keyPressEvent(event);
}

void FrmFastHelp::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous() || field_.isNull()) return;
    field_->window()->activateWindow();
    field_->setFocus();
    field_.clear();
}

template Form* makeForm<FrmFastHelp>(const FormNeeds& needs);

}  // namespace zentaq
