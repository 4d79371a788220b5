// What comes from a file, a unit or the command line reaches a terminal and a script as text, never as
// commands to a terminal, and an error is one line that says what, where and what to do.
#include <sys/stat.h>

#include "base/shown_text.h"
#include "base/utf8.h"
#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

/// Whether all of a text may stand on a terminal.
bool isReadable(std::string_view text) {
    while (!text.empty()) {
        const auto [code, length] = firstCharacter(text);
        if (code != '\n' && code != '\t' && !isShownAsItIs(code)) return false;
        text.remove_prefix(length);
    }
    return true;
}

constexpr int firstOfName = 560;
constexpr int firstOfNotes = 2327;

class ZentaqctlShown : public ZentaqctlOnLink {
 protected:
    /// One code a cell.
    void plantText(int cell, const std::u32string& text) {
        for (const char32_t code : text) plant(cell++, static_cast<float>(code));
    }
};

TEST_F(ZentaqctlShown, NamesAndNotesOfAFileAreEscaped) {
    plantText(firstOfName, U"\x1B[2Jname\u202E\u0007");
    plantText(firstOfNotes + 1, U"\x1B]0;title\u0007\u009B31m\u200B");
    const Outcome info = onFile("info");
    EXPECT_TRUE(isReadable(info.out)) << shownLines(info.out);
    EXPECT_THAT(info.out, HasSubstr("\\x1B[2Jname\\u{202E}\\x07"));
    EXPECT_EQ(onFile("get", "NOTES_TEXT").out.substr(0, 31), "\\x1B]0;title\\x07\\x9B31m\\u{200B}");
    EXPECT_EQ(fromJson(onFile("get", "BiName --json").out, "d[\"value\"][:7]"), "\x1B[2Jnam");
    EXPECT_TRUE(isReadable(onFile("info", "--json").out));
}

TEST_F(ZentaqctlShown, ANameThatWritesLinesOfItsOwnStaysOnItsLine) {
    plantText(firstOfName, U"a\nKind:     8            ");
    const Outcome info = onFile("info");
    EXPECT_THAT(info.out, HasSubstr("Name:     a\\nKind:     8\n"));
}

TEST_F(ZentaqctlShown, NamesOfFilesAndWordsOfTheCommandLineAreEscapedInErrors) {
    const Outcome missing = run("info $'\\e[31mred\\xe2\\x80\\xae\\nline'");
    EXPECT_EQ(missing.exitCode, 1);
    expectOneLine(missing.error);
    EXPECT_TRUE(isReadable(missing.error));
    const Outcome value = run("get " + inQuotes(file) + " \"$(printf 'KNK\\033[31m')\"");
    EXPECT_THAT(value.error, StartsWith("ORB A has no member KNK\\x1B[31m"));
    EXPECT_THAT(run("\"$(printf '\\033[31m')\""), Fails(2, StartsWith("\\x1B[31m is no command")));
}

TEST_F(ZentaqctlShown, WhatIsReadBackByAProgramStaysAsItIs) {
    plantText(firstOfNotes + 1, U"\x1B\u202E\u061C\u034F");
    const std::string toFile = folder.file("street.txt");
    ASSERT_EQ(onFile("export", "-o " + inQuotes(toFile)).exitCode, 0);
    const std::string text = onFile("export").out;
    EXPECT_EQ(text, contentOf(toFile));
    EXPECT_TRUE(isReadable(text)) << "the text form numbers such characters by itself";
    const std::string again = folder.file("again.ZQ4OA");
    ASSERT_EQ(run("import - -o " + inQuotes(again), text).exitCode, 0);
    EXPECT_EQ(contentOf(again), contentOf(file));
    EXPECT_THAT(onFile("image", "-o -").out, HasSubstr("\r\n"));
}

TEST_F(ZentaqctlShown, TheNameThatAUnitTellsIsEscaped) {
    startUnit("A", {"--name", "\x1B]0;owned\a\x9B"});
    const Outcome told = onUnit("identify");
    EXPECT_EQ(told.exitCode, 0) << told.error;
    EXPECT_TRUE(isReadable(told.out)) << shownLines(told.out);
    EXPECT_THAT(told.out, HasSubstr("\\x1B]0;owned\\x07\\x9B"));
    EXPECT_TRUE(isReadable(onUnit("identify", "--json").out));

    const std::string trace = folder.file("wire.trace");
    ASSERT_EQ(onUnit("identify", "--trace " + inQuotes(trace)).exitCode, 0);
    EXPECT_TRUE(isReadable(contentOf(trace)));
    EXPECT_THAT(contentOf(trace), HasSubstr("\\x1B]0;owned\\x07\\x9B"));
    EXPECT_TRUE(isReadable(run("trace " + inQuotes(trace)).out));
}

