#include "base/ini_text.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

constexpr const char* none = "(none)";

std::string valueIn(std::string_view text, const std::string& key, const std::string& section = "System") {
    return IniText(text).value(section, key).value_or(none);
}

/// Of one line below [System].
std::string valueOf(const std::string& written) {
    return valueIn("[System]\nKey=" + written + "\nNext=1\n", "Key");
}

std::string lineOf(const std::string& value) {
    IniText text;
    text.set("S", "k", value);
    return text.text();
}

TEST(IniText, KeysStandBelowTheirSections) {
    const std::string text = "[System]\nCommPort=7\n\n[Datalog]\nDatalog1=12\n[System]\nAutoLog=1\n";
    EXPECT_EQ(valueIn(text, "CommPort"), "7");
    EXPECT_EQ(valueIn(text, "AutoLog"), "1") << "a section may come twice";
    EXPECT_EQ(valueIn(text, "Datalog1", "Datalog"), "12");
    EXPECT_EQ(valueIn(text, "Datalog1"), none);
    EXPECT_EQ(valueIn(text, "commport"), none) << "keys are told apart by case";
}

TEST(IniText, TheLastOfTwoValuesHolds) {
    EXPECT_EQ(valueIn("[System]\na=1\na=2\n", "a"), "2");
}

TEST(IniText, BlanksAroundKeysValuesAndSectionsDoNotCount) {
    EXPECT_EQ(valueIn("  [ System ]  \r\n \t Comm Port \t=  7 \t\r\n", "Comm Port"), "7");
    EXPECT_EQ(valueIn("\xEF\xBB\xBF[System]\na=1", "a"), "1") << "nor does the mark of an editor";
}

TEST(IniText, ASemicolonBeginsAComment) {
    EXPECT_EQ(valueIn("[System]\n; a=1\na=2;3\n", "a"), "2");
    EXPECT_FALSE(IniText("[System]\n; \"a\na=2 ; \"b\n").isDamaged());
}

TEST(IniText, EscapesAreTheirCharacters) {
    EXPECT_EQ(valueOf("C:\\\\Zentaq\\\\new"), "C:\\Zentaq\\new");
    EXPECT_EQ(valueOf("\\\"a\\tb\\nc\\r\\a\\b\\f\\v\\?\\'"), "\"a\tb\nc\r\a\b\f\v?'");
    EXPECT_EQ(valueOf("\\x41\\x3bb"), "A\u03BB");
    EXPECT_EQ(valueOf("\\101g\\0"), std::string("Ag\0", 3));
    EXPECT_EQ(valueOf("\\xd83d\\xde97"), "\U0001F697") << "told as two halves";
    EXPECT_EQ(valueOf("\\xd83dx"), "\uFFFDx") << "half a character is none";
    EXPECT_EQ(valueOf("a\\qb"), "ab");
    EXPECT_EQ(valueOf("1 \\x20 "), "1  ") << "blanks up to an escape are meant";
}

TEST(IniText, QuotationMarksKeepWhatStandsBetweenThem) {
    EXPECT_EQ(valueOf("\" a;b=c, d \""), " a;b=c, d ");
    EXPECT_EQ(valueOf("\"two\nlines\""), "two\nlines");
    EXPECT_EQ(valueOf("\"a\"  \"b\""), "ab");
}

TEST(IniText, ABackslashInFrontOfALineEndJoinsTheLines) {
    EXPECT_EQ(valueOf("1\\\n2"), "12");
    EXPECT_EQ(valueOf("1\\\r\n2"), "12");
}

TEST(IniText, CommasSeparatePartsThatReadAsOneText) {
    EXPECT_EQ(valueOf("1,5"), "1,5");
    EXPECT_EQ(valueOf("a , \"b c \",, d,"), "a,b c ,,d,");
}

TEST(IniText, ValuesThatAreNoPlainTextsAreMarked) {
    EXPECT_EQ(valueOf("@@home"), "@home");
    EXPECT_EQ(valueOf("@Invalid()"), none);
    EXPECT_EQ(valueOf("@String(a\\0\\x62)"), std::string("a\0b", 3));
    EXPECT_EQ(valueOf("@bytes"), "@bytes");
}

