// Colours, type and spacing of the windows come from the look and from fonts.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>

#include "qt/look.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;

/// The look itself, and what stands below it.
bool isTheOnePlace(const fs::path& file) {
    const std::string name = file.stem();
    return name == "look" || name == "look_colors" || name == "look_type" || name == "contrast";
}

std::vector<std::string> linesWith(const std::regex& literal) {
    std::vector<std::string> found;
    for (const char* folder : {"/src/windows", "/src/qt"}) {
        for (const auto& entry : fs::directory_iterator(std::string(ZENTAQ_SOURCE_DIR) + folder)) {
            if (isTheOnePlace(entry.path())) continue;
            std::ifstream file(entry.path());
            int number = 0;
            for (std::string line; std::getline(file, line);) {
                ++number;
                if (std::regex_search(line, literal)) {
                    found.push_back(entry.path().filename().string() + ':' + std::to_string(number) + ' ' +
                                    line);
                }
            }
        }
    }
    return found;
}

using Lines = std::vector<std::string>;

TEST(OnePlace, NoWindowHasAColourOfItsOwn) {
    EXPECT_EQ(linesWith(std::regex(R"(QColor[({]\s*(0x|[0-9]))")), Lines{});
    EXPECT_EQ(linesWith(std::regex(
                  "Qt::(white|black|red|green|blue|cyan|magenta|yellow|gray|dark[A-Z]|light[A-Z])")),
              Lines{});
    EXPECT_EQ(linesWith(std::regex("#[0-9A-Fa-f]{6}")), Lines{});
}

/// All that paints, with what makes the palette from the look.
std::string painting() {
    std::string all;
    for (const char* folder : {"/src/windows", "/src/qt"}) {
        for (const auto& entry : fs::directory_iterator(std::string(ZENTAQ_SOURCE_DIR) + folder)) {
            if (isTheOnePlace(entry.path()) && entry.path().filename() != "look.cpp") continue;
            std::ifstream file(entry.path());
            all.append(std::istreambuf_iterator<char>(file), {});
        }
    }
    return all;
}

TEST(OnePlace, EveryColorOfTheLookIsUsed) {
    const std::string all = painting();
    for (const LookColor& color : lookTable()) {
        const std::string name = color.name;
        EXPECT_TRUE(all.find('.' + name) != std::string::npos || all.find("::" + name) != std::string::npos)
            << name;
    }
}

TEST(OnePlace, EverySplitterKeepsItsPlace) {
    EXPECT_EQ(linesWith(std::regex("new QSplitter|<QSplitter>\\(")), Lines{});
}

TEST(OnePlace, NoWindowHasAStyleSheet) {
    EXPECT_EQ(linesWith(std::regex("setStyleSheet")), Lines{});
}

TEST(OnePlace, NoWindowCountsItsSpacingInPixels) {
    EXPECT_EQ(linesWith(std::regex(R"(set(Horizontal|Vertical)?Spacing\([1-9])")), Lines{});
    EXPECT_EQ(linesWith(std::regex(R"(setContentsMargins\([^)]*\b[1-9][0-9]*\s*[,)])")), Lines{});
    EXPECT_EQ(linesWith(std::regex(R"(fontMetrics\(\)\.height\(\) / )")), Lines{});
    // A hairline is one; a %1 is filled from the font.
    EXPECT_EQ(linesWith(std::regex("(^|[^%0-9])([2-9]|[1-9][0-9]+)px")), Lines{});
}

TEST(OnePlace, NoWindowHasATypeSizeOfItsOwn) {
    EXPECT_EQ(linesWith(std::regex(R"(set(Point|Pixel)SizeF?\([0-9])")), Lines{});
    EXPECT_EQ(linesWith(std::regex(R"(setPointSizeF?\((?!.*growth).*\*)")), Lines{})
        << "but for the table, which grows with its window";
    EXPECT_EQ(linesWith(std::regex(R"(valueFont\([0-9])")), Lines{});
}

}  // namespace
}  // namespace zentaq
