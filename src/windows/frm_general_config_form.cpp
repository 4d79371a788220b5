#include "windows/frm_general_config_form.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "qt/entry_box.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/page_area.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "unit/parameter_names.h"

namespace zentaq {

namespace {

constexpr int dimensionLetters = 2;
/// Controls without which no new calibration can be stored, in the order of the form.
struct Needed {
    std::string_view control;
    const char* hint;
};
constexpr std::array needed{
    Needed{"cmbORB_UNIT", QT_TRANSLATE_NOOP("zentaq::GeneralConfigForm", "Choose a model")},
    Needed{"cmbEngine", QT_TRANSLATE_NOOP("zentaq::GeneralConfigForm", "Choose an engine")},
    Needed{"cmbMAP", QT_TRANSLATE_NOOP("zentaq::GeneralConfigForm", "Choose a MAP sensor")},
};

int longestEntry(const QComboBox& list) {
    int longest = 0;
    for (int i = 0; i < list.count(); ++i)
        longest = std::max(longest, list.fontMetrics().horizontalAdvance(list.itemText(i)));
    return longest;
}

QHBoxLayout* plainRow(const QWidget& form) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(space(form.fontMetrics(), Space::Normal));
    return row;
}

}  // namespace

/// One column of groups while it is being filled.
struct GeneralConfigForm::Column {
    enum Place { captionPlace, controlPlace, limitsPlace, places };
    QGridLayout* grid;
    int row = 0;
};

GeneralConfigForm::GeneralConfigForm(Core core, QWidget* parent) : QWidget(parent), core_(std::move(core)) {
    setObjectName(QStringLiteral("fraGeneral"));
    columns_ = new QBoxLayout(QBoxLayout::LeftToRight, this);
    columns_->setContentsMargins(margins(fontMetrics(), Space::Normal));
    columns_->setSpacing(space(fontMetrics(), Space::Section));
    Column left{makeColumn()};
    makeUnitGroup(left);
    makeSensorGroup(left);
    makeEngineGroup(left);
    left.grid->setRowStretch(left.row, 1);
    Column right{makeColumn()};
    makeInjectorGroup(right);
    right.grid->setRowStretch(right.row, 1);
    columns_->addLayout(left.grid, 1);  // its lists take what the boxes of the other one leave
    columns_->addLayout(right.grid);
    refresh();
    int widest = 0;
    for (const QLabel* label : wideCaptions_) widest = std::max(widest, label->sizeHint().width());
    for (QLabel* label : wideCaptions_) label->setMinimumWidth(widest);
}

GeneralConfigForm::~GeneralConfigForm() {
    // Children outlive this part of the object; their last events are no business of the form any more.
    for (FieldControl* control : controls_) {
        control->widget()->removeEventFilter(this);
        control->widget()->disconnect(this);
        delete control;
    }
}

void GeneralConfigForm::fitTo(int width) {
    width_ = width;
    // What scrolls the form has taken its former height already.
    if (foldColumns(*columns_, width)) updateGeometry();
    fitWideRows();
}

