// The marker of the live point over the lowest rows that a table can have: it may cover no digit, neither of
// its own cell nor of the cells around it.
#include "windows/table_marker.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>

#include "qt/contrast.h"
#include "qt/look.h"
#include "tables/cell_ground.h"
#include "tables/table_grid.h"

namespace zentaq {
namespace {

/// Three by three cells as a table's painter writes them, black on white, at the least height of a row.
class MarkerOverDigits {
 public:
    explicit MarkerOverDigits(double growth) {
        font_ = baseFont();
        font_.setPointSizeF(font_.pointSizeF() * growth);
        const QFontMetrics metrics(font_);
        cell_ =
            QSize(metrics.horizontalAdvance("-88.8") + 2 * space(metrics, Space::Tight), metrics.height());
        table_.resize(cell_ * 3);
        digits_ = QImage(table_.size(), QImage::Format_RGB32);
        digits_.fill(Qt::white);
        QPainter painter(&digits_);
        painter.setFont(font_);
        const int gap = space(metrics, Space::Tight);
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column)
                painter.drawText(rectOf(row, column).adjusted(0, 0, -gap, 0),
                                 Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, "-87.7");
        }
    }

    QRect rectOf(int row, int column) const {
        return {QPoint(column * cell_.width(), row * cell_.height()), cell_};
    }

    /// Pixels of the marker round the middle cell, and how many of them lie on a digit.
    struct Inked {
        int all = 0;
        int onDigits = 0;
    };
    Inked inked(DisplayMode mode, QPoint engine, const QColor& ground) {
        TableMarker marker(&table_);
        marker.setColor(lookColors(mode).liveMarker);
        marker.point(rectOf(1, 1), engine, ground);
        QImage drawn(table_.size(), QImage::Format_ARGB32);
        drawn.fill(Qt::transparent);
        marker.render(&drawn, marker.pos(), {}, QWidget::DrawChildren);
        Inked inked;
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x) {
                if (drawn.pixelColor(x, y).alpha() == 0) continue;
                ++inked.all;
                // A digit's own pixel, and not the shade beside it.
                if (digits_.pixelColor(x, y).lightness() < 128) ++inked.onDigits;
            }
        }
        return inked;
    }

 private:
    QFont font_;
    QSize cell_;
    QWidget table_;
    QImage digits_;
};

TEST(TheMarker, CoversNoDigitWhereverTheEngineIsInTheCell) {
    for (const double growth : {1.0, 1.3, 1.9}) {
        MarkerOverDigits table(growth);
        const QRect cell = table.rectOf(1, 1);
        for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
            for (const QColor& ground :
                 {QColor(Qt::yellow), QColor(0xA8A80A), QColor(Qt::white), QColor(Qt::black)}) {
                for (int share = 0; share <= 10; ++share) {
                    const QPoint engine(cell.left() + cell.width() * share / 10,
                                        cell.top() + cell.height() * share / 10);
                    const auto inked = table.inked(mode, engine, ground);
                    EXPECT_GT(inked.all, 0);
                    EXPECT_EQ(inked.onDigits, 0) << "growth " << growth << ", share " << share;
                }
            }
        }
    }
}

/// Those that a cell can have, in steps of a third of each part.
std::vector<QColor> groundsOfCells(DisplayMode mode) {
    const bool night = mode == DisplayMode::Night;
    const Rgb surface = lookColors(mode).surface.rgb() & 0xFFFFFF;
    std::vector<QColor> grounds;
    for (int red = 0; red <= 255; red += 85) {
        for (int green = 0; green <= 255; green += 85) {
            for (int blue = 0; blue <= 255; blue += 85) {
                for (const int trail : {TableGrid::noTrail, 0, 1, 2, 3})
                    grounds.emplace_back(
                        QRgb(cellGround(red + 256 * green + 65536 * blue, trail, night, surface)));
            }
        }
    }
    return grounds;
}

/// How many pixels stand out from the ground. A drawing has few colors: each is compared once.
int pixelsSeenOn(const QColor& ground, const QImage& drawn) {
    std::map<QRgb, int> pixels;
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) ++pixels[drawn.pixel(x, y)];
    }
    int seen = 0;
    for (const auto& [color, count] : pixels) {
        if (contrast(QColor(color), ground) >= leastMarkContrast) seen += count;
    }
    return seen;
}

TEST(TheMarker, IsSeenOnEveryColorThatACellCanHave) {
    QWidget table;
    constexpr QRect cell(60, 30, 60, 30);
    table.resize(180, 90);
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        TableMarker marker(&table);
        marker.setColor(lookColors(mode).liveMarker);
        for (const QColor& ground : groundsOfCells(mode)) {
            marker.point(cell, cell.center(), ground);
            QImage drawn(table.size(), QImage::Format_RGB32);
            drawn.fill(ground);
            marker.render(&drawn, marker.pos(), {}, QWidget::DrawChildren);
            EXPECT_GE(pixelsSeenOn(ground, drawn), cell.width()) << ground.name().toStdString();
        }
    }
}

TEST(TheMarker, StandsRoundItsCellAndKnowsThePlaceOfTheEngine) {
    QWidget table;
    table.resize(300, 200);
    TableMarker marker(&table);
    marker.setColor(Qt::red);
    marker.point({100, 40, 60, 20}, {130, 52}, Qt::white);
    EXPECT_EQ(marker.cell(), QRect(100, 40, 60, 20));
    EXPECT_EQ(marker.engine(), QPoint(130, 52));
    EXPECT_TRUE(marker.geometry().contains(marker.cell()));
}

}  // namespace
}  // namespace zentaq
