// Walks the gallery and measures what is drawn.
#include "gallery/gallery.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "gallery/own_widgets.h"
#include "qt/contrast.h"
#include "qt/look.h"
#include "windows/layout_faults.h"

namespace zentaq {
namespace {

/// The colour that covers most of an area.
QColor groundOf(const QImage& picture, const QRect& area) {
    std::map<QRgb, int> count;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) ++count[picture.pixel(x, y)];
    }
    const auto most = std::max_element(count.begin(), count.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return most->first;
}

/// The best contrast that any point of an area has with its ground.
double inkContrast(const QImage& picture, const QRect& area) {
    const QColor ground = groundOf(picture, area);
    double best = 1;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            best = std::max(best, contrast(picture.pixelColor(x, y), ground));
    }
    return best;
}

int pointsOf(const QImage& picture, const QColor& color) {
    int points = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) points += picture.pixelColor(x, y) == color ? 1 : 0;
    }
    return points;
}

class GalleryWalk : public testing::TestWithParam<DisplayMode> {
 protected:
    GalleryWalk() : before_(appliedLook(*qApp)) {
        applyLook(*qApp, GetParam());
        gallery_ = std::make_unique<Gallery>();
        gallery_->resize(gallery_->width(), gallery_->wholeHeight());
        gallery_->grab();  // lays everything out
    }
    ~GalleryWalk() override {
        gallery_.reset();
        applyLook(*qApp, before_);
    }

    const LookColors& look() const { return lookColors(GetParam()); }

    /// As it stands in the gallery, with the window behind it.
    static QImage pictureOf(const Gallery::Piece& piece) {
        QImage picture(piece.widget->size(), QImage::Format_RGB32);
        picture.fill(lookColors(appliedLook(*qApp)).background.rgb());
        piece.widget->render(&picture);
        return picture;
    }
    const Gallery::Piece& sibling(const Gallery::Piece& piece, Pose pose) const {
        for (const auto& other : gallery_->pieces()) {
            if (other.kind == piece.kind && other.pose == pose) return other;
        }
        ADD_FAILURE() << piece.kind.toStdString();
        return piece;
    }
    /// The row that is selected, without the frame around it.
    static QRect chosenRow(const QAbstractItemView& view) {
        const QRect row = view.visualRect(view.currentIndex()).translated(view.viewport()->pos());
        return row.adjusted(3, 3, -3, -3);
    }

    std::unique_ptr<Gallery> gallery_;

 private:
    DisplayMode before_;
};

bool hasText(const QString& kind) {
    return kind != "Slider" && kind != "Scroll bar";
}

TEST_P(GalleryWalk, EveryTextIsReadInEveryState) {
    ASSERT_GT(gallery_->pieces().size(), 100u);
    for (const auto& piece : gallery_->pieces()) {
        if (!hasText(piece.kind)) continue;
        const QImage picture = pictureOf(piece);
        EXPECT_GE(inkContrast(picture, picture.rect().adjusted(4, 4, -4, -4)), leastTextContrast)
            << piece.widget->objectName().toStdString();
    }
}

TEST_P(GalleryWalk, EveryTextHasItsRoom) {
    gallery_->adjustSize();
    gallery_->grab();
    EXPECT_THAT(layoutFaults(*gallery_, QRect(QPoint(), gallery_->size())), testing::IsEmpty());
}

TEST_P(GalleryWalk, WhatHasTheKeyboardIsFramed) {
    int framed = 0;
    for (const auto& piece : gallery_->pieces()) {
        const bool takesKeys = (piece.widget->focusPolicy() & Qt::TabFocus) != 0;
        if (piece.pose != Pose::Focus || !takesKeys || qobject_cast<QMenu*>(piece.widget) != nullptr)
            continue;
        const int without = pointsOf(pictureOf(sibling(piece, Pose::Normal)), look().focus);
        const int with = pointsOf(pictureOf(piece), look().focus);
        EXPECT_GT(with, without + 150) << piece.widget->objectName().toStdString();
        ++framed;
    }
    EXPECT_GE(framed, 17);
}

