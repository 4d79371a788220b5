#include "qt/window_placement.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QScreen>

#include "base/errors.h"
#include "qt/screen_fit.h"
#include "testing/memory_settings.h"

namespace zentaq {
namespace {

// ---- Screens: a laptop of 1366x768 with a bar of 40 below, and a larger one on its right

const QList<QRect> laptop{QRect(0, 0, 1366, 728)};
const QList<QRect> laptopAndScreen{QRect(0, 0, 1366, 728), QRect(1366, 0, 1920, 1080)};

TEST(FittedOnScreens, AWindowThatFitsStaysWhereItIs) {
    EXPECT_EQ(fittedOnScreens(QRect(50, 60, 800, 600), laptop), QRect(50, 60, 800, 600));
    EXPECT_EQ(fittedOnScreens(QRect(2000, 60, 800, 600), laptopAndScreen), QRect(2000, 60, 800, 600));
    EXPECT_EQ(fittedOnScreens(QRect(0, 0, 1366, 728), laptop), QRect(0, 0, 1366, 728));
}

TEST(FittedOnScreens, AWindowOnAScreenThatIsGoneComesToTheFirstOne) {
    // 1366 - 800 = 566, 728 - 600 = 128
    EXPECT_EQ(fittedOnScreens(QRect(2000, 400, 800, 600), laptop), QRect(566, 128, 800, 600));
    EXPECT_EQ(fittedOnScreens(QRect(-3000, -900, 800, 600), laptop), QRect(0, 0, 800, 600));
}

TEST(FittedOnScreens, AWindowThatIsTooLargeIsShrunk) {
    EXPECT_EQ(fittedOnScreens(QRect(100, 100, 5000, 4000), laptop), QRect(0, 0, 1366, 728));
    EXPECT_EQ(fittedOnScreens(QRect(100, 100, 800, 4000), laptop), QRect(100, 0, 800, 728));
}

TEST(FittedOnScreens, AWindowAcrossTwoScreensGoesToTheOneThatShowsMost) {
    EXPECT_EQ(fittedOnScreens(QRect(1200, 0, 800, 600), laptopAndScreen), QRect(1366, 0, 800, 600));
    EXPECT_EQ(fittedOnScreens(QRect(700, 0, 800, 600), laptopAndScreen), QRect(566, 0, 800, 600));
}

TEST(FittedOnScreens, AWindowPartlyOffItsScreenIsPulledBack) {
    EXPECT_EQ(fittedOnScreens(QRect(1000, -50, 800, 600), laptop), QRect(566, 0, 800, 600));
}

TEST(FittedOnScreens, WithoutAScreenNothingChanges) {
    EXPECT_EQ(fittedOnScreens(QRect(5, 6, 7, 8), {}), QRect(5, 6, 7, 8));
}

// ---- Windows, on the one screen of the test

class WindowPlacement : public testing::Test {
 protected:
    MemorySettings settings;

