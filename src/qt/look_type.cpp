// Type and spacing.
#include <QFontDatabase>
#include <QFontMetrics>
#include <algorithm>

#include "qt/look.h"

namespace zentaq {

namespace {

constexpr qreal baseSizePoints = 11.0;
constexpr qreal consoleSizePoints = 10.0;

struct TypeStep {
    qreal factor;
    bool bold;
};

TypeStep stepOf(Type type) {
    switch (type) {
        case Type::Remark:
            return {0.9, false};
        case Type::Body:
            return {1.0, false};
        case Type::Strong:
            return {1.0, true};
        case Type::Caption:
            return {1.1, false};
        case Type::Badge:
            return {1.0, true};
        case Type::Strip:
            return {1.2, true};
        case Type::Heading:
            return {1.2, true};
        case Type::Value:
            return {1.6, true};
        case Type::Title:
            return {1.8, true};
        case Type::Display:
            return {2.4, true};
    }
    return {1.0, false};
}

/// Eighths of the font's height.
int eighthsOf(Space step) {
    switch (step) {
        case Space::None:
            return 0;
        case Space::Line:
            return 1;
        case Space::Tight:
            return 2;
        case Space::Normal:
            return 4;
        case Space::Wide:
            return 8;
        case Space::Section:
            return 12;
    }
    return 0;
}

}  // namespace

qreal typeFactor(Type type) {
    return stepOf(type).factor;
}

QFont typeFont(Type type) {
    const auto [factor, bold] = stepOf(type);
    QFont font = baseFont();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(bold);
    return font;
}

QFont baseFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(std::max(font.pointSizeF(), baseSizePoints));
    return font;
}

QFont consoleFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPointSizeF(std::max(font.pointSizeF(), consoleSizePoints));
    return font;
}

QFont valueFont(qreal factor) {
    QFont font = baseFont();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(true);
    return font;
}

int space(const QFontMetrics& metrics, Space step) {
    const int eighths = eighthsOf(step);
    return eighths == 0 ? 0 : std::max(1, metrics.height() * eighths / 8);
}

QMargins margins(const QFontMetrics& metrics, Space around) {
    return margins(metrics, around, around);
}

QMargins margins(const QFontMetrics& metrics, Space sides, Space ends) {
    const int beside = space(metrics, sides);
    const int above = space(metrics, ends);
    return {beside, above, beside, above};
}

int edgeWidth(const QFontMetrics& metrics) {
    return std::max(2, space(metrics, Space::Line));
}

int digitsWidth(const QFontMetrics& metrics, int count) {
    int widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    }
    return widest * count;
}

}  // namespace zentaq
