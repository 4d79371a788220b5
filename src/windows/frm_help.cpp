#include "windows/frm_help.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <QVBoxLayout>
#include <map>

#include "base/errors.h"
#include "guide/guide.h"
#include "qt/enter_key.h"
#include "qt/kept_splitter.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/second_window.h"
#include "qt/window_placement.h"
#include "windows/window_registry.h"

namespace zentaq {

namespace {

constexpr int topicRole = Qt::UserRole;
constexpr int sentenceRole = Qt::UserRole + 1;
constexpr int contentsSide = 0;
constexpr int hitsSide = 1;
constexpr int sideLetters = 42;
constexpr int sidePercent = 40;
constexpr int windowLetters = 136;
constexpr int windowLines = 36;

/// A hit: its place in bold, and below it the sentence that has the words.
class HitPainter : public QStyledItemDelegate {
 public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool chosen = (option.state & QStyle::State_Selected) != 0;
        painter->save();
        option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
        const auto group = option.widget->hasFocus() ? QPalette::Active : QPalette::Inactive;
        painter->setPen(option.palette.color(group, chosen ? QPalette::HighlightedText : QPalette::Text));
        const int gap = gapOf(option);
        const QRect area = option.rect.adjusted(gap, gap, -gap, -gap);
        const QFont title = bold(option.font);
        painter->setFont(title);
        const int titleHeight = heightOf(index.data().toString(), title, area.width());
        painter->drawText(area, Qt::TextWordWrap, index.data().toString());
        painter->setFont(option.font);
        painter->drawText(area.adjusted(0, titleHeight, 0, 0), Qt::TextWordWrap,
                          index.data(sentenceRole).toString());
        painter->restore();
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const int gap = gapOf(option);
        const auto* list = qobject_cast<const QListWidget*>(option.widget);
        const int width = (list != nullptr ? list->viewport()->width() : option.rect.width()) - 2 * gap;
        return {width, 2 * gap + heightOf(index.data().toString(), bold(option.font), width) +
                           heightOf(index.data(sentenceRole).toString(), option.font, width)};
    }

 private:
    static int gapOf(const QStyleOptionViewItem& option) { return space(option.fontMetrics, Space::Tight); }
    static QFont bold(QFont font) {
        font.setBold(true);
        return font;
    }
    static int heightOf(const QString& text, const QFont& font, int width) {
        constexpr int anyHeight = 10000;
        return QFontMetrics(font).boundingRect(0, 0, width, anyHeight, Qt::TextWordWrap, text).height();
    }
};

}  // namespace

FrmHelp::FrmHelp(const std::string& guideFolder, SettingsStore& settings, QWidget* parent)
    : QWidget(parent, secondWindow()), Form(this), folder_(guideFolder), settings_(settings) {
    named(this, qString(window::help), "User guide");
    setWindowTitle("Zentaq4 User Guide");
    makeToolbar();
    const int letter = fontMetrics().averageCharWidth();
    // The contents need no more than their width; all else is for reading.
    const auto shares = [letter](int width) {
        const int side = std::min(letter * sideLetters, width * sidePercent / 100);
        return QList<int>{side, width - side};
    };
    auto* split = new KeptSplitter(Qt::Horizontal, "splHelp", settings, shares, this);
    split->addWidget(makeSide());
    split->addWidget(makeReading());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(toolbar_);
    layout->addWidget(split, 1);
    const QSize room = screen()->availableGeometry().size();
    resize(QSize(letter * windowLetters, fontMetrics().height() * windowLines).boundedTo(room * 0.9));
    restorePlacement(*this, settings);
    readGuide();
}

void FrmHelp::readGuide() {
    endOnFailure([&] { guide_ = Guide::read(folder_); },
                 [&](const std::string& why) {
                     page_->showText("The user guide is missing",
                                     shownString(why) +
                                         ". It belongs into the folder support/guide of the "
                                         "program. Build or install the program again. F2 "
                                         "still tells about each field.");
                     side_->setEnabled(false);
                     txtSearch_->setEnabled(false);
                     contents_->setEnabled(false);
                 });
    fillContents();
}

// ---- Making

void FrmHelp::makeToolbar() {
    toolbar_ = named(new QToolBar("User guide keys", this), "Toolbar1", "User guide keys");
    const auto add = [&](const char* name, const QString& caption, const QKeySequence& keys) {
        QAction* action = toolbar_->addAction(caption);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(keys);
        action->setToolTip(caption + QStringLiteral(" (") + keys.toString(QKeySequence::NativeText) + u')');
        toolbar_->widgetForAction(action)->setFocusPolicy(Qt::TabFocus);
        return action;
    };
    back_ = add("Back", "Back", Qt::ALT | Qt::Key_Left);
    forward_ = add("Forward", "Forward", Qt::ALT | Qt::Key_Right);
    contents_ = add("Contents", "Contents", Qt::ALT | Qt::Key_Home);
    QAction* find = add("Find", "Find in page", QKeySequence::Find);
    back_->setEnabled(false);
    forward_->setEnabled(false);
    connect(contents_, &QAction::triggered, this, [this] { open({}); });
    connect(find, &QAction::triggered, this, &FrmHelp::showFindBar);
    const auto key = [&](const QKeySequence& keys, auto&& run) {
        auto* action = new QAction(this);
        action->setShortcut(keys);
        addAction(action);
        connect(action, &QAction::triggered, this, run);
    };
    key(Qt::Key_F3, [this] { findText(false); });
    key(Qt::SHIFT | Qt::Key_F3, [this] { findText(true); });
    key(Qt::CTRL | Qt::Key_L, [this] {
        txtSearch_->setFocus();
        txtSearch_->selectAll();
    });
}

