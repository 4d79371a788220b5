// The guide's page about the keyboard names every key of the menus and no other.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "app/menu.h"

namespace zentaq {
namespace {

/// The keys in the first column of the section, "`Ctrl+1` to `Ctrl+4`" as each of them.
std::set<std::string> keysOfThePage(const std::string& section) {
    std::ifstream page(ZENTAQ_SOURCE_DIR "/docs/guide/keyboard.md");
    EXPECT_TRUE(page.good());
    const std::regex row("\\| (.*?) \\|.*");
    const std::regex key("`([^`]+)`");
    std::set<std::string> keys;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("## ")) inside = line == "## " + section;
        std::smatch cells;
        if (!inside || !std::regex_match(line, cells, row)) continue;
        const std::string cell = cells[1];
        std::vector<std::string> named;
        for (std::sregex_iterator at(cell.begin(), cell.end(), key), end; at != end; ++at) {
            named.push_back((*at)[1]);
        }
        if (cell.find("` to `") != std::string::npos && named.size() == 2) {
            std::string one = named[0];
            for (; one.back() < named[1].back(); ++one.back()) keys.insert(one);
        }
        keys.insert(named.begin(), named.end());
    }
    return keys;
}

TEST(KeyboardPage, NamesEveryKeyOfTheMenusAndNoOther) {
    std::set<std::string> ofMenus;
    for (const MenuEntry& entry : menuTree()) {
        if (!entry.shortcut.empty()) ofMenus.insert(std::string(entry.shortcut));
    }
    EXPECT_EQ(keysOfThePage("Everywhere"), ofMenus);
}

}  // namespace
}  // namespace zentaq