TEST_F(ZentaqctlShown, ATraceOfAStrangerIsEscaped) {
    const std::string trace = folder.file("wire.trace");
    ASSERT_EQ(run("identify --port none --trace " + inQuotes(trace)).exitCode, 3);
    writeFile(trace, contentOf(trace) + "      100.000 *      \x1B[2Jgone \xE2\x80\xAE\n");
    const Outcome shown = run("trace " + inQuotes(trace));
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_TRUE(isReadable(shown.out)) << shownLines(shown.out);
    EXPECT_THAT(shown.out, HasSubstr("\\x1B[2Jgone \\u{202E}"));
    EXPECT_TRUE(isReadable(run("trace --json " + inQuotes(trace)).out));
}

// ---- Errors

TEST_F(ZentaqctlShown, AFileInsideAnErrorIsCutToALine) {
    const std::string flood(35'000, 'x');
    const std::string text = folder.file("street.txt");
    ASSERT_EQ(onFile("export", "-o " + inQuotes(text)).exitCode, 0);
    const std::string listing = contentOf(text);
    writeFile(text, listing + flood + " = 5\n");
    for (const Outcome& outcome :
         {run("import " + inQuotes(text) + " -o " + inQuotes(folder.file("x"))),
          onFile("set", "KNK_MIN " + flood), onFile("get", flood), onFile("cell", "5 " + flood),
          run("decode --kind A --reply W " + flood), run("import " + inQuotes(flood) + " -o x"),
          run("new --unit A --engine " + flood + " --sensor y -o x"),
          onFile("table", "VE --from -", "VE\t" + flood + "\n"), run(flood)}) {
        EXPECT_NE(outcome.exitCode, 0);
        EXPECT_LE(outcome.error.size(), 800U) << outcome.error.substr(0, 2000);
    }
    EXPECT_THAT(onFile("set", "KNK_MIN " + flood).error, HasSubstr("Non-numeric"));
}

TEST_F(ZentaqctlShown, ANumberOutOfAllRangeIsToldWithTheFileAndWhatItIs) {
    plant(0, 1e30F);  // a control byte
    EXPECT_THAT(onFile("info"),
                Fails(1, AllOf(StartsWith(file + ": the file is damaged, it holds a number out of all range"),
                               HasSubstr(" to 255 do"), isOneLine)));
}

// ---- Limits

TEST_F(ZentaqctlShown, EveryReaderRefusesTwoGigabytesAtOnceWithItsLimit) {
    const std::string huge = folder.file("huge");
    const auto grown = [&](const std::string& beginning) {
        writeFile(huge, beginning);
        fs::resize_file(huge, std::uintmax_t{2} << 30);
        return inQuotes(huge);
    };
    const std::string start = "Cannot read " + huge + ": it has 2147483648 bytes; ";
    const std::string calibration = contentOf(file);
    expectRefused(run("diff " + grown(calibration) + " " + inQuotes(file)),
                  start + "a calibration has at most 65536");
    expectRefused(run("export " + grown(calibration)), start + "a calibration has at most 65536");
    expectRefused(run("import " + grown("Zentaq4 calibration text, format 1\n") + " -o x"),
                  start + "a calibration as text has at most 1048576");
    expectRefused(onFile("table", "VE --from " + grown("VE\t")),
                  start + "a table as text has at most 262144");
    expectRefused(run("firmware --yes " + grown("S0")), start + "a firmware has at most 16777216");
    const std::string trace = folder.file("wire.trace");
    ASSERT_EQ(run("identify --port none --trace " + inQuotes(trace)).exitCode, 3);
    expectRefused(run("trace " + grown(contentOf(trace))), start + "a wire trace has at most 20971520");
    EXPECT_THAT(run("info " + grown(calibration)),
                Fails(1, HasSubstr("holds more values than a calibration")));
}

TEST_F(ZentaqctlShown, TheStandardInputHasTheLimitOfItsReader) {
    const auto endless = [&](const std::string& command) {
        return shell("yes | " + zentaqctl + " " + command);
    };
    const std::string start = "Cannot read the standard input: it has more than ";
    expectRefused(endless("diff - " + inQuotes(file)),
                  start + "65536 bytes; a calibration has at most 65536");
    expectRefused(endless("import - -o x"),
                  start + "1048576 bytes; a calibration as text has at most 1048576");
    expectRefused(endless("table " + inQuotes(file) + " VE --from -"),
                  start + "262144 bytes; a table as text has at most 262144");
    expectRefused(endless("decode --kind A --reply W -"),
                  start + "65536 bytes; a reply in hexadecimal has at most 65536");
}

// Without anybody at its other end whoever opens a pipe waits; the fixture would, too.
TEST_F(ZentaqctlShown, APipeInThePlaceOfAFileIsRefusedByEveryReader) {
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string why = "Cannot read " + pipe + ": it is a pipe, not a file";
    const std::string name = inQuotes(pipe);
    for (const std::string& command :
         {"info " + name, "get " + name + " VE", "diff " + name + " " + inQuotes(file), "export " + name,
          "import " + name + " -o x", "trace " + name, "firmware --yes " + name, "program " + name,
          "table " + inQuotes(file) + " VE --from " + name, "import-bin " + name + " -o x",
          "monitor --port none --file " + name}) {
        SCOPED_TRACE(command);
        expectRefused(run(command), why);
    }
}

}  // namespace
}  // namespace zentaq