QWidget* FrmHelp::makeSide() {
    auto* side = new QWidget(this);
    txtSearch_ = named(new QLineEdit(side), "txtSearch", "Search the guide");
    txtSearch_->setPlaceholderText("Search the guide (Ctrl+L)");
    makeClearable(txtSearch_);
    txtSearch_->installEventFilter(this);
    connect(txtSearch_, &QLineEdit::textChanged, this, &FrmHelp::search);

    treeContents_ = named(new QTreeWidget(side), "treeContents", "Contents");
    treeContents_->setHeaderHidden(true);
    treeContents_->setUniformRowHeights(true);
    const auto chosen = [this](QTreeWidgetItem* item) {
        goTo(item->data(0, topicRole).toString().toStdString());
    };
    connect(treeContents_, &QTreeWidget::itemClicked, this, chosen);
    connect(treeContents_, &QTreeWidget::itemActivated, this, chosen);

    lstHits_ = named(new QListWidget(side), "lstHits", "Hits");
    lstHits_->setItemDelegate(new HitPainter(lstHits_));
    lstHits_->setWordWrap(true);
    lstHits_->setResizeMode(QListView::Adjust);
    lstHits_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstHits_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    lstHits_->installEventFilter(this);
    connect(lstHits_, &QListWidget::itemClicked, this, &FrmHelp::openHit);

    side_ = new QStackedWidget(side);
    side_->addWidget(treeContents_);
    side_->addWidget(lstHits_);
    auto* layout = new QVBoxLayout(side);
    const int gap = space(fontMetrics(), Space::Tight);
    layout->setContentsMargins(gap, gap, 0, gap);
    layout->addWidget(txtSearch_);
    layout->addWidget(side_, 1);
    return side;
}

QWidget* FrmHelp::makeReading() {
    auto* reading = new QWidget(this);
    page_ = new GuidePage(folder_, reading);
    connect(page_, &GuidePage::historyChanged, this, &FrmHelp::pageChanged);
    connect(page_, &GuidePage::backwardAvailable, back_, &QAction::setEnabled);
    connect(page_, &GuidePage::forwardAvailable, forward_, &QAction::setEnabled);
    connect(back_, &QAction::triggered, page_, &GuidePage::backward);
    connect(forward_, &QAction::triggered, page_, &GuidePage::forward);
    lblNotice_ = plainLines("lblNotice", "Notice", reading);
    lblNotice_->hide();
    connect(page_, &GuidePage::outsideRefused, this, [this](const QString& address) {
        lblNotice_->setText("This link leads out of the guide: " + address);
        lblNotice_->show();
    });
    auto* layout = new QVBoxLayout(reading);
    const int gap = space(fontMetrics(), Space::Tight);
    layout->setContentsMargins(0, gap, gap, gap);
    layout->addWidget(page_, 1);
    layout->addWidget(lblNotice_);
    layout->addWidget(makeFindBar());
    return reading;
}

QWidget* FrmHelp::makeFindBar() {
    fraFind_ = named(new QWidget(this), "fraFind");
    auto* caption = new QLabel("Fi&nd:", fraFind_);
    txtFind_ = named(new QLineEdit(fraFind_), "txtFind", "Find in page");
    caption->setBuddy(txtFind_);
    lblFound_ = plainLabel("lblFound", "Result of the search", fraFind_);
    auto* next = new QPushButton("Next (F3)", fraFind_);
    auto* close = new QPushButton("Close (Esc)", fraFind_);
    connect(txtFind_, &QLineEdit::returnPressed, this, [this] { findText(false); });
    connect(next, &QPushButton::clicked, this, [this] { findText(false); });
    connect(close, &QPushButton::clicked, this, &FrmHelp::hideFindBar);
    auto* row = new QHBoxLayout(fraFind_);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(caption);
    row->addWidget(txtFind_, 1);
    row->addWidget(lblFound_, 1);
    row->addWidget(next);
    row->addWidget(close);
    fraFind_->hide();
    return fraFind_;
}

void FrmHelp::fillContents() {
    constexpr int deepestShown = 2;
    QTreeWidgetItem* chapter = nullptr;
    for (const GuideSection& section : guide_.sections()) {
        if (section.level > deepestShown || section.chapter == Guide::contentsChapter) continue;
        auto* item = section.level == 1 ? new QTreeWidgetItem(treeContents_) : new QTreeWidgetItem(chapter);
        if (section.level == 1) chapter = item;
        item->setText(0, shownString(section.title));
        item->setToolTip(0, shownTip(section.title));
        item->setData(0, topicRole, qString(section.topic()));
    }
}

