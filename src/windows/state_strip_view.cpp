#include "windows/state_strip_view.h"

#include <QAccessible>
#include <QEvent>
#include <algorithm>
#include <utility>

#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

bool isLong(StripPart part) {
    return part == StripPart::Notice || part == StripPart::File;
}

QString moreText(std::size_t count) {
    return QStringLiteral("+%1").arg(count);
}

}  // namespace

StateStripView::StateStripView(QWidget* parent) : QWidget(parent) {
    named(this, "stateStrip", "State");
    rows_ = stripRows({});
    for (StripRow& row : rows_) {
        row = {.part = row.part};
        auto* button = new StripButton(qString(stripName(row.part)), isLong(row.part), this);
        button->hide();
        connect(button, &QPushButton::clicked, this,
                [this, place = buttons_.size()] { Q_EMIT pressed(StripRow(rows_[place])); });
        buttons_.push_back(button);
    }
    menu_ = named(new QMenu(this), "mnuStripMore", "More states");
    connect(menu_, &QMenu::aboutToShow, this, &StateStripView::fillMenu);
    more_ = new StripButton("stripMore", false, this);
    connect(more_, &QPushButton::clicked, this, [this] {
        fillMenu();
        menu_->popup(more_->mapToGlobal(QPoint(0, -menu_->sizeHint().height())));
    });
    more_->hide();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void StateStripView::show(const std::vector<StripRow>& rows) {
    bool moved = false;
    for (std::size_t i = 0; i < rows_.size() && i < rows.size(); ++i) {
        const StripRow former = std::exchange(rows_[i], rows[i]);
        if (former.text == rows[i].text && former.meaning == rows[i].meaning && former.tone == rows[i].tone)
            continue;
        moved = moved || former.text != rows[i].text;
        showRow(i);
        if (!isToldAtOnce(rows[i], former) || !QAccessible::isActive()) continue;
        QAccessibleEvent event(buttons_[i], QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
    if (moved) arrange();
}

void StateStripView::showRow(std::size_t place) {
    const StripRow& row = rows_[place];
    StripButton* button = buttons_[place];
    if (row.text.empty() && button->hasFocus()) Q_EMIT keyboardLeft();
    button->say(shownString(row.text), shownString(row.meaning), row.tone);
}

int StateStripView::gap() const {
    return space(more_->fontMetrics(), Space::Tight);
}

std::vector<bool> StateStripView::folded() const {
    std::vector<int> widths;
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        widths.push_back(rows_[i].text.empty() ? 0 : buttons_[i]->leastWidth());
    }
    // As wide as with the most that it can have to tell.
    return foldedParts(widths, width() - 2 * gap(), more_->widthOf(moreText(buttons_.size())), gap());
}

void StateStripView::arrange() {
    const std::vector<bool> away = folded();
    tellMore(away);
    int left = width() - 2 * gap() - (more_->isHidden() ? 0 : more_->sizeHint().width() + gap());
    const auto shown = [&](std::size_t i) { return !rows_[i].text.empty() && !away[i]; };
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        if (shown(i)) left -= buttons_[i]->leastWidth() + gap();
    }
    int x = gap();
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        StripButton* button = buttons_[i];
        if (!shown(i)) {
            if (button->hasFocus()) more_->isHidden() ? Q_EMIT keyboardLeft() : more_->setFocus();
            button->hide();
            continue;
        }
        // Long texts take what the others leave.
        const int more = std::clamp(button->sizeHint().width() - button->leastWidth(), 0, std::max(left, 0));
        left -= more;
        button->setGeometry(x, 0, button->leastWidth() + more, height());
        button->show();
        x += button->width() + gap();
    }
    if (!more_->isHidden()) {
        const int wide = more_->sizeHint().width();
        more_->setGeometry(width() - gap() - wide, 0, wide, height());
    }
}

void StateStripView::tellMore(const std::vector<bool>& away) {
    QStringList texts;
    auto worst = StripTone::Plain;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!away[i]) continue;
        texts.append(shownString(rows_[i].text));
        worst = std::max(worst, rows_[i].tone);
    }
    if (texts.isEmpty() && more_->hasFocus()) Q_EMIT keyboardLeft();
    more_->setVisible(!texts.isEmpty());
    if (texts.isEmpty()) return;
    more_->say(moreText(static_cast<std::size_t>(texts.size())),
               "More states, for which there is no room: " + texts.join(", "), worst);
}

// What is folded at the moment when the menu opens.
void StateStripView::fillMenu() {
    menu_->clear();
    const std::vector<bool> away = folded();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!away[i]) continue;
        QAction* entry = menu_->addAction(shownString(rows_[i].text).replace(u'&', "&&"));
        entry->setObjectName(qString(stripName(rows_[i].part)));
        entry->setToolTip(plainTip(shownString(rows_[i].meaning)));
        connect(entry, &QAction::triggered, this, [this, i] { Q_EMIT pressed(StripRow(rows_[i])); });
    }
    menu_->setToolTipsVisible(true);
}

QSize StateStripView::sizeHint() const {
    return {0, more_->sizeHint().height()};
}

QSize StateStripView::minimumSizeHint() const {
    return {more_->fontMetrics().averageCharWidth() * 20, more_->sizeHint().height()};
}

void StateStripView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void StateStripView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) arrange();
}

}  // namespace zentaq
