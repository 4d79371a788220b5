#include "windows/frm_config.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QShortcut>
#include <QTabBar>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <utility>

#include "app/overview.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "config/field_finder.h"
#include "config/tree.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "unit/table_kinds.h"
#include "windows/table_view.h"
#include "windows/window_registry.h"

namespace zentaq {

namespace {

constexpr int keyRole = Qt::UserRole;
constexpr int helpRole = Qt::UserRole + 1;
constexpr int startTab = 0;
constexpr int pageTab = 1;
constexpr int treeLetters = 24;
constexpr int mostTree = 30;     ///< percent of the width, for the tree
constexpr int rowsInSight = 16;  ///< of a table, whatever else there is
constexpr int leastInSight = 8;  ///< so many before the dashboard gives way
constexpr int barLines = 2;      ///< of text: the height of a table's tool bar

/// At which no name is cut, with the bar that scrolls them.
int widthOfNames(QTreeWidget& tree) {
    const QFontMetrics metrics = tree.fontMetrics();
    int widest = 0;
    for (QTreeWidgetItemIterator at(&tree); *at != nullptr; ++at) {
        int indents = 1;
        for (const QTreeWidgetItem* item = *at; item != nullptr; item = item->parent()) ++indents;
        widest = std::max(widest, metrics.horizontalAdvance((*at)->text(0)) + indents * tree.indentation());
    }
    return widest + tree.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

QLabel* textLabel(const char* name, QWidget* parent) {
    QLabel* label = plainLines(name, {}, parent);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

}  // namespace

FrmConfig::FrmConfig(Session& session, MainCommands& commands, QWidget* parent)
    : QWidget(parent), Form(this), session_(session), commands_(commands) {
    named(this, qString(window::config), "Configuration");

    treeZentaq_ = named(new QTreeWidget(this), "treeZentaq", "Configuration tree");
    treeZentaq_->setHeaderHidden(true);
    treeZentaq_->setUniformRowHeights(true);
    // A name that has no room is scrolled to, and not cut.
    treeZentaq_->setTextElideMode(Qt::ElideNone);
    treeZentaq_->header()->setStretchLastSection(false);
    treeZentaq_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(treeZentaq_, &QTreeWidget::itemClicked, this, &FrmConfig::treeClicked);
    connect(treeZentaq_, &QTreeWidget::itemActivated, this, &FrmConfig::treeClicked);

    sstMenu_ = named(new QTabWidget(this), "sstMenu", "Pages");
    sstMenu_->setDocumentMode(true);
    sstMenu_->addTab(makeStartTab(), "Start");
    sstMenu_->addTab(makePageTab(), "Calibration");
    recorderPage_ = new RecorderPage(session, this);
    recorderArea_ = named(new PageArea(this), "scrFlightRecorder");
    recorderArea_->setPage(recorderPage_);
    // A short word: at a large scale all tabs of a laptop's screen stand beside each other.
    sstMenu_->setTabToolTip(sstMenu_->addTab(recorderArea_, "Logs"), "Flight Recorder (Ctrl+5)");

    sstMenu_->setCornerWidget(makeFoldTree(), Qt::TopLeftCorner);

    splTree_ = new KeptSplitter(
        Qt::Horizontal, "splTree", session.settings(),
        [this](int length) {
            const int least = fontMetrics().averageCharWidth() * treeLetters;
            const int tree = std::min(std::max(widthOfNames(*treeZentaq_), least), length * mostTree / 100);
            return QList<int>{tree, length - tree};
        },
        this);
    splTree_->addWidget(treeZentaq_);
    splTree_->addWidget(sstMenu_);
    setTabOrder(treeZentaq_, cmdFoldTree_);
    setTabOrder(cmdFoldTree_, sstMenu_);

    makeBottom();
    // The consoles begin as low as the link panel allows; the rest belongs to the pages and tables.
    splConsole_ = new KeptSplitter(
        Qt::Vertical, "splConsole", session.settings(),
        [this](int length) {
            const int below = bottom_->openHeight();
            return QList<int>{std::max(1, length - below), below};
        },
        this);
    splConsole_->addWidget(splTree_);
    splConsole_->addWidget(bottom_);
    connect(bottom_, &ConfigBottom::foldChanged, this, [this] {
        splConsole_->handle(1)->setEnabled(!bottom_->folded());
        splConsole_->shareOut();
    });
    splConsole_->handle(1)->setEnabled(!bottom_->folded());
    foldTree();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splConsole_);
    dock_ = std::make_unique<Dock>(*sstMenu_, session.settings());
    selectStartTab();
}

QWidget* FrmConfig::makeStartTab() {
    startPage_ = new StartPage(this);
    connect(startPage_, &StartPage::entryAsked, this, &FrmConfig::entryAsked);
    connect(startPage_, &StartPage::fileAsked, this, [this](const std::string& path) {
        commands_.files.open(path);
        showStartPage();
    });
    showStartPage();
    return startPage_;
}

void FrmConfig::showStartPage() {
    startPage_->showInHand(session_.CurrentFile, session_.slotInHand() != 0);
    startPage_->showFiles(session_.recentFiles.paths(), sampleFiles(session_.applicationFolder()));
}

QWidget* FrmConfig::makePageTab() {
    auto* tab = new QWidget(this);
    auto* layout = new QVBoxLayout(tab);
    const int gap = space(fontMetrics(), Space::Tight);
    layout->setContentsMargins(gap, gap, gap, gap);
    lblPageTitle_ = textLabel("lblPageTitle", tab);
    lblPageTitle_->setFont(typeFont(Type::Heading));
    pageStack_ = new QStackedWidget(tab);
    pageView_ = new PageView(pageStack_);
    connect(pageView_, &PageView::memberAsked, this, &FrmConfig::goToMember);
    pageForm_ = new PageForm(session_, pageStack_);
    pageStack_->addWidget(pageView_);
    pageStack_->addWidget(pageForm_);
    finder_ = new FindBox(
        {.box = "txtFindField",
         .list = "lstFoundFields",
         .caption = "F&ind a field:",
         .meaning = "Find a field of any page",
         .placeholder = "Ctrl+F",
         .hits = "Fields found",
         .nothing = "No field found"},
        [this](const QString& query) { return foundFields(query); }, tab);
    connect(finder_, &FindBox::chosen, this, &FrmConfig::goToField);
    auto* find = new QShortcut(QKeySequence::Find, this);
    find->setContext(Qt::WidgetWithChildrenShortcut);
    connect(find, &QShortcut::activated, this, [this] {
        if (sstMenu_->currentWidget() == recorderArea_) return recorderPage_->find();
        if (session_.slotInHand() == 0) return;
        sstMenu_->setCurrentIndex(pageTab);
        finder_->line().setFocus();
        finder_->line().selectAll();
    });
    auto* head = new QHBoxLayout;
    head->addWidget(lblPageTitle_, 1);
    head->addWidget(finder_, 1);
    layout->addLayout(head);
    setTabOrder(&finder_->line(), pageView_);
    setTabOrder(pageView_, pageForm_);
    layout->addWidget(pageStack_, 1);
    return tab;
}

QWidget* FrmConfig::makeFoldTree() {
    cmdFoldTree_ = named(new QToolButton(this), "cmdFoldTree");
    cmdFoldTree_->setAutoRaise(true);
    cmdFoldTree_->setFocusPolicy(Qt::TabFocus);
    connect(cmdFoldTree_, &QToolButton::clicked, this, [this] { commands_.toggleTree(); });
    return cmdFoldTree_;
}

void FrmConfig::makeBottom() {
    bottom_ = new ConfigBottom(session_, commands_, this);
    refreshPorts();
    connect(&bottom_->link(), &LinkPanel::autoDetectAsked, this, &FrmConfig::autoDetect);
    connect(&bottom_->link(), &LinkPanel::portChosen, this, &FrmConfig::choosePort);
}

// ---- Folding

void FrmConfig::measureRoom() {
    const int bar = sstMenu_->tabBar()->sizeHint().height() + barLines * fontMetrics().height();
    const int table = bar + TableGridView::leastHeight(rowsInSight) + splConsole_->handleWidth();
    bottom_->roomShort(height() < table + bottom_->openHeight());
    measureDashboard(bar);
}

// By the places that all have while nothing is folded: what folds changes nothing of it.
void FrmConfig::measureDashboard(int bar) {
    const auto* around = qobject_cast<const KeptSplitter*>(parentWidget());
    if (around == nullptr || around->count() < 2) return;
    // Beside the rows: a second line of the table's bar, the bar that scrolls sideways, the folded messages.
    const int lines = 5 * fontMetrics().height();
    const int least = bar + TableGridView::leastHeight(leastInSight) + lines + splConsole_->handleWidth();
    Fold& dashboard = session_.folds.dashboard;
    const bool before = dashboard.folded();
    dashboard.roomShort(around->lengthByDefault(*this) < least);
    if (dashboard.folded() != before) session_.windows().tell(&WindowNews::foldsChanged);
}

void FrmConfig::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    measureRoom();
}

void FrmConfig::foldTree() {
    const bool fold = session_.folds.tree.folded();
    if (fold && window()->focusWidget() == treeZentaq_) cmdFoldTree_->setFocus();
    treeZentaq_->setVisible(!fold);
    const QString meaning = fold ? "Open the tree" : "Fold the tree";
    cmdFoldTree_->setIcon(icon(fold ? "Forward" : "Back"));
    cmdFoldTree_->setAccessibleName(meaning);
    cmdFoldTree_->setToolTip(meaning + " (Shift+F9)");
    splTree_->shareOut();
}

void FrmConfig::foldsChanged() {
    foldTree();
    bottom_->apply();
}

void FrmConfig::focusTree() {
    // Without a calibration there is nothing in the tree, and the first thing to do stands on the start page.
    if (treeZentaq_->topLevelItemCount() == 0 && startPage_->isVisible()) return startPage_->takeFocus();
    treeZentaq_->isHidden() ? cmdFoldTree_->setFocus() : treeZentaq_->setFocus();
}

void FrmConfig::showStartTab() {
    selectStartTab();
    focusTree();
}

void FrmConfig::selectStartTab() {
    sstMenu_->setTabVisible(pageTab, false);
    sstMenu_->setCurrentIndex(startTab);
}

void FrmConfig::setupNodes() {
    if (!std::exchange(treeReady_, true)) session_.sysLog("Advanced Config Initialized.");
    fillTree();
    showUnit();
    // The table that may have had the keyboard stands behind a page now.
    focusTree();
}

void FrmConfig::fillTree() {
    fillNodes();
    if (treeZentaq_->topLevelItemCount() == 0) return;
    treeZentaq_->setCurrentItem(treeZentaq_->topLevelItem(0));
    sstMenu_->setTabVisible(pageTab, true);
    showPage(0, treeZentaq_->topLevelItem(0)->text(0));
}

void FrmConfig::fillNodes() {
    treeZentaq_->clear();
    std::map<std::string, QTreeWidgetItem*> items;
    if (session_.slotInHand() != 0) {
        for (const TreeNode& node : treeNodes(session_.currentUnitObject())) {
            const auto parent = items.find(node.parent);
            QTreeWidgetItem* item = parent == items.end() ? new QTreeWidgetItem(treeZentaq_)
                                                          : new QTreeWidgetItem(parent->second);
            item->setText(0, shownString(node.text));
            item->setToolTip(0, plainTip(item->text(0)));
            item->setData(0, keyRole, QString::fromStdString(node.key));
            item->setData(0, helpRole, QString::fromStdString(node.help));
            items[node.key] = item;
        }
    }
    treeZentaq_->expandAll();
    splTree_->shareOut();
}

void FrmConfig::followTree() {
    if (session_.slotInHand() == 0) return;
    std::vector<QString> keys;
    for (const TreeNode& node : treeNodes(session_.currentUnitObject()))
        keys.push_back(QString::fromStdString(node.key));
    std::size_t at = 0;
    bool same = true;
    for (QTreeWidgetItemIterator item(treeZentaq_); *item != nullptr; ++item, ++at)
        same = same && at < keys.size() && (*item)->data(0, keyRole).toString() == keys[at];
    if (same && at == keys.size()) return;
    const QString inHand = treeZentaq_->currentItem() == nullptr
                               ? QString()
                               : treeZentaq_->currentItem()->data(0, keyRole).toString();
    fillNodes();
    for (QTreeWidgetItemIterator item(treeZentaq_); *item != nullptr; ++item) {
        if ((*item)->data(0, keyRole).toString() == inHand) treeZentaq_->setCurrentItem(*item);
    }
}

void FrmConfig::treeClicked(const QTreeWidgetItem* item) {
    if (item == nullptr) return;
    const QString title = item->text(0);
    const int page = commands_.treeClick(item->data(0, keyRole).toString().toStdString());
    // Tables and the pins have windows of their own.
    if (page != tablePage && page != managerPage) showPage(page, title);
}

void FrmConfig::showPage(int page, const QString& title) {
    if (session_.slotInHand() == 0 || !pageForm_->commit()) return;
    page_ = page;
    lblPageTitle_->setText(title);
    showRows(false);
    sstMenu_->setCurrentIndex(pageTab);
}

bool FrmConfig::hasFields() const {
    return session_.slotInHand() != 0 && !fieldsOfPage(page_).empty();
}

void FrmConfig::showRows(bool again) {
    pageStack_->setCurrentWidget(hasFields() ? static_cast<QWidget*>(pageForm_) : pageView_);
    if (hasFields()) {
        pageForm_->showPage(page_);
    } else {
        pageView_->show(overview(session_), onFly_, again);
    }
}

std::vector<FindBox::Hit> FrmConfig::foundFields(const QString& query) {
    std::vector<FindBox::Hit> hits;
    if (session_.slotInHand() == 0) return hits;
    // Asked for once; a reference file that another program holds is not asked again for the next field.
    bool answers = true;
    const auto helpOf = [&](std::string_view key) -> const std::string& {
        static const std::string none;
        const auto known = helpTexts_.find(std::string(key));
        if (known != helpTexts_.end()) return known->second;
        if (!answers) return none;
        answers = false;
        std::string text;
        skipFailing([&] {
            const Database* database = session_.reference();
            if (database == nullptr) return;
            const auto row = database->help(key);
            if (row) text = row->text;
            answers = true;
        });
        return answers ? helpTexts_[std::string(key)] = text : none;
    };
    for (const FoundField& field : findFields(session_.currentUnitObject(), query.toStdString(), helpOf)) {
        const std::string member = field.member.empty() ? "" : ", " + field.member;
        hits.push_back({qString(field.caption + "  (" + field.title + member + ")"),
                        QString::number(field.page) + ' ' + qString(field.control)});
    }
    return hits;
}

void FrmConfig::goToField(const QString& key) {
    const int page = key.section(' ', 0, 0).toInt();
    for (const TreeNode& node : treeNodes(session_.currentUnitObject())) {
        if (node.page != page) continue;
        for (QTreeWidgetItemIterator item(treeZentaq_); *item != nullptr; ++item) {
            if ((*item)->data(0, keyRole).toString().toStdString() == node.key)
                treeZentaq_->setCurrentItem(*item);
        }
        showPage(page, shownString(node.text));
    }
    if (page_ == page) pageForm_->goTo(key.section(' ', 1).toStdString());
}

void FrmConfig::goToMember(const QString& member) {
    const std::string name = member.section('[', 0, 0).toStdString();
    Unit& unit = session_.currentUnitObject();
    for (const TreeNode& node : treeNodes(unit)) {
        if (node.page == tablePage && node.table == name)
            return session_.windows().open(window::table, node.table, node.title);
        for (const FieldRow& row : fieldsOfPage(node.page)) {
            if (row.member == name && fieldExists(unit, row))
                return goToField(QString::number(row.page) + ' ' + qString(row.control));
        }
    }
}

bool FrmConfig::finishEdits() {
    return !pageForm_->isVisible() || pageForm_->commit();
}

void FrmConfig::showUnit() {
    followTree();
    showRows(true);
    showStartPage();
    recorderPage_->calibrationChanged();
}

void FrmConfig::onFlyChanged(bool on) {
    onFly_ = on;
    showRows(true);
}

void FrmConfig::showTip(const std::string& text) {
    startPage_->showTip(text);
}

// ---- With the other windows

void FrmConfig::openOn(const std::string& on, const std::string& /*title*/) {
    show();
    if (on == recorderTab) {
        sstMenu_->setCurrentWidget(recorderArea_);
        return recorderPage_->setFocus();
    }
    if (!on.empty()) return goToTable(on);
    selectStartTab();
    follow();
}

// The node is shown, not clicked: a click on it would open the table, and the page is what the user comes
// for.
void FrmConfig::goToTable(const std::string& table) {
    if (session_.folds.tree.folded()) {
        session_.folds.toggle(session_.folds.tree);
        session_.windows().tell(&WindowNews::foldsChanged);
    }
    const bool output = findTable(table) != nullptr && findTable(table)->isGpo();
    for (const TreeNode& node : treeNodes(session_.currentUnitObject())) {
        if (output ? node.page != managerPage : node.table != table) continue;
        const auto found = treeZentaq_->findItems(qString(node.text), Qt::MatchExactly | Qt::MatchRecursive);
        if (found.isEmpty()) continue;
        treeZentaq_->setCurrentItem(found.front());
        treeZentaq_->scrollToItem(found.front());
    }
    window()->activateWindow();
    focusTree();
}

void FrmConfig::takeBack() {
    window()->activateWindow();
    if (!isAncestorOf(QApplication::focusWidget())) focusTree();
}

void FrmConfig::takeFocusIfFree() {
    const QWidget* inHand = window()->focusWidget();
    if (inHand != nullptr && inHand != window() && inHand->isVisibleTo(window())) return;
    if (!dock_->takeFocus()) focusTree();
}

void FrmConfig::follow() {
    const std::uint64_t console = session_.console.changes();
    if (std::exchange(consoleSeen_, console) != console) {
        bottom_->sync();
    }
    pageForm_->follow();
    const LinkStatus& status = session_.linkDisplay.status();
    if (std::exchange(linkSeen_, status.changes) != status.changes) bottom_->render(status);
}

void FrmConfig::windowClosed() {
    showUnit();
    refreshPorts();
}

QString FrmConfig::helpKey() const {
    const bool listed = sstMenu_->currentIndex() == pageTab && pageStack_->currentWidget() == pageView_;
    const QString field = listed ? pageView_->helpKey() : QString();
    const QTreeWidgetItem* node = treeZentaq_->currentItem();
    // A field without a text of its own is told by its page.
    return field.isEmpty() && node != nullptr ? node->data(0, helpRole).toString() : field;
}

// The search yields, so the window stays alive; the button must not start a second one.
void FrmConfig::autoDetect() {
    // A control that is switched off hands its keyboard to the next one, which may be a field of a table.
    const QPointer<QWidget> inHand = QApplication::focusWidget();
    bottom_->link().setEnabled(false);
    focusTree();
    commands_.unit.autodetectPort();
    bottom_->link().setEnabled(true);
    if (inHand != nullptr && inHand->isVisible()) inHand->setFocus();
    refreshPorts();
}

void FrmConfig::choosePort(int number) {
    commands_.unit.choosePort(number, bottom_->link().ports().selectedIdentity());
    // Refused while a transfer runs, or not to be opened: the list shows the port in use.
    refreshPorts();
}

void FrmConfig::refreshPorts() {
    const LinkStatus& status = session_.linkDisplay.status();
    const bool opened = !status.port.empty();
    bottom_->link().ports().fill(opened ? static_cast<int>(numberOf(status.port)) : session_.link.commPort(),
                                 opened ? status.portIdentity : session_.link.commIdentity());
}

template <>
Form* makeForm<FrmConfig>(const FormNeeds& needs) {
    auto* form = new FrmConfig(needs.session, needs.commands, needs.parent);
    QObject::connect(form, &FrmConfig::entryAsked, form,
                     [run = needs.run](const char* entry) { run(entry); });
    return form;
}

}  // namespace zentaq