// ---- Place

void FrmHelp::closeEvent(QCloseEvent* event) {
    storePlacement(*this, settings_);
    QWidget::closeEvent(event);
}

// ---- Going to a page

void FrmHelp::open(const std::string& topic) {
    goTo(topic);
    show();
    raise();
    activateWindow();
    page_->setFocus();
}

void FrmHelp::goTo(const std::string& topic) {
    if (guide_.sections().empty()) return;
    page_->showTopic(guide_.find(topic) != nullptr ? topic : Guide::contentsChapter);
}

void FrmHelp::pageChanged() {
    lblFound_->clear();
    lblNotice_->hide();
    const std::string title = guide_.chapterTitle(page_->topic().substr(0, page_->topic().find('#')));
    setWindowTitle(title.empty() ? "Zentaq4 User Guide" : shownString(title) + " - Zentaq4 User Guide");
    markContents();
}

/// The entry of what is shown; of its chapter where the contents do not name the place.
void FrmHelp::markContents() {
    const QString topic = qString(page_->topic());
    const QString chapter = topic.section(u'#', 0, 0);
    QTreeWidgetItem* shown = nullptr;
    for (int i = 0; i < treeContents_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = treeContents_->topLevelItem(i);
        if (item->data(0, topicRole).toString() != chapter) continue;
        shown = item;
        for (int k = 0; k < item->childCount(); ++k) {
            if (item->child(k)->data(0, topicRole).toString() == topic) shown = item->child(k);
        }
    }
    treeContents_->setCurrentItem(shown);
    showSections(shown != nullptr && shown->parent() != nullptr ? shown->parent() : shown);
}

/// The chapter on the screen is open; the one before closes. Others that the user has opened stay open.
void FrmHelp::showSections(QTreeWidgetItem* chapter) {
    if (opened_ != nullptr && opened_ != chapter) opened_->setExpanded(false);
    opened_ = chapter;
    if (chapter != nullptr) chapter->setExpanded(true);
}

// ---- Searching all chapters

void FrmHelp::search() {
    const std::string text = txtSearch_->text().toStdString();
    const std::vector<std::string> words = searchWords(text);
    lstHits_->clear();
    side_->setCurrentIndex(words.empty() ? contentsSide : hitsSide);
    page_->mark(words);
    if (words.empty()) return;
    for (const GuideHit& hit : guide_.search(text)) {
        auto* item = new QListWidgetItem(shownString(hit.title), lstHits_);
        item->setData(topicRole, qString(hit.topic));
        item->setData(sentenceRole, shownString(hit.sentence));
        item->setData(Qt::AccessibleTextRole, shownString(hit.title + ". " + hit.sentence));
    }
    if (lstHits_->count() == 0) {
        auto* nothing = new QListWidgetItem("Nothing found", lstHits_);
        nothing->setData(sentenceRole, "No section has all of these words. Try fewer or shorter ones.");
        nothing->setFlags(Qt::ItemIsEnabled);
        return;
    }
    lstHits_->setCurrentRow(0);
}

void FrmHelp::openHit(const QListWidgetItem* hit) {
    if (hit == nullptr || hit->data(topicRole).toString().isEmpty()) return;
    goTo(hit->data(topicRole).toString().toStdString());
    page_->setFocus();
}

bool FrmHelp::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto& pressed = static_cast<const QKeyEvent&>(*event);
    const int key = pressed.key();
    const bool enter = isEnterKey(pressed);
    const bool searching = side_->currentIndex() == hitsSide;
    if (enter && searching && (watched == txtSearch_ || watched == lstHits_)) {
        openHit(lstHits_->currentItem());
        return true;
    }
    if (key == Qt::Key_Down && watched == txtSearch_) {
        side_->currentWidget()->setFocus();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

// ---- Finding in the page

void FrmHelp::showFindBar() {
    fraFind_->show();
    txtFind_->setFocus();
    txtFind_->selectAll();
}

void FrmHelp::hideFindBar() {
    fraFind_->hide();
    lblFound_->clear();
    page_->setFocus();
}

void FrmHelp::findText(bool backward) {
    if (txtFind_->text().isEmpty()) return showFindBar();
    const bool found = page_->findText(txtFind_->text(), backward);
    lblFound_->setText(found ? QString() : "Not in this page");
}

bool FrmHelp::event(QEvent* event) {
    // A reader who wants to print must not program the unit, which has the same key in the main window.
    const bool override = event->type() == QEvent::ShortcutOverride;
    if (override && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Print)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void FrmHelp::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
    if (fraFind_->isVisible()) {
        hideFindBar();
    } else {
        close();
    }
}

template <>
Form* makeForm<FrmHelp>(const FormNeeds& needs) {
    return new FrmHelp(guideFolder(needs.session.applicationFolder()), needs.session.settings(),
                       needs.parent);
}

}  // namespace zentaq
