#include "windows/frm_edit_map_sensors.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QRadioButton>
#include <QVBoxLayout>

#include "qt/enter_key.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/second_window.h"
#include "qt/window_placement.h"
#include "windows/form_maker.h"

namespace zentaq {

namespace {

constexpr int boxDigits = 9;
constexpr int listLetters = 34;
/// Of the form when it opens for the first time, in lines of text.
constexpr int preferredWidth = 70;
constexpr int preferredHeight = 34;

/// By the order of sensorUnits().
constexpr std::array<const char*, 5> unitCaptions = {"&kPa", "&mmHg", "&PSIA", "inH&g", "PS&IG"};

/// Of an item: the name as it is stored, which may not be the one that is shown.
constexpr int nameRole = Qt::UserRole;

}  // namespace

FrmEditMAPSensors::FrmEditMAPSensors(Session& session, QWidget* parent)
    : QWidget(parent, secondWindow()),
      Form(this),
      session_(session),
      manager_(std::make_shared<SensorManager>(session)) {
    named(this, qString(window::sensorEditor), "MAP Sensor Manager");
    setWindowTitle(accessibleName());
    setProperty(helpKeyProperty, QStringLiteral("helpMAPlist"));

    tabMAPSensors_ = named(new QTabWidget(this), "tabMAPSensors", "MAP sensors");
    tabMAPSensors_->setTabBarAutoHide(true);
    tabMAPSensors_->setFocusPolicy(Qt::NoFocus);  // to its bar, which is hidden, Tab would go in vain
    tabMAPSensors_->setDocumentMode(true);
    area_ = named(new PageArea(tabMAPSensors_), "scrMAPSensors");
    auto* page = new QWidget(area_);
    columns_ = new QBoxLayout(QBoxLayout::LeftToRight, page);
    columns_->setContentsMargins(0, 0, 0, 0);
    columns_->addWidget(makeList(), 6);
    auto* right = new QVBoxLayout;
    auto* top = new QHBoxLayout;
    top->addWidget(makeInfo(), 1);
    top->addWidget(makeEntry(), 2);
    right->addLayout(top);
    picLine_ = new SensorLinePicture(page);
    right->addWidget(picLine_, 1);
    columns_->addLayout(right, 7);
    area_->setPage(page);
    tabMAPSensors_->addTab(area_, "MAP Sensors");

    lblStatus_ = plainLines("lblStatus", "Status", this);
    lblStatus_->setMinimumHeight(lblStatus_->fontMetrics().lineSpacing() * 2);
    cmdExit_ = makeButton("cmdExit", "E&xit", &FrmEditMAPSensors::exit);
    // Where the entry scrolls these stay in sight.
    cmdSave_ = makeButton("cmdSave", "&Save Sensor", &FrmEditMAPSensors::save);
    cmdCancel_ = makeButton("cmdCancel", "&Cancel", &FrmEditMAPSensors::cancel);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblStatus_, 1);
    for (QPushButton* button : {cmdSave_, cmdCancel_, cmdExit_})
        bottom->addWidget(button, 0, Qt::AlignBottom);

    auto* whole = new QVBoxLayout(this);
    whole->addWidget(tabMAPSensors_, 1);
    whole->addLayout(bottom);
    setTabOrders();
    showAll();
    lstMAPSensors_->setFocus();
    if (!restorePlacement(*this, session_.settings())) {
        const int line = fontMetrics().height();
        resize(sizeHint().expandedTo({line * preferredWidth, line * preferredHeight}));
        if (parent != nullptr) centreForm(*this, *parent->window());
    }
}

// ---- Building

QPushButton* FrmEditMAPSensors::makeButton(const char* name, const QString& caption,
                                           void (FrmEditMAPSensors::*run)()) {
    QPushButton* button = namedButton(name, caption, this);
    connect(button, &QPushButton::clicked, this, run);
    return button;
}

