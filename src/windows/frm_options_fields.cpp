#include "windows/frm_options_fields.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "app/data_points.h"
#include "base/settings_keys.h"
#include "base/number_text.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/qt_text.h"
#include "windows/colour_swatch.h"
#include "windows/frm_config_link_panel.h"
#include "windows/frm_dashboard_colors.h"

namespace zentaq {

namespace {

constexpr auto captionProperty = "optionCaption";
constexpr int placeRole = Qt::UserRole;

/// Columns of the list of data points; wide enough names stand in full.
constexpr int listColumns = 4;

struct GroupTitle {
    std::string_view helpKey;
    const char* title;
};
constexpr std::array groupTitles{
    GroupTitle{"helpoptcomm", QT_TRANSLATE_NOOP("OptionFields", "Serial link")},
    GroupTitle{"helpoptstart", QT_TRANSLATE_NOOP("OptionFields", "Start of the program")},
    GroupTitle{"helpoptlog", QT_TRANSLATE_NOOP("OptionFields", "System log")},
    GroupTitle{"helpopttemp", QT_TRANSLATE_NOOP("OptionFields", "Unit of temperatures")},
    GroupTitle{"helpoptalarm", QT_TRANSLATE_NOOP("OptionFields", "Temperature alarms")},
    GroupTitle{"helpopttable", QT_TRANSLATE_NOOP("OptionFields", "Tables and graphs")},
    GroupTitle{"helpoptmonitor", QT_TRANSLATE_NOOP("OptionFields", "Monitoring")},
    GroupTitle{"helpoptdash", QT_TRANSLATE_NOOP("OptionFields", "Dashboard")},
    GroupTitle{"helpoptcolor", QT_TRANSLATE_NOOP("OptionFields", "Dashboard colors")},
    GroupTitle{"helpoptdatalog", QT_TRANSLATE_NOOP("OptionFields", "Flight recorder")},
    GroupTitle{"helpoptprint", QT_TRANSLATE_NOOP("OptionFields", "The toolbar's print button")},
};

/// The caption with '&' before its access key.
QString withAccessKey(const OptionRow& row) {
    QString text = qString(row.caption);
    const qsizetype at = text.indexOf(QLatin1Char(row.access));
    return at < 0 ? text : text.insert(at, u'&');
}

QString nameOf(const OptionRow& row) {
    return QString::fromStdString(controlName(row));
}

QHBoxLayout* lineOf(QWidget* strip) {
    auto* line = new QHBoxLayout(strip);
    const int gap = strip->fontMetrics().height() / 5;
    line->setContentsMargins(gap, gap, gap, gap);
    return line;
}

QLabel* addLabel(const char* name, QWidget* strip) {
    auto* label = new QLabel(strip);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    return label;
}

void keepPlace(QWidget* widget) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

}  // namespace

OptionFields::OptionFields(Options& options, std::function<std::vector<PortInfo>()> ports, QWidget* parent)
    : QObject(parent), options_(options), ports_(std::move(ports)) {}

// ---- Making

QWidget* OptionFields::makePage(OptionPage page, QWidget* parent) {
    auto* area = new QWidget(parent);
    auto* column = new QVBoxLayout(area);
    QWidget* group = nullptr;
    std::string_view helpKey;
    for (const OptionRow& row : optionTable()) {
        if (row.page != page) continue;
        if (group == nullptr || row.helpKey != helpKey) {
            group = makeGroup(row.helpKey, area);
            column->addWidget(group, page == OptionPage::DataPoints ? 1 : 0);
        }
        helpKey = row.helpKey;
        addRow(row, group);
        if (row.control == "txtLabelLights") {
            lblColorHint_ = addLabel("lblColorHint", group);
            lblColorHint_->setText(tr("Day mode keeps its colors: choose them in night mode."));
            lblColorHint_->setIndent(group->fontMetrics().height() / 5);
            keepPlace(lblColorHint_);
            group->layout()->addWidget(lblColorHint_);
        }
    }
    if (page != OptionPage::DataPoints) column->addStretch(1);
    alignCaptions(area);
    return area;
}

QWidget* OptionFields::makeGroup(std::string_view helpKey, QWidget* parent) {
    auto* group = new QGroupBox(parent);
    for (const GroupTitle& row : groupTitles) {
        if (row.helpKey == helpKey) group->setTitle(tr(row.title));
    }
    group->setProperty(helpKeyProperty, qString(helpKey));
    auto* column = new QVBoxLayout(group);
    column->setSpacing(0);
    return group;
}

void OptionFields::addRow(const OptionRow& row, QWidget* group) {
    auto* strip = new QWidget(group);
    QWidget* control = makeControl(row, strip);
    control->setObjectName(nameOf(row));
    control->setAccessibleName(qString(row.caption));
    control->setAccessibleDescription(qString(row.help));
    control->setToolTip(qString(row.help));
    fields_[nameOf(row)] = {&row, control, strip};
    group->layout()->addWidget(strip);
}

QWidget* OptionFields::makeControl(const OptionRow& row, QWidget* strip) {
    switch (row.kind) {
        case OptionKind::Port:
            return row.key.empty() ? makeDetectButton(row, strip) : makePorts(row, strip);
        case OptionKind::Choice:
            return makeChoice(row, strip);
        case OptionKind::Number:
        case OptionKind::Temperature:
            return makeText(row, strip);
        case OptionKind::Colour:
            return makeColour(row, strip);
        case OptionKind::Slider:
            return makeSlider(row, strip);
        case OptionKind::DataPoints:
            return makeList(row, strip);
        case OptionKind::Check:
            break;
    }
    return makeCheck(row, strip);
}

QLabel* OptionFields::addCaption(const OptionRow& row, QWidget* strip, QWidget* buddy) {
    auto* caption = new QLabel(withAccessKey(row), strip);
    caption->setProperty(captionProperty, true);
    caption->setBuddy(buddy);
    strip->layout()->addWidget(caption);
    captions_.push_back(caption);
    return caption;
}

/// The fields of a page begin below each other.
void OptionFields::alignCaptions(const QWidget* page) const {
    int widest = 0;
    for (const QLabel* caption : captions_) {
        if (page->isAncestorOf(caption)) widest = std::max(widest, caption->sizeHint().width());
    }
    for (QLabel* caption : captions_) {
        if (page->isAncestorOf(caption)) caption->setMinimumWidth(widest);
    }
}

QWidget* OptionFields::makePorts(const OptionRow& row, QWidget* strip) {
    auto* ports = new PortCombo(ports_, strip);
    QHBoxLayout* line = lineOf(strip);
    addCaption(row, strip, ports);
    line->addWidget(ports, 1);
    connect(ports, &QComboBox::activated, this,
            [this, ports] { options_.choosePort(ports->selectedNumber(), ports->selectedIdentity()); });
    return ports;
}

QWidget* OptionFields::makeDetectButton(const OptionRow& row, QWidget* strip) {
    auto* button = new QPushButton(withAccessKey(row), strip);
    QHBoxLayout* line = lineOf(strip);
    line->addWidget(button);
    line->addStretch(1);
    button->setAutoDefault(false);
    button->setMinimumWidth(button->sizeHint().width() + 2 * button->fontMetrics().height());
    connect(button, &QPushButton::clicked, this, &OptionFields::detectAsked);
    return button;
}

QWidget* OptionFields::makeCheck(const OptionRow& row, QWidget* strip) {
    auto* box = new QCheckBox(withAccessKey(row), strip);
    QHBoxLayout* line = lineOf(strip);
    line->addWidget(box);
    line->addStretch(1);
    connect(box, &QCheckBox::clicked, this,
            [this, &row](bool on) { change(row, on ? QStringLiteral("1") : QStringLiteral("0")); });
    return box;
}

QWidget* OptionFields::makeChoice(const OptionRow& row, QWidget* strip) {
    auto* button = new QRadioButton(withAccessKey(row), strip);
    QHBoxLayout* line = lineOf(strip);
    line->addWidget(button);
    line->addStretch(1);
    QButtonGroup*& group = groups_[row.control];
    if (group == nullptr) group = new QButtonGroup(this);
    group->addButton(button, row.index);
    connect(button, &QRadioButton::clicked, this,
            [this, &row] { change(row, QString::fromStdString(numberText(row.index))); });
    return button;
}

QWidget* OptionFields::makeText(const OptionRow& row, QWidget* strip) {
    auto* text = new QLineEdit(strip);
    QHBoxLayout* line = lineOf(strip);
    addCaption(row, strip, text);
    constexpr int digits = 12;
    text->setFixedWidth(digitsWidth(text->fontMetrics(), digits));
    line->addWidget(text);
    if (row.kind == OptionKind::Temperature) addUnit(row, strip);
    line->addStretch(1);
    connect(text, &QLineEdit::textEdited, this, [this, &row](const QString& value) { change(row, value); });
    return text;
}

void OptionFields::addUnit(const OptionRow& row, QWidget* strip) {
    const bool coolant = row.control == "txtCLTvalue";
    QLabel*& unit = coolant ? lblCLTunits_ : lblMATunits_;
    unit = addLabel(coolant ? "lblCLTunits" : "lblMATunits", strip);
    unit->setAccessibleName(tr("Unit of the alarm"));
    strip->layout()->addWidget(unit);
}

QWidget* OptionFields::makeColour(const OptionRow& row, QWidget* strip) {
    QWidget* text = makeText(row, strip);
    auto* line = static_cast<QHBoxLayout*>(strip->layout());
    auto* swatch = new ColourSwatch(strip);
    swatch->setObjectName(QStringLiteral("sw") + qString(row.control));
    swatch->setAccessibleName(qString(row.caption));
    auto* choose = new QPushButton(tr("Choose"), strip);
    // "cmdChoose", "cmdChoose2", "cmdChoose3"
    const int number = ++colourButtons_;
    choose->setObjectName(QStringLiteral("cmdChoose") +
                          (number == 1 ? QString() : QString::fromStdString(numberText(number))));
    choose->setAccessibleName(tr("Choose: ") + qString(row.caption));
    choose->setToolTip(tr("Opens the color dialog"));
    choose->setAutoDefault(false);
    line->insertWidget(line->count() - 1, swatch);
    line->insertWidget(line->count() - 1, choose);
    connect(choose, &QPushButton::clicked, this, [this, &row] { Q_EMIT colourAsked(nameOf(row)); });
    return text;
}

QWidget* OptionFields::makeSlider(const OptionRow& row, QWidget* strip) {
    auto* slider = new QSlider(Qt::Horizontal, strip);
    QHBoxLayout* line = lineOf(strip);
    addCaption(row, strip, slider);
    slider->setRange(slowestUpdateRate, fastestUpdateRate);
    slider->setPageStep(10);
    line->addWidget(slider, 1);
    lblADUR_ = addLabel("lblADUR", strip);
    lblADUR_->setAccessibleName(tr("Updates a second"));
    lblADUR_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblADUR_->setMinimumWidth(digitsWidth(lblADUR_->fontMetrics(), 3));
    line->addWidget(lblADUR_);
    line->addWidget(new QLabel(tr("updates a second"), strip));
    connect(slider, &QSlider::valueChanged, this,
            [this, &row](int value) { change(row, QString::fromStdString(numberText(value))); });
    return slider;
}

QWidget* OptionFields::makeList(const OptionRow& row, QWidget* strip) {
    viewList_ = new QListWidget(strip);
    auto* column = new QVBoxLayout(strip);
    column->setContentsMargins(0, 0, 0, 0);
    auto* prompt = new QLabel(withAccessKey(row), strip);
    prompt->setBuddy(viewList_);
    viewList_->setFlow(QListView::TopToBottom);
    viewList_->setWrapping(true);
    viewList_->setResizeMode(QListView::Adjust);
    int place = 0;
    for (const std::string_view name : dataPointNames()) {
        auto* item = new QListWidgetItem(qString(name), viewList_);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
        item->setData(placeRole, ++place);
    }
    viewList_->setCurrentRow(0);
    // Every name in full, column after column; a grid keeps the columns below each other.
    const int rows = (dataPointCount + listColumns - 1) / listColumns;
    const QSize cell(viewList_->sizeHintForColumn(0), viewList_->sizeHintForRow(0) * 6 / 5);
    viewList_->setGridSize(cell);
    // Room for the scroll bar also while there is none, which the list sets aside before it breaks a column.
    const int bar = viewList_->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, viewList_);
    const int frame = 2 * viewList_->frameWidth() + bar;
    viewList_->setMinimumSize(listColumns * cell.width() + frame, rows * cell.height() + frame);
    connect(viewList_, &QListWidget::itemChanged, this, &OptionFields::itemChanged);
    lblViewCheck_ = addLabel("lblViewCheck", strip);
    lblViewCheck_->setAccessibleName(tr("Number of selected values"));
    lblViewHint_ = addLabel("lblViewHint", strip);
    lblViewHint_->setText(tr("Only the first ten are graphed."));
    keepPlace(lblViewHint_);
    auto* counts = new QHBoxLayout;
    counts->addWidget(lblViewCheck_);
    counts->addSpacing(strip->fontMetrics().height());
    counts->addWidget(lblViewHint_);
    counts->addStretch(1);
    column->addWidget(prompt);
    column->addWidget(viewList_, 1);
    column->addLayout(counts);
    return viewList_;
}

