// The user's colours on the ground of the mode in force: what would be lost has an outline. Contrasts by
// hand.
#include "windows/outlined.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QVBoxLayout>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

/// Pixels about as dark as black.
int darkPixels(const QImage& picture) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) count += picture.pixelColor(x, y).lightness() < 60 ? 1 : 0;
    }
    return count;
}

template <typename Draw>
QImage drawnOn(const QColor& ground, Draw draw) {
    QImage picture(200, 60, QImage::Format_RGB32);
    picture.fill(ground);
    QPainter painter(&picture);
    draw(painter);
    return picture;
}

TEST(Outlined, BlackOnWhiteIs21AndEqualColoursAre1) {
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21, 0.01);
    EXPECT_NEAR(contrast(QColor(90, 10, 200), QColor(90, 10, 200)), 1, 0.01);
    EXPECT_NEAR(contrast(Qt::yellow, Qt::white), 1.05 / (0.2126 + 0.7152 + 0.05), 0.01);
}

TEST(Outlined, AColourBelow3To1GetsTheOutlineThatItsGroundAsksFor) {
    EXPECT_EQ(outlineFor(Qt::white, Qt::white), QColor(Qt::black));
    EXPECT_EQ(outlineFor(Qt::yellow, Qt::white), QColor(Qt::black));
    EXPECT_EQ(outlineFor(Qt::black, Qt::black), QColor(Qt::white));
    EXPECT_EQ(outlineFor(Qt::black, Qt::white), std::nullopt);
    EXPECT_EQ(outlineFor(Qt::yellow, Qt::black), std::nullopt);
}

TEST(Outlined, WhiteTextAndLinesAreSeenOnWhite) {
    const QImage text = drawnOn(Qt::white, [](QPainter& painter) {
        drawOutlined(painter, QRectF(0, 0, 200, 60), Qt::AlignCenter, "3250", Qt::white, Qt::white);
    });
    EXPECT_GT(darkPixels(text), 20);
    const QImage line = drawnOn(Qt::white, [](QPainter& painter) {
        drawOutlined(painter, QPointF(10, 30), QPointF(190, 30), QPen(Qt::white, 3), Qt::white);
    });
    EXPECT_GT(darkPixels(line), 180);
}

TEST(Outlined, ATextThatIsSeenHasNone) {
    const QImage plain = drawnOn(Qt::white, [](QPainter& painter) {
        painter.setPen(Qt::blue);
        painter.drawText(QPointF(20, 40), "3250");
    });
    const QImage drawn = drawnOn(Qt::white, [](QPainter& painter) {
        drawOutlined(painter, QPointF(20, 40), "3250", Qt::blue, Qt::white);
    });
    EXPECT_EQ(drawn, plain);
}

class DashboardColours : public WindowTest {
 protected:
    FrmDashBoardPanel& panel() { return windows.dashboard()->panel(); }
    static QImage picture(QWidget& widget) { return widget.grab().toImage(); }
    void store(const char* colour) {
        fake.settings.set("System", "DashLights", colour);
        fake.settings.set("System", "NeedleColor", colour);
        panel().resize(1366, 300);
    }
};

TEST_F(DashboardColours, WhiteLightsChosenAtNightAreReadableByDay) {
    store("16777215");
    windows.dayMode();
    panel().label("lblTach").setText("3250");
    panel().fraNoConnect->show();
    panel().lblGeneral->setText("Connecting...");
    panel().lstGPO->addItem("GPIO1  ON");
    panel().lstGPO->setCurrentRow(-1);
    panel().txtGPIO->setText("GPIO1  ON");
    QCoreApplication::processEvents();
    for (QWidget* piece : std::initializer_list<QWidget*>{&panel().label("lblTach"), panel().lblGeneral,
                                                          panel().lstGPO->viewport(), panel().txtGPIO}) {
        EXPECT_GT(darkPixels(picture(*piece)), 15) << piece->objectName().toStdString();
    }
    // The dial's numbers and needle: the hub and the red zone alone are not dark.
    EXPECT_GT(darkPixels(picture(panel().gauge("Tachometer"))), 300);
}

TEST_F(DashboardColours, TheColoursThatWereChosenStayInForceByDay) {
    store("65535");  // yellow
    windows.dayMode();
    panel().label("lblTach").setText("3250");
    QCoreApplication::processEvents();
    const QImage shown = picture(panel().label("lblTach"));
    int yellow = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x)
            yellow += shown.pixelColor(x, y) == QColor(Qt::yellow) ? 1 : 0;
    }
    EXPECT_GT(yellow, 10);
}

}  // namespace
}  // namespace zentaq