QWidget* FrmEditMAPSensors::makeList() {
    auto* part = new QWidget(this);
    lblInstalled_ = named(new QLabel("Insta&lled MAP Sensors:", part), "lblInstalled");
    lstMAPSensors_ = named(new QListWidget(part), "lstMAPSensors", "Installed MAP sensors");
    lstMAPSensors_->setProperty(helpKeyProperty, QStringLiteral("helpMAPlist"));
    lstMAPSensors_->setAlternatingRowColors(true);
    lstMAPSensors_->setTabKeyNavigation(false);
    // Names are told apart by their ends, so a long one takes a second line and is never cut.
    lstMAPSensors_->setWordWrap(true);
    lstMAPSensors_->setResizeMode(QListView::Adjust);
    lstMAPSensors_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstMAPSensors_->setMinimumWidth(lstMAPSensors_->fontMetrics().averageCharWidth() * listLetters);
    lstMAPSensors_->installEventFilter(this);
    lblInstalled_->setBuddy(lstMAPSensors_);
    connect(lstMAPSensors_, &QListWidget::itemSelectionChanged, this, &FrmEditMAPSensors::selectionChanged);
    connect(lstMAPSensors_, &QListWidget::itemDoubleClicked, this, &FrmEditMAPSensors::edit);
    cmdEdit_ = makeButton("cmdEdit", "&Edit", &FrmEditMAPSensors::edit);
    cmdNew_ = makeButton("cmdNew", "Create &New", &FrmEditMAPSensors::create);
    cmdRemove_ = makeButton("cmdRemove", "&Remove", &FrmEditMAPSensors::remove);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {cmdEdit_, cmdNew_, cmdRemove_}) buttons->addWidget(button);
    auto* column = new QVBoxLayout(part);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(lblInstalled_);
    column->addWidget(lstMAPSensors_, 1);
    column->addLayout(buttons);
    return part;
}

QWidget* FrmEditMAPSensors::makeInfo() {
    fraInfo_ = named(new QGroupBox("Sensor Info", this), "fraInfo");
    lblGeneral_ = plainLabel("lblGeneral", "Sensor info", fraInfo_);
    lblGeneral_->setFont(typeFont(Type::Strong));
    auto* column = new QVBoxLayout(fraInfo_);
    // Most ranges leave its neighbour where it is.
    column->addStrut(lblGeneral_->fontMetrics().horizontalAdvance(QStringLiteral("-0000 - 00000")));
    column->addWidget(lblGeneral_);
    column->addStretch(1);
    return fraInfo_;
}

QLineEdit* FrmEditMAPSensors::makeBox(SensorBox box, const QString& meaning, const char* helpKey) {
    auto* field = named(new QLineEdit(this), QStringLiteral("txtPV_%1").arg(static_cast<int>(box)), meaning);
    field->setProperty(helpKeyProperty, QLatin1String(helpKey));
    field->setAlignment(Qt::AlignRight);
    field->setMinimumWidth(digitsWidth(field->fontMetrics(), boxDigits));
    connect(field, &QLineEdit::textChanged, this, &FrmEditMAPSensors::showPicture);
    txtPV_[box] = field;
    return field;
}

QWidget* FrmEditMAPSensors::makeEntry() {
    auto* part = named(new QGroupBox("Two points of the sensor's line", this), "fraPoints");
    auto* volts = named(new QLabel("&Volts", part), "lblVolts");
    auto* pressure = named(new QLabel("Press&ure", part), "lblPressure");
    auto* grid = new QGridLayout;
    grid->addWidget(volts, 0, 1);
    grid->addWidget(pressure, 0, 2);
    grid->addWidget(new QLabel("Low point", part), 1, 0);
    grid->addWidget(makeBox(firstVolts, "Volts of the low point, 0 to 5", "helpMAPvolts"), 1, 1);
    grid->addWidget(makeBox(firstPressure, "Pressure of the low point", "helpMAPpressure"), 1, 2);
    grid->addWidget(new QLabel("High point", part), 2, 0);
    grid->addWidget(makeBox(secondVolts, "Volts of the high point, 0 to 5", "helpMAPvolts"), 2, 1);
    grid->addWidget(makeBox(secondPressure, "Pressure of the high point", "helpMAPpressure"), 2, 2);
    volts->setBuddy(txtPV_[firstVolts]);
    pressure->setBuddy(txtPV_[firstPressure]);

    auto* column = new QVBoxLayout(part);
    column->addLayout(grid);
    column->addWidget(makeUnits());
    return part;
}

