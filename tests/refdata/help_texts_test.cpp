#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>

#include "base/text.h"
#include "config/field_pages.h"
#include "config/tree.h"
#include "refdata/refdata_fixture.h"
#include "refdata/seed_table.h"
#include "unit/recording_host.h"

namespace zentaq::refdata {
namespace {

using ::testing::IsEmpty;

using Keys = std::set<std::string>;

/// Keys that windows ask for and that stand in no table of the core.
constexpr const char* formKeys[] = {
    // the general parameters
    "helprevl", "helptog", "helptiot", "helpmtot", "helpdace3", "helpCamtype", "helpmaprange", "helpMboost",
    "helpinjnum", "help42inj", "helpBrakeHP", "helpfueltype", "helpinjsize", "helpunit", "helpengine",
    "helpmapsel", "helptbldim",
    // the MAP sensor manager
    "helpMAPvolts", "helpMAPpressure", "helpMAPunits", "helpMAPlist",
    // the options
    "helpoptcomm", "helpopttemp", "helpoptalarm", "helpoptdash", "helpoptcolor", "helpoptlog", "helpoptprint",
    "helpopttable", "helpoptcells", "helpoptdatalog", "helpoptmonitor", "helpoptstart",
    // the surface
    "helparrow"};

/// Keys are found whatever their case.
void add(Keys& keys, std::string_view key) {
    if (!key.empty()) keys.insert(upper(key));
}

void addTree(Keys& keys, const UnitKind& kind) {
    RecordingHost host;
    Unit unit(kind, host);
    if (unit.has("LOWBLD")) unit.set("LOWBLD", 100.0, 0);  // brings the barometric pages into the tree
    for (const int release : {0, 5}) {
        unit.FW_Release(release);
        for (const TreeNode& node : treeNodes(unit)) add(keys, node.help);
    }
}

Keys keysInUse() {
    Keys keys;
    for (const UnitKind& kind : unitKinds()) addTree(keys, kind);
    for (const FieldRow& row : fieldRows()) add(keys, row.help);
    for (const char* key : formKeys) add(keys, key);
    return keys;
}

struct Entry {
    std::string topic, text;
};

std::map<std::string, Entry> entries() {
    const SeedTable table = SeedTable::read(projectSeeds + "/fasthelp.tsv");
    std::map<std::string, Entry> result;
    for (const SeedRow& row : table.rows()) {
        const bool fresh = result
                               .emplace(upper(table.text(row, "HELP_KEY")),
                                        Entry{table.text(row, "TOPIC"), table.text(row, "HELP")})
                               .second;
        EXPECT_TRUE(fresh) << "the key stands twice, in line " << row.line;
    }
    return result;
}

int sentencesIn(const std::string& text) {
    static const std::regex end("[.?!](\\s|$)");
    return static_cast<int>(std::distance(std::sregex_iterator(text.begin(), text.end(), end), {}));
}

TEST(HelpTexts, EveryKeyOfTreeFieldsParametersAndFormsHasAText) {
    const auto texts = entries();
    std::vector<std::string> missing;
    for (const std::string& key : keysInUse()) {
        if (!texts.contains(key)) missing.push_back(key);
    }
    EXPECT_THAT(missing, IsEmpty());
    EXPECT_GT(keysInUse().size(), 60u);
}

TEST(HelpTexts, EveryKeyThatASourceFileNamesHasAText) {
    namespace fs = std::filesystem;
    static const std::regex key("\"(help[A-Za-z0-9]+)\"");
    const auto texts = entries();
    int found = 0;
    for (const auto& file : fs::recursive_directory_iterator(ZENTAQ_SOURCE_DIR "/src")) {
        if (!file.is_regular_file()) continue;
        const std::string content = contentOf(file.path().string());
        for (std::sregex_iterator hit(content.begin(), content.end(), key), end; hit != end; ++hit) {
            ++found;
            EXPECT_TRUE(texts.contains(upper((*hit)[1].str())))
                << (*hit)[1].str() << " in " << file.path().filename();
        }
    }
    EXPECT_GT(found, 60);
}

TEST(HelpTexts, NoEntryIsUnused) {
    const Keys used = keysInUse();
    for (const auto& [key, entry] : entries()) EXPECT_TRUE(used.contains(key)) << key;
}

TEST(HelpTexts, EveryEntryHasATopicAndTwoToFiveSentences) {
    for (const auto& [key, entry] : entries()) {
        EXPECT_FALSE(trimmed(entry.topic).empty()) << key;
        EXPECT_GE(sentencesIn(entry.text), 2) << key;
        EXPECT_LE(sentencesIn(entry.text), 5) << key;
        EXPECT_TRUE(entry.text.ends_with('.')) << key;
    }
}

TEST(HelpTexts, EveryPageOfTheTreeHasHelp) {
    RecordingHost host;
    Unit unit(orbaKind(), host);
    unit.FW_Release(5);
    unit.set("LOWBLD", 100.0, 0);
    for (const TreeNode& node : treeNodes(unit)) EXPECT_FALSE(node.help.empty()) << node.text;
}

/// A figure that a text names is the one that the check uses.
TEST(HelpTexts, RangesAgreeWithThoseOfTheParameters) {
    struct Row {
        const char *key, *member;
        float minimum, maximum;
        const char* words;
    };
    const Row rows[] = {
        {"helprevl", "REV_Limiter", 1000, 20000, "1000 to 20000 RPM"},
        {"helprevapp", "REV_Limit_Approach", 0, 1000, "0 to 1000 RPM"},
        {"helptog", "scale1", 3, 30, "(3 to 30)"},
        {"helptiot", "INJ_On", -15, 15, "(-15 to 15)"},
        {"helpmtot", "MT", 0, 5, "(0 to 5)"},
        {"helpknock", "KNK_MIN", 2, 100, "Threshold (2 to 100)"},
        {"helpknock", "KNK_MAX", 1, 30, "(1 to 30 degrees)"},
        {"helpmatadv", "MATADV", -30, 30, "-30 to 30"},
        {"helpwarmup", "CHKTBL", 0, 250, "0 to 250"},
        {"helpbattery", "BATCom", -1000, 1000, "-1000 to 1000"},
        {"helpdecel", "DCCL_0", 0, 3900, "0 to 3900 RPM"},
        {"helpboost", "BSTCTTM", 0.25F, 10, "0.25 to 10 seconds"},
        {"helpidle", "ISRPM", 500, 2000, "500 to 2000 RPM"},
        {"helpego", "EGO_LMT", 0, 50, "0 to 50 %"},
        {"helpMAPsen", "MAP_FIL", 1, 64, "1 to 64"},
        {"helpCLTsen", "CLT_Default", -40, 150, "-40 to 150"},
        {"helpMATsen", "MAT_Default", -30, 80, "-30 to 80"},
        {"helpEGOsen", "EGO_SUD", 0, 20, "0 to 20 seconds"},
        {"helpmaf", "MAFMax", 2000, 20000, "2000 to 20000 RPM"},
        {"helpadvpar", "FPT", 1, 15, "1 to 15 seconds"},
        {"helpadvpar", "INJFIX_RPM", 0, 800, "0 to 800 RPM"},
    };
    RecordingHost host;
    Unit unit(orbaKind(), host);
    const auto texts = entries();
    for (const Row& row : rows) {
        const Limits limits = unit.limits(row.member);
        EXPECT_EQ(limits.minimum, row.minimum) << row.member;
        EXPECT_EQ(limits.maximum, row.maximum) << row.member;
        EXPECT_THAT(texts.at(upper(row.key)).text, ::testing::HasSubstr(row.words)) << row.key;
    }
}

TEST(Tips, ThereAreSixtyAndMoreNoneTwiceAndEachFitsTheStartPage) {
    constexpr std::size_t longest = 239;
    const SeedTable table = SeedTable::read(projectSeeds + "/tips.tsv");
    std::set<std::string> seen;
    for (const SeedRow& row : table.rows()) {
        const std::string& tip = table.text(row, "HELP");
        EXPECT_FALSE(trimmed(tip).empty()) << row.line;
        EXPECT_LE(tip.size(), longest) << row.line;
        EXPECT_TRUE(seen.insert(upper(tip)).second) << row.line;
    }
    EXPECT_GE(seen.size(), 60u);
}

}  // namespace
}  // namespace zentaq::refdata
