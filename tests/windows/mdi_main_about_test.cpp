// The box that tells what runs, with which file and unit.
#include "windows/mdi_main_about.h"

#include <gtest/gtest.h>

#include <QLabel>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class About : public WindowTest {
 protected:
    std::string text(const char* control) {
        const FrmAbout about(fake.session, &windows.main());
        return about.findChild<QLabel*>(control)->text().toStdString();
    }
};

TEST_F(About, ShowsControlCharactersOfAFileNameByTheirNumbers) {
    fake.session.CurrentFile = "/a/\x1B[2J\nStreet <b>Four</b>.ZQ4OA";
    EXPECT_EQ(text("lblFile"), "/a/\\x1B[2J\\nStreet <b>Four</b>.ZQ4OA");
}

TEST_F(About, ShowsTheVersionAsItIs) {
    fake.session.VersionText = "4.10.2";
    EXPECT_EQ(text("lblVersion"), "4.10.2");
}

}  // namespace
}  // namespace zentaq
