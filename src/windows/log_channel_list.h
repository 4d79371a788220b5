// The list of a log's channels: boxes to tick for those that the plot shows, a search over it, and a channel
// can be dragged from it into a pane.
#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QWidget>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace zentaq {

/// Its rows are dragged by the names of their channels.
class ChannelRows : public QListWidget {
    Q_OBJECT

 public:
    using QListWidget::QListWidget;

 protected:
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QList<QListWidgetItem*>& items) const override;
};

class LogChannelList : public QWidget {
    Q_OBJECT

 public:
    explicit LogChannelList(QWidget* parent);

    /// By the newer names, in the order of the log.
    void fill(const std::vector<std::string>& rows);
    void tick(const std::vector<std::string>& shown);
    /// What a screen reader says behind a caption: "4200 rpm".
    void speak(const std::function<QString(const std::string& channel)>& value);

 Q_SIGNALS:
    void ticked(const QString& channel, bool on);

 private:
    void search();

    QLineEdit* txtFind_;
    ChannelRows* lstChannels_;
    bool ticking_ = false;
};

}  // namespace zentaq