    static QRect screen() { return QApplication::primaryScreen()->availableGeometry(); }
    struct Named : QWidget {
        explicit Named(const QRect& place = {}, QWidget* parent = nullptr) : QWidget(parent) {
            setObjectName(QStringLiteral("frmTABLE"));
            if (place.isValid()) setGeometry(place);
        }
    };
    void keep(const std::string& place) { settings.set("Forms", "frmTABLE", place); }
    QRect restored(bool expected = true) const {
        Named window;
        EXPECT_EQ(restorePlacement(window, settings), expected);
        return window.geometry();
    }
};

TEST_F(WindowPlacement, AWindowComesBackWhereItStood) {
    Named window(QRect(60, 70, 300, 200));
    window.show();
    storePlacement(window, settings);
    EXPECT_EQ(restored(), QRect(60, 70, 300, 200));
}

TEST_F(WindowPlacement, AMaximisedWindowComesBackMaximisedOverItsFormerPlace) {
    Named window(QRect(60, 70, 300, 200));
    window.show();
    window.showMaximized();
    QApplication::processEvents();
    storePlacement(window, settings);
    EXPECT_EQ(settings.get("Forms", "frmTABLE"), "60 70 300 200 1");
    Named again;
    ASSERT_TRUE(restorePlacement(again, settings));
    EXPECT_TRUE(again.isMaximized());
    again.show();
    again.showNormal();
    QApplication::processEvents();
    EXPECT_EQ(again.geometry(), QRect(60, 70, 300, 200));
}

TEST_F(WindowPlacement, AMinimisedWindowComesBackInItsPlace) {
    Named window(QRect(60, 70, 300, 200));
    window.show();
    window.showMinimized();
    QApplication::processEvents();
    storePlacement(window, settings);
    Named again;
    ASSERT_TRUE(restorePlacement(again, settings));
    EXPECT_FALSE(again.isMinimized());
    EXPECT_EQ(again.geometry(), QRect(60, 70, 300, 200));
}

TEST_F(WindowPlacement, APlaceOffTheScreenIsPulledBackOntoIt) {
    keep("20000 20000 300 200 0");
    EXPECT_TRUE(screen().contains(restored()));
    keep("-20000 -20000 300 200 0");
    EXPECT_TRUE(screen().contains(restored()));
}

TEST_F(WindowPlacement, TheTitleBarStaysOnTheScreen) {
    keep("0 0 300 200 0");
    EXPECT_GT(restored().top(), 0) << "a title bar stands above the window's inside";
    keep("0 0 9000 9000 0");
    EXPECT_GT(restored().top(), 0);
}

TEST_F(WindowPlacement, AWindowLargerThanTheScreenIsShrunk) {
    keep("0 0 9000 9000 0");
    const QRect place = restored();
    EXPECT_TRUE(screen().contains(place));
    EXPECT_GT(place.width(), 100);
}

TEST_F(WindowPlacement, NothingStoredChangesNothing) {
    Named window(QRect(10, 20, 300, 200));
    EXPECT_FALSE(restorePlacement(window, settings));
    EXPECT_EQ(window.geometry(), QRect(10, 20, 300, 200));
}

TEST_F(WindowPlacement, AnUnreadableTextChangesNothing) {
    for (const char* text :
         {"", "maximised", "1 2 3", "1 2 3 4 5 6", "a b c d e", "10 20 0 0 0", "10 20 -300 200 0",
          "10 20 300 200000000 0", "1.5 2 300 200 0", "99999999999 0 300 200 0"}) {
        keep(text);
        Named window(QRect(10, 20, 300, 200));
        EXPECT_FALSE(restorePlacement(window, settings)) << text;
        EXPECT_EQ(window.geometry(), QRect(10, 20, 300, 200)) << text;
    }
}

TEST_F(WindowPlacement, AFormInsideAnotherWindowStoresNothing) {
    QWidget outer;
    Named inner({}, &outer);
    storePlacement(inner, settings);
    EXPECT_EQ(settings.get("Forms", "frmTABLE", "none"), "none");
}

TEST_F(WindowPlacement, AStoreThatCannotBeWrittenIsPassedOver) {
    class Closed : public MemorySettings {
        void set(const std::string&, const std::string&, const std::string&) override {
            throw FileError("no space");
        }
    } closed;
    Named window;
    EXPECT_NO_THROW(storePlacement(window, closed));
}

TEST(CentreForm, PutsAWindowInTheMiddleOfTheFrame) {
    QWidget frame;
    frame.setGeometry(100, 100, 500, 400);
    frame.show();
    QWidget form;
    form.resize(200, 100);
    centreForm(form, frame);
    // (500 - 200) / 2 and (400 - 100) / 2 inside the frame
    EXPECT_EQ(form.pos(), frame.mapToGlobal(QPoint(150, 150)));
    EXPECT_EQ(form.size(), QSize(200, 100));
}

TEST(CentreForm, PutsAChildInTheMiddleByItsOwnPlaces) {
    QWidget frame;
    frame.resize(500, 400);
    QWidget form(&frame);
    form.resize(200, 101);
    centreForm(form, frame);
    EXPECT_EQ(form.pos(), QPoint(150, 149));  // 299 / 2
}

TEST(CentreForm, KeepsTheWindowOnTheScreen) {
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    QWidget frame;
    frame.setGeometry(screen.right() - 100, screen.bottom() - 100, 90, 90);
    frame.show();
    QWidget form;
    form.resize(400, 300);
    centreForm(form, frame);
    EXPECT_TRUE(screen.contains(QRect(form.pos(), form.size())));
}

}  // namespace
}  // namespace zentaq
