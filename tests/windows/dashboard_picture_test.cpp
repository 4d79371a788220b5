// The dashboard as a picture of the user's own.
#include "windows/dashboard_picture.h"

#include <QImage>
#include <QLineF>
#include <filesystem>
#include <fstream>

#include "windows/dashboard_drawn.h"
#include "windows/own_picture.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;

class PictureOfTheUsers : public TableWindowsTest {
 protected:
    const fs::path images = fs::path(fake.session.applicationFolder()) / "bin" / "images";

    PictureOfTheUsers() {
        fs::create_directories(images);
        windows.main().setWindowState(Qt::WindowNoState);
        windows.main().resize(1366, 700);
        windows.main().show();
        settle();
    }
    FrmDashBoardPanel& panel() { return windows.dashboard()->panel(); }
    DashboardPicture& picture() { return *panel().picture; }
    void put(const std::string& name, const QColor& color, QSize size = {pictureWidth, pictureHeight}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        ASSERT_TRUE(image.save(QString::fromStdString((images / name).string())));
    }
    void write(const std::string& name, const std::string& content) {
        std::ofstream(images / name, std::ios::binary) << content;
    }
    void night() {
        windows.nightMode();
        settle();
    }
    void day() {
        windows.dayMode();
        settle();
    }
    /// What the panel shows where no needle and no read-out is: between the dials of the temperatures.
    QColor ground() {
        const QImage seen = picture().grab().toImage();
        return seen.pixelColor(500 * seen.width() / pictureWidth, 180 * seen.height() / pictureHeight);
    }
    int told(const std::string& text) const {
        std::ifstream log(fake.session.LogFile);
        int lines = 0;
        for (std::string line; std::getline(log, line);) lines += line.find(text) != std::string::npos;
        return lines;
    }
};

TEST_F(PictureOfTheUsers, StandsInThePlaceOfTheDialsInItsOwnMode) {
    put("DashBoard_9000_White.bmp", Qt::darkGreen);
    day();
    EXPECT_TRUE(picture().isVisible());
    EXPECT_EQ(ground(), QColor(Qt::darkGreen));
    EXPECT_FALSE(panel().gauge("Tachometer").isVisible());
    EXPECT_TRUE(panel().label("lblTPS").isVisible());
    night();
    EXPECT_FALSE(picture().isVisible());
    EXPECT_TRUE(panel().gauge("Tachometer").isVisible());
}

TEST_F(PictureOfTheUsers, OfAnySizeIsStretchedAndKeepsItsShape) {
    put("DashBoard_9000_White.bmp", Qt::darkGreen, {1920, 600});
    day();
    const QSize size = picture().size();
    EXPECT_NEAR(static_cast<double>(size.width()) / size.height(), 3.2, 0.02);
    EXPECT_EQ(ground(), QColor(Qt::darkGreen));
    EXPECT_TRUE(panel().rect().contains(picture().geometry()));
}

TEST_F(PictureOfTheUsers, FollowsTheRevLimit) {
    put("Dashboard_18000_White.bmp", Qt::darkBlue);
    day();
    EXPECT_FALSE(picture().isVisible());
    fake.session.currentUnitObject().set("REV_Limiter", 9500);
    windows.tell(&WindowNews::updateDisplay);
    settle();
    EXPECT_TRUE(picture().isVisible());
    EXPECT_EQ(ground(), QColor(Qt::darkBlue));
}

TEST_F(PictureOfTheUsers, HasNeedlesThatTurnAroundTheToldCentres) {
    DashboardPicture needles(nullptr);
    needles.setImage(QImage(640, 200, QImage::Format_RGB32));
    needles.resize(640, 200);
    needles.setAngle(Needle::Tachometer, 90);
    EXPECT_EQ(needles.needleLine(Needle::Tachometer).p1(), QPointF(223, 99));
    EXPECT_NEAR(needles.needleLine(Needle::Tachometer).x2(), 316, 1e-9);
    needles.resize(1280, 400);
    EXPECT_NEAR(needles.needleLine(Needle::Tachometer).x2(), 632, 1e-9);
    EXPECT_NEAR(needles.needleLine(Needle::Tachometer).y2(), 198, 1e-9);
}

TEST_F(PictureOfTheUsers, ShowsEachNeedleInItsColor) {
    DashboardPicture needles(nullptr);
    QImage black(640, 200, QImage::Format_RGB32);
    black.fill(Qt::black);
    needles.setImage(black);
    needles.resize(640, 200);
    DashColors colors = dashColors(false);
    colors.needle = QColor(1, 200, 250);
    needles.setColors(colors);
    needles.setAngle(Needle::Tachometer, 0);
    needles.setAngle(Needle::AFR, -90);
    needles.setMixtureColor(QColor(Qt::green));
    const QImage seen = needles.grab().toImage();
    EXPECT_EQ(seen.pixelColor(223, 50), colors.needle);
    EXPECT_EQ(seen.pixelColor(100, 72), QColor(Qt::green));
    EXPECT_EQ(seen.pixelColor(60, 72), QColor(Qt::green));
    EXPECT_EQ(seen.pixelColor(50, 72), QColor(Qt::black)) << "behind the end of the needle";
    needles.showFuel(false);
    EXPECT_EQ(needles.grab().toImage().pixelColor(100, 72), QColor(Qt::black));
}

