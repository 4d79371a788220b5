#include "qt/color_dialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTimer>
#include <functional>

namespace zentaq {
namespace {

class ColorDialog : public testing::Test {
 protected:
    const QColor blue{0, 0, 255};
    bool seen = false;

    /// What comes of it where the user does this.
    std::optional<QColor> chosen(const std::function<void(QDialog&, QColorDialog&)>& act) {
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            seen = true;
            act(*dialog, *dialog->findChild<QColorDialog*>("picker"));
            if (dialog->isVisible()) dialog->close();
        });
        return chooseColor(blue, "Needle Color", nullptr);
    }
    static void click(QDialog& dialog, QDialogButtonBox::StandardButton button) {
        dialog.findChild<QDialogButtonBox*>()->button(button)->click();
    }
};

TEST_F(ColorDialog, BeginsWithTheColorInForceAndIsCalledByWhatItIsFor) {
    chosen([&](QDialog& dialog, QColorDialog& picker) {
        EXPECT_EQ(picker.currentColor(), blue);
        EXPECT_EQ(dialog.windowTitle(), "Needle Color");
    });
    EXPECT_TRUE(seen);
}

TEST_F(ColorDialog, GivesWhatIsPickedWhenItIsTaken) {
    const auto color = chosen([](QDialog& dialog, QColorDialog& picker) {
        picker.setCurrentColor(Qt::green);
        click(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_EQ(color, QColor(Qt::green));
}

TEST_F(ColorDialog, GivesNothingWhenItIsGivenUp) {
    const auto color = chosen([](QDialog& dialog, QColorDialog& picker) {
        picker.setCurrentColor(Qt::green);
        click(dialog, QDialogButtonBox::Cancel);
    });
    EXPECT_EQ(color, std::nullopt);
}

TEST_F(ColorDialog, GoesWholeWithEscInThePicker) {
    bool stands = true;
    const auto color = chosen([&](QDialog& dialog, QColorDialog& picker) {
        picker.setCurrentColor(Qt::green);
        picker.reject();  // as Esc does in one of its fields
        stands = dialog.isVisible();
    });
    EXPECT_FALSE(stands);
    EXPECT_EQ(color, std::nullopt);
}

}  // namespace
}  // namespace zentaq
