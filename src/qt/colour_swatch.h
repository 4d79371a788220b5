// A small field that shows a colour, beside the number that stands for it. It takes no focus and no clicks.
#pragma once

#include <QColor>
#include <QFrame>
#include <optional>
#include <string>

namespace zentaq {

class ColourSwatch : public QFrame {
    Q_OBJECT

 public:
    explicit ColourSwatch(QWidget* parent = nullptr);

    /// Nothing: no colour of one's own, drawn as an empty field with a bar across.
    void setColour(std::optional<QColor> colour);
    std::optional<QColor> colour() const { return colour_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    void tell();

    std::optional<QColor> colour_;
};

/// The number of a colour as it is stored: red + 256 * green + 65536 * blue in decimal.
QString colourText(const QColor& colour);
/// A stored colour; nothing for a text that is no such number.
std::optional<QColor> storedColor(const std::string& text);
QColor colorOfNumber(int number);

}  // namespace zentaq
