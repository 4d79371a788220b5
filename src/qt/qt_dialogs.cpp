#include "qt/qt_dialogs.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QListView>
#include <QMessageBox>
#include <QPointer>
#include <QScopeGuard>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <QTimer>
#include <QTreeView>
#include <QUrl>
#include <algorithm>

#include "base/shown_text.h"
#include "base/text.h"
#include "qt/box_fit.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

/// A screen of fewer letters has no room beside the names of files.
constexpr int narrowLetters = 100;
/// Of the folder above the list, which shortens what is longer.
constexpr int lettersOfPath = 12;

QMessageBox::Icon iconOf(Icon icon) {
    switch (icon) {
        case Icon::Information:
            return QMessageBox::Information;
        case Icon::Question:
            return QMessageBox::Question;
        case Icon::Exclamation:
            return QMessageBox::Warning;
        case Icon::Critical:
            return QMessageBox::Critical;
        case Icon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(Buttons buttons) {
    switch (buttons) {
        case Buttons::Cancel:
            return QMessageBox::Cancel;
        case Buttons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case Buttons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case Buttons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton defaultOf(const Box& box) {
    if (box.buttons == Buttons::YesNo) return box.declines ? QMessageBox::No : QMessageBox::Yes;
    if (box.buttons == Buttons::Cancel) return QMessageBox::Cancel;
    return box.declines && box.buttons == Buttons::OkCancel ? QMessageBox::Cancel : QMessageBox::Ok;
}

Answer answerOf(int button, Buttons offered) {
    switch (button) {
        case QMessageBox::Ok:
            return Answer::Ok;
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        case QMessageBox::Cancel:
            return Answer::Cancel;
        default:
            break;
    }
    if (offered == Buttons::OkCancel || offered == Buttons::Cancel) return Answer::Cancel;
    return offered == Buttons::YesNo ? Answer::No : Answer::Ok;
}

/// Qt's own file dialog: two thirds of the screen, names whole, the user's folders beside them where there is
/// room.
void fitFileDialog(QFileDialog& dialog, const QString& folder) {
    const int title = dialog.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &dialog);
    const QSize room = dialog.screen()->availableGeometry().size() - QSize(0, title);
    auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
    if (list == nullptr) return;  // that of the desktop
    // What it asks for would hang on what has been read of the folder when it is shown.
    if (auto* path = dialog.findChild<QComboBox*>(QStringLiteral("lookInCombo"))) {
        path->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        path->setMinimumContentsLength(lettersOfPath);
        QEvent anew(QEvent::StyleChange);  // what it has asked for until now stays with it otherwise
        QCoreApplication::sendEvent(path, &anew);
    }
    constexpr int sizeColumn = 1;
    constexpr int typeColumn = 2;
    list->setColumnHidden(typeColumn, true);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    const bool narrow = room.width() < dialog.fontMetrics().averageCharWidth() * narrowLetters;
    list->setColumnHidden(sizeColumn, narrow);
    QList<QUrl> places{QUrl::fromLocalFile(QDir::homePath())};
    if (QDir(folder).exists()) places.prepend(QUrl::fromLocalFile(folder));
    dialog.setSidebarUrls(places);
    if (auto* side = dialog.findChild<QListView*>(QStringLiteral("sidebar"))) {
        side->setHidden(narrow);
        const int names = side->sizeHintForColumn(0) + 4 * side->frameWidth();
        side->setMinimumWidth(std::min(names, room.width() / 4));
        // As wide as its names, not as another program, maybe on another screen, left it.
        if (auto* splitter = dialog.findChild<QSplitter*>(QStringLiteral("splitter")))
            splitter->setSizes({side->minimumWidth(), room.width()});
    }
    // At large scales it asks for more than there is.
    dialog.resize((room * 2 / 3).expandedTo(dialog.sizeHint()).boundedTo(room));
}

/// Set on a box that goes when what it is about has gone.
constexpr auto endsByItself = "endsByItself";
/// How often it looks: what comes next waits for it.
constexpr int lookMs = 20;
constexpr int noButton = QMessageBox::NoButton;

/// A window that the user works in, not a list or a tip over it.
bool isWorkedIn(const QWidget* window) {
    if (window == nullptr || !window->isVisible()) return false;
    return window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
}

}  // namespace

QtDialogs::QtDialogs() {
    QObject::connect(qApp, &QApplication::focusChanged, &context_, [this](QWidget*, QWidget* now) {
        if (now == nullptr || QApplication::activeModalWidget() != nullptr) return;
        if (isWorkedIn(now->window())) last_ = now->window();
    });
}

// A box over a window that is behind another would bring the wrong one to the front, and hide what it is
// about.
QWidget* QtDialogs::asker() const {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    if (QWidget* kept = keeper_.window()) return kept;
    if (QWidget* active = QApplication::activeWindow(); isWorkedIn(active)) return active;
    return isWorkedIn(last_) ? last_ : parent_;
}

/// Runs a dialog. It ends with its window if that goes meanwhile.
template <typename Dialog>
int QtDialogs::ask(Dialog& dialog) {
    const QPointer<QWidget> window = dialog.parentWidget();
    const QPointer<QWidget> field = window != nullptr ? window->window()->focusWidget() : nullptr;
    const QPointer<QDialog> alive = &dialog;
    const int answer = dialog.exec();
    if (alive) dialog.hide();
    if (window == nullptr || !window->isVisible()) return answer;
    // Where nobody manages windows the keyboard would stay with the closed dialog.
    keeper_.keep(*window->window());
    if (field != nullptr && field->isVisible() && field->isEnabled()) {
        field->setFocus(Qt::ActiveWindowFocusReason);
    }
    return answer;
}

Answer QtDialogs::show(const Box& box) {
    // Not on the stack: the window over which it stands may go, and takes it along.
    const QPointer<QMessageBox> message = new QMessageBox(asker());
    const auto done = qScopeGuard([&] { delete message; });
    message->setObjectName(QStringLiteral("dlgMessage"));
    message->setWindowTitle(shownString(box.title));
    message->setTextFormat(Qt::PlainText);
    message->setText(qString(shownInBox(box.text)));
    message->setIcon(iconOf(box.icon));
    message->setStandardButtons(buttonsOf(box.buttons));
    message->setDefaultButton(defaultOf(box));
    fitToScreen(*message);
    // Escape and the window's own button decline where declining is possible.
    if (box.buttons == Buttons::YesNo) message->setEscapeButton(QMessageBox::No);
    QTimer look;
    if (box.stands) {
        message->setProperty(endsByItself, true);
        QObject::connect(&look, &QTimer::timeout, message, [message, &box] {
            if (message->isVisible() && !box.stands()) message->done(noButton);
        });
        look.start(lookMs);
    }
    return answerOf(ask(*message), box.buttons);
}

std::string QtDialogs::openFile(const FileRequest& request) {
    return choose(request, false);
}

std::string QtDialogs::saveFile(const FileRequest& request) {
    return choose(request, true);
}

std::string QtDialogs::choose(const FileRequest& request, bool save) {
    const QPointer<QFileDialog> dialog = new QFileDialog(asker(), shownString(request.title));
    const auto done = qScopeGuard([&] { delete dialog; });
    dialog->setObjectName(QStringLiteral("dlgDialog1"));
    // That of the desktop, where it has one. About a file that exists the program asks: a desktop that does
    // so by itself all the same asks once more.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QString folder = QString::fromStdString(request.folder);
    dialog->setDirectory(QDir(folder).exists() ? folder : QDir::homePath());

    const QStringList filters = nameFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog->setNameFilters(filters);
        const auto last = static_cast<int>(filters.size()) - 1;
        dialog->selectNameFilter(filters.at(std::clamp(request.filterIndex - 1, 0, last)));
    }
    if (save) dialog->setDefaultSuffix(bareExtension(request.defaultExtension));
    if (!request.suggestedName.empty()) dialog->selectFile(QString::fromStdString(request.suggestedName));
    fitFileDialog(*dialog, folder);
    if (ask(*dialog) != QDialog::Accepted || !dialog) return {};
    const QStringList chosen = dialog->selectedFiles();
    return chosen.isEmpty() ? std::string() : chosen.first().toStdString();
}

std::optional<std::string> QtDialogs::input(const std::string& title, const std::string& prompt,
                                            const std::string& initial) {
    const QPointer<QInputDialog> dialog = new QInputDialog(asker());
    const auto done = qScopeGuard([&] { delete dialog; });
    dialog->setObjectName(QStringLiteral("dlgInput"));
    dialog->setInputMode(QInputDialog::TextInput);
    dialog->setWindowTitle(shownString(title));
    dialog->setLabelText(qString(shownInBox(prompt)));
    for (auto* label : dialog->findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
    dialog->setTextValue(QString::fromStdString(initial));
    if (ask(*dialog) != QDialog::Accepted || !dialog) return std::nullopt;
    return dialog->textValue().toStdString();
}

bool boxStands() {
    return QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr;
}

bool boxEndsByItself() {
    const auto windows = QApplication::topLevelWidgets();
    return std::ranges::any_of(windows, [](const QWidget* window) {
        return window->isVisible() && window->property(endsByItself).toBool();
    });
}

QStringList nameFilters(const std::string& filter) {
    QStringList filters;
    const std::vector<std::string> parts = split(filter, '|');
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
        QString text = QString::fromStdString(parts[i]);
        // Qt takes the last pair of parentheses as the patterns; one in the text would be shown twice.
        const qsizetype parenthesis = text.indexOf(u'(');
        if (parenthesis >= 0) text.truncate(parenthesis);
        const QString patterns = QString::fromStdString(parts[i + 1]).replace(u';', u' ');
        filters.append(text.trimmed() + " (" + patterns + ")");
    }
    return filters;
}

QString bareExtension(const std::string& extension) {
    const QString text = QString::fromStdString(extension);
    const qsizetype dot = text.lastIndexOf(u'.');
    return dot < 0 ? text : text.mid(dot + 1);
}

}  // namespace zentaq