// ---- The user's entries

void OptionFields::change(const OptionRow& row, const QString& value) {
    options_.change(row.control, value.toStdString());
    showAll();
}

void OptionFields::itemChanged(const QListWidgetItem* item) {
    options_.checkDataPoint(item->data(placeRole).toInt(), item->checkState() == Qt::Checked);
    showCount();
}

// ---- Showing

void OptionFields::showAll() {
    for (const auto& [name, field] : fields_) show(field);
    const QString unit = QString::fromStdString(options_.temperatureUnit());
    lblCLTunits_->setText(unit);
    lblMATunits_->setText(unit);
    lblADUR_->setText(QString::fromStdString(options_.value("sldDashAdjust")));
    showColours();
    showCount();
}

void OptionFields::show(const Field& field) {
    const QSignalBlocker quiet(field.control);
    const std::string& value = options_.value(field.row->control);
    if (auto* ports = qobject_cast<PortCombo*>(field.control)) {
        const int number = static_cast<int>(numberOf(value));
        const std::string& identity = options_.portIdentity();
        const bool other = !identity.empty() && ports->selectedIdentity() != identity;
        if (ports->count() == 0 || ports->selectedNumber() != number || other) ports->fill(number, identity);
    } else if (auto* button = qobject_cast<QRadioButton*>(field.control)) {
        if (value == numberText(field.row->index)) button->setChecked(true);
    } else if (auto* box = qobject_cast<QCheckBox*>(field.control)) {
        box->setChecked(value == "1");
    } else if (auto* text = qobject_cast<QLineEdit*>(field.control)) {
        const QString shown = QString::fromStdString(value);
        if (text->text() != shown) text->setText(shown);
    } else if (auto* slider = qobject_cast<QSlider*>(field.control)) {
        slider->setValue(static_cast<int>(numberOf(value)));
    } else if (auto* list = qobject_cast<QListWidget*>(field.control)) {
        showList(*list);
    }
}

