#include "guide/guide.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>

#include "app/fake_platform.h"
#include "app/menu.h"
#include "base/errors.h"
#include "guide/help_topics.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::string builtGuide = ZENTAQ_APP_DIR "/support/guide";

// ---- Words and search

TEST(SearchWords, AreInCapitalsAndStandOnce) {
    EXPECT_THAT(searchWords("Fuel table, FUEL!"), ElementsAre("FUEL", "TABLE"));
    EXPECT_THAT(searchWords("Ctrl+T"), ElementsAre("CTRL", "T"));
    EXPECT_THAT(searchWords(" ,.- "), IsEmpty());
}

Guide smallGuide() {
    return Guide({
        {"fuel", 1, "", "Fuel", {"All about fuel."}},
        {"fuel", 2, "start", "Start", {"A cold engine wants more. The prime pulse is the first squirt."}},
        {"fuel", 2, "warm-up", "Warm-up", {"Percent by coolant temperature.", "Cold engines start here."}},
        {"idle", 1, "", "Idle", {"Check the injectors before the pulse of the motor."}},
    });
}

std::vector<std::string> topicsOf(const std::vector<GuideHit>& hits) {
    std::vector<std::string> topics;
    for (const GuideHit& hit : hits) topics.push_back(hit.topic);
    return topics;
}

TEST(GuideSearch, AHeadingGoesBeforeAText) {
    EXPECT_THAT(topicsOf(smallGuide().search("start")), ElementsAre("fuel#start", "fuel#warm-up"));
}

TEST(GuideSearch, EveryWordMustStandInTheSectionOrItsChapter) {
    EXPECT_THAT(topicsOf(smallGuide().search("pulse prime")), ElementsAre("fuel#start"));
    EXPECT_THAT(topicsOf(smallGuide().search("fuel coolant")), ElementsAre("fuel#warm-up"));
    EXPECT_THAT(smallGuide().search("prime coolant"), IsEmpty());
}

TEST(GuideSearch, WordsCountFromTheirBeginningOnly) {
    EXPECT_THAT(topicsOf(smallGuide().search("inj")), ElementsAre("idle"));
    EXPECT_THAT(smallGuide().search("jectors"), IsEmpty());
}

TEST(GuideSearch, AHitNamesItsPlaceAndTheSentence) {
    const auto hits = smallGuide().search("PRIME");
    ASSERT_THAT(hits, SizeIs(1));
    EXPECT_EQ(hits[0].title, "Fuel: Start");
    EXPECT_EQ(hits[0].sentence, "The prime pulse is the first squirt.");
    EXPECT_EQ(smallGuide().search("idle")[0].title, "Idle");
}

TEST(GuideSearch, NoWordsFindNothing) {
    EXPECT_THAT(smallGuide().search("  "), IsEmpty());
}

// ---- Files

TEST(GuideIndex, AMissingGuideIsNamedInTheFailure) {
    TemporaryFolder folder;
    try {
        Guide::read(folder.path("none"));
        FAIL();
    } catch (const FileError& failure) {
        EXPECT_THAT(failure.what(), HasSubstr(folder.path("none")));
    }
}

TEST(GuideIndex, ADamagedIndexIsRefused) {
    TemporaryFolder folder;
    folder.write("guide.tsv", "fuel\t1\t\tFuel\nno index at all\n");
    EXPECT_THROW(Guide::read(folder.path().string()), FileError);
    folder.write("guide.tsv", "fuel\t9\t\tFuel\n");
    EXPECT_THROW(Guide::read(folder.path().string()), FileError);
    folder.write("guide.tsv", "");
    EXPECT_THROW(Guide::read(folder.path().string()), FileError);
}

TEST(HelpEntry, NamesTheFolderOfTheGuide) {
    TemporaryFolder folder;
    EXPECT_EQ(guideFolder(folder.path().string()), "");
    std::filesystem::create_directory(folder.path("support"));
    folder.write("support/MAIN.hlp", "Help\nStart page: guide/index.html\n");
    EXPECT_EQ(guideFolder(folder.path().string()), folder.path("support/guide"));
    folder.write("support/MAIN.hlp", "Help\n");
    EXPECT_EQ(guideFolder(folder.path().string()), "");
}

TEST(HelpEntry, OfTheBuiltProgramLeadsToItsGuide) {
    EXPECT_EQ(guideFolder(ZENTAQ_APP_DIR), builtGuide);
    EXPECT_TRUE(std::filesystem::exists(builtGuide + "/index.html"));
}

// ---- The guide itself

class BuiltGuide : public ::testing::Test {
 protected:
    Guide guide = Guide::read(builtGuide);

    std::string textOf(const std::string& chapter) const {
        std::string text;
        for (const GuideSection& section : guide.sections()) {
            if (section.chapter != chapter) continue;
            for (const std::string& block : section.blocks) text += block + "\n";
        }
        return text;
    }
};

TEST_F(BuiltGuide, HasTwentyChaptersAndMore) {
    std::set<std::string> chapters;
    for (const GuideSection& section : guide.sections()) chapters.insert(section.chapter);
    EXPECT_GE(chapters.size(), 20u);
    EXPECT_EQ(guide.sections().front().chapter, "index");
}

