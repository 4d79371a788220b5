#include "qt/outlined_style.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>

#include "qt/look.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

class Outlines : public testing::TestWithParam<DisplayMode> {
 protected:
    Outlines() : before_(appliedLook(*qApp)) { applyLook(*qApp, GetParam()); }
    ~Outlines() override { applyLook(*qApp, before_); }

    /// The best contrast with `ground` that any point on the row through the middle of the control has.
    template <typename Control>
    double edgeContrast(int from, int to) {
        Control control;
        control.resize(120, 30);
        control.clearFocus();
        return bestContrast(control.grab().toImage(), from, to, 15, lookColors(GetParam()).background);
    }

    static double bestContrast(const QImage& picture, int from, int to, int y, const QColor& ground) {
        double best = 1;
        for (int x = from; x < to; ++x) best = std::max(best, contrast(picture.pixelColor(x, y), ground));
        return best;
    }

 private:
    DisplayMode before_;
};

// The accessibility guidelines ask 3 to 1 of the edge of a control.
TEST_P(Outlines, OfAnEntryBoxStandOffTheWindow) {
    EXPECT_GT(edgeContrast<QLineEdit>(0, 3), 3.0);
}
// A box that is not ticked is all edge.
TEST_P(Outlines, OfACheckBoxStandOffTheWindow) {
    EXPECT_GT(edgeContrast<QCheckBox>(0, 20), 3.0);
}
TEST_P(Outlines, OfARadioButtonStandOffTheWindow) {
    EXPECT_GT(edgeContrast<QRadioButton>(0, 20), 3.0);
}
TEST_P(Outlines, OfACheckBoxInAListStandOffTheList) {
    QListWidget list;
    auto* item = new QListWidgetItem(&list);  // without a text: nothing but the box is drawn
    item->setCheckState(Qt::Unchecked);
    list.resize(120, 90);
    const QRect row = list.visualItemRect(item);
    const QImage picture = list.viewport()->grab().toImage();
    EXPECT_GT(bestContrast(picture, 0, 20, row.center().y(), lookColors(GetParam()).surface), 3.0);
}

INSTANTIATE_TEST_SUITE_P(ByDayAndNight, Outlines, testing::Values(DisplayMode::Day, DisplayMode::Night),
                         [](const auto& mode) { return mode.param == DisplayMode::Day ? "Day" : "Night"; });

}  // namespace
}  // namespace zentaq
