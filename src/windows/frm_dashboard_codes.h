// The box with the check-engine codes: the two fields of a code below each other, or on one line with how
// many there are. Its tip has all codes in full.
#pragma once

#include "qt/elided_label.h"
#include "windows/frm_dashboard_colors.h"

namespace zentaq {

class CodeBox : public ElidedLabel {
    Q_OBJECT

 public:
    explicit CodeBox(QWidget* parent);

    /// `fields` are two lines, `line` the same with the number of codes. True when the box has something to
    /// show where there was nothing, or the other way about.
    bool tell(const QString& fields, const QString& line, const QString& tip);
    const QString& fields() const { return fields_; }
    bool tells() const { return !fields_.isEmpty(); }
    void setColors(const DashColors& colors);
    /// On one line whatever the room is.
    void setInLine(bool on);
    /// What any code needs at a height, in its two fields or on one line with the number.
    int leastWidth(int height) const;

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    /// The largest font that has room for the fields, else one line of the least one.
    void fit();
    bool hasRoomFor(const QFont& font) const;
    void onOneLine(bool on);
    void applyColors();

    QString fields_;
    QString line_;
    DashColors colors_;
    bool inLine_ = false;
    bool oneLine_ = false;
};

}  // namespace zentaq
