#include "qt/icons.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>

#include "app/menu.h"
#include "qt/look.h"
#include "qt/qt_text.h"

namespace zentaq {
namespace {

/// The colours that are drawn without being smoothed away.
std::set<QRgb> inksOf(const QImage& picture) {
    std::set<QRgb> inks;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) == 255) inks.insert(picture.pixel(x, y));
        }
    }
    return inks;
}

class Icons : public testing::Test {
 protected:
    ~Icons() override { applyLook(*qApp, before_); }

 private:
    DisplayMode before_ = appliedLook(*qApp);
};

TEST_F(Icons, AreThereForEveryKeyOfTheToolbar) {
    for (const ToolbarButton& key : toolbarButtons())
        EXPECT_FALSE(icon(qString(key.key)).isNull()) << key.key;
}

TEST_F(Icons, AreDrawnWithNothingButTheColourAskedFor) {
    const QColor ink(10, 200, 30);
    ASSERT_GT(iconNames().size(), 20);
    for (const QString& name : iconNames()) {
        EXPECT_EQ(inksOf(iconPixmap(name, ink, 48, 1).toImage()), std::set<QRgb>{ink.rgb()})
            << name.toStdString();
    }
}

TEST_F(Icons, StayInsideTheirField) {
    for (const QString& name : iconNames()) {
        const QImage picture = iconPixmap(name, Qt::black, 48, 1).toImage();
        for (int at = 0; at < 48; ++at) {
            for (const QPoint edge : {QPoint(at, 0), QPoint(at, 47), QPoint(0, at), QPoint(47, at)}) {
                ASSERT_EQ(qAlpha(picture.pixel(edge)), 0) << name.toStdString();
            }
        }
    }
}

TEST_F(Icons, FollowDayAndNightAndAreMutedWhereTheyAreDisabled) {
    const QIcon save = icon("Save");
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        applyLook(*qApp, mode);
        const LookColors& look = lookColors(mode);
        EXPECT_EQ(inksOf(save.pixmap(48).toImage()), std::set<QRgb>{look.text.rgb()});
        EXPECT_EQ(inksOf(save.pixmap(QSize(48, 48), QIcon::Disabled).toImage()),
                  std::set<QRgb>{look.disabledText.rgb()});
    }
}

// A picture that was blown up has no point of full strength beside an empty one.
TEST_F(Icons, AreDrawnForEveryScaleAndNotBlownUp) {
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        const QPixmap picture = icon("Close").pixmap(QSize(24, 24), ratio);
        EXPECT_EQ(picture.size(), QSize(24, 24) * ratio);
        EXPECT_EQ(picture.toImage(),
                  iconPixmap("Close", lookColors(appliedLook(*qApp)).text, 24, ratio).toImage());
    }
    EXPECT_NE(icon("Close").pixmap(QSize(24, 24), 2.0).toImage(),
              icon("Close").pixmap(QSize(24, 24), 1.0).toImage().scaled(48, 48));
}

TEST_F(Icons, ArePaintedInThePointsOfTheScreen) {
    QPixmap screen(QSize(24, 24) * 1.5);
    screen.setDevicePixelRatio(1.5);
    screen.fill(Qt::transparent);
    QPainter painter(&screen);
    icon("Close").paint(&painter, QRect(0, 0, 24, 24));
    painter.end();
    EXPECT_EQ(screen.toImage(), icon("Close").pixmap(QSize(24, 24), 1.5).toImage());
}

TEST_F(Icons, AnUnknownNameGivesAnEmptyOne) {
    EXPECT_TRUE(icon("No such drawing").isNull());
    EXPECT_TRUE(inksOf(iconPixmap("No such drawing", Qt::black, 24, 1).toImage()).empty());
}

}  // namespace
}  // namespace zentaq
