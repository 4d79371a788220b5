#include "windows/table_toolbar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <algorithm>
#include <utility>

#include "base/number_text.h"
#include "qt/help_key.h"
#include "qt/icons.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/wrap_layout.h"
#include "unit/axis_kinds.h"
#include "unit/parameter_names.h"
#include "windows/cell_box.h"

namespace zentaq {
namespace {

constexpr auto dockCaption = "Dock          ";
constexpr auto undockCaption = "Undock        ";
constexpr auto longestCaption = "longestCaption";
constexpr auto widestReading = "Table Adv";

/// Who keeps its caption longest where room is short.
constexpr std::array mostUsed{"Save",  "Cells",   "View",  "Overlay", "Home",
                              "Close", "Docking", "Print", "Manage"};

}  // namespace

TableToolbar::TableToolbar(QWidget* parent) : QWidget(parent) {
    named(this, "Toolbar1", "Table commands");
    auto* row = new WrapLayout(this);
    row->setContentsMargins(margins(fontMetrics(), Space::Tight, Space::Line));
    row->setSpacing(space(fontMetrics(), Space::Line));
    lblView_ = makeBadge("lblView", "What the cells show", viewBadges);
    lblCursor_ = makeBadge("lblCursor", "Whether the cursor follows the engine; Shift+O changes it",
                           std::array{followBadge, holdBadge});
}

// ---- Making

QLabel* TableToolbar::makeBadge(const char* name, const QString& meaning,
                                std::span<const std::string_view> texts) {
    QLabel* badge = plainLabel(name, meaning, this);
    badge->setFont(typeFont(Type::Badge));
    badge->setToolTip(plainTip(meaning));
    badge->setAlignment(Qt::AlignCenter);
    badge->setAutoFillBackground(true);
    badge->setMargin(space(fontMetrics(), Space::Tight));
    int widest = 0;
    for (const std::string_view text : texts) {
        widest = std::max(widest, badge->fontMetrics().horizontalAdvance(qString(text)));
    }
    badge->setFixedWidth(widest + 2 * space(fontMetrics(), Space::Tight) + 2);
    layout()->addWidget(badge);
    return badge;
}

QToolButton* TableToolbar::makeButton(const QString& name, const QString& iconName) {
    auto* button = named(new QToolButton(this), "Toolbar1_" + name, name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setIcon(icon(iconName));
    const int size = fontMetrics().height();
    button->setIconSize({size, size});
    buttons_.push_back(button);
    layout()->addWidget(button);
    return button;
}

QMenu* TableToolbar::menu(const char* name) {
    QMenu*& made = menus_[name];
    if (made != nullptr) return made;
    QToolButton* button = makeButton(name, name);
    button->setText(name);
    button->setPopupMode(QToolButton::InstantPopup);
    made = named(new QMenu(button), QStringLiteral("mnu") + name, name);
    button->setMenu(made);
    return made;
}

void TableToolbar::add(const Item& item, std::function<void(const QString& caption)> run,
                       const char* menuName) {
    auto* action = named(new QAction(item.caption, this), item.key);
    if (*item.icon != '\0') action->setIcon(icon(item.icon));
    action->setCheckable(item.checkable);
    if (*item.tip != '\0') action->setToolTip(item.tip);
    action->setEnabled(static_cast<bool>(run));
    if (menuName == nullptr) {
        makeButton(item.key, item.icon)->setDefaultAction(action);
    } else {
        menu(menuName)->addAction(action);
    }
    if (run) onTriggered(*action, std::move(run));
    actions_[item.key] = action;
}

void TableToolbar::addNamed(const QString& name, const QString& caption,
                            std::function<void(const QString& caption)> run, const char* menuName) {
    auto* action = named(new QAction(caption, this), name);
    menu(menuName)->addAction(action);
    onTriggered(*action, std::move(run));
    actions_[name] = action;
}

/// The caption as it is read: without its key and the mark of its letter.
void TableToolbar::onTriggered(QAction& action, std::function<void(const QString& caption)> run) {
    const QString shown = action.text().section(u'\t', 0, 0).remove(u'&');
    connect(&action, &QAction::triggered, this, [run = std::move(run), shown] { run(shown); });
}

QToolButton* TableToolbar::makeAxisButton(char axis, QWidget* parent) {
    const bool columns = axis == 'X';
    const QString name = columns ? "X" : "Y";
    auto* made = named(new QToolButton(parent), "Toolbar1_" + name,
                       columns ? "What the columns stand for" : "What the rows stand for");
    made->setFocusPolicy(Qt::TabFocus);
    made->setPopupMode(QToolButton::InstantPopup);
    made->setToolButtonStyle(Qt::ToolButtonTextOnly);
    made->setToolTip(columns ? "What the columns of this table stand for"
                             : "What the rows of this table stand for");
    auto* kinds = named(new QMenu(made), "mnuAxis" + name, made->accessibleName());
    QString longest;
    for (const AxisKind& kind : axisKinds()) {
        const QString kindName = qString(kind.name);
        QAction* entry = named(kinds->addAction(kindName), name + "_" + kindName);
        entry->setCheckable(true);
        connect(entry, &QAction::triggered, this, [this, entry] { Q_EMIT axisPicked(entry->objectName()); });
        const QString caption = name + ": " + kindName;
        const auto wide = [&](const QString& text) { return made->fontMetrics().horizontalAdvance(text); };
        if (wide(caption) > wide(longest)) longest = caption;
    }
    made->setMenu(kinds);
    made->setProperty(longestCaption, longest);
    return made;
}

QToolButton* TableToolbar::button(const QString& name) const {
    return findChild<QToolButton*>("Toolbar1_" + name, Qt::FindDirectChildrenOnly);
}

void TableToolbar::explain(const char* menuName, const QString& tip) {
    button(menuName)->setToolTip(plainTip(tip));
}

QLineEdit* TableToolbar::makeTimeField(const char* name, const char* member, const char* helpKey) {
    auto* field = new QLineEdit(this);
    const QString meaning = qString(nameOfParameter(member));
    named(field, name, meaning);
    field->setToolTip(meaning);
    field->setProperty(helpKeyProperty, QLatin1String(helpKey));
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(field->fontMetrics().averageCharWidth() * 8);
    field->setValidator(new TypingValidator(field));
    return field;
}

void TableToolbar::addFields() {
    auto* fields = new QWidget(this);
    fields_ = fields;
    auto* row = new QHBoxLayout(fields);
    row->setContentsMargins(margins(fontMetrics(), Space::Tight, Space::None));
    row->setSpacing(space(fontMetrics(), Space::Tight));
    const auto label = [&](const QString& name, const QString& text) {
        auto* made = named(new QLabel(text, fields), name);
        row->addWidget(made);
        return made;
    };
    timesOrAxes_ = new QStackedLayout;
    row->addLayout(timesOrAxes_);
    auto* times = new QWidget(fields);
    auto* timesRow = new QHBoxLayout(times);
    timesRow->setContentsMargins(0, 0, 0, 0);
    timesRow->setSpacing(space(fontMetrics(), Space::Tight));
    timesRow->addWidget(label("Label2", "x-axis"));
    lblAcross_ = label("lblAcross", {});
    timesRow->addWidget(lblAcross_);
    lblAcross_->setFont(typeFont(Type::Strong));
    lblTOG_ = label("lblTOG", "TOG:");
    txtTOG_ = makeTimeField("txtTOG", "scale1", "helptog");
    lblIOT_ = label("lblIOT", "IOT:");
    txtIOT_ = makeTimeField("txtIOT", "INJ_On", "helptiot");
    for (QWidget* field : std::initializer_list<QWidget*>{lblTOG_, txtTOG_, lblIOT_, txtIOT_})
        timesRow->addWidget(field);
    timesOrAxes_->addWidget(times);
    auto* axes = new QWidget(fields);
    auto* axesRow = new QHBoxLayout(axes);
    axesRow->setContentsMargins(0, 0, 0, 0);
    axesRow->setSpacing(space(fontMetrics(), Space::Tight));
    columnAxis_ = makeAxisButton('X', axes);
    rowAxis_ = makeAxisButton('Y', axes);
    axesRow->addWidget(columnAxis_);
    axesRow->addWidget(rowAxis_);
    timesOrAxes_->addWidget(axes);
    lblDspTable_ = label("lblDspTable", {});
    lblDspTableVal_ = label("lblDspTableVal", {});
    lblDspTableVal_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblDspTableVal_->setMinimumWidth(digitsWidth(lblDspTableVal_->fontMetrics(), 5));
    lblDspTableVal_->setFont(typeFont(Type::Strong));
    for (QWidget* field :
         std::initializer_list<QWidget*>{lblTOG_, txtTOG_, lblIOT_, txtIOT_, lblDspTable_, lblDspTableVal_}) {
        // What a table lacks keeps its place: the others stay where they are.
        QSizePolicy policy = field->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        field->setSizePolicy(policy);
    }
    lblDspTable_->setMinimumWidth(lblDspTable_->fontMetrics().horizontalAdvance(widestReading));
    layout()->addWidget(fields);
    for (const char* name : mostUsed) byUse_.push_back(button(name));
    fit();
}

// ---- Room

// Room for the longest kind from the first on: nothing moves when another one is chosen.
void TableToolbar::fitAxes() {
    for (QToolButton* button : {columnAxis_, rowAxis_}) {
        const QString shown = button->text();
        button->setMinimumWidth(0);
        button->setText(button->property(longestCaption).toString());
        const int wide = button->sizeHint().width();
        button->setText(shown);
        button->setMinimumWidth(wide);
    }
}

void TableToolbar::fit() {
    if (fields_ == nullptr) return;
    fitAxes();
    for (QToolButton* button : buttons_) button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    const auto* lines = static_cast<const WrapLayout*>(layout());
    const auto least = lines->lineCounts(width());
    for (QToolButton* button : byUse_) {
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        if (lines->lineCounts(width()) == least) continue;
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        break;
    }
    layout()->invalidate();
    updateGeometry();
}

void TableToolbar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) fit();
}

