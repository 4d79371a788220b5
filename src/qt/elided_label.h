// One line that ends in dots where it is longer than its room; its tip and a screen reader have the whole.
#pragma once

#include <QLabel>
#include <QPainter>

#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

class ElidedLabel : public QLabel {
    Q_OBJECT

 public:
    ElidedLabel(const QString& name, const QString& meaning, QWidget* parent) : QLabel(parent) {
        explained(this, name, meaning);
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }

    void show(const QString& line) {
        if (text() == line) return;
        setText(line);
        setToolTip(plainTip(line));
    }

 protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                         fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()));
    }
};

}  // namespace zentaq