QWidget* FrmEditMAPSensors::makeUnits() {
    auto* part = named(new QWidget(this), "fraUnits", "Unit of pressure");
    auto* row = new QHBoxLayout(part);
    row->setContentsMargins(0, 0, 0, 0);
    optUnits_ = named(new QButtonGroup(this), "optUnits");
    for (std::size_t i = 0; i < unitCaptions.size(); ++i) {
        auto* option = named(new QRadioButton(unitCaptions[i], part), QStringLiteral("optUnits_%1").arg(i),
                             "Pressure in " + QString(unitCaptions[i]).remove(u'&'));
        option->setProperty(helpKeyProperty, QStringLiteral("helpMAPunits"));
        optUnits_->addButton(option, sensorUnits()[i].code);
        row->addWidget(option);
        connect(option, &QRadioButton::toggled, this, &FrmEditMAPSensors::showPicture);
    }
    return part;
}

// A tuner reads the points one after the other: the volts of a point, then its pressure.
void FrmEditMAPSensors::setTabOrders() {
    QList<QWidget*> order = {lstMAPSensors_,
                             cmdEdit_,
                             cmdNew_,
                             cmdRemove_,
                             txtPV_[firstVolts],
                             txtPV_[firstPressure],
                             txtPV_[secondVolts],
                             txtPV_[secondPressure]};
    for (QAbstractButton* option : optUnits_->buttons()) order.append(option);
    order << cmdSave_ << cmdCancel_ << cmdExit_;
    for (qsizetype i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

// ---- Commands

void FrmEditMAPSensors::begin(bool (SensorManager::*task)()) {
    const QPointer<FrmEditMAPSensors> self(this);
    const auto manager = manager_;
    const bool begun = (manager.get()->*task)();
    if (!self) return;
    begun ? beginEntry() : showAll();
}

void FrmEditMAPSensors::remove() {
    const QPointer<FrmEditMAPSensors> self(this);
    const auto manager = manager_;
    const std::string name = shownLine(manager->selected());
    const bool removed = manager->remove();
    if (!self) return;
    told_ = removed ? "Removed: " + name : "";
    showAll();
    lstMAPSensors_->setFocus();
}

void FrmEditMAPSensors::save() {
    const QPointer<FrmEditMAPSensors> self(this);
    const auto manager = manager_;
    const SensorManager::Saved saved = manager->save(entry());
    if (!self) return;
    if (saved.done) {
        told_ = "Saved: " + shownLine(manager_->selected());
        showAll();
        lstMAPSensors_->setFocus();
        return;
    }
    if (!saved.box) return;
    txtPV_[*saved.box]->setFocus();
    txtPV_[*saved.box]->selectAll();
}

void FrmEditMAPSensors::cancel() {
    if (manager_->task() == SensorTask::None) return;
    manager_->cancel();
    told_.clear();
    showAll();
    lstMAPSensors_->setFocus();
}

void FrmEditMAPSensors::beginEntry() {
    told_.clear();
    showAll();
    txtPV_[firstVolts]->setFocus();
    txtPV_[firstVolts]->selectAll();
}

void FrmEditMAPSensors::selectionChanged() {
    const QList<QListWidgetItem*> chosen = lstMAPSensors_->selectedItems();
    manager_->select(chosen.isEmpty() ? std::string()
                                      : chosen.front()->data(nameRole).toString().toStdString());
    told_.clear();
    showAll();
}

void FrmEditMAPSensors::sensorsChanged() {
    manager_->load();
    const bool entering = manager_->task() != SensorTask::None;
    if (!entering) return showAll();
    fillList();  // what is being typed stays
    showButtons();
}

// ---- Showing

SensorEntry FrmEditMAPSensors::entry() const {
    SensorEntry typed;
    for (std::size_t i = 0; i < txtPV_.size(); ++i) typed.points[i] = txtPV_[i]->text().toStdString();
    // A sensor in a unit that is no option keeps it until one is chosen.
    typed.unitsCode = optUnits_->checkedId() >= 0 ? optUnits_->checkedId() : manager_->entry().unitsCode;
    return typed;
}

void FrmEditMAPSensors::showAll() {
    fillList();
    lblGeneral_->setText(shownStringOfLines(manager_->lblGeneral()));
    showEntry();
    showButtons();
    showPicture();
    showStatus();
}

void FrmEditMAPSensors::fillList() {
    const QSignalBlocker quiet(lstMAPSensors_);
    QStringList names;
    for (const std::string& name : manager_->sensors()) names.append(qString(name));
    QStringList listed;
    for (int row = 0; row < lstMAPSensors_->count(); ++row)
        listed.append(lstMAPSensors_->item(row)->data(nameRole).toString());
    if (names != listed) {
        lstMAPSensors_->clear();
        for (const std::string& name : manager_->sensors()) {
            auto* item = new QListWidgetItem(shownString(name), lstMAPSensors_);
            item->setData(nameRole, qString(name));
        }
    }
    const auto row = static_cast<int>(names.indexOf(qString(manager_->selected())));
    if (row >= 0)
        lstMAPSensors_->setCurrentRow(row);
    else
        lstMAPSensors_->clearSelection();
}

void FrmEditMAPSensors::showEntry() {
    const bool entering = manager_->task() != SensorTask::None;
    for (std::size_t i = 0; i < txtPV_.size(); ++i) {
        const QSignalBlocker quiet(txtPV_[i]);
        txtPV_[i]->setText(entering ? qString(manager_->entry().points[i]) : QString());
        txtPV_[i]->setEnabled(entering);
        txtPV_[i]->setToolTip(entering ? QString() : shownTip(manager_->whyNotSave()));
    }
    optUnits_->setExclusive(false);
    for (QAbstractButton* option : optUnits_->buttons()) {
        const QSignalBlocker quiet(option);
        option->setChecked(entering && optUnits_->id(option) == manager_->entry().unitsCode);
        option->setEnabled(entering);
        option->setToolTip(entering ? QString() : shownTip(manager_->whyNotSave()));
    }
    optUnits_->setExclusive(true);
    lstMAPSensors_->setEnabled(!entering);
}

void FrmEditMAPSensors::offer(QPushButton* button, const std::string& whyNot) {
    button->setEnabled(whyNot.empty());
    button->setToolTip(shownTip(whyNot));
    button->setAccessibleDescription(shownString(whyNot));
}

void FrmEditMAPSensors::showButtons() {
    offer(cmdEdit_, manager_->whyNotEdit());
    offer(cmdNew_, manager_->whyNotCreate());
    offer(cmdRemove_, manager_->whyNotRemove());
    offer(cmdSave_, manager_->whyNotSave());
    offer(cmdCancel_, manager_->task() == SensorTask::None ? "There is nothing to cancel." : "");
    cmdSave_->setDefault(manager_->task() != SensorTask::None);
}

void FrmEditMAPSensors::showPicture() {
    picLine_->show(manager_->sketch(entry()));
}

void FrmEditMAPSensors::showStatus() {
    std::string text = manager_->problem();
    if (text.empty()) text = manager_->inHand();
    if (text.empty()) text = told_;
    lblStatus_->setText(shownStringOfLines(text));
}

// ---- Events

void FrmEditMAPSensors::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    foldColumns(*columns_, width() - 2 * area_->verticalScrollBar()->sizeHint().width());
}

void FrmEditMAPSensors::closeEvent(QCloseEvent* event) {
    manager_->cancel();
    storePlacement(*this, session_.settings());
    event->accept();
    tellClosed();
}

// A database that was locked or away may be back when the user returns to the window.
void FrmEditMAPSensors::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow()) return;
    if (picLine_ != nullptr && !manager_->problem().empty()) sensorsChanged();
}

