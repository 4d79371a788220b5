#include "windows/frm_detail_info.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>
#include <algorithm>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr const char* widest = "-00.000";
constexpr const char* notTold = "The unit does not tell it";

}  // namespace

FrmDetailInfo::FrmDetailInfo(QWidget* parent) : QWidget(parent) {
    named(this, "frmDetailInfo", "Detail monitor");
    btnShowDash_ = named(new QPushButton("Dash", this), "btnShowDash", "Show the dashboard");
    btnShowDash_->setToolTip("Back to the dashboard (Esc)");
    connect(btnShowDash_, &QPushButton::clicked, this, &FrmDetailInfo::dashAsked);
    page_ = new QWidget;
    area_ = named(new PageArea(this), "scrDetailInfo");
    area_->setPage(page_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area_, 1);
    layout->addWidget(btnShowDash_, 0, Qt::AlignBottom);
    hide();
}

void FrmDetailInfo::showForm() {
    show();
    btnShowDash_->setFocus();
}

void FrmDetailInfo::hideForm() {
    hide();
}

void FrmDetailInfo::makeCells(const std::vector<DetailCell>& cells) {
    for (const Cell& cell : cells_) delete cell.box;
    cells_.clear();
    delete page_->layout();
    for (const DetailCell& told : cells) {
        Cell cell;
        cell.box = new QWidget(page_);
        auto* line = new QHBoxLayout(cell.box);
        line->setContentsMargins(0, 0, space(fontMetrics(), Space::Wide), 0);
        line->setSpacing(space(fontMetrics(), Space::Tight));
        const QString caption = qString(told.caption);
        cell.caption = plainLabel("lblDetailCaption", {}, cell.box);
        cell.caption->setText(caption);
        const QString meaning = caption + (told.unit.empty() ? "" : " in " + qString(told.unit)) +
                                (told.told ? "" : QString(". ") + notTold);
        cell.value = explained(new ValueLabel(widest, cell.box), "lblDetail_" + caption, meaning);
        cell.value->setFont(typeFont(Type::Strong));
        if (!told.told) cell.box->setToolTip(notTold);
        line->addWidget(cell.caption, 1);
        line->addWidget(cell.value);
        cells_.push_back(cell);
    }
    columns_ = 0;
    arrange();
    colour();
}

void FrmDetailInfo::updateDetailInfoValues(const std::vector<DetailCell>& cells) {
    bool same = cells.size() == cells_.size();
    for (std::size_t i = 0; same && i < cells.size(); ++i)
        same = cells_[i].caption->text() == qString(cells[i].caption);
    if (!same) makeCells(cells);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (std::exchange(cells_[i].text, cells[i].value) == cells[i].value) continue;
        cells_[i].value->showValue(qString(cells[i].value));
    }
}

// Down the columns, in the order of the grid, as many columns as the width has room for.
void FrmDetailInfo::arrange() {
    if (cells_.empty()) return;
    int width = 1;
    for (const Cell& cell : cells_) width = std::max(width, cell.box->sizeHint().width());
    // By the room of the window: the page follows it later, and its scroll bar comes and goes.
    const int beside = btnShowDash_->sizeHint().width() + space(fontMetrics(), Space::Wide) +
                       style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const int columns = std::clamp((this->width() - beside) / width, 1, static_cast<int>(cells_.size()));
    if (std::exchange(columns_, columns) == columns && page_->layout() != nullptr) return;
    delete page_->layout();
    auto* grid = new QGridLayout(page_);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    const int count = static_cast<int>(cells_.size());
    const int rows = (count + columns - 1) / columns;
    for (int i = 0; i < count; ++i) grid->addWidget(cells_[static_cast<std::size_t>(i)].box, i % rows, i / rows);
    for (int column = 0; column < columns; ++column) grid->setColumnStretch(column, 1);
    grid->setRowStretch(rows, 1);
}

void FrmDetailInfo::setLive(bool live) {
    if (std::exchange(live_, live) != live) colour();
}

void FrmDetailInfo::colour() {
    const LookColors& look = lookNow();
    const auto ink = [](QWidget& widget, const QColor& color) {
        QPalette palette = widget.palette();
        palette.setColor(QPalette::WindowText, color);
        widget.setPalette(palette);
    };
    for (const Cell& cell : cells_) {
        ink(*cell.caption, look.mutedText);
        ink(*cell.value, live_ ? look.text : look.disabledText);
    }
}

void FrmDetailInfo::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void FrmDetailInfo::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) colour();
}

void FrmDetailInfo::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) return dashAsked();
    QWidget::keyPressEvent(event);
}

}  // namespace zentaq