/// Read from the pages as a browser reads them, apart from the checks of the program that made them.
TEST_F(BuiltGuide, NoLinkOfAnyPageIsDead) {
    static const std::regex link("href=\"([^\"#]*)#?([^\"]*)\"");
    int links = 0;
    for (const auto& file : std::filesystem::directory_iterator(builtGuide)) {
        if (file.path().extension() != ".html") continue;
        const std::string page = TemporaryFolder::read(file.path().string());
        for (std::sregex_iterator hit(page.begin(), page.end(), link), end; hit != end; ++hit) {
            ++links;
            const std::string name = (*hit)[1].str();
            const std::string target = name.empty() ? file.path().string() : builtGuide + "/" + name;
            ASSERT_TRUE(std::filesystem::exists(target)) << file.path().filename() << ": " << target;
            if ((*hit)[2].length() == 0) continue;
            EXPECT_THAT(TemporaryFolder::read(target), HasSubstr("id=\"" + (*hit)[2].str() + "\""))
                << file.path().filename();
        }
    }
    EXPECT_GT(links, 100);
}

TEST_F(BuiltGuide, NamesOfHeadingsStandOnceInAPage) {
    static const std::regex name(" id=\"([^\"]*)\"");
    for (const auto& file : std::filesystem::directory_iterator(builtGuide)) {
        if (file.path().extension() != ".html") continue;
        const std::string page = TemporaryFolder::read(file.path().string());
        std::set<std::string> seen;
        for (std::sregex_iterator hit(page.begin(), page.end(), name), end; hit != end; ++hit) {
            EXPECT_TRUE(seen.insert((*hit)[1].str()).second) << file.path().filename() << (*hit)[1];
        }
        EXPECT_TRUE(seen.contains("top")) << file.path().filename();
    }
}

TEST_F(BuiltGuide, EveryHelpTopicLeadsToASection) {
    for (const HelpTopic& row : helpTopics()) {
        EXPECT_NE(guide.find(row.topic), nullptr) << row.key << ": " << row.topic;
    }
}

TEST_F(BuiltGuide, TellsEveryKeyOfTheMenu) {
    const std::string keys = textOf("keyboard");
    for (const MenuEntry& entry : menuTree()) {
        if (entry.shortcut.empty() || entry.enabled == nullptr) continue;
        const std::string shortcut(entry.shortcut);
        // "Ctrl+2" stands between the first and the last table.
        const bool table = shortcut == "Ctrl+2" || shortcut == "Ctrl+3";
        EXPECT_THAT(keys, HasSubstr(table ? "Ctrl+1 to Ctrl+4" : shortcut)) << entry.name;
    }
}

/// The rows of a table of the guide that begin with a code.
std::set<int> codesOf(const Guide& guide, const char* topic) {
    static const std::regex row("([0-9]{4}) - .+ - .+");
    std::set<int> codes;
    for (const std::string& block : guide.find(topic)->blocks) {
        std::smatch parts;
        if (std::regex_match(block, parts, row)) codes.insert(std::stoi(parts[1].str()));
    }
    return codes;
}

TEST_F(BuiltGuide, TellsEveryNumberedMessageAndNoOther) {
    ScriptedDialogs dialogs;
    Messages messages(
        dialogs, [](auto&&) {}, [](auto&&) {});
    std::set<int> errors, warnings, information;
    const auto told = [&](std::set<int>& codes, int code, auto&& display) {
        const auto before = dialogs.boxes.size();
        display();
        if (dialogs.boxes.size() > before) codes.insert(code);
    };
    for (int code = 1000; code < 1100; ++code) {
        told(errors, code, [&] { messages.Display_Error(code); });
        told(warnings, code, [&] { messages.Display_Warning(code, "text"); });
        told(information, code, [&] { messages.Display_Message(code, "text"); });
    }
    warnings.insert(1006);  // raised by the check of ascending values
    EXPECT_EQ(codesOf(guide, "messages#errors"), errors);
    EXPECT_EQ(codesOf(guide, "messages#warnings"), warnings);
    EXPECT_EQ(codesOf(guide, "messages#information"), information);
}

TEST_F(BuiltGuide, FindsWhatATunerLooksFor) {
    EXPECT_EQ(guide.search("no link").at(0).topic, "troubleshooting#no-link");
    EXPECT_EQ(guide.search("rev limiter").at(0).topic, "ignition#rev-limiter");
    EXPECT_EQ(guide.search("injector flow").at(0).topic, "general-configuration#injector-flow");
    EXPECT_EQ(guide.search("warning 1006").at(0).topic, "messages#warnings");
}

TEST(HelpTopics, AreFoundWithoutCaseAndStandOnce) {
    EXPECT_EQ(guideTopicOf("HELPTOG"), "general-configuration#maximum-controllable-pulsewidth");
    EXPECT_EQ(guideTopicOf("helparrow"), "");
    std::set<std::string_view> keys;
    for (const HelpTopic& row : helpTopics()) EXPECT_TRUE(keys.insert(row.key).second) << row.key;
}

}  // namespace
}  // namespace zentaq
