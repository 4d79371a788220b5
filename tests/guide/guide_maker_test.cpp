// The program that makes the guide, run on folders of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "guide/guide.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class GuideMaker : public ::testing::Test {
 protected:
    GuideMaker() {
        std::filesystem::create_directory(folder.path("in"));
        page("index", "# Contents\n\n- [Fuel](fuel.md)\n");
        page("fuel", "# Fuel\n\nText & more.\n\n## Warm-up fuel\n\n| A | B |\n|---|---|\n| `<1>` | two |\n");
        folder.write("in/guide.css", "body {}\n");
    }

    void page(const std::string& chapter, const std::string& text) {
        folder.write("in/" + chapter + ".md", text);
    }
    int make() {
        const std::string command = "'" ZENTAQ_APP_DIR "/../tools/zentaq-guide' '" + folder.path("in") +
                                    "' '" + folder.path("out") + "' 2>'" + folder.path("error") + "'";
        const int status = std::system(command.c_str());
        error = TemporaryFolder::read(folder.path("error"));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string made(const std::string& name) const {
        return TemporaryFolder::read(folder.path("out/" + name));
    }

    TemporaryFolder folder;
    std::string error;
};

TEST_F(GuideMaker, WritesAPageForEachChapterWithLinksBetweenThem) {
    ASSERT_EQ(make(), 0) << error;
    EXPECT_THAT(made("index.html"), HasSubstr("<a href=\"fuel.html\">Fuel</a>"));
    EXPECT_THAT(made("fuel.html"),
                HasSubstr("<h2 id=\"warm-up-fuel\"><a name=\"warm-up-fuel\"></a>Warm-up fuel"));
    EXPECT_THAT(made("fuel.html"), HasSubstr("<p>Text &amp; more.</p>"));
    EXPECT_THAT(made("fuel.html"), HasSubstr("<code>&lt;1&gt;</code>"));
    EXPECT_THAT(made("fuel.html"), HasSubstr("<title>Fuel</title>"));
    EXPECT_EQ(made("guide.css"), "body {}\n");
}

TEST_F(GuideMaker, ABlockOfCodeHasNoEmptyLineAtItsEnd) {
    page("fuel", "# Fuel\n\n```\nfirst\nlast\n```\n");
    ASSERT_EQ(make(), 0) << error;
    EXPECT_THAT(made("fuel.html"), HasSubstr("<pre><code>first\nlast</code></pre>"));
}

TEST_F(GuideMaker, TheIndexHasTheTextOfParagraphsAndTableRows) {
    ASSERT_EQ(make(), 0) << error;
    const Guide guide = Guide::read(folder.path("out"));
    ASSERT_NE(guide.find("fuel#warm-up-fuel"), nullptr);
    EXPECT_THAT(guide.find("fuel")->blocks, ElementsAre("Text & more."));
    EXPECT_THAT(guide.find("fuel#warm-up-fuel")->blocks, ElementsAre("A - B", "<1> - two"));
}

struct Mistake {
    const char *name, *chapter, *text, *told;
};

class GuideMistake : public GuideMaker, public ::testing::WithParamInterface<Mistake> {};

TEST_P(GuideMistake, StopsTheBuildAndIsToldWithItsFile) {
    page(GetParam().chapter, GetParam().text);
    EXPECT_EQ(make(), 1);
    EXPECT_THAT(error, HasSubstr(GetParam().told));
    EXPECT_FALSE(std::filesystem::exists(folder.path("out")));
}

INSTANTIATE_TEST_SUITE_P(
    GuideMaker, GuideMistake,
    ::testing::Values(Mistake{"ALinkToAMissingChapter", "fuel", "# Fuel\n\nSee [idle](idle.md).\n",
                              "in/fuel.md:3: dead link idle.md"},
                      Mistake{"APictureThatIsNoPage", "fuel", "# Fuel\n\n![a picture](fuel.png)\n",
                              "in/fuel.md:3: dead link fuel.png"},
                      Mistake{"AChapterThatTheContentsDoNotName", "lost", "# Lost\n",
                              "in/lost.md:1: the page of contents does not link this chapter"},
                      Mistake{"HeadingsOfOneName", "fuel", "# Fuel\n\n## Start\n\n## Start!\n",
                              "the heading \"Start!\" stands twice"},
                      Mistake{"ASecondTitle", "fuel", "# Fuel\n\n# More\n",
                              "the one title of a page stands at its head"},
                      Mistake{"NoTitle", "fuel", "no title\n", "the page does not begin with its title"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(GuideMaker, ALinkToAMissingHeadingIsDead) {
    page("index", "# Contents\n\n[Fuel](fuel.md#warm-up-fuel), [here](#nowhere), [Cold](fuel.md#cold)\n");
    EXPECT_EQ(make(), 1);
    EXPECT_THAT(error, HasSubstr("in/index.md:3: dead link #nowhere"));
    EXPECT_THAT(error, HasSubstr("in/index.md:3: dead link fuel.md#cold"));
    EXPECT_THAT(error, ::testing::Not(HasSubstr("warm-up-fuel")));
}

TEST_F(GuideMaker, AnAddressOfTheNetIsNotLookedUp) {
    page("fuel", "# Fuel\n\n[Net](https://example.invalid/x)\n");
    EXPECT_EQ(make(), 0) << error;
}

TEST_F(GuideMaker, WithoutContentsThereIsNoGuide) {
    std::filesystem::remove(folder.path("in/index.md"));
    EXPECT_EQ(make(), 1);
    EXPECT_THAT(error, HasSubstr("in/index.md:1: the page of contents is missing"));
}

TEST_F(GuideMaker, ChaptersFollowTheOrderOfTheContents) {
    page("index", "# Contents\n\n- [Zero](zero.md)\n- [Fuel](fuel.md#warm-up-fuel)\n");
    page("zero", "# Zero\n");
    ASSERT_EQ(make(), 0) << error;
    EXPECT_THAT(made("zero.html"), HasSubstr("Next: <a href=\"fuel.html\">Fuel</a>"));
    EXPECT_THAT(made("fuel.html"), HasSubstr("Before: <a href=\"zero.html\">Zero</a>"));
}

}  // namespace
}  // namespace zentaq