TEST_F(PictureOfTheUsers, IsNotTheOneThatCameWithTheProgram) {
    put("DashBoard_9000_White.bmp", Qt::darkGreen);
    std::ifstream file(images / "DashBoard_9000_White.bmp", std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(file)), {});
    write(madePictures, madeLine(QByteArray::fromStdString(content), "DashBoard_9000_White.bmp"));
    day();
    EXPECT_FALSE(picture().isVisible());
    EXPECT_FALSE(isOwnPicture(images.string() + "/", "DashBoard_9000_White.bmp"));
    put("DashBoard_9000_White.bmp", Qt::darkRed);
    EXPECT_TRUE(isOwnPicture(images.string() + "/", "DashBoard_9000_White.bmp"));
    night();
    day();
    EXPECT_TRUE(picture().isVisible());
}

TEST_F(PictureOfTheUsers, ThatCannotBeReadIsToldOnceAndTheDialsStay) {
    write("DashBoard_9000_White.bmp", "no picture at all");
    for (int turn = 0; turn < 3; ++turn) {
        day();
        EXPECT_FALSE(picture().isVisible());
        EXPECT_TRUE(panel().gauge("Tachometer").isVisible());
        night();
    }
    EXPECT_EQ(told("Picture of the dashboard not shown: "), 1);
    EXPECT_EQ(told("is no picture that can be read: "), 1);
}

TEST_F(PictureOfTheUsers, OfTooManyPixelsOrBytesOrNoFileIsTold) {
    put("DashBoard_9000_White.bmp", Qt::red, {8193, 1});
    day();
    EXPECT_EQ(told("has more than 8192 pixels on a side"), 1);
    night();
    fs::resize_file(images / "DashBoard_9000_White.bmp", 16 * 1024 * 1024 + 1);
    day();
    EXPECT_EQ(told("Picture of the dashboard not shown: "), 2);
    night();
    fs::remove(images / "DashBoard_9000_White.bmp");
    fs::create_directory(images / "DashBoard_9000_White.bmp");
    day();
    EXPECT_EQ(told("Picture of the dashboard not shown: "), 3);
    EXPECT_TRUE(panel().gauge("Tachometer").isVisible());
}

TEST_F(PictureOfTheUsers, GivesWayToTheNumbersWhereThereIsNoRoom) {
    put("DashBoard_9000_White.bmp", Qt::darkGreen);
    day();
    windows.main().resize(683, 345);
    settle();
    EXPECT_TRUE(panel().label("lblTach").isVisible());
    for (const QWidget* other : panel().findChildren<LiveLabel*>(Qt::FindDirectChildrenOnly)) {
        if (!other->isVisible() || !picture().isVisible()) continue;
        EXPECT_FALSE(other->geometry().intersects(picture().geometry())) << other->objectName().toStdString();
    }
}

TEST(PicturesOfTheProgram, AreAllThereAndListed) {
    const fs::path images = fs::path(ZENTAQ_APP_DIR) / "bin" / "images";
    for (const char* name :
         {"DashBoard_9000_Black.jpg", "Dashboard_18000_Black.jpg", "DashBoard_9000_PZK2_Black.jpg",
          "DashBoard_18000_PZK2_Black.jpg", "DashBoard_9000_White.bmp", "Dashboard_18000_White.bmp",
          "DashBoard_9000_PZK2_White.bmp", "DashBoard_18000_PZK2_White.bmp"}) {
        const QImage image(QString::fromStdString((images / name).string()));
        EXPECT_EQ(image.size(), QSize(640, 200)) << name;
        EXPECT_TRUE(ownPicture(ZENTAQ_APP_DIR, name).image.isNull()) << name;
    }
}

TEST(PicturesOfTheProgram, HaveTheDialsWhereTheNeedlesTurn) {
    const QImage fuel = drawnDashboard(true, 9000, true);
    const QImage ignition = drawnDashboard(true, 9000, false);
    const QColor face = dashColors(true).face;
    const QColor back = dashColors(true).back;
    EXPECT_EQ(fuel.pixelColor(223, 99), face);
    EXPECT_EQ(ignition.pixelColor(223, 99), face);
    EXPECT_EQ(fuel.pixelColor(80, 60), face) << "mixture";
    EXPECT_EQ(ignition.pixelColor(80, 60), back);
    EXPECT_NE(fuel, drawnDashboard(true, 18000, true));
    EXPECT_NE(fuel, drawnDashboard(false, 9000, true));
}

}  // namespace
}  // namespace zentaq
