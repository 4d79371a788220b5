#include "base/shown_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>

namespace zentaq {
namespace {

using namespace std::string_literals;
using ::testing::EndsWith;
using ::testing::StartsWith;

// ---- Characters

TEST(ShownText, WordsOfAnyLanguageStayAsTheyAre) {
    const std::string text = "Street 2.0 – Übergröße, 日本 🏁 C:\\tunes\\a.ZQ4OA";
    EXPECT_EQ(shownLine(text), text);
    EXPECT_EQ(shownLine(""), "");
}

TEST(ShownText, ControlCharactersAreNumbered) {
    EXPECT_EQ(shownLine("a\x1B[2Jb"), "a\\x1B[2Jb");
    EXPECT_EQ(shownLine("\a\b\v\f\x7F"s), "\\x07\\x08\\x0B\\x0C\\x7F");
    EXPECT_EQ(shownLine("a\0b"s), "a\\x00b");
    EXPECT_EQ(shownLine("\xC2\x9B"
                        "31m"),
              "\\x9B31m")
        << "a control character of the second kind";
}

TEST(ShownText, LineEndsAndTabsAreLetters) {
    EXPECT_EQ(shownLine("a\nb\rc\td"), "a\\nb\\rc\\td");
    EXPECT_EQ(shownLine("\xE2\x80\xA8"), "\\u{2028}");
}

TEST(ShownText, LinesKeepTheirEndsAndTabsButNoCarriageReturn) {
    EXPECT_EQ(shownLines("a\tb\r\nc\x1B"), "a\tb\\r\nc\\x1B");
}

struct Unseen {
    const char* utf8;
    const char* shown;
};
class ShownUnseen : public ::testing::TestWithParam<Unseen> {};

TEST_P(ShownUnseen, IsNumberedAndNoneOfItsNeighboursIsTouched) {
    EXPECT_EQ(shownLine("a"s + GetParam().utf8 + "b"), "a"s + GetParam().shown + "b");
}

INSTANTIATE_TEST_SUITE_P(
    Characters, ShownUnseen,
    ::testing::Values(Unseen{"\xE2\x80\xAE", "\\u{202E}"},      // right to left from here
                      Unseen{"\xE2\x81\xA6", "\\u{2066}"},      // isolated direction
                      Unseen{"\xD8\x9C", "\\u{061C}"},          // direction mark of Arabic
                      Unseen{"\xE2\x80\x8B", "\\u{200B}"},      // blank without width
                      Unseen{"\xE2\x80\x8D", "\\u{200D}"},      // joiner
                      Unseen{"\xE2\x81\xA0", "\\u{2060}"},      // joiner of words
                      Unseen{"\xEF\xBB\xBF", "\\u{FEFF}"},      // byte order mark
                      Unseen{"\xC2\xAD", "\\u{00AD}"},          // soft hyphen
                      Unseen{"\xE3\x85\xA4", "\\u{3164}"},      // filler
                      Unseen{"\xF3\xA0\x81\x81", "\\u{E0041}"}  // tag
                      ),
    [](const auto& row) {
        return "Code" + std::string(row.param.shown).substr(3, std::string(row.param.shown).size() - 4);
    });

TEST(ShownText, NeighboursOfTheUnseenAreSeen) {
    for (const char32_t code : {U' ', U'~', U'\u00A0', U'\u00AC', U'\u00AE', U'\u200A', U'\u2010', U'\u2027',
                                U'\u202F', U'\u205F', U'\u2070', U'\uFE10', U'\uFFFD', U'\U0001F3C1'}) {
        EXPECT_TRUE(isShownAsItIs(code)) << static_cast<unsigned>(code);
    }
}

TEST(ShownText, BytesOfNoCharacterAreNumbered) {
    EXPECT_EQ(shownLine("\xFF\xFE"), "\\xFF\\xFE");
    EXPECT_EQ(shownLine("\xC0\xAF"), "\\xC0\\xAF") << "longer than needed";
    EXPECT_EQ(shownLine("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "half of a pair";
    EXPECT_EQ(shownLine("\xE2\x80"), "\\xE2\\x80") << "cut off";
}

TEST(ShownText, WhatIsShownOnceIsShownTheSameTwice) {
    const std::string once = shownLine("\x1B]0;x\a\xE2\x80\xAE\xFF\\x1B");
    EXPECT_EQ(shownLine(once), once);
}

// ---- Lengths

TEST(ShownText, AValueIsCutInItsMiddle) {
    EXPECT_EQ(shownBriefly("short"), "short");
    const std::string shown = shownBriefly("begin" + std::string(35'000, 'x') + "end", 20);
    EXPECT_EQ(shown, "beginxxx ... xxxxend");
    EXPECT_EQ(shown.size(), 20U);
}

TEST(ShownText, AnErrorIsOneLineOfBoundedLengthWithBothItsEnds) {
    const std::string error = shownError("tune.ZQ4OA:\n" + std::string(50'000'000, '\x1B') + " is no number");
    EXPECT_EQ(error.size(), 600U);
    EXPECT_THAT(error, StartsWith("tune.ZQ4OA: \\x1B"));
    EXPECT_THAT(error, EndsWith(" is no number"));
    EXPECT_EQ(error.find('\n'), std::string::npos);
}

TEST(ShownText, ACutNeverFallsIntoACharacter) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "\xF0\x9F\x8F\x81";
    EXPECT_EQ(shownError(text).find("\\x"), std::string::npos);
    EXPECT_EQ(shownError("a" + text).find("\\x"), std::string::npos);
}

TEST(ShownText, ABoxKeepsItsLinesAndTakesACarriageReturnForOne) {
    EXPECT_EQ(shownInBox("Error 1001:\rPort\tis in use.\x1B"), "Error 1001:\nPort\tis in use.\\x1B");
    EXPECT_LE(shownInBox(std::string(35'000, 'x')).size(), 3000U);
}

TEST(ShownText, PlainIsNothingButPrintableAscii) {
    EXPECT_TRUE(isPlain("COMM: Listening on Port #1 ~"));
    EXPECT_TRUE(isPlain(""));
    for (const char* text : {"a\n", "\x1B[1m", "\x7F", "\xC2\xB0", "a\tb"})
        EXPECT_FALSE(isPlain(text)) << text;
}

// ---- Streams

class ShownStreamTest : public ::testing::Test {
 protected:
    std::stringbuf plain;
};

TEST_F(ShownStreamTest, EscapesWhateverIsWritten) {
    ShownBuffer buffer(plain);
    std::ostream out(&buffer);
    out << "name=\x1B[31m" << 5 << '\t' << 'x' << '\r' << std::endl;
    EXPECT_EQ(plain.str(), "name=\\x1B[31m5\tx\\r\n");
}

TEST_F(ShownStreamTest, JoinsACharacterThatComesInPieces) {
    ShownBuffer buffer(plain);
    std::ostream out(&buffer);
    for (const char byte : std::string("\xE2\x80\xAE\xC3\xBC")) out << byte << std::flush;
    EXPECT_EQ(plain.str(), "\\u{202E}ü");
}

TEST_F(ShownStreamTest, TellsACharacterThatNeverEndedWhenItCloses) {
    {
        ShownBuffer buffer(plain);
        std::ostream out(&buffer);
        out << "a\xE2\x80" << std::flush;
        EXPECT_EQ(plain.str(), "a");
    }
    EXPECT_EQ(plain.str(), "a\\xE2\\x80");
}

TEST_F(ShownStreamTest, FailsWhereTheStreamBehindItFails) {
    struct Full : std::streambuf {};
    Full full;
    ShownBuffer buffer(full);
    std::ostream out(&buffer);
    out << "x";
    EXPECT_FALSE(out);
}

}  // namespace
}  // namespace zentaq
