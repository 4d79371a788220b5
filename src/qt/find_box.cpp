#include "qt/find_box.h"

#include "base/number_text.h"
#include "qt/named.h"
#include "qt/qt_text.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>

namespace zentaq {

namespace {

constexpr int mostHitsInView = 10;

}  // namespace

FindBox::FindBox(const Words& words, Find find, QWidget* frame)
    : QWidget(frame),
      find_(std::move(find)),
      nothing_(words.nothing),
      txtFind_(new QLineEdit(this)),
      lstFound_(new QListWidget(frame)) {
    auto* caption = new QLabel(words.caption, this);
    caption->setBuddy(txtFind_);
    named(txtFind_, words.box, words.meaning);
    txtFind_->setPlaceholderText(words.placeholder);
    makeClearable(txtFind_);
    txtFind_->installEventFilter(this);
    connect(txtFind_, &QLineEdit::textChanged, this, &FindBox::search);

    named(lstFound_, words.list, words.hits);
    lstFound_->setFocusPolicy(Qt::NoFocus);
    lstFound_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstFound_->setTextElideMode(Qt::ElideRight);
    lstFound_->hide();
    connect(lstFound_, &QListWidget::itemClicked, this, [this] { choose(lstFound_->currentRow()); });

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(caption);
    row->addWidget(txtFind_, 1);
}

void FindBox::search() {
    const QString query = txtFind_->text();
    found_ = find_(query);
    lstFound_->clear();
    for (const Hit& hit : found_) lstFound_->addItem(hit.shown);
    if (found_.empty()) {
        auto* nothing = new QListWidgetItem(nothing_, lstFound_);
        nothing->setFlags(Qt::NoItemFlags);
    } else {
        lstFound_->setCurrentRow(0);
    }
    txtFind_->setAccessibleDescription(qString(numberText(static_cast<int>(found_.size())) + " found"));
    lstFound_->setVisible(!query.trimmed().isEmpty());
    placeList();
}

void FindBox::placeList() {
    if (lstFound_->isHidden()) return;
    const QWidget* frame = lstFound_->parentWidget();
    const QPoint below = txtFind_->mapTo(frame, QPoint(0, txtFind_->height()));
    const int rows = std::min(lstFound_->count(), mostHitsInView);
    const int height = rows * lstFound_->sizeHintForRow(0) + 2 * lstFound_->frameWidth() + 2;
    lstFound_->setGeometry(below.x(), below.y(), txtFind_->width(),
                           std::min(height, frame->height() - below.y()));
    lstFound_->raise();
}

bool FindBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched != txtFind_) return false;
    if (event->type() == QEvent::FocusOut) lstFound_->hide();
    if (event->type() == QEvent::FocusIn && !txtFind_->text().trimmed().isEmpty()) {
        lstFound_->show();
        placeList();
    }
    return event->type() == QEvent::KeyPress && keyPressed(static_cast<QKeyEvent*>(event)->key());
}

/// True for keys that go no further: Enter must not press OK, Escape closes the window on an empty box only.
bool FindBox::keyPressed(int key) {
    switch (key) {
        case Qt::Key_Down:
            step(1);
            return true;
        case Qt::Key_Up:
            step(-1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            choose(lstFound_->currentRow());
            return true;
        case Qt::Key_Escape:
            if (txtFind_->text().isEmpty()) return false;
            txtFind_->clear();
            return true;
        default:
            return false;
    }
}

void FindBox::step(int by) {
    if (found_.empty()) return;
    const int last = static_cast<int>(found_.size()) - 1;
    lstFound_->setCurrentRow(std::clamp(lstFound_->currentRow() + by, 0, last));
}

void FindBox::choose(int row) {
    if (row < 0 || row >= static_cast<int>(found_.size())) return;
    const QString key = found_[static_cast<std::size_t>(row)].key;
    const QString query = txtFind_->text();
    txtFind_->clear();
    Q_EMIT chosen(key, query);
}

}  // namespace zentaq
