#include "windows/splash.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTimer>

namespace zentaq {
namespace {

QString operationOf(const FrmSplash& splash) {
    return splash.findChild<QLabel*>("lblOperation")->text();
}

TEST(Splash, ShowsItsTextBehindFourBlanksWhileTheEventLoopLives) {
    FrmSplash splash("4.10.2", nullptr);
    QString shown;
    bool visible = false;
    QTimer::singleShot(10, [&] {
        shown = operationOf(splash);
        visible = splash.isVisible();
    });
    splash.status("Setting Up Environment");
    EXPECT_EQ(shown, "    Setting Up Environment");
    EXPECT_TRUE(visible);
}

TEST(Splash, ShowsATextFromOutsideEscaped) {
    FrmSplash splash("4.10.2", nullptr);
    splash.status("Port <b>tty</b>\x1B[1m");
    EXPECT_EQ(operationOf(splash), "    Port <b>tty</b>\\x1B[1m");
    EXPECT_EQ(splash.findChild<QLabel*>("lblOperation")->textFormat(), Qt::PlainText);
}

TEST(Splash, StaysOnTopAndTakesNoFocus) {
    const FrmSplash splash("4.10.2", nullptr);
    EXPECT_TRUE(splash.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(splash.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(splash.windowFlags() & Qt::BypassWindowManagerHint) << "no manager may keep it on the screen";
}

TEST(Splash, BlocksNobody) {
    const FrmSplash splash("4.10.2", nullptr);
    EXPECT_FALSE(splash.isModal());
}

TEST(Splash, HoldsEachTextForAMoment) {
    FrmSplash splash("4.10.2", nullptr);
    QElapsedTimer time;
    time.start();
    splash.status("Program Activated");
    EXPECT_GE(time.elapsed(), FrmSplash::holdMs - 5);
}

TEST(Splash, AllTextsTogetherCostNoMoreThanASecondAndAHalf) {
    FrmSplash splash("4.10.2", nullptr);
    splash.status("The first one also pays for the window");
    QElapsedTimer time;
    time.start();
    const int texts = 2 * FrmSplash::budgetMs / FrmSplash::holdMs;
    for (int i = 0; i < texts; ++i) splash.status("Initializing Console");
    EXPECT_LT(time.elapsed(), texts * FrmSplash::holdMs * 3 / 4) << "half of the texts are not held";
    EXPECT_EQ(operationOf(splash), "    Initializing Console");
}

TEST(Splash, StaysOnTheScreenBehindItsText) {
    FrmSplash splash("4.10.2", nullptr);
    splash.status("Program Activated");
    EXPECT_TRUE(splash.isVisible()) << "hiding it is the start sequence's";
}

TEST(Splash, StandsInTheMiddleOfTheMainWindow) {
    QWidget main;
    main.setGeometry(100, 100, 600, 500);
    main.show();
    FrmSplash splash("4.10.2", &main);
    splash.status("Program Activated");
    const QPoint off = splash.geometry().center() - main.frameGeometry().center();
    EXPECT_LE(std::abs(off.x()), 1);
    EXPECT_LE(std::abs(off.y()), 1);
}

}  // namespace
}  // namespace zentaq