void TableToolbar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) fit();
}

// ---- Showing

void TableToolbar::setMode(DisplayMode mode) {
    mode_ = mode;
    if (lblDspTableVal_ != nullptr) {
        QPalette live = lblDspTableVal_->palette();
        live.setColor(QPalette::WindowText, lookColors(mode).live);
        lblDspTableVal_->setPalette(live);
    }
    const TableBadges shown = std::exchange(badges_, {});
    if (!shown.view.empty()) showBadges(shown);
}

void TableToolbar::showBadges(const TableBadges& badges) {
    if (badges == badges_) return;
    badges_ = badges;
    const LookColors look = lookColors(mode_);
    const auto show = [&](QLabel& badge, std::string_view text, bool plain) {
        badge.setText(qString(text));
        QPalette palette = badge.palette();
        palette.setColor(QPalette::Window, plain ? look.badge : look.warningBadge);
        palette.setColor(QPalette::WindowText, plain ? look.badgeText : look.warningBadgeText);
        badge.setPalette(palette);
    };
    show(*lblView_, badges.view, badges.asStored);
    show(*lblCursor_, badges.cursor, badges.follows);
}

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
    showAxes(items);
    action("CompareOpened")->setChecked(model.comparison().name() == "as opened");
    action("Difference")->setEnabled(model.comparison().on());
    action("Difference")->setChecked(view == TableView::Difference);
    action("CompareOff")->setEnabled(model.comparison().on());
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
    action("Docking")->setIcon(icon(docked ? "Undock" : "Dock"));
    showBadges(badgesOf(model));
    // An output table has its buttons in the same room.
    if (!items.axisButtons) lblAcross_->setText(qString(acrossOf(model.sheet())));
    lblDspTable_->setText(qString(items.displayCaption));
    lblDspTable_->setVisible(!items.displayCaption.empty());
    lblDspTableVal_->setVisible(!items.displayCaption.empty());
}

void TableToolbar::showAxes(const ToolbarItems& items) {
    timesOrAxes_->setCurrentIndex(items.axisButtons ? 1 : 0);
    const auto show = [](QToolButton& button, const std::string& caption) {
        button.setText(qString(caption));
        const QString kind = qString(caption).mid(3);
        for (QAction* entry : button.menu()->actions()) entry->setChecked(entry->text() == kind);
    };
    show(*columnAxis_, items.columnAxis);
    show(*rowAxis_, items.rowAxis);
}

void TableToolbar::showReading(const TableKind& table, const LiveValues& live) {
    lblDspTableVal_->setText(qString(formatNumber(static_cast<double>(live.*table.live), table.liveFormat)));
}

}  // namespace zentaq
