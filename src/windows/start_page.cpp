#include "windows/start_page.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <filesystem>
#include <tuple>
#include <utility>

#include "base/text.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr int pathRole = Qt::UserRole;
/// Of each list: what stands below it comes before more of them.
constexpr int rowsInSight = 2;

}  // namespace

// On a small screen it scrolls: the frame must not grow beyond the screen for it.
StartPage::StartPage(QWidget* parent) : QScrollArea(parent) {
    named(this, "startPage", "Start");
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    lblStart_ = plainLines("lblStart", {}, this);
    lblStart_->setFont(typeFont(Type::Heading));
    lblTip_ = plainLines("lblTip", "Tip", this);
    layout->addWidget(lblStart_);
    layout->addWidget(makeDoors());
    layout->addWidget(makeFiles(), 1);
    layout->addWidget(lblTip_);
    setWidget(content);
    showInHand({}, false);
    showFiles({}, {});
}

// What somebody does first, without a search through the menus.
QWidget* StartPage::makeDoors() {
    auto* doors = new QWidget(this);
    auto* row = new QHBoxLayout(doors);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const QString& caption, const char* entry) {
        auto* button = named(new QPushButton(caption, doors), name);
        button->setAutoDefault(true);
        connect(button, &QPushButton::clicked, this, [this, entry] { Q_EMIT entryAsked(entry); });
        row->addWidget(button);
    };
    add("cmdStartNew", "Create a &new calibration", "mnuNew");
    add("cmdStartOpen", "&Open a calibration", "mnuOpen");
    add("cmdStartGuide", "User &guide", "mnuHelpContents");
    row->addStretch(1);
    return doors;
}

QWidget* StartPage::makeFiles() {
    auto* files = new QWidget(this);
    auto* row = new QHBoxLayout(files);
    row->setContentsMargins(0, 0, 0, 0);
    for (const auto& [list, name, caption] :
         {std::tuple{&recent_, "lstRecent", "&Recent files"}, {&samples_, "lstSamples", "Sam&ples to try"}}) {
        auto* column = new QWidget(files);
        *list = makeList(name, caption, column);
        row->addWidget(column, 1);
    }
    return files;
}

QListWidget* StartPage::makeList(const char* name, const QString& caption, QWidget* column) {
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* title = new QLabel(caption, column);
    auto* list = named(new QListWidget(column), name, QString(caption).remove(u'&'));
    title->setBuddy(list);
    list->setTextElideMode(Qt::ElideNone);
    list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setMinimumHeight(rowsInSight * list->fontMetrics().lineSpacing() + 2 * list->frameWidth());
    connect(list, &QListWidget::itemClicked, this, [this](const QListWidgetItem* item) { ask(*item); });
    connect(list, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) { ask(*item); });
    layout->addWidget(title);
    layout->addWidget(list, 1);
    return list;
}

// From the event loop: the list is filled anew by what it asks for. A click, a double click and Enter are
// one.
void StartPage::ask(const QListWidgetItem& item) {
    const bool waits = !asked_.empty();
    asked_ = item.data(pathRole).toByteArray().toStdString();
    if (waits) return;
    QTimer::singleShot(0, this, [this] { Q_EMIT fileAsked(std::exchange(asked_, {})); });
}

void StartPage::showInHand(const std::string& path, bool inHand) {
    lblStart_->setText(inHand ? "Calibration in hand: " + shownString(path) : "No calibration in hand.");
}

void StartPage::showTip(const std::string& text) {
    lblTip_->setText(shownStringOfLines(text));
}

void StartPage::showFiles(const std::vector<std::string>& recent, const std::vector<std::string>& samples) {
    fill(*recent_, recent);
    fill(*samples_, samples);
}

void StartPage::fill(QListWidget& list, const std::vector<std::string>& paths) {
    list.clear();
    for (const std::string& path : paths) {
        const std::string folder = std::filesystem::path(path).parent_path().filename().string();
        auto* item = new QListWidgetItem(shownString(fileNameOf(path) + "  (" + folder + ")"), &list);
        // As bytes: a name need be no text.
        item->setData(pathRole, QByteArray::fromStdString(path));
        item->setToolTip(plainTip(shownString(path)));
    }
    if (list.count() > 0) list.setCurrentRow(0);
    // An empty one leaves its room to the other.
    list.parentWidget()->setVisible(list.count() > 0);
}

void StartPage::takeFocus() {
    if (auto* first = findChild<QPushButton*>("cmdStartNew")) first->setFocus();
}

}  // namespace zentaq
