#include "windows/frm_dashboard_codes.h"

#include <utility>

#include "qt/look.h"

namespace zentaq {
namespace {

/// Of fixed pitch: the fields of all codes are as wide.
QFont codeFont(Type type) {
    QFont font = consoleFont();
    font.setBold(true);
    font.setPixelSize(QFontInfo(typeFont(type)).pixelSize());
    return font;
}

constexpr auto widestField = "FAIL HI";
constexpr auto widestLine = "88 codes: TPS SEN FAIL HI";

}  // namespace

CodeBox::CodeBox(QWidget* parent)
    : ElidedLabel("lblCheckEngine", "Check engine codes", parent), colors_(dashColors(false)) {
    setAlignment(Qt::AlignCenter);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setFont(codeFont(Type::Strip));
    hide();
}

bool CodeBox::tell(const QString& fields, const QString& line, const QString& tip) {
    if (fields == fields_ && line == line_) return false;
    const bool told = tells();
    fields_ = fields;
    line_ = line;
    setToolTip(plainTip(tip));
    fit();
    return told != tells();
}

void CodeBox::setColors(const DashColors& colors) {
    colors_ = colors;
    applyColors();
}

void CodeBox::setInLine(bool on) {
    if (std::exchange(inLine_, on) != on) fit();
}

int CodeBox::leastWidth(int height) const {
    const QFontMetrics metrics(codeFont(Type::Caption));
    const int sides = 2 * space(metrics, Space::Tight);
    const bool twoLines = !inLine_ && metrics.height() + metrics.lineSpacing() + sides <= height;
    return metrics.horizontalAdvance(QLatin1String(twoLines ? widestField : widestLine)) + sides;
}

void CodeBox::resizeEvent(QResizeEvent* event) {
    ElidedLabel::resizeEvent(event);
    fit();
}

bool CodeBox::hasRoomFor(const QFont& font) const {
    const QSize needed = QFontMetrics(font).size(0, fields_);
    const int side = space(QFontMetrics(font), Space::Line);
    const QSize room = size() - QSize(2 * side, 2 * side);  // the frame comes and goes with the form
    return needed.width() <= room.width() && needed.height() <= room.height();
}

void CodeBox::fit() {
    const QFont large = codeFont(Type::Strip);
    const QFont small = codeFont(Type::Caption);
    const bool largeFits = !inLine_ && hasRoomFor(large);
    setFont(largeFits ? large : small);
    onOneLine(inLine_ || !(largeFits || hasRoomFor(small)));
    setText(oneLine_ ? line_ : fields_);
}

void CodeBox::onOneLine(bool on) {
    if (std::exchange(oneLine_, on) == on) return;
    setFrameShape(on ? QFrame::NoFrame : QFrame::StyledPanel);
    applyColors();
}

/// Among the read-outs of a line it stands out as a lamp does that is lit.
void CodeBox::applyColors() {
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, oneLine_ ? colors_.alarm : colors_.face);
    palette.setColor(QPalette::WindowText, oneLine_ ? colors_.alarmText : colors_.redZone);
    setPalette(palette);
}

void CodeBox::paintEvent(QPaintEvent* event) {
    if (oneLine_) return ElidedLabel::paintEvent(event);
    QLabel::paintEvent(event);
}

}  // namespace zentaq
