// What docs/how-to/add-an-option.md adds is shown, found, stored and followed; walk.py compiles and runs this
// on the edited sources.
#include <gtest/gtest.h>

#include "windows/frm_options_fixture.h"

namespace zentaq {
namespace {

class AddedOption : public OptionsWindowTest {
 protected:
    bool noted() const {
        return std::ranges::any_of(fake.session.console.lines(), [](const std::string& line) {
            return line.find("The options were applied.") != std::string::npos;
        });
    }
};

TEST_F(AddedOption, IsShownAsItsRowTellsIt) {
    open();
    auto* box = the<QCheckBox>("chkLogApply");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), "Note eac&h Apply in the system log");
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(box->accessibleName(), "Note each Apply in the system log");
}

TEST_F(AddedOption, IsFoundByTheWordsOfItsRow) {
    ASSERT_FALSE(findOptions("note apply").empty());
    EXPECT_EQ(findOptions("note apply").front()->control, "chkLogApply");
    EXPECT_FALSE(findOptions("trace console log apply").empty());
}

TEST_F(AddedOption, IsStoredAndFollowedWithApply) {
    open();
    the<QCheckBox>("chkLogApply")->click();
    EXPECT_EQ(stored("LogApply"), "");
    EXPECT_FALSE(noted());
    the<QPushButton>("cmdApply")->click();
    EXPECT_EQ(stored("LogApply"), "1");
    EXPECT_TRUE(noted());
}

}  // namespace
}  // namespace zentaq
