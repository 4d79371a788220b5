// The picture of what the settings of a page do. It is looked at only; a screen reader says its words.
#pragma once

#include <QPen>
#include <QWidget>

#include "config/setting_sketch.h"

namespace zentaq {

class SketchPicture : public QWidget {
    Q_OBJECT

 public:
    explicit SketchPicture(QWidget* parent);

    void show(const SettingSketch& sketch);
    const SettingSketch& sketch() const { return sketch_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    QPen penOf(std::size_t line) const;
    double drawLegend(QPainter* painter, double top) const;

    SettingSketch sketch_;
};

}  // namespace zentaq
