// Channels that are dragged out of the list into the panes of a plot.
#include <QMimeData>
#include <algorithm>

#include "qt/look.h"
#include "windows/log_plot_area.h"

namespace zentaq {

namespace {

/// Of a pane's height, above and below: there a new pane comes.
constexpr double dropBorder = 0.25;

}  // namespace

LogPlotArea::Drop LogPlotArea::dropAt(QPoint at) const {
    for (const auto& pane : drawn_) {
        const QRect room = pane->whole();
        if (at.y() > room.bottom()) continue;
        const auto border = static_cast<int>(room.height() * dropBorder);
        if (at.y() < room.top() + border) return {pane->number(), false};
        if (at.y() > room.bottom() - border) return {pane->number() + 1, false};
        return {pane->number(), true};
    }
    return {drawn_.size(), false};
}

/// A frame around the pane that takes it, or a bar where a new one comes.
void LogPlotArea::showDrop(QPoint at) {
    const Drop drop = dropAt(at);
    if (drawn_.empty()) return band_->setGeometry(rect());
    const int bar = 2 * edgeWidth(fontMetrics());
    QRect room = drawn_[std::min(drop.pane, drawn_.size() - 1)]->whole();
    if (!drop.joins) {
        const int y = drop.pane < drawn_.size() ? room.top() : room.bottom();
        room = QRect(room.left(), y - bar / 2, room.width(), bar);
    }
    band_->setGeometry(room);
    band_->show();
}

void LogPlotArea::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(channelMimeType)) event->acceptProposedAction();
}

void LogPlotArea::dragMoveEvent(QDragMoveEvent* event) {
    if (!event->mimeData()->hasFormat(channelMimeType)) return;
    showDrop(event->position().toPoint());
    event->acceptProposedAction();
}

void LogPlotArea::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    band_->hide();
}

void LogPlotArea::dropEvent(QDropEvent* event) {
    band_->hide();
    const std::string channel = event->mimeData()->data(channelMimeType).toStdString();
    if (channel.empty()) return;
    event->acceptProposedAction();
    const Drop drop = dropAt(event->position().toPoint());
    auto others = panes_;
    if (drop.joins) {
        joinPane(others, channel, drop.pane);
    } else {
        newPane(others, channel, drop.pane);
    }
    panes(others);
}

}  // namespace zentaq
