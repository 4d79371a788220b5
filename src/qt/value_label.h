// A label for a number that changes all the time: right-aligned, every digit in a cell of the same width,
// and a size that depends on the pattern only, so that the layout never moves.
#pragma once

#include <QLabel>

namespace zentaq {

class ValueLabel : public QLabel {
    Q_OBJECT

 public:
    /// `pattern` is the widest text to expect, "-000.0".
    explicit ValueLabel(const QString& pattern, QWidget* parent = nullptr);

    /// Shows a text; costs nothing when it is already shown.
    void showValue(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    qreal cellWidth(QChar character) const;
    qreal textWidth(const QString& text) const;

    const QString pattern_;
};

}  // namespace zentaq
