#include "windows/frm_auto_ve.h"

#include <QCloseEvent>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QPointer>
#include <QVBoxLayout>

#include "base/errors.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr int idleMs = 200;    ///< while nothing runs the link is looked after
constexpr int sliceMs = 8;     ///< of the records of a log, between two turns of the event loop
constexpr int recordsAtOnce = 50;
constexpr int letters = 5;

}  // namespace

FrmAutoVE::FrmAutoVE(Session& session, AutoVeGrid& grid, QWidget* parent)
    : QDialog(parent), tuning_(session, grid), session_(session) {
    named(this, "frmAutoVE", AutoVeTuning::title);
    setWindowTitle(AutoVeTuning::title);
    setModal(true);
    QLabel* init = plainLines("lblAutoVEInit", {}, this);
    init->setText(AutoVeTuning::initText);
    txtAutoVEConst_ = named(new QLineEdit(qString(tuning_.constant), this), "txtAutoVEConst",
                            "Number of data points, 5 to 200");
    txtAutoVEConst_->setMaximumWidth(digitsWidth(fontMetrics(), letters) + 2 * space(fontMetrics(), Space::Wide));
    init->setBuddy(txtAutoVEConst_);
    cmdLiveAutoVE_ = namedButton("cmdLiveAutoVE", "Using live data", this);
    cmdLiveAutoVE_->setToolTip("Click here to use live monitor data for AutoVE tuning.");
    cmdDataLogAutoVE_ = namedButton("cmdDataLogAutoVE", "Using a data log", this);
    cmdDataLogAutoVE_->setToolTip("Click here to use a FlightRecorder data log for AutoVE tuning.");
    cmdCancel_ = namedButton("cmdCancel", "Exit", this);
    for (QPushButton* button : {cmdLiveAutoVE_, cmdDataLogAutoVE_, cmdCancel_}) button->setAutoDefault(false);
    lblMessage_ = plainLabel("lblMessage", "What AutoVE does", this);
    lblMessage_->setFont(typeFont(Type::Strong));
    prgAutoVE_ = named(new QProgressBar(this), "prgAutoVE", "Records of the data log");

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdLiveAutoVE_, 1);
    buttons->addWidget(cmdDataLogAutoVE_, 1);
    buttons->addWidget(cmdCancel_);
    auto* entry = new QHBoxLayout;
    entry->addWidget(init, 1);
    entry->addWidget(txtAutoVEConst_);
    auto* whole = new QVBoxLayout(this);
    whole->setSpacing(space(fontMetrics(), Space::Wide));
    whole->addLayout(entry);
    whole->addWidget(lblMessage_);
    whole->addWidget(prgAutoVE_);
    whole->addLayout(buttons);
    // The lines below keep their room while they say nothing: the buttons stay under the pointer.
    for (QWidget* line : {static_cast<QWidget*>(lblMessage_), static_cast<QWidget*>(prgAutoVE_)}) {
        QSizePolicy kept = line->sizePolicy();
        kept.setRetainSizeWhenHidden(true);
        line->setSizePolicy(kept);
    }

    connect(txtAutoVEConst_, &QLineEdit::textChanged, this,
            [this](const QString& text) { tuning_.constant = text.toStdString(); });
    connect(cmdLiveAutoVE_, &QPushButton::clicked, this, [this] { press(&AutoVeTuning::live); });
    connect(cmdDataLogAutoVE_, &QPushButton::clicked, this, [this] { press(&AutoVeTuning::dataLog); });
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::close);
    timer_ = new QTimer(this);
    connect(timer_, &QTimer::timeout, this, &FrmAutoVE::follow);
    timer_->start(idleMs);
    txtAutoVEConst_->selectAll();
    draw();
}

void FrmAutoVE::press(void (AutoVeTuning::*command)()) {
    const QPointer<FrmAutoVE> self(this);
    endOnFailure([&] { (tuning_.*command)(); }, [&](const std::string& why) { session_.inform(why); });
    if (!self) return;
    draw();
    follow();
}

// The records of a log come in slices, so that a press of "Cancel" is heard between them.
void FrmAutoVE::follow() {
    const QPointer<FrmAutoVE> self(this);
    if (tuning_.follow()) {
        QElapsedTimer spent;
        spent.start();
        while (self && tuning_.logRuns() && spent.elapsed() < sliceMs) tuning_.runRecords(recordsAtOnce);
    }
    if (!self) return;
    timer_->setInterval(tuning_.active() && !tuning_.shown().cancelEnabled ? 0 : idleMs);
    draw();
}

void FrmAutoVE::draw() {
    const AutoVeTuning::Shown& shown = tuning_.shown();
    const auto set = [](QPushButton& button, const std::string& caption, bool enabled) {
        button.setText(qString(caption));
        button.setAccessibleName(qString(caption));
        button.setEnabled(enabled);
    };
    set(*cmdLiveAutoVE_, shown.liveCaption, shown.liveEnabled);
    set(*cmdDataLogAutoVE_, shown.logCaption, shown.logEnabled);
    txtAutoVEConst_->setEnabled(shown.constantEnabled);
    cmdCancel_->setEnabled(shown.cancelEnabled);
    lblMessage_->setText(qString(shown.message));
    lblMessage_->setVisible(!shown.message.empty());
    prgAutoVE_->setVisible(shown.progressVisible);
    prgAutoVE_->setValue(shown.percent);
}

// Escape is no way out of a run: it is ended by its own button, and asks what becomes of it.
void FrmAutoVE::reject() {
    if (!tuning_.active()) QDialog::reject();
}

void FrmAutoVE::closeEvent(QCloseEvent* event) {
    if (tuning_.active()) return event->ignore();
    QDialog::closeEvent(event);
}

}  // namespace zentaq
