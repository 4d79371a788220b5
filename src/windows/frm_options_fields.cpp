#include "windows/frm_options_fields.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QSignalBlocker>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "app/data_points.h"
#include "base/number_text.h"
#include "base/settings_keys.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "windows/frm_config_link_panel.h"

namespace zentaq {

namespace {

constexpr int placeRole = Qt::UserRole;

/// Columns of the list of data points; wide enough names stand in full.
constexpr int listColumns = 4;
/// On a small screen the columns scroll, and are no shorter than this.
constexpr int leastRows = 5;

/// Asks for the room in which all its columns stand.
class PointList : public QListWidget {
 public:
    using QListWidget::QListWidget;
    QSize sizeHint() const override { return wanted; }
    QSize wanted;
};

int stripGap(const QWidget* widget) {
    return space(widget->fontMetrics(), Space::Tight);
}

QLabel* hintLabel(const char* name, const QString& text, QWidget* parent) {
    auto* label = named(new QLabel(text, parent), name);
    label->setTextFormat(Qt::PlainText);
    QSizePolicy policy = label->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    label->setSizePolicy(policy);
    return label;
}

/// These fill the width of a page.
bool fillsTheLine(FieldKind kind) {
    return kind == FieldKind::Port || kind == FieldKind::Slider;
}

bool bearsItsCaption(FieldKind kind) {
    return kind == FieldKind::Check || kind == FieldKind::Option || kind == FieldKind::Action;
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
        if (group == nullptr || row.help != helpKey) {
            group = makeGroup(row.help, area);
            column->addWidget(group, page == OptionPage::DataPoints ? 1 : 0);
        }
        helpKey = row.help;
        addRow(row, group);
        if (row.control == "txtLabelLights") addColourHint(group);
    }
    if (page != OptionPage::DataPoints) column->addStretch(1);
    alignCaptions(area);
    return area;
}

QWidget* OptionFields::makeGroup(std::string_view helpKey, QWidget* parent) {
    auto* group = new QGroupBox(parent);
    const auto row = std::ranges::find(optionGroups(), helpKey, &OptionGroupRow::help);
    if (row != optionGroups().end()) group->setTitle(qString(row->title));
    group->setProperty(helpKeyProperty, qString(helpKey));
    auto* column = new QVBoxLayout(group);
    column->setSpacing(0);
    return group;
}

void OptionFields::addColourHint(QWidget* group) {
    lblColorHint_ = hintLabel("lblColorHint", "Day mode keeps its colors: choose them in night mode.", group);
    lblColorHint_->setIndent(stripGap(group));
    group->layout()->addWidget(lblColorHint_);
}

void OptionFields::addRow(const OptionRow& row, QWidget* group) {
    auto* strip = new QWidget(group);
    FieldControl* field = makeField(row, strip);
    if (row.kind != FieldKind::List) addLine(row, strip, *field);
    strips_[qString(controlName(row))] = {&row, field, strip};
    group->layout()->addWidget(strip);
}

FieldControl* OptionFields::makeField(const OptionRow& row, QWidget* strip) {
    const Field field = options_.field(row);
    if (row.kind == FieldKind::Port) return new FieldControl(field, makePorts(strip), this);
    if (row.kind == FieldKind::List) return new FieldControl(field, makeList(row, strip), this);
    auto* made = new FieldControl(
        field, [this, &row](const std::string& text) { return enter(row, text); }, strip);
    const QString name = qString(row.control);
    if (row.kind == FieldKind::Action)
        connect(made, &FieldControl::pressed, this, &OptionFields::detectAsked);
    if (row.kind == FieldKind::Colour) {
        connect(made, &FieldControl::pressed, this, [this, name] { Q_EMIT colourAsked(name); });
    }
    if (row.kind == FieldKind::Option) {
        QButtonGroup*& group = groups_[row.control];
        if (group == nullptr) group = new QButtonGroup(this);
        made->join(*group);
    }
    return made;
}

void OptionFields::addLine(const OptionRow& row, QWidget* strip, FieldControl& field) {
    auto* line = new QHBoxLayout(strip);
    const int gap = stripGap(strip);
    line->setContentsMargins(gap, gap, gap, gap);
    if (!bearsItsCaption(row.kind)) {
        captions_.push_back(field.addCaption());
        line->addWidget(captions_.back());
    }
    line->addWidget(field.widget(), fillsTheLine(row.kind) ? 1 : 0);
    for (QWidget* beside : field.beside()) line->addWidget(beside);
    if (!fillsTheLine(row.kind)) line->addStretch(1);
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

QWidget* OptionFields::makePorts(QWidget* strip) {
    cmbCOMM_ = new PortCombo(ports_, strip);
    connect(cmbCOMM_, &QComboBox::activated, this,
            [this] { options_.choosePort(cmbCOMM_->selectedNumber(), cmbCOMM_->selectedIdentity()); });
    return cmbCOMM_;
}

QWidget* OptionFields::makeList(const OptionRow& row, QWidget* strip) {
    auto* list = new PointList(strip);
    viewList_ = list;
    auto* column = new QVBoxLayout(strip);
    column->setContentsMargins(0, 0, 0, 0);
    auto* prompt = new QLabel(qString(row.caption), strip);
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
    list->wanted = {listColumns * cell.width() + frame, rows * cell.height() + frame};
    viewList_->setMinimumSize(cell.width() + frame, leastRows * cell.height() + frame);
    connect(viewList_, &QListWidget::itemChanged, this, &OptionFields::itemChanged);
    lblViewCheck_ = hintLabel("lblViewCheck", {}, strip);
    lblViewCheck_->setAccessibleDescription("Number of selected values");
    lblViewHint_ = hintLabel("lblViewHint", "Only the first ten are graphed.", strip);
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

bool OptionFields::enter(const OptionRow& row, const std::string& text) {
    // Of a group the button that comes on tells which one it is.
    options_.change(row.control, row.kind == FieldKind::Option ? numberText(row.index) : text);
    showAll();
    return true;
}

void OptionFields::itemChanged(const QListWidgetItem* item) {
    options_.checkDataPoint(item->data(placeRole).toInt(), item->checkState() == Qt::Checked);
    showCount();
}

// ---- Showing

void OptionFields::showAll() {
    for (const auto& [name, strip] : strips_) strip.field->show(options_.field(*strip.row));
    showPort();
    showList();
    lblColorHint_->setVisible(!options_.coloursChoosable());
    showCount();
}

void OptionFields::showPort() {
    const int number = static_cast<int>(numberOf(options_.value("cmbCOMM")));
    const std::string& identity = options_.portIdentity();
    const bool other = !identity.empty() && cmbCOMM_->selectedIdentity() != identity;
    if (cmbCOMM_->count() != 0 && cmbCOMM_->selectedNumber() == number && !other) return;
    const QSignalBlocker quiet(cmbCOMM_);
    cmbCOMM_->fill(number, identity);
}

void OptionFields::showList() const {
    const QSignalBlocker quiet(viewList_);
    for (int i = 0; i < viewList_->count(); ++i) {
        QListWidgetItem* item = viewList_->item(i);
        const bool checked = options_.dataPoints().contains(item->data(placeRole).toInt());
        const Qt::CheckState state = checked ? Qt::Checked : Qt::Unchecked;
        if (item->checkState() != state) item->setCheckState(state);
    }
}

void OptionFields::showCount() const {
    const auto count = static_cast<int>(options_.dataPoints().size());
    lblViewCheck_->setText("Number of selected values: " + qString(numberText(count)));
    lblViewHint_->setVisible(count > settings::datalogSlots);
}

// ---- Finding

QWidget* OptionFields::control(const QString& name) const {
    const auto found = strips_.find(name);
    return found == strips_.end() ? nullptr : found->second.field->widget();
}

QWidget* OptionFields::strip(const QString& name) const {
    const auto found = strips_.find(name);
    return found == strips_.end() ? nullptr : found->second.strip;
}

const OptionRow* OptionFields::rowAt(const QWidget* widget) const {
    for (const auto& [name, strip] : strips_) {
        if (widget != nullptr && strip.strip->isAncestorOf(widget)) return strip.row;
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
