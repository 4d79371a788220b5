#include "windows/table_toolbar.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "base/number_text.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "unit/parameter_names.h"
#include "windows/cell_box.h"

namespace zentaq {
namespace {

constexpr auto dockCaption = "Dock          ";
constexpr auto undockCaption = "Undock        ";

}  // namespace

TableToolbar::TableToolbar(QWidget* parent) : QToolBar("Table commands", parent) {
    setObjectName("Toolbar1");
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    lblTitle_ = named(new QLabel(this), "lblTitle");
    QFont bold = lblTitle_->font();
    bold.setBold(true);
    lblTitle_->setFont(bold);
    lblTitle_->setContentsMargins(margins(fontMetrics(), Space::Normal, Space::None));
    addWidget(lblTitle_);
}

// ---- Making

QMenu* TableToolbar::menu(const char* name) {
    QMenu*& made = menus_[name];
    if (made != nullptr) return made;
    auto* button = named(new QToolButton(this), name);
    button->setText(name);
    button->setPopupMode(QToolButton::InstantPopup);
    made = new QMenu(button);
    button->setMenu(made);
    addWidget(button);
    return made;
}

void TableToolbar::add(const Item& item, std::function<void(const QString& caption)> run,
                       const char* menuName) {
    const QString caption = item.caption;
    QAction* action = menuName == nullptr ? addAction(caption) : menu(menuName)->addAction(caption);
    action->setObjectName(item.key);
    action->setCheckable(item.checkable);
    if (*item.tip != '\0') action->setToolTip(item.tip);
    action->setEnabled(static_cast<bool>(run));
    if (run) connect(action, &QAction::triggered, this, [run = std::move(run), caption] { run(caption); });
    actions_[item.key] = action;
}

QLineEdit* TableToolbar::makeTimeField(const char* name, const char* member, const char* helpKey) {
    auto* field = new QLineEdit(this);
    const QString meaning = qString(nameOfParameter(member));
    named(field, name, meaning);
    field->setToolTip(meaning);
    field->setProperty(helpKeyProperty, QLatin1String(helpKey));
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(field->fontMetrics().averageCharWidth() * 9);
    field->setValidator(new TypingValidator(field));
    return field;
}

void TableToolbar::addFields() {
    auto* fields = new QWidget(this);
    auto* row = new QHBoxLayout(fields);
    row->setContentsMargins(margins(fontMetrics(), Space::Normal, Space::None));
    const auto label = [&](const QString& name, const QString& text) {
        auto* made = named(new QLabel(text, fields), name);
        row->addWidget(made);
        return made;
    };
    lblTOG_ = label("lblTOG", "TOG:");
    txtTOG_ = makeTimeField("txtTOG", "scale1", "helptog");
    row->addWidget(txtTOG_);
    lblIOT_ = label("lblIOT", "IOT:");
    txtIOT_ = makeTimeField("txtIOT", "INJ_On", "helptiot");
    row->addWidget(txtIOT_);
    lblDspTable_ = label("lblDspTable", {});
    lblDspTableVal_ = label("lblDspTableVal", {});
    lblDspTableVal_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblDspTableVal_->setMinimumWidth(digitsWidth(lblDspTableVal_->fontMetrics(), 5));
    row->addStretch(1);
    fields->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(fields);
}

// ---- Showing

void TableToolbar::showItems(TableModel& model, bool docked) {
    const ToolbarItems items = model.toolbarItems();
    const TableView view = model.estimates().view();
    const TableColour colours = model.overlay().colourMode();
    for (const auto* key : {"Colors", "ColorsNorm", "ColorsAFR", "ColorsPersist", "ColorsWhiteOut"}) {
        action(key)->setEnabled(items.onFlyItems);
    }
    for (const auto* key : {"Pulsewidth", "DutyCycle"}) action(key)->setVisible(items.fuelViews);
    for (QWidget* field : std::initializer_list<QWidget*>{lblTOG_, txtTOG_, lblIOT_, txtIOT_}) {
        field->setVisible(items.fuelViews);
    }
    action("Colors")->setText(qString(items.overlayItem));
    action("Absolute")->setVisible(model.sheet().kind().absolute.has_value());
    action("Absolute")->setChecked(model.sheet().absoluteVe());
    action("Pulsewidth")->setChecked(view == TableView::PulseWidth);
    action("DutyCycle")->setChecked(view == TableView::DutyCycle);
    action("Invert")->setChecked(model.sheet().inverted());
    action("Invert")->setEnabled(!items.axisButtons);
    action("ColorsNorm")->setChecked(colours == TableColour::Normal);
    action("ColorsAFR")->setChecked(colours == TableColour::Afr);
    action("Docking")->setText(docked ? undockCaption : dockCaption);
    lblDspTable_->setText(qString(items.displayCaption));
    lblDspTable_->setVisible(!items.displayCaption.empty());
    lblDspTableVal_->setVisible(!items.displayCaption.empty());
}

void TableToolbar::showReading(const TableKind& table, const LiveValues& live) {
    lblDspTableVal_->setText(qString(formatNumber(static_cast<double>(live.*table.live), table.liveFormat)));
}

}  // namespace zentaq