void GeneralConfigForm::fitWideRows() {
    const QMargins margins = columns_->contentsMargins();
    int room = width_ - margins.left() - margins.right();
    if (columns_->direction() == QBoxLayout::LeftToRight)
        room -= columns_->spacing() + columns_->itemAt(1)->minimumSize().width();
    const int frame = fontMetrics().height() * 5 / 2;  // with the arrow
    for (const WideRow& wide : wideRows_) {
        const int list = longestEntry(*wide.list) + frame;
        const bool beside = wide.caption->minimumWidth() + wide.row->spacing() + list <= room;
        wide.row->setDirection(beside ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    }
}

int GeneralConfigForm::growth() const {
    int lines = 0;
    for (const WideRow& wide : wideRows_) {
        if (wide.row->direction() == QBoxLayout::LeftToRight)
            lines += wide.caption->sizeHint().height() + wide.row->spacing();
    }
    return lines;
}

// ---- Making

QGridLayout* GeneralConfigForm::makeColumn() {
    auto* grid = new QGridLayout;
    const int line = fontMetrics().height();
    grid->setHorizontalSpacing(line * 2 / 3);
    grid->setVerticalSpacing(line / 3);
    grid->setColumnStretch(Column::limitsPlace, 1);
    return grid;
}

void GeneralConfigForm::heading(Column& column, const char* name, const QString& text) {
    auto* label = named(new QLabel(text, this), name);
    label->setFont(typeFont(Type::Strong));
    auto* line = new QFrame(this);
    line->setFrameStyle(QFrame::HLine | QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    if (column.row > 0) {
        column.grid->setRowMinimumHeight(column.row++, fontMetrics().height() * 2 / 3);
    }
    column.grid->addWidget(label, column.row++, 0, 1, Column::places);
    column.grid->addWidget(line, column.row++, 0, 1, Column::places);
}

void GeneralConfigForm::makeUnitGroup(Column& column) {
    heading(column, "lblGroup1", "1   Unit and engine");
    wideListRow(column, "cmbORB_UNIT");
    wideListRow(column, "cmbEngine");
    dimensionsRow(column);
}

void GeneralConfigForm::makeSensorGroup(Column& column) {
    heading(column, "lblGroup2", "2   MAP sensor and boost");
    wideListRow(column, "cmbMAP");
    ratingRow(column);
    boxRow(column, "txtMaxBoost");
}

void GeneralConfigForm::makeEngineGroup(Column& column) {
    heading(column, "lblGroup3", "3   Engine figures");
    boxRow(column, "txtRPM");
    boxRow(column, "txtBHP");
    listRow(column, "cmbCams");
    alcoholRow(column);
    boxRow(column, "txtTPS");
}

void GeneralConfigForm::makeInjectorGroup(Column& column) {
    heading(column, "lblGroup4", "4   Injectors");
    boxRow(column, "txtINJ");
    peakRow(column);
    flowRow(column);
    boxRow(column, "txtPOT");
    boxRow(column, "txtMIT");
    boxRow(column, "txtUAP");
    boxRow(column, "txtTOG");
    computedRow(column);
}

FieldControl& GeneralConfigForm::field(const std::string& name) {
    auto* made = new FieldControl(
        core_.field(name), [this, name](const std::string& text) { return hand(name, text); }, this);
    made->widget()->installEventFilter(this);
    if (auto* box = qobject_cast<EntryBox*>(made->widget())) {
        connect(box, &EntryBox::clickRefused, this, [this] {
            swallowClick_ = true;
            QTimer::singleShot(0, this, [this] { swallowClick_ = false; });
        });
    }
    controls_.push_back(made);
    return *made;
}

void GeneralConfigForm::boxRow(Column& column, const std::string& name) {
    FieldControl& box = field(name);
    column.grid->addWidget(box.addCaption(), column.row, Column::captionPlace);
    column.grid->addWidget(box.widget(), column.row, Column::controlPlace, Qt::AlignLeft);
    column.grid->addWidget(box.addLimits(), column.row, Column::limitsPlace);
    ++column.row;
}

void GeneralConfigForm::listRow(Column& column, const std::string& name) {
    FieldControl& list = field(name);
    column.grid->addWidget(list.addCaption(), column.row, Column::captionPlace);
    column.grid->addWidget(list.widget(), column.row, Column::controlPlace, 1, 2);
    ++column.row;
}

/// The names of engines and sensors are long: their lists begin right behind the captions.
void GeneralConfigForm::wideListRow(Column& column, const std::string& name) {
    FieldControl& list = field(name);
    QBoxLayout* row = plainRow(*this);
    wideCaptions_.push_back(list.addCaption());
    row->addWidget(wideCaptions_.back());
    row->addWidget(list.widget(), 1);
    wideRows_.push_back({row, wideCaptions_.back(), static_cast<QComboBox*>(list.widget())});
    column.grid->addLayout(row, column.row, 0, 1, Column::places);
    ++column.row;
}

/// Sensor and rating have the caption of the sensor in common; a label beside the box tells the two apart.
void GeneralConfigForm::ratingRow(Column& column) {
    auto* row = plainRow(*this);
    row->addWidget(makeManagerButton());
    row->addStretch(1);
    FieldControl& box = field("txtMAP");
    row->addWidget(box.addOwnLabel("lblRange", qString(nameOfParameter("MAP_BAR"))));
    column.grid->addLayout(row, column.row, Column::captionPlace);
    column.grid->addWidget(box.widget(), column.row, Column::controlPlace, Qt::AlignLeft);
    column.grid->addWidget(box.addLimits(), column.row, Column::limitsPlace);
    ++column.row;
}

QWidget* GeneralConfigForm::makeManagerButton() {
    cmdManager_ =
        named(new QPushButton("MAP Sensor &Manager...", this), "cmdMAPSensorManager", "MAP Sensor Manager");
    cmdManager_->setProperty(helpKeyProperty, QStringLiteral("helpmapsel"));
    cmdManager_->setAutoDefault(false);
    connect(cmdManager_, &QPushButton::clicked, this, &GeneralConfigForm::sensorManagerAsked);
    return cmdManager_;
}

void GeneralConfigForm::dimensionsRow(Column& column) {
    lblDimensions_ = named(new QLabel("Table Start Dimensions", this), "lblDimensions");
    wideCaptions_.push_back(lblDimensions_);
    auto* row = plainRow(*this);
    row->addWidget(lblDimensions_);
    for (const char* name : {"cmbCols", "cmbRows"}) {
        FieldControl& list = field(name);
        static_cast<QComboBox*>(list.widget())->setMinimumContentsLength(dimensionLetters);
        row->addWidget(list.addCaption());
        row->addWidget(list.widget());
        row->addSpacing(fontMetrics().height());
    }
    row->addStretch(1);
    column.grid->addLayout(row, column.row, 0, 1, Column::places);
    ++column.row;
}

void GeneralConfigForm::peakRow(Column& column) {
    auto* row = plainRow(*this);
    auto* peak = new QButtonGroup(this);
    for (const char* name : {"optInjAmp2", "optInjAmp4"}) {
        FieldControl& option = field(name);
        option.join(*peak);
        row->addWidget(option.widget());
        row->addSpacing(fontMetrics().height());
    }
    row->addStretch(1);
    column.grid->addLayout(row, column.row, Column::controlPlace, 1, 2);
    ++column.row;
}

void GeneralConfigForm::alcoholRow(Column& column) {
    column.grid->addWidget(field("chkAlcohol").widget(), column.row, Column::controlPlace, 1, 2);
    ++column.row;
}

/// The caption of the flow is its unit and stands behind the box.
void GeneralConfigForm::flowRow(Column& column) {
    FieldControl& box = field("txtLBHR");
    column.grid->addWidget(box.addOwnLabel("lblInjectorSize", qString(nameOfParameter("INJ_FlowRate"))),
                           column.row, Column::captionPlace);
    column.grid->addWidget(box.widget(), column.row, Column::controlPlace, Qt::AlignLeft);
    auto* row = plainRow(*this);
    row->addWidget(box.addCaption());
    row->addWidget(box.addLimits(), 1);
    column.grid->addLayout(row, column.row, Column::limitsPlace);
    ++column.row;
}

void GeneralConfigForm::computedRow(Column& column) {
    lblComputed_ = named(new QLabel("Zentaq Calculated TOG", this), "lblComputed");
    lblUAP_ = explained(new ValueLabel(QStringLiteral("000.000"), this), "lblUAP", lblComputed_->text());
    lblUAP_->setProperty(helpKeyProperty, QStringLiteral("helptog"));
    lblUAP_->setFont(typeFont(Type::Strong));
    lblComputedUnit_ = mutedLabel(this);
    lblComputedUnit_->setText("ms");
    column.grid->addWidget(lblComputed_, column.row, Column::captionPlace);
    column.grid->setRowMinimumHeight(column.row, find("txtTOG").widget()->sizeHint().height());
    column.grid->addWidget(lblUAP_, column.row, Column::controlPlace);
    column.grid->addWidget(lblComputedUnit_, column.row, Column::limitsPlace);
    ++column.row;
}

// ---- Showing

void GeneralConfigForm::refresh() {
    for (FieldControl* control : controls_) control->show(core_.field(control->shown().control));
    highlight(onTheFly_);
    lblUAP_->showValue(core_.computed());
    lblDimensions_->setEnabled(find("cmbCols").shown().enabled);
    const bool sized = find("txtLBHR").shown().enabled;
    lblComputed_->setEnabled(sized);
    showUsable(*lblComputedUnit_, sized);
    if (width_ > 0) fitWideRows();  // a model has engines of its own
}

void GeneralConfigForm::highlight(bool onTheFly) {
    onTheFly_ = onTheFly;
    for (FieldControl* control : controls_) control->mark(onTheFly);
}

void GeneralConfigForm::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange && event->type() != QEvent::StyleChange) return;
    // Day and night have highlights of their own. The style has yet to do its part on every control.
    QTimer::singleShot(0, this, [this] { highlight(onTheFly_); });
}

