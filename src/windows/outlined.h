// Texts and lines in the user's own colours. One that would be lost on its ground is drawn with an outline.
#pragma once

#include <QColor>
#include <QLabel>
#include <QLineEdit>
#include <QPen>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStyledItemDelegate>

#include "qt/contrast.h"

class QPainter;

namespace zentaq {

/// One line of text in the painter's font, `baseline` at the left end of its base line.
void drawOutlined(QPainter& painter, QPointF baseline, const QString& text, const QColor& ink,
                  const QColor& ground);
/// The same inside an area: in its middle, or at its left or right edge.
void drawOutlined(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text,
                  const QColor& ink, const QColor& ground);
/// A line in the pen's colour.
void drawOutlined(QPainter& painter, QPointF from, QPointF to, const QPen& pen, const QColor& ground);

/// A label that paints so from its palette.
class OutlinedLabel : public QLabel {
    Q_OBJECT

 public:
    using QLabel::QLabel;

 protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A field without entry that paints so from its palette.
class OutlinedField : public QLineEdit {
    Q_OBJECT

 public:
    using QLineEdit::QLineEdit;

 protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Rows of a list that are painted so from its palette; a selected one has the colours of the selection.
class OutlinedRows : public QStyledItemDelegate {
    Q_OBJECT

 public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

}  // namespace zentaq
