// The manual page names what the program offers, and is well formed.
#include <regex>
#include <set>

#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

const std::string page = ZENTAQ_APP_DIR "/man/man1/zentaqctl.1";

/// The page as a reader sees it: escaped dashes are dashes.
std::string readablePage() {
    return std::regex_replace(contentOf(page), std::regex(R"(\\-)"), "-");
}

TEST_F(Zentaqctl, TheManualPageOfTheApplicationFolderIsTheOneOfTheProject) {
    EXPECT_EQ(contentOf(page), contentOf(ZENTAQ_SOURCE_DIR "/docs/man/zentaqctl.1"));
}

TEST_F(Zentaqctl, TheManualPageTellsEveryCommandAndOption) {
    const std::string text = readablePage();
    std::set<std::string> commands;
    std::set<std::string> options;
    const std::regex option("--[a-z-]+");
    for (const std::string& line : linesOf(run("--help-all").out)) {
        if (std::regex_match(line, std::regex("[a-z-]+"))) commands.insert(line);
        for (auto found = std::sregex_iterator(line.begin(), line.end(), option);
             found != std::sregex_iterator(); ++found) {
            options.insert(found->str());
        }
    }
    EXPECT_EQ(commands.size(), 33U);
    EXPECT_GE(options.size(), 10U);
    for (const std::string& command : commands) {
        EXPECT_THAT(text, HasSubstr("\n.B zentaqctl " + command)) << "in the synopsis";
        EXPECT_THAT(text, HasSubstr("\n.TP\n.B " + command + "\n"));
    }
    for (const std::string& name : options) {
        EXPECT_TRUE(std::regex_search(text, std::regex("\\.TP\n[^\n]*" + name + "(?![a-z-])"))) << name;
    }
}

TEST_F(Zentaqctl, TheManualPageNamesNoOptionThatTheProgramLacks) {
    const std::string help = run("--help-all").out;
    const std::string text = readablePage();
    const std::regex option("--[a-z-]+");
    for (auto found = std::sregex_iterator(text.begin(), text.end(), option); found != std::sregex_iterator();
         ++found) {
        EXPECT_THAT(help, HasSubstr(found->str()));
    }
}

TEST_F(Zentaqctl, TheManualPageIsWellFormed) {
    if (std::system("command -v groff >/dev/null 2>&1") != 0) GTEST_SKIP() << "groff is not installed";
    const std::string warnings = folder.file("warnings.txt");
    const int status =
        std::system(("groff -z -ww -man " + inQuotes(page) + " 2>" + inQuotes(warnings)).c_str());
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contentOf(warnings), "");
}

}  // namespace
}  // namespace zentaq