TEST_P(GalleryWalk, WhatIsDisabledIsReadAndLooksSo) {
    for (const auto& piece : gallery_->pieces()) {
        if (piece.pose != Pose::Disabled || !hasText(piece.kind)) continue;
        const QImage usable = pictureOf(sibling(piece, Pose::Normal));
        const QImage disabled = pictureOf(piece);
        const QRect inside = disabled.rect().adjusted(4, 4, -4, -4);
        EXPECT_LT(inkContrast(disabled, inside), 0.6 * inkContrast(usable, inside))
            << piece.kind.toStdString();
    }
}

TEST_P(GalleryWalk, ASelectionTellsWhereTheKeyboardIs) {
    int lists = 0;
    for (const auto& piece : gallery_->pieces()) {
        const auto* view = qobject_cast<QAbstractItemView*>(piece.widget);
        if (view == nullptr) continue;
        ++lists;
        const QImage picture = pictureOf(piece);
        const QRect row = chosenRow(*view);
        const QColor expected = piece.pose == Pose::Focus      ? look().accent
                                : piece.pose == Pose::Disabled ? look().disabledGround
                                                               : look().restingSelection;
        EXPECT_EQ(groundOf(picture, row), expected) << piece.widget->objectName().toStdString();
        EXPECT_GE(inkContrast(picture, row), leastTextContrast) << piece.widget->objectName().toStdString();
    }
    EXPECT_EQ(lists, 4 * 5);
}

TEST_P(GalleryWalk, ButtonsAnswerThePointerAndThePress) {
    for (const auto& piece : gallery_->pieces()) {
        if (piece.pose != Pose::Normal || (piece.kind != "Button" && piece.kind != "Tool button")) continue;
        const auto ground = [&](Pose pose) {
            const QImage picture = pictureOf(sibling(piece, pose));
            return groundOf(picture, picture.rect());
        };
        EXPECT_EQ(ground(Pose::Normal), look().button);
        EXPECT_EQ(ground(Pose::Hover), look().hover);
        EXPECT_EQ(ground(Pose::Pressed), look().checked);
        EXPECT_EQ(ground(Pose::Disabled), look().disabledGround);
    }
}

TEST_P(GalleryWalk, WhatOneCanEnterOrPressHasAnEdge) {
    for (const auto& piece : gallery_->pieces()) {
        if (piece.pose != Pose::Normal) continue;
        const bool edged = piece.kind.startsWith("Button") || piece.kind.startsWith("List") ||
                           piece.kind == "Entry field" || piece.kind == "Tree" || piece.kind == "Table" ||
                           piece.kind == "Text" || piece.kind == "Menu" || piece.kind == "Progress";
        if (!edged) continue;
        const QImage picture = pictureOf(piece);
        const QPoint middle = picture.rect().center();
        for (const QPoint at : {QPoint(0, middle.y()), QPoint(picture.width() - 1, middle.y()),
                                QPoint(middle.x(), 0), QPoint(middle.x(), picture.height() - 1)}) {
            EXPECT_GE(contrast(picture.pixelColor(at), look().background), leastMarkContrast)
                << piece.kind.toStdString() << " at " << at.x() << ", " << at.y();
        }
    }
}

TEST_P(GalleryWalk, TheKeysForDayAndNightWork) {
    QKeyEvent day(QEvent::KeyPress, Qt::Key_F7, Qt::NoModifier);
    QApplication::sendEvent(gallery_.get(), &day);
    EXPECT_EQ(appliedLook(*qApp), DisplayMode::Day);
    QKeyEvent night(QEvent::KeyPress, Qt::Key_F8, Qt::NoModifier);
    QApplication::sendEvent(gallery_.get(), &night);
    EXPECT_EQ(appliedLook(*qApp), DisplayMode::Night);
}

