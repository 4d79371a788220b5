#include "windows/frm_general_config_form.h"

#include <QApplication>
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

#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/qt_text.h"
#include "unit/parameter_names.h"

namespace zentaq {

namespace {

constexpr qreal headingSize = 1.05;
/// Width of a box for a number, in digits.
constexpr int boxDigits = 7;
/// A list is never narrower than this many letters; its entries open to their full length.
constexpr int listLetters = 16;
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

/// "Maximum Engine Rev Limit (1000 to 20000)": as a screen reader says it.
QString spoken(const std::string& caption) {
    return qString(caption).remove(u'&').trimmed();
}

/// Reads as a remark, by day and by night.
QLabel* mutedLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QFont bold(QFont font, qreal factor = 1.0) {
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

/// Muted while the field can be used, and as pale as the field while it cannot.
void showUsable(QLabel& remark, bool usable) {
    remark.setEnabled(usable);
    remark.setForegroundRole(usable ? QPalette::PlaceholderText : QPalette::WindowText);
}

QHBoxLayout* plainRow(const QWidget& form) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(form.fontMetrics().height() / 2);
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
    constexpr std::size_t roomForAll = 32;
    controls_.reserve(roomForAll);  // rows keep a reference while they are made
    columns_ = new QBoxLayout(QBoxLayout::LeftToRight, this);
    const int gap = fontMetrics().height();
    columns_->setContentsMargins(gap, gap / 2, gap, gap / 2);
    columns_->setSpacing(gap * 3 / 2);
    Column left{makeColumn()};
    makeUnitGroup(left);
    makeSensorGroup(left);
    makeEngineGroup(left);
    left.grid->setRowStretch(left.row, 1);
    Column right{makeColumn()};
    makeInjectorGroup(right);
    right.grid->setRowStretch(right.row, 1);
    columns_->addLayout(left.grid, 1);
    columns_->addLayout(right.grid, 1);
    refresh();
    int widest = 0;
    for (const QLabel* label : wideCaptions_) widest = std::max(widest, label->sizeHint().width());
    for (QLabel* label : wideCaptions_) label->setMinimumWidth(widest);
}

GeneralConfigForm::~GeneralConfigForm() {
    // Children outlive this part of the object; their last events are no business of the form any more.
    for (const Control& control : controls_) {
        control.widget->removeEventFilter(this);
        control.widget->disconnect(this);
    }
}

void GeneralConfigForm::fitTo(int width) {
    const QMargins margins = columns_->contentsMargins();
    int wanted = margins.left() + margins.right() + columns_->spacing();
    for (int i = 0; i < columns_->count(); ++i) wanted += columns_->itemAt(i)->minimumSize().width();
    const auto direction = wanted <= width ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    if (direction == columns_->direction()) return;
    columns_->setDirection(direction);
    updateGeometry();  // what scrolls the form has taken its former height already
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
    auto* label = new QLabel(text, this);
    label->setObjectName(QLatin1String(name));
    label->setFont(bold(font(), headingSize));
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
    heading(column, "lblGroup1", tr("1   Unit and engine"));
    wideListRow(column, "cmbORB_UNIT");
    wideListRow(column, "cmbEngine");
    dimensionsRow(column);
}

void GeneralConfigForm::makeSensorGroup(Column& column) {
    heading(column, "lblGroup2", tr("2   MAP sensor and boost"));
    wideListRow(column, "cmbMAP");
    ratingRow(column);
    boxRow(column, "txtMaxBoost");
}

void GeneralConfigForm::makeEngineGroup(Column& column) {
    heading(column, "lblGroup3", tr("3   Engine figures"));
    boxRow(column, "txtRPM");
    boxRow(column, "txtBHP");
    listRow(column, "cmbCams");
    alcoholRow(column);
    boxRow(column, "txtTPS");
}

void GeneralConfigForm::makeInjectorGroup(Column& column) {
    heading(column, "lblGroup4", tr("4   Injectors"));
    boxRow(column, "txtINJ");
    peakRow(column);
    flowRow(column);
    boxRow(column, "txtPOT");
    boxRow(column, "txtMIT");
    boxRow(column, "txtUAP");
    boxRow(column, "txtTOG");
    computedRow(column);
}

GeneralConfigForm::Control& GeneralConfigForm::keep(const std::string& name, QWidget* widget) {
    widget->setObjectName(qString(name));
    widget->installEventFilter(this);
    controls_.push_back({.name = name, .widget = widget, .shown = {}});
    return controls_.back();
}

GeneralConfigForm::Control& GeneralConfigForm::box(const std::string& name) {
    auto* made = new EntryBox([this, name](const QString& text) { return hand(name, text); }, this);
    made->setFixedWidth(digitsWidth(made->fontMetrics(), boxDigits) + made->fontMetrics().height());
    connect(made, &EntryBox::clickRefused, this, [this] {
        swallowClick_ = true;
        QTimer::singleShot(0, this, [this] { swallowClick_ = false; });
    });
    return keep(name, made);
}

GeneralConfigForm::Control& GeneralConfigForm::list(const std::string& name) {
    auto* made = new QComboBox(this);
    made->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    made->setMinimumContentsLength(listLetters);
    connect(made, &QComboBox::activated, this, [this, name, made] { choose(name, *made); });
    return keep(name, made);
}

QLabel* GeneralConfigForm::caption(Control& control) {
    control.caption = new QLabel(this);
    control.caption->setObjectName(QStringLiteral("lblCaption_") + qString(control.name));
    control.caption->setBuddy(control.widget);
    return control.caption;
}

QLabel* GeneralConfigForm::ownLabel(Control& control, const char* name, const QString& text) {
    control.label = new QLabel(text, this);
    control.label->setObjectName(QLatin1String(name));
    control.label->setBuddy(control.widget);
    return control.label;
}

QLabel* GeneralConfigForm::limits(Control& control) {
    control.limits = mutedLabel(this);
    control.limits->setObjectName(QStringLiteral("lblLimits_") + qString(control.name));
    return control.limits;
}

void GeneralConfigForm::boxRow(Column& column, const std::string& name) {
    Control& control = box(name);
    column.grid->addWidget(caption(control), column.row, Column::captionPlace);
    column.grid->addWidget(control.widget, column.row, Column::controlPlace, Qt::AlignLeft);
    column.grid->addWidget(limits(control), column.row, Column::limitsPlace);
    ++column.row;
}

void GeneralConfigForm::listRow(Column& column, const std::string& name) {
    Control& control = list(name);
    column.grid->addWidget(caption(control), column.row, Column::captionPlace);
    column.grid->addWidget(control.widget, column.row, Column::controlPlace, 1, 2);
    ++column.row;
}

/// The names of engines and sensors are long: their lists begin right behind the captions.
void GeneralConfigForm::wideListRow(Column& column, const std::string& name) {
    Control& control = list(name);
    auto* row = plainRow(*this);
    row->addWidget(caption(control));
    row->addWidget(control.widget, 1);
    wideCaptions_.push_back(control.caption);
    column.grid->addLayout(row, column.row, 0, 1, Column::places);
    ++column.row;
}

/// Sensor and rating have the caption of the sensor in common; a label beside the box tells the two apart.
void GeneralConfigForm::ratingRow(Column& column) {
    auto* row = plainRow(*this);
    row->addWidget(makeManagerButton());
    row->addStretch(1);
    Control& control = box("txtMAP");
    row->addWidget(ownLabel(control, "lblRange", qString(nameOfParameter("MAP_BAR"))));
    column.grid->addLayout(row, column.row, Column::captionPlace);
    column.grid->addWidget(control.widget, column.row, Column::controlPlace, Qt::AlignLeft);
    column.grid->addWidget(limits(control), column.row, Column::limitsPlace);
    ++column.row;
}

QWidget* GeneralConfigForm::makeManagerButton() {
    cmdManager_ = new QPushButton(tr("MAP Sensor &Manager..."), this);
    cmdManager_->setObjectName(QStringLiteral("cmdMAPSensorManager"));
    cmdManager_->setAccessibleName(tr("MAP Sensor Manager"));
    cmdManager_->setProperty(helpKeyProperty, QStringLiteral("helpmapsel"));
    cmdManager_->setAutoDefault(false);
    connect(cmdManager_, &QPushButton::clicked, this, &GeneralConfigForm::sensorManagerAsked);
    return cmdManager_;
}

void GeneralConfigForm::dimensionsRow(Column& column) {
    lblDimensions_ = new QLabel(tr("Table Start Dimensions"), this);
    lblDimensions_->setObjectName(QStringLiteral("lblDimensions"));
    wideCaptions_.push_back(lblDimensions_);
    auto* row = plainRow(*this);
    row->addWidget(lblDimensions_);
    for (const char* name : {"cmbCols", "cmbRows"}) {
        Control& control = list(name);
        qobject_cast<QComboBox*>(control.widget)->setMinimumContentsLength(dimensionLetters);
        row->addWidget(caption(control));
        row->addWidget(control.widget);
        row->addSpacing(fontMetrics().height());
    }
    row->addStretch(1);
    column.grid->addLayout(row, column.row, 0, 1, Column::places);
    ++column.row;
}

void GeneralConfigForm::peakRow(Column& column) {
    auto* row = plainRow(*this);
    peak_ = new QButtonGroup(this);
    for (const std::string name : {"optInjAmp2", "optInjAmp4"}) {
        auto* option = new QRadioButton(this);
        peak_->addButton(option);
        connect(option, &QRadioButton::clicked, this, [this, name](bool on) { clicked(name, on); });
        row->addWidget(option);
        row->addSpacing(fontMetrics().height());
        keep(name, option);
    }
    row->addStretch(1);
    column.grid->addLayout(row, column.row, Column::controlPlace, 1, 2);
    ++column.row;
}

void GeneralConfigForm::alcoholRow(Column& column) {
    auto* check = new QCheckBox(this);
    connect(check, &QCheckBox::clicked, this, [this](bool on) { clicked("chkAlcohol", on); });
    keep("chkAlcohol", check);
    column.grid->addWidget(check, column.row, Column::controlPlace, 1, 2);
    ++column.row;
}

/// The caption of the flow is its unit and stands behind the box.
void GeneralConfigForm::flowRow(Column& column) {
    Control& control = box("txtLBHR");
    column.grid->addWidget(ownLabel(control, "lblInjectorSize", qString(nameOfParameter("INJ_FlowRate"))),
                           column.row, Column::captionPlace);
    column.grid->addWidget(control.widget, column.row, Column::controlPlace, Qt::AlignLeft);
    auto* row = plainRow(*this);
    row->addWidget(caption(control));
    row->addWidget(limits(control), 1);
    column.grid->addLayout(row, column.row, Column::limitsPlace);
    ++column.row;
}

void GeneralConfigForm::computedRow(Column& column) {
    lblComputed_ = new QLabel(tr("Zentaq Calculated TOG"), this);
    lblComputed_->setObjectName(QStringLiteral("lblComputed"));
    lblUAP_ = new ValueLabel(QStringLiteral("000.000"), this);
    lblUAP_->setObjectName(QStringLiteral("lblUAP"));
    lblUAP_->setAccessibleName(lblComputed_->text());
    lblUAP_->setProperty(helpKeyProperty, QStringLiteral("helptog"));
    lblUAP_->setFont(bold(font()));
    lblComputedUnit_ = mutedLabel(this);
    lblComputedUnit_->setText(tr("ms"));
    column.grid->addWidget(lblComputed_, column.row, Column::captionPlace);
    column.grid->setRowMinimumHeight(column.row, find("txtTOG")->widget->sizeHint().height());
    column.grid->addWidget(lblUAP_, column.row, Column::controlPlace);
    column.grid->addWidget(lblComputedUnit_, column.row, Column::limitsPlace);
    ++column.row;
}

// ---- Showing

void GeneralConfigForm::refresh() {
    for (Control& control : controls_) {
        control.shown = core_.field(control.name);
        show(control);
    }
    lblUAP_->showValue(core_.computed());
    lblDimensions_->setEnabled(find("cmbCols")->shown.enabled);
    const bool sized = find("txtLBHR")->shown.enabled;
    lblComputed_->setEnabled(sized);
    showUsable(*lblComputedUnit_, sized);
}

void GeneralConfigForm::show(Control& control) {
    const GeneralField& field = control.shown;
    const QString text = qString(field.text);
    if (control.caption != nullptr) {
        control.caption->setText(qString(field.caption));
        control.caption->setEnabled(field.enabled);
    }
    if (control.limits != nullptr) {
        control.limits->setText(qString(field.limits));
        showUsable(*control.limits, field.enabled);
    }
    if (auto* box = qobject_cast<EntryBox*>(control.widget)) box->showText(text);
    if (auto* list = qobject_cast<QComboBox*>(control.widget)) showList(*list, field);
    if (auto* button = qobject_cast<QAbstractButton*>(control.widget)) {
        button->setText(qString(field.caption));
        const bool group = peak_->buttons().contains(button);
        // A group whose options are all off is only possible while it is not exclusive.
        if (group) peak_->setExclusive(false);
        button->setChecked(field.on);
        if (group) peak_->setExclusive(true);
    }
    control.widget->setEnabled(field.enabled);
    QString name = spoken(field.caption);
    if (control.label != nullptr) {
        control.label->setEnabled(field.enabled);
        name = control.label->text() + QStringLiteral(", ") + name;
    }
    control.widget->setAccessibleName(name);
    control.widget->setAccessibleDescription(qString(field.limits));
    control.widget->setProperty(helpKeyProperty, qString(field.helpKey));
    showColours(control);
}

void GeneralConfigForm::showList(QComboBox& list, const GeneralField& field) {
    QStringList choices;
    for (const std::string& choice : field.choices) choices.append(shownString(choice));
    QStringList present;
    for (int i = 0; i < list.count(); ++i) present.append(list.itemText(i));
    if (choices != present) {
        list.clear();
        list.addItems(choices);
    }
    const QString text = shownString(field.text);
    const auto chosen = std::ranges::find(field.choices, field.text);
    const int index = chosen == field.choices.end() ? -1 : static_cast<int>(chosen - field.choices.begin());
    // A text that is none of the entries is shown all the same.
    const QString invitation = field.enabled ? tr("Choose...") : QString();
    list.setPlaceholderText(index < 0 && !text.isEmpty() ? text : invitation);
    list.setCurrentIndex(index);
    list.setToolTip(plainTip(text));
}

void GeneralConfigForm::showColours(Control& control) {
    QPalette palette;
    const LookColors colors = lookColors(appliedLook(*qApp));
    palette.setColor(QPalette::Disabled, QPalette::Base, colors.background);
    // By night the frame of an empty option or check box cannot be seen; its inside stands out instead.
    const bool option = qobject_cast<QAbstractButton*>(control.widget) != nullptr;
    if (option && appliedLook(*qApp) == DisplayMode::Night) palette.setColor(QPalette::Base, colors.border);
    if (onTheFly_ && control.shown.onTheFly && control.shown.enabled) {
        for (const auto role : {QPalette::Base, QPalette::Button}) palette.setColor(role, colors.highlight);
        for (const auto role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
            palette.setColor(role, colors.highlightText);
    }
    if (control.widget->palette() != palette) control.widget->setPalette(palette);
}

void GeneralConfigForm::highlight(bool onTheFly) {
    onTheFly_ = onTheFly;
    for (Control& control : controls_) showColours(control);
}

void GeneralConfigForm::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange && event->type() != QEvent::StyleChange) return;
    // Day and night have highlights of their own. The style has yet to do its part on every control.
    QTimer::singleShot(0, this, [this] { highlight(onTheFly_); });
}

QString GeneralConfigForm::missing() const {
    for (const Needed& need : needed) {
        const auto control = std::ranges::find(controls_, need.control, &Control::name);
        if (control->shown.enabled && control->shown.text.empty()) return tr(need.hint);
    }
    return {};
}

void GeneralConfigForm::focusFirst() {
    for (const Needed& need : needed) {
        const Control* control = find(std::string(need.control));
        if (!control->shown.enabled || !control->shown.text.empty()) continue;
        control->widget->setFocus();
        return;
    }
    const auto first = std::ranges::find_if(controls_, [](const Control& c) { return c.shown.enabled; });
    if (first != controls_.end()) first->widget->setFocus();
}

GeneralConfigForm::Control* GeneralConfigForm::find(const std::string& name) {
    return &*std::ranges::find(controls_, name, &Control::name);
}

std::vector<QWidget*> GeneralConfigForm::tabOrder() const {
    std::vector<QWidget*> order;
    for (const Control& control : controls_) {
        order.push_back(control.widget);
        if (control.name == "cmbMAP") order.push_back(cmdManager_);
    }
    return order;
}

// ---- Entries

bool GeneralConfigForm::hand(const std::string& name, const QString& text) {
    const QPointer<GeneralConfigForm> self(this);
    const bool taken = core_.enter(name, text);
    if (!self) return false;  // gone under the box of a refusal
    refresh();
    Q_EMIT entered();
    return taken;
}

void GeneralConfigForm::choose(const std::string& name, const QComboBox& list) {
    // By its place: a name may be shown otherwise than it is.
    const GeneralField& field = find(name)->shown;
    const int index = list.currentIndex();
    if (index < 0 || index >= std::ssize(field.choices)) return;
    const std::string text = field.choices[static_cast<std::size_t>(index)];
    if (text != field.text) hand(name, qString(text));
}

void GeneralConfigForm::clicked(const std::string& name, bool on) {
    const QPointer<GeneralConfigForm> self(this);
    core_.click(name, on);
    if (!self) return;
    refresh();
    Q_EMIT entered();
}

void GeneralConfigForm::bringBack() {
    for (const Control& control : controls_) {
        if (auto* box = qobject_cast<EntryBox*>(control.widget)) box->bringBack();
    }
}

bool GeneralConfigForm::commit() {
    for (const Control& control : controls_) {
        auto* box = qobject_cast<EntryBox*>(control.widget);
        if (box != nullptr && !box->commit()) return false;
    }
    return true;
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