TEST(IniText, TheSectionWithoutANameIsCalledGeneral) {
    const std::string text = "a=1\n[general]\nb=2\n[%General]\nc=3\n";
    EXPECT_EQ(valueIn(text, "a", ""), "1");
    EXPECT_EQ(valueIn(text, "b", ""), "2");
    EXPECT_EQ(valueIn(text, "c", "General"), "3");
    EXPECT_EQ(IniText(text).text(), "[General]\na=1\nb=2\n\n[%General]\nc=3\n");
}

TEST(IniText, NamesAreEscapedInTheirOwnWay) {
    IniText text;
    text.set("Forms", "frm Tab\u00E9/\u03BB\U0001F697", "1");
    EXPECT_EQ(text.text(), "[Forms]\nfrm%20Tab%E9\\%U03BB%UD83D%UDE97=1\n");
    EXPECT_EQ(IniText(text.text()).value("Forms", "frm Tab\u00E9/\u03BB\U0001F697"), "1");
    EXPECT_EQ(valueIn("[System]\na%zz%U12=1\n", "a%zz%U12"), "1") << "no number behind it";
}

TEST(IniText, WritesValuesAsTheyAreReadAgain) {
    EXPECT_EQ(lineOf("7"), "[S]\nk=7\n");
    EXPECT_EQ(lineOf(""), "[S]\nk=\n");
    EXPECT_EQ(lineOf(" a"), "[S]\nk=\" a\"\n");
    EXPECT_EQ(lineOf("a;b"), "[S]\nk=\"a;b\"\n");
    EXPECT_EQ(lineOf("a,b"), "[S]\nk=\"a,b\"\n");
    EXPECT_EQ(lineOf("C:\\new\n"), "[S]\nk=C:\\\\new\\n\n");
    EXPECT_EQ(lineOf("\x01"
                     "b\x7F"),
              "[S]\nk=\\x01\\x62\x7F\n");
    EXPECT_EQ(lineOf("@home"), "[S]\nk=@@home\n");
    EXPECT_EQ(lineOf("\u03BB = 1\u00B0"), "[S]\nk=\"\u03BB = 1\u00B0\"\n");
}

TEST(IniText, AChangeLeavesAllOtherValuesAsTheyAre) {
    IniText text("[System]\nlist=a, \"b c \", @@d\nnothing=@Invalid()\nCommPort=7\n[Datalog]\nDatalog1=12\n");
    text.set("System", "CommPort", "9");
    EXPECT_EQ(text.text(),
              "[Datalog]\nDatalog1=12\n\n[System]\nCommPort=9\nlist=a, \"b c \", @@d\nnothing=@Invalid()\n");
}

TEST(IniText, TellsWhatIsNoLineOfSettingsAndReadsTheRest) {
    for (const std::string damage : {"no setting\n", "# no comment\n", "open=\"mark\n", "[System\n"}) {
        const IniText text("[System]\na=1\n" + damage + "b=2\n");
        EXPECT_TRUE(text.isDamaged()) << damage;
        EXPECT_EQ(text.value("System", "a"), "1") << damage;
        EXPECT_EQ(text.value("System", "b"), "2") << damage;
        EXPECT_FALSE(IniText(text.text()).isDamaged()) << damage;
    }
    EXPECT_FALSE(IniText("\n\n; nothing\n").isDamaged());
    EXPECT_FALSE(IniText("").isDamaged());
}

TEST(IniText, WhateverWasReadIsReadAgainFromWhatIsWritten) {
    // All texts of five letters out of those that mean something, in the place of a line.
    constexpr std::string_view letters = "a=\\\"[];, \n@x%\xC3";
    constexpr int length = 5;
    std::string line(length, ' ');
    std::size_t count = 1;
    for (int i = 0; i < length; ++i) count *= letters.size();
    for (std::size_t number = 0; number < count; ++number) {
        std::size_t rest = number;
        for (char& letter : line) {
            letter = letters[rest % letters.size()];
            rest /= letters.size();
        }
        const std::string written = IniText("[System]\nk=1\n" + line).text();
        const IniText again(written);
        ASSERT_EQ(again.text(), written) << testing::PrintToString(line);
        ASSERT_FALSE(again.isDamaged()) << testing::PrintToString(line);
        if (line.find('k') != std::string::npos) continue;
        ASSERT_EQ(again.value("System", "k"), "1") << testing::PrintToString(line);
    }
}

}  // namespace
}  // namespace zentaq
