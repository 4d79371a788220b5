#include "qt/kept_splitter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>

#include "testing/memory_settings.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

/// Two parts in a splitter 1005 pixels long, the handle 5 of them: 300 to the first one by default.
class KeptSplitterTest : public testing::Test {
 protected:
    MemorySettings settings;
    std::unique_ptr<KeptSplitter> splitter;

    void make(int length = 1005) {
        splitter = std::make_unique<KeptSplitter>(Qt::Horizontal, "splTest", settings, [](int all) {
            return QList<int>{300, all - 300};
        });
        splitter->setHandleWidth(5);
        splitter->addWidget(new QWidget);
        splitter->addWidget(new QWidget);
        splitter->resize(length, 100);
        splitter->show();
        QApplication::processEvents();
    }
    int first() const { return splitter->sizes().at(0); }
    /// As the mouse does.
    void drag(int to) {
        splitter->setSizes({to, splitter->width() - to - 5});
        Q_EMIT splitter->splitterMoved(to, 1);
    }
    std::string stored() const { return settings.get("Forms", "splTest"); }
};

TEST_F(KeptSplitterTest, SharesByDefaultAndStoresNothingUntilTheUserMovesAHandle) {
    make();
    EXPECT_NEAR(first(), 300, 3);
    splitter->resize(2005, 100);
    EXPECT_NEAR(first(), 300, 3);
    splitter.reset();
    EXPECT_EQ(stored(), "");
}

TEST_F(KeptSplitterTest, ComesBackWhereTheUserLeftIt) {
    make();
    drag(500);
    splitter.reset();
    EXPECT_EQ(stored(), "500 500");
    make();
    EXPECT_NEAR(first(), 500, 3);
}

TEST_F(KeptSplitterTest, APlaceOfALargeScreenIsAShareOfASmallOne) {
    settings.set("Forms", "splTest", "1600 400");
    make(505);
    EXPECT_NEAR(first(), 400, 3);
}

TEST_F(KeptSplitterTest, KeepsItsSharesInAWindowThatGrows) {
    make();
    drag(500);
    splitter->resize(2005, 100);
    EXPECT_NEAR(first(), 1000, 4);
}

TEST_F(KeptSplitterTest, DamagedPlacesAreNone) {
    for (const char* damaged : {"left right", "0 0", "500", "500 300 200", "-5 500", "9999999 1",
                                "AAAA/wAAAAEAAAACAAABZAAAAn8B/////wEAAAABAA=="}) {
        settings.set("Forms", "splTest", damaged);
        make();
        EXPECT_NEAR(first(), 300, 3) << damaged;
    }
}

TEST_F(KeptSplitterTest, AStoreThatCannotBeReadHasNoPlace) {
    class Unreadable : public MemorySettings {
     public:
        std::string get(const std::string&, const std::string&, const std::string&) const override {
            throw std::runtime_error("no settings");
        }
    } unreadable;
    KeptSplitter alone(Qt::Horizontal, "splTest", unreadable, [](int all) {
        return QList<int>{300, all - 300};
    });
    alone.addWidget(new QWidget);
    alone.addWidget(new QWidget);
    alone.resize(1005, 100);
    alone.show();
    QApplication::processEvents();
    EXPECT_NEAR(alone.sizes().at(0), 300, 5);
}

TEST_F(KeptSplitterTest, NoPartCanBePushedOutOfSight) {
    settings.set("Forms", "splTest", "0 1000");
    make();
    EXPECT_FALSE(splitter->childrenCollapsible());
    splitter->widget(0)->setMinimumWidth(80);
    splitter->setSizes({0, 1000});
    EXPECT_GE(first(), 80);
}

TEST_F(KeptSplitterTest, AHiddenPartKeepsItsShare) {
    make();
    drag(400);
    splitter->widget(0)->hide();
    Q_EMIT splitter->splitterMoved(0, 1);
    splitter.reset();
    EXPECT_TRUE(stored().starts_with("400 ")) << stored();
}

/// A widget with a wish of its own, as lists and trees have.
class Wide : public QWidget {
 public:
    QSize sizeHint() const override { return {150, 50}; }
};

class LatePart : public KeptSplitterTest {
 protected:
    /// A splitter on the screen with one part, and another one before it that is not in view yet.
    QWidget* makeLate() {
        splitter = std::make_unique<KeptSplitter>(Qt::Horizontal, "splTest", settings, [](int all) {
            return QList<int>{300, all - 300};
        });
        splitter->setHandleWidth(5);
        splitter->addWidget(new Wide);
        splitter->resize(1005, 100);
        splitter->show();
        QApplication::processEvents();
        auto* late = new Wide;
        late->hide();
        splitter->insertWidget(0, late);
        QApplication::processEvents();
        return late;
    }
};

TEST_F(LatePart, HasThePlaceThatWasKept) {
    settings.set("Forms", "splTest", "600 400");
    QWidget* late = makeLate();
    ASSERT_EQ(first(), 0);
    late->show();
    QApplication::processEvents();
    EXPECT_NEAR(first(), 600, 3);
    late->hide();
    QApplication::processEvents();
    late->show();
    QApplication::processEvents();
    EXPECT_NEAR(first(), 600, 3) << "and comes back to it";
    splitter.reset();
    EXPECT_EQ(stored(), "600 400") << "nobody has moved anything";
}

TEST_F(LatePart, HasItsDefaultWhereNoPlaceWasKept) {
    makeLate()->show();
    QApplication::processEvents();
    EXPECT_NEAR(first(), 300, 3);
}

TEST_F(KeptSplitterTest, ToDefaultForgetsThePlace) {
    make();
    drag(700);
    restoreSplitters(*splitter->window());
    EXPECT_NEAR(first(), 700, 3) << "it is inside of none";
    splitter->toDefault();
    EXPECT_NEAR(first(), 300, 3);
    splitter.reset();
    EXPECT_EQ(stored(), "");
}

TEST_F(KeptSplitterTest, AllInsideAWindowAreBroughtBackAtOnce) {
    make();
    QWidget window;
    window.resize(1005, 100);
    splitter->setParent(&window);
    splitter->resize(1005, 100);
    window.show();
    drag(700);
    restoreSplitters(window);
    EXPECT_NEAR(first(), 300, 3);
    splitter->setParent(nullptr);
}

}  // namespace
}  // namespace zentaq
