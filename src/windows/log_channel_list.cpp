#include "windows/log_channel_list.h"

#include <QMimeData>
#include <QVBoxLayout>
#include <algorithm>

#include "logs/log_channel.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "windows/log_plot_area.h"

namespace zentaq {

namespace {

std::string channelOfRow(const QListWidgetItem& item) {
    return item.data(Qt::UserRole).toString().toStdString();
}

}  // namespace

QStringList ChannelRows::mimeTypes() const {
    return {channelMimeType};
}

QMimeData* ChannelRows::mimeData(const QList<QListWidgetItem*>& items) const {
    if (items.isEmpty()) return nullptr;
    auto* channel = new QMimeData;
    channel->setData(channelMimeType, QByteArray::fromStdString(channelOfRow(*items.front())));
    return channel;
}

LogChannelList::LogChannelList(QWidget* parent)
    : QWidget(parent),
      txtFind_(named(new QLineEdit(this), "txtFindChannel", "Find a channel")),
      lstChannels_(named(new ChannelRows(this), "lstChannels", "Channels of the datalog")) {
    makeClearable(txtFind_);
    txtFind_->setPlaceholderText("Find a channel");
    lstChannels_->setDragEnabled(true);
    lstChannels_->setDragDropMode(QAbstractItemView::DragOnly);
    lstChannels_->setToolTip("Tick a channel to plot it, or drag it into a pane or between two of them");
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margins(fontMetrics(), Space::None));
    column->setSpacing(space(fontMetrics(), Space::Tight));
    column->addWidget(txtFind_);
    column->addWidget(lstChannels_, 1);
    connect(txtFind_, &QLineEdit::textChanged, this, &LogChannelList::search);
    connect(lstChannels_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        if (ticking_) return;
        Q_EMIT ticked(item->data(Qt::UserRole).toString(), item->checkState() == Qt::Checked);
    });
}

void LogChannelList::fill(const std::vector<std::string>& rows) {
    ticking_ = true;
    lstChannels_->clear();
    for (const std::string& channel : rows) {
        auto* item = new QListWidgetItem(shownString(channelCaption(channel)), lstChannels_);
        item->setData(Qt::UserRole, qString(channel));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
                       Qt::ItemIsDragEnabled);
        item->setCheckState(Qt::Unchecked);
    }
    ticking_ = false;
    search();
}

void LogChannelList::tick(const std::vector<std::string>& shown) {
    ticking_ = true;
    for (int row = 0; row < lstChannels_->count(); ++row) {
        QListWidgetItem* item = lstChannels_->item(row);
        const bool on = std::ranges::find(shown, channelOfRow(*item)) != shown.end();
        item->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    }
    ticking_ = false;
}

void LogChannelList::speak(const std::function<QString(const std::string& channel)>& value) {
    ticking_ = true;
    for (int row = 0; row < lstChannels_->count(); ++row) {
        QListWidgetItem* item = lstChannels_->item(row);
        item->setData(Qt::AccessibleTextRole, item->text() + u' ' + value(channelOfRow(*item)));
    }
    ticking_ = false;
}

void LogChannelList::search() {
    const QString wanted = txtFind_->text().trimmed();
    for (int row = 0; row < lstChannels_->count(); ++row) {
        QListWidgetItem* item = lstChannels_->item(row);
        const bool found = item->text().contains(wanted, Qt::CaseInsensitive) ||
                           item->data(Qt::UserRole).toString().contains(wanted, Qt::CaseInsensitive);
        item->setHidden(!found);
    }
}

}  // namespace zentaq