QString GeneralConfigForm::missing() const {
    for (const Needed& need : needed) {
        const Field& field = find(need.control).shown();
        if (field.enabled && field.text.empty()) return tr(need.hint);
    }
    return {};
}

void GeneralConfigForm::focusFirst() {
    for (const Needed& need : needed) {
        const FieldControl& control = find(need.control);
        if (control.shown().enabled && control.shown().text.empty()) return control.widget()->setFocus();
    }
    const auto first =
        std::ranges::find_if(controls_, [](auto* control) { return control->shown().enabled; });
    if (first != controls_.end()) (*first)->widget()->setFocus();
}

FieldControl& GeneralConfigForm::find(std::string_view name) const {
    return **std::ranges::find(
        controls_, name, [](auto* control) -> auto& { return control->shown().control; });
}

std::vector<QWidget*> GeneralConfigForm::tabOrder() const {
    std::vector<QWidget*> order;
    for (const FieldControl* control : controls_) {
        order.push_back(control->widget());
        if (control->shown().control == "cmbMAP") order.push_back(cmdManager_);
    }
    return order;
}

// ---- Entries

bool GeneralConfigForm::hand(const std::string& name, const std::string& text) {
    const QPointer<GeneralConfigForm> self(this);
    const bool taken = core_.enter(name, text);
    if (!self) return false;  // gone under the box of a refusal
    refresh();
    Q_EMIT entered();
    return taken;
}

void GeneralConfigForm::bringBack() {
    for (FieldControl* control : controls_) control->bringBack();
}

bool GeneralConfigForm::commit() {
    return std::ranges::all_of(controls_, &FieldControl::commit);
}

bool GeneralConfigForm::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::Wheel:
            // Turning the wheel scrolls the form; a list under the pointer keeps its choice.
            event->ignore();
            return true;
        case QEvent::KeyPress:
            // A list takes the text behind Ctrl+S for the beginning of an entry; the key belongs to the
            // window.
            if (static_cast<QKeyEvent*>(event)->matches(QKeySequence::Save)) {
                event->ignore();
                return true;
            }
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            // The click that left a refused field must not act behind the box.
            if (swallowClick_) return true;
            break;
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace zentaq
