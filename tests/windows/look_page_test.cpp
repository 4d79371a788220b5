// docs/look.md tells what the program draws with.
#include <gtest/gtest.h>

#include <QFontMetrics>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "qt/look.h"

namespace zentaq {
namespace {

/// The cells of every row of the page whose first cell is a name in back quotes.
std::map<std::string, std::vector<std::string>> rowsOfThePage() {
    std::ifstream page(ZENTAQ_SOURCE_DIR "/docs/look.md");
    EXPECT_TRUE(page.good());
    std::map<std::string, std::vector<std::string>> rows;
    const std::regex named("^\\| `(\\w+)` \\|(.*)$");
    const std::regex cell(" `?([^|`]*[^|` ])`? \\|");
    for (std::string line; std::getline(page, line);) {
        std::smatch match;
        if (!std::regex_match(line, match, named)) continue;
        const std::string rest = match[2];
        auto& cells = rows[match[1]];
        for (std::sregex_iterator at(rest.begin(), rest.end(), cell); at != std::sregex_iterator(); ++at) {
            cells.push_back((*at)[1]);
        }
    }
    return rows;
}

TEST(LookPage, ListsEveryColourAsItIs) {
    const auto rows = rowsOfThePage();
    for (const LookColor& color : lookTable()) {
        ASSERT_TRUE(rows.contains(color.name)) << color.name;
        const auto& cells = rows.at(color.name);
        ASSERT_GE(cells.size(), 3u) << color.name;
        const auto hex = [&](DisplayMode mode) {
            return (lookColors(mode).*color.part).name().toUpper().toStdString();
        };
        EXPECT_EQ(cells[0], hex(DisplayMode::Day)) << color.name;
        EXPECT_EQ(cells[1], hex(DisplayMode::Night)) << color.name;
    }
}

TEST(LookPage, ListsNoColourThatThereIsNot) {
    std::set<std::string> known;
    for (const LookColor& color : lookTable()) known.insert(color.name);
    for (const auto& [name, cells] : rowsOfThePage()) {
        const bool isColour = !cells.empty() && cells[0].starts_with('#');
        EXPECT_TRUE(!isColour || known.contains(name)) << name;
    }
}

TEST(LookPage, TellsTheTypeScaleAsItIs) {
    const auto rows = rowsOfThePage();
    for (const auto& [name, type] : {std::pair("Remark", Type::Remark), std::pair("Body", Type::Body),
                                     std::pair("Strong", Type::Strong), std::pair("Caption", Type::Caption),
                                     std::pair("Badge", Type::Badge), std::pair("Strip", Type::Strip),
                                     std::pair("Heading", Type::Heading), std::pair("Value", Type::Value),
                                     std::pair("Title", Type::Title), std::pair("Display", Type::Display)}) {
        ASSERT_TRUE(rows.contains(name)) << name;
        EXPECT_DOUBLE_EQ(std::stod(rows.at(name)[0]), typeFactor(type)) << name;
        EXPECT_EQ(rows.at(name)[1] == "bold", typeFont(type).bold()) << name;
        EXPECT_DOUBLE_EQ(typeFont(type).pointSizeF(), baseFont().pointSizeF() * typeFactor(type)) << name;
    }
}

TEST(LookPage, TellsTheStepsOfSpacingAsTheyAre) {
    const auto rows = rowsOfThePage();
    QFont font = baseFont();
    font.setPixelSize(200);  // so that no step is rounded away
    const QFontMetrics metrics(font);
    for (const auto& [name, step] : {std::pair("Line", Space::Line), std::pair("Tight", Space::Tight),
                                     std::pair("Normal", Space::Normal), std::pair("Wide", Space::Wide),
                                     std::pair("Section", Space::Section)}) {
        ASSERT_TRUE(rows.contains(name)) << name;
        const std::string& part = rows.at(name)[0];
        const auto over = part.find('/');
        const double below = over == std::string::npos ? 1 : std::stod(part.substr(over + 1));
        EXPECT_NEAR(space(metrics, step), metrics.height() * std::stod(part) / below, 1) << name;
    }
    EXPECT_EQ(space(metrics, Space::None), 0);
}

}  // namespace
}  // namespace zentaq
