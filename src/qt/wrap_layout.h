// Widgets in a line, and in a second one where the first is full. The last widget stands at the right edge.
#pragma once

#include <QLayout>
#include <QList>
#include <memory>
#include <vector>

namespace zentaq {

class WrapLayout : public QLayout {
    Q_OBJECT

 public:
    explicit WrapLayout(QWidget* parent) : QLayout(parent) {}
    ~WrapLayout() override;

    void addItem(QLayoutItem* item) override { items_.append(item); }
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override { return items_.value(index); }
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    /// How many widgets stand in each line in this width.
    std::vector<qsizetype> lineCounts(int width) const;
    /// All in one line.
    QSize sizeHint() const override;
    /// The widest widget.
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

 private:
    std::vector<QList<QLayoutItem*>> linesIn(int width) const;
    static int heightOf(const QList<QLayoutItem*>& line);

    QList<QLayoutItem*> items_;
};

}  // namespace zentaq