void OptionFields::showColours() {
    const bool choosable = options_.coloursChoosable();
    for (const auto& [name, field] : fields_) {
        if (field.row->kind != OptionKind::Colour) continue;
        field.control->setEnabled(choosable);
        for (auto* choose : field.strip->findChildren<QPushButton*>()) choose->setEnabled(choosable);
        const QString text = QString::fromStdString(options_.value(field.row->control));
        for (auto* swatch : field.strip->findChildren<ColourSwatch*>()) swatch->setColour(storedColor(text));
    }
    lblColorHint_->setVisible(!choosable);
}

void OptionFields::showList(QListWidget& list) const {
    for (int i = 0; i < list.count(); ++i) {
        QListWidgetItem* item = list.item(i);
        const bool checked = options_.dataPoints().contains(item->data(placeRole).toInt());
        const Qt::CheckState state = checked ? Qt::Checked : Qt::Unchecked;
        if (item->checkState() != state) item->setCheckState(state);
    }
}

void OptionFields::showCount() const {
    const auto count = static_cast<int>(options_.dataPoints().size());
    lblViewCheck_->setText(tr("Number of selected values: ") + QString::fromStdString(numberText(count)));
    lblViewHint_->setVisible(count > settings::datalogSlots);
}

// ---- Finding

QWidget* OptionFields::control(const QString& name) const {
    const auto found = fields_.find(name);
    return found == fields_.end() ? nullptr : found->second.control;
}

QWidget* OptionFields::strip(const QString& name) const {
    const auto found = fields_.find(name);
    return found == fields_.end() ? nullptr : found->second.strip;
}

const OptionRow* OptionFields::rowAt(const QWidget* widget) const {
    for (const auto& [name, field] : fields_) {
        if (widget != nullptr && field.strip->isAncestorOf(widget)) return field.row;
    }
    return nullptr;
}

void OptionFields::showDataPoint(const QString& text) {
    for (int i = 0; i < viewList_->count(); ++i) {
        if (!viewList_->item(i)->text().contains(text.trimmed(), Qt::CaseInsensitive)) continue;
        viewList_->setCurrentRow(i);
        viewList_->scrollToItem(viewList_->item(i));
        return;
    }
}

}  // namespace zentaq
