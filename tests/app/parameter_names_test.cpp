// One name a parameter, everywhere: the name stands in the parameter's row, and whoever tells it otherwise is
// found here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>

#include "app/general_fields.h"
#include "app/user_texts.h"
#include "base/text.h"
#include "config/field_pages.h"
#include "config/gui_rules.h"
#include "config/tree.h"
#include "unit/parameter_names.h"
#include "unit/recording_host.h"
#include "unit/table_kinds.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using namespace usertexts;
using ::testing::IsEmpty;

const UnitKind* const kinds[] = {&orbaKind(), &orbLiteKind(), &pzk2Kind(),
                                 &orbcKind(), &orbdKind(),    &orbd6Kind()};

/// A caption without the mark of its letter, its limits and the blank at its end.
std::string nameIn(std::string_view caption) {
    static const std::regex limits(" \\([-0-9.]+ to [-0-9.]+\\)");
    return std::regex_replace(plainCaption(caption), limits, "");
}

TEST(ParameterNames, EachParameterHasANameThatNoOtherHas) {
    for (const UnitKind* kind : kinds) {
        std::set<std::string> names;
        for (const Parameter& row : kind->parameters) {
            EXPECT_FALSE(row.meaning.empty()) << row.name;
            EXPECT_TRUE(names.insert(upper(row.meaning)).second) << kind->model << ": " << row.meaning;
        }
    }
}

TEST(ParameterNames, AreTheSameOnEveryKindButForTheInputOfTheIgnitionOnlyUnit) {
    for (const UnitKind* kind : kinds) {
        for (const Parameter& row : kind->parameters) {
            const bool retard = kind == &pzk2Kind() && row.name == "MATADV";
            EXPECT_EQ(row.meaning, retard ? "External Retard" : nameOfParameter(row.name)) << kind->model;
        }
    }
}

TEST(ParameterNames, TheGeneralConfigurationCallsThemSo) {
    // Two captions do not tell what the box holds; a label with the name stands beside each.
    const std::set<std::string_view> beside{"txtMAP", "txtLBHR"};
    int compared = 0;
    for (const GeneralRow& row : generalRows()) {
        if (row.member.empty() || row.kind == FieldKind::Option || beside.contains(row.control)) continue;
        ++compared;
        const std::string caption = nameIn(captionOf(row));
        const std::string name(nameOfParameter(row.member));
        // "Check Box if Engine Alcohol Fueled"
        EXPECT_TRUE(caption.ends_with(name)) << row.control << ": " << caption << " | " << name;
    }
    EXPECT_GE(compared, 10);
}

TEST(ParameterNames, TheBoxesOfThePagesCallThemSo) {
    // The head of a curve's column, and the words of the two failure values with their limits.
    const std::set<std::string_view> heads{"MAT_DAT"};
    RecordingHost host;
    Unit unit(orbaKind(), host);
    unit.FW_Release(5);
    const GuiRules rules = guiRules(unit);
    const auto rows = fieldRows();
    int compared = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const bool named = rows[i].kind == FieldKind::Number || rows[i].kind == FieldKind::Fact;
        if (!named || rows[i].member.empty() || heads.contains(rows[i].control)) continue;
        if (!unit.has(rows[i].member) || rows[i].control == "txtLBHR") continue;
        ++compared;
        const std::string caption = nameIn(rules.controls[i].caption);
        EXPECT_TRUE(caption.starts_with(nameOfParameter(rows[i].member)))
            << rows[i].control << ": " << caption;
    }
    EXPECT_GT(compared, 100);
}

TEST(ParameterNames, APageForOneParameterBearsItsName) {
    const std::pair<const char*, const char*> pages[] = {
        {"child85", "Initial_Advance"}, {"child82", "CLTTBL"},
        {"child83", "SPLITBL"},         {"child84", "MATADV"},
        {"child86", "BARO_ADV"},        {"child03", "BATCom"},
        {"child05", "CHKTBL"},          {"child06", "MATENH"},
        {"child08", "BARO_TRIM"},       {"child50", "REV_Limit_Approach"}};
    RecordingHost host;
    Unit unit(orbaKind(), host);
    unit.FW_Release(5);
    unit.set("LOWBLD", 100.0, 0);
    std::map<std::string, std::string> texts;
    for (const TreeNode& node : treeNodes(unit)) texts[node.key] = node.text;
    for (const auto& [node, member] : pages) EXPECT_EQ(texts.at(node), nameOfParameter(member)) << member;
}

