// LiveLabel: one number of the instrument panel with its caption and unit. Digits stand in places of fixed
// width and to the right, so that a changing number doesn't jump; an unchanged text is not painted again.
#pragma once

#include <QFont>
#include <QPixmap>
#include <QStringList>
#include <QWidget>
#include <optional>

#include "windows/frm_dashboard_colors.h"
#include "windows/spoken_instrument.h"

class QFontMetricsF;

namespace zentaq {

class LiveLabel : public QWidget, public SpokenInstrument {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)

 public:
    struct Form {
        QString name;     ///< control name, "lblTach"
        QString caption;  ///< shown above the number
        QString unit;
        QString widest;  ///< the longest text to come; it settles the size of the digits
    };

    LiveLabel(const Form& form, QWidget* parent);

    const QString& text() const { return text_; }
    void setText(const QString& text);
    const QString& unit() const { return form_.unit; }
    void setUnit(const QString& unit);
    /// What a screen reader says and a tip shows; the caption until it is set.
    void setMeaning(const QString& meaning);
    /// Fills the field with this colour until it is taken back with nullopt.
    void setAlarm(std::optional<QColor> color);
    const std::optional<QColor>& alarm() const { return alarm_; }
    void setColors(const DashColors& colors);

    /// The caption before the number instead of above it, without the unit.
    void setInLine(bool on);

    QSize sizeHint() const override;
    /// What its caption with its unit needs, and as tall a number below.
    QSize minimumSizeHint() const override;
    const QFont& captionFont() const { return captionFont_; }
    const QFont& valueFont() const { return valueFont_; }
    /// The text with its unit; empty while there is none.
    QString plainValue() const override;

 protected:
    bool inAlarm() const override { return alarm_.has_value(); }
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    void fitFonts();
    void fitLine();
    void paintField(QPainter& painter) const;
    void paintDigits(QPainter& painter, const QRect& area) const;
    QRect valueArea() const;

    Form form_;
    QString text_;
    std::optional<QColor> alarm_;
    bool inLine_ = false;
    DashColors colors_;
    QFont captionFont_;
    QFont valueFont_;
    QPixmap picture_;  ///< field, caption and unit, kept until one of them changes
};

/// A lamp with its inscription: lit in a colour or dark.
class LiveLamp : public QWidget, public SpokenInstrument {
    Q_OBJECT

 public:
    LiveLamp(const QString& name, const QString& inscription, QWidget* parent);

    bool lit() const { return color_.has_value(); }
    std::optional<QColor> color() const { return color_; }
    void light(std::optional<QColor> color);
    void setColors(const DashColors& colors);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    QString plainValue() const override { return lit() ? QStringLiteral("on") : QStringLiteral("off"); }
    void paintEvent(QPaintEvent* event) override;

 private:
    QStringList lines(const QFontMetricsF& metrics) const;

    QString inscription_;
    std::optional<QColor> color_;
    DashColors colors_;
};

}  // namespace zentaq