void FrmEditMAPSensors::enterPressed() {
    QWidget* focus = QApplication::focusWidget();
    if (auto* button = qobject_cast<QPushButton*>(focus)) {
        button->click();
    } else if (focus == lstMAPSensors_) {
        edit();
    } else if (manager_->task() != SensorTask::None) {
        save();
    }
}

void FrmEditMAPSensors::keyPressEvent(QKeyEvent* event) {
    if (isEnterKey(*event)) return enterPressed();
    if (event->key() == Qt::Key_Escape && manager_->task() != SensorTask::None) {
        cancel();
    } else if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

bool FrmEditMAPSensors::listKey(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Delete) {
        remove();
        return true;
    }
    const bool arrow = event.key() == Qt::Key_Down || event.key() == Qt::Key_Up;
    if (!arrow || !lstMAPSensors_->selectedItems().isEmpty() || lstMAPSensors_->count() == 0) return false;
    // With nothing selected the first arrow selects the row it stands on and does not skip it.
    lstMAPSensors_->setCurrentRow(std::max(lstMAPSensors_->currentRow(), 0),
                                  QItemSelectionModel::ClearAndSelect);
    return true;
}

bool FrmEditMAPSensors::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lstMAPSensors_ && event->type() == QEvent::KeyPress &&
        listKey(*static_cast<QKeyEvent*>(event))) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

template Form* makeForm<FrmEditMAPSensors>(const FormNeeds& needs);

}  // namespace zentaq