/// Every class of the folder's headers that is a control of the toolkit with something of its own.
std::set<std::string> ownControls(const std::string& folder) {
    const std::regex derived(R"(class (\w+)(?: final)? : public (Q\w+))");
    // No controls: what moves, stores or paints for one.
    const std::set<std::string> others{"QObject",
                                       "QApplication",
                                       "QLayout",
                                       "QProxyStyle",
                                       "QValidator",
                                       "QStyledItemDelegate",
                                       "QAbstractTableModel",
                                       "QAbstractListModel",
                                       "QDialog",
                                       "QMainWindow"};
    std::set<std::string> found;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.path().extension() != ".h") continue;
        std::ifstream source(file.path());
        for (std::string line; std::getline(source, line);) {
            std::smatch match;
            if (std::regex_search(line, match, derived) && !others.contains(match[2])) found.insert(match[1]);
        }
    }
    return found;
}

/// Whole windows, and parts of them that are made of what the gallery has; they work on a session.
const std::set<std::string> wholes{
    "FrmConfig",         "FrmDashBoard",      "FrmEditMAPSensors", "FrmGpio",           "FrmGraph2D",
    "CurvePane",         "FrmGeneralConfig",  "FrmHelp",           "FrmTable",          "FrmSplash",
    "ConfigBottom",      "GeneralConfigForm", "FindBox",           "StartPage",         "PageArea",
    "RecorderPage",      "LogValues",         "FrmDetailInfo",     "LogHistogramPanel", "LogScatterPanel",
    "LogScatterPicture", "DashboardPicture"};

TEST_P(GalleryWalk, ShowsEveryControlOfTheProgramsOwn) {
    std::set<std::string> shown;
    for (const QWidget* widget : gallery_->findChildren<QWidget*>()) {
        for (const QMetaObject* kind = widget->metaObject(); kind != nullptr; kind = kind->superClass()) {
            shown.insert(QByteArray(kind->className()).replace("zentaq::", "").toStdString());
        }
    }
    std::set<std::string> all = ownControls(ZENTAQ_SOURCE_DIR "/src/qt");
    all.merge(ownControls(ZENTAQ_SOURCE_DIR "/src/windows"));
    EXPECT_GE(all.size(), 30u);
    for (const std::string& control : all) {
        EXPECT_TRUE(shown.contains(control) || wholes.contains(control)) << control;
    }
    for (const std::string& whole : wholes) EXPECT_TRUE(all.contains(whole)) << whole << " has gone";
}

TEST_P(GalleryWalk, ShowsEveryPartOfTheStateStripInEveryTone) {
    std::set<StripPart> parts;
    std::set<StripTone> tones;
    for (const StripFacts& facts : stripStates()) {
        for (const StripRow& row : stripRows(facts)) {
            if (row.text.empty()) continue;
            parts.insert(row.part);
            tones.insert(row.tone);
        }
    }
    EXPECT_EQ(parts.size(), stripRows({}).size());
    EXPECT_EQ(tones.size(), 6u);
}

TEST_P(GalleryWalk, WhatHasColorsOfItsOwnFollowsTheKeysForDayAndNight) {
    const auto pictureOfOwn = [&] { return gallery_->findChild<OwnWidgets*>()->grab().toImage(); };
    const QImage made = pictureOfOwn();
    const bool day = GetParam() == DisplayMode::Day;
    for (const int key : {day ? Qt::Key_F8 : Qt::Key_F7, day ? Qt::Key_F7 : Qt::Key_F8}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(gallery_.get(), &press);
    }
    EXPECT_EQ(pictureOfOwn(), made) << "there and back";
}

INSTANTIATE_TEST_SUITE_P(ByDayAndNight, GalleryWalk, testing::Values(DisplayMode::Day, DisplayMode::Night),
                         [](const auto& mode) { return mode.param == DisplayMode::Day ? "Day" : "Night"; });

}  // namespace
}  // namespace zentaq