TEST(ParameterNames, AHelpTextForOneParameterBearsItsName) {
    std::map<std::string, std::set<std::string_view>> members;
    const auto add = [&](std::string_view key, std::string_view member) {
        if (!key.empty() && !member.empty()) members[upper(key)].insert(member);
    };
    for (const GeneralRow& row : generalRows()) add(row.help, row.member);
    for (const FieldRow& row : fieldRows()) add(row.help, row.member);
    int compared = 0;
    for (const auto& [key, ofKey] : members) {
        if (ofKey.size() != 1 || key == upper("helpstart") || key == upper("helpmapsel")) continue;
        ++compared;
        EXPECT_EQ(helpTexts().at(key).topic, nameOfParameter(*ofKey.begin())) << key;
    }
    EXPECT_GT(compared, 10);
    EXPECT_EQ(helpTexts().at("HELPTOG").topic, std::string(nameOfParameter("scale1")) + " (TOG)");
}

/// Every name that a text may quote: of parameters, pages, windows' captions and their commands.
std::set<std::string> knownNames() {
    std::set<std::string> known{"TOG:", "Zentaq Calculated TOG", "Y"};
    for (const UnitKind* kind : kinds) {
        for (const Parameter& row : kind->parameters) known.insert(std::string(row.meaning));
    }
    for (const GeneralRow& row : generalRows()) known.insert(nameIn(captionOf(row)));
    // What the windows say of themselves stands in their sources.
    for (const char* folder : {"/src/app", "/src/windows", "/src/config"}) {
        for (const auto& file : fs::recursive_directory_iterator(ZENTAQ_SOURCE_DIR + std::string(folder))) {
            if (!file.is_regular_file()) continue;
            std::istringstream lines(literalsOf(content(file.path())));
            for (std::string line; std::getline(lines, line);) known.insert(plainCaption(line));
        }
    }
    return known;
}

TEST(ParameterNames, WhatHelpAndTipsQuoteIsSomebodysName) {
    static const std::regex quoted("\"([^\"]+)\"");
    const std::set<std::string> known = knownNames();
    std::vector<std::string> texts;
    for (const auto& [key, help] : helpTexts()) texts.push_back(help.text);
    const auto tips = refdata::SeedTable::read(ZENTAQ_SOURCE_DIR "/data/seeds/tips.tsv");
    for (const auto& row : tips.rows()) texts.push_back(tips.text(row, "HELP"));
    int found = 0;
    for (const std::string& text : texts) {
        for (std::sregex_iterator hit(text.begin(), text.end(), quoted), end; hit != end; ++hit) {
            const std::string name = (*hit)[1].str();
            ++found;
            const bool somebodys =
                known.contains(name) || std::ranges::any_of(known, [&](const std::string& caption) {
                    return caption.starts_with(name);
                });
            EXPECT_TRUE(name == "-" || somebodys) << name << " | " << text;
        }
    }
    EXPECT_GT(found, 10);
}

/// The first cells of a table of the guide whose head begins with one of two words.
std::vector<std::string> parametersOfGuideTables(const std::string& page) {
    std::vector<std::string> cells;
    std::istringstream lines(page);
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("|")) {
            inside = false;
            continue;
        }
        const std::string first(trimmed(line.substr(1, line.find('|', 1) - 1)));
        if (inside) cells.push_back(first);
        if (first == "Field" || (first == "Value" && line.starts_with("| Value | Range |"))) inside = true;
    }
    return cells;
}

TEST(ParameterNames, TheTablesOfTheGuideCallThemSo) {
    std::set<std::string> names{"Table Start Dimensions"};  // stands for two boxes
    for (const Parameter& row : orbaKind().parameters) names.insert(std::string(row.meaning));
    int found = 0;
    for (const auto& file : fs::directory_iterator(ZENTAQ_SOURCE_DIR "/docs/guide")) {
        if (file.path().extension() != ".md") continue;
        for (const std::string& cell : parametersOfGuideTables(content(file.path()))) {
            if (cell.starts_with("--")) continue;
            ++found;
            EXPECT_TRUE(names.contains(cell)) << file.path().filename() << ": " << cell;
        }
    }
    EXPECT_GT(found, 20);
}

TEST(ParameterNames, NoTextUsesAFormerName) {
    for (const char* former : {"pulse width at full scale", "pulse width at full gama", "gama time",
                               "time of gap", "injector opening time", "throttle closed voltage",
                               "the closed throttle voltage", "=engine speed limit", "range in bar",
                               "=boost cut", "=overboost cut", "=fuel type", "1 to 100 times a second"}) {
        std::vector<std::string> places = placesOf(former);
        // Kept: the listing of a calibration has the words of its own that it always had.
        std::erase_if(places,
                      [](const std::string& place) { return place.starts_with("src/config/print_out.cpp"); });
        EXPECT_THAT(places, IsEmpty()) << former;
    }
}

}  // namespace
}  // namespace zentaq
