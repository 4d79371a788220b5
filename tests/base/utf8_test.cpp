#include "base/utf8.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

TEST(Utf8, CountsCharactersAndNotBytes) {
    EXPECT_EQ(characterCount(""), 0u);
    EXPECT_EQ(characterCount("Lambda"), 6u);
    EXPECT_EQ(characterCount("90 \u00B0C"), 5u);     // two bytes
    EXPECT_EQ(characterCount("\u03BB = 1"), 5u);     // two bytes
    EXPECT_EQ(characterCount("5 \u2264 6"), 5u);     // three bytes
    EXPECT_EQ(characterCount("\U0001F697 go"), 4u);  // four bytes
}

TEST(Utf8, CutsBetweenCharacters) {
    EXPECT_EQ(firstCharacters("\u00B0C hot", 2), "\u00B0C");
    EXPECT_EQ(lastCharacters("hot \u00B0C", 2), "\u00B0C");
    EXPECT_EQ(firstCharacters("\u00B0", 1), "\u00B0");
    EXPECT_EQ(firstCharacters("abc", 0), "");
    EXPECT_EQ(lastCharacters("abc", 0), "");
    EXPECT_EQ(firstCharacters("abc", 9), "abc");
    EXPECT_EQ(lastCharacters("abc", 9), "abc");
}

TEST(Utf8, AByteThatIsNoCharacterCountsAsOne) {
    EXPECT_EQ(characterCount("a\xFF\xFE"), 3u);
    EXPECT_EQ(characterCount("\xB0\x43"), 2u) << "a continuation byte alone";
    EXPECT_EQ(characterCount("\xC2"), 1u) << "a lead byte at the end";
    EXPECT_EQ(characterCount("\xE2\x89x"), 3u) << "a lead byte without all of its bytes";
    EXPECT_EQ(firstCharacters("\xC2x", 1), "\xC2");
}

TEST(Utf8, AFieldHasItsWidthInCharacters) {
    EXPECT_EQ(fixedCharacters("90 \u00B0C", 7), "90 \u00B0C  ");
    EXPECT_EQ(fixedCharacters("90 \u00B0C", 4), "90 \u00B0");
    EXPECT_EQ(fixedCharacters("", 3), "   ");
}

}  // namespace
}  // namespace zentaq
