// A file as text, and the text as the same file again.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

using ::testing::UnorderedElementsAre;

class ZentaqctlText : public Zentaqctl {
 protected:
    /// Exports the file and imports the text: the same bytes again, and these words.
    std::string thereAndBack() {
        EXPECT_EQ(onFile("export", "-o " + inQuotes(text)).exitCode, 0);
        const Outcome outcome = run("import " + inQuotes(text) + " -o " + inQuotes(again));
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_TRUE(contentOf(again) == contentOf(file));
        return outcome.error;
    }
    std::string text = folder.file("tune.txt");
    std::string again = folder.file("again.ZQ4OA");
};

TEST_F(ZentaqctlText, ExportWritesToTheStandardOutputOrAFile) {
    const Outcome outcome = onFile("export");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, HasSubstr("\nKNK_MIN = "));
    EXPECT_EQ(onFile("export", "-o -").out, outcome.out);
    EXPECT_THAT(onFile("export", "-o " + inQuotes(text)).out, IsEmpty());
    EXPECT_EQ(contentOf(text), outcome.out);
    EXPECT_THAT(onFile("export", "-o " + inQuotes(folder.file("no/such/place.txt"))), Fails(1, isOneLine));
}

TEST_F(ZentaqctlText, ImportMakesTheSameFileOfEverySample) {
    for (const auto& entry : fs::directory_iterator(sample(""))) {
        const std::string name = inQuotes(entry.path().string());
        ASSERT_EQ(run("export " + name + " -o " + inQuotes(text)).exitCode, 0) << name;
        EXPECT_THAT(run("import --force " + inQuotes(text) + " -o " + inQuotes(again)),
                    Succeeds(_, IsEmpty()));
        EXPECT_TRUE(contentOf(again) == contentOf(entry.path().string())) << name;
    }
}

TEST_F(ZentaqctlText, ImportTellsOfFunctionsThatNoListOffers) {
    plant(336, 16);          // an input function on the first output
    plant(336 + 5 * 9, 12);  // and one that only one input may have on two
    plant(336 + 6 * 9, 12);
    const auto lines = linesOf(thereAndBack());
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], StartsWith(again + ": pin 0 (W18): \"Advance Trim\" is for inputs"));
    EXPECT_EQ(lines[1],
              again + ": \"Fuel Trim\", which only one input may have, is on pin 5 (G17), pin 6 (G18)");
}

TEST_F(ZentaqctlText, ImportTellsOfValuesThatNoEntryGives) {
    plant(1680 + 5, 500);
    plant(1936 + 255, -1);
    plant(34, 5000);
    plant(656 + 44, NAN);
    EXPECT_THAT(linesOf(thereAndBack()),
                UnorderedElementsAre(again + ": KNK_MIN (cell 34) holds 5000 (2 to 100 units)",
                                     StartsWith(again + ": ADV[2,12] (cell 700) holds "),
                                     again + ": GPO1[0,5] (cell 1685) holds 500 (0 to 100%)",
                                     again + ": GPO2[15,15] (cell 2191) holds -1 (0 to 100%)"));
}

TEST_F(ZentaqctlText, ImportOfAnEmptyCalibrationIsBriefAboutItsValues) {
    constexpr std::size_t header = 12;
    const std::string before = contentOf(file);
    writeFile(file, before.substr(0, header) + std::string(before.size() - header, '\0'));
    const auto lines = linesOf(thereAndBack());
    ASSERT_EQ(lines.size(), 23U);
    EXPECT_THAT(lines[20], ::testing::MatchesRegex(".*: [0-9]+ more values are outside their ranges"));
    EXPECT_EQ(lines[21],
              again +
                  ": RPM axis of the tables: 0 is followed by 0, and 14 more stops do not rise; the "
                  "unit looks its values up in rising order");
    EXPECT_THAT(lines[22], StartsWith(again + ": MAP axis of the tables: "));
}

TEST_F(ZentaqctlText, ExportAndImportTellThatTheEndOfAFileIsMissing) {
    writeFile(file, contentOf(file).substr(0, 7000));
    const std::string lost =
        " is damaged: The file ends early: 1081 of its 2828 cells are missing and were taken as 0.\n";
    EXPECT_EQ(onFile("export", "-o " + inQuotes(text)).error, file + lost);
    EXPECT_THAT(run("import " + inQuotes(text) + " -o " + inQuotes(again)).error, HasSubstr(again + lost));
    EXPECT_TRUE(contentOf(again) == contentOf(file));
    EXPECT_EQ(run("diff " + inQuotes(file) + " " + inQuotes(again)).error, file + lost + again + lost);
}

TEST_F(ZentaqctlText, ImportTakesTheStandardInput) {
    const std::string listing = onFile("export").out;
    EXPECT_EQ(run("import - -o " + inQuotes(again), listing).exitCode, 0);
    EXPECT_TRUE(contentOf(again) == contentOf(file));
    expectRefused(run("import - -o -"), "A calibration is not written to the standard output; name a file");
}

TEST_F(ZentaqctlText, ImportOfABrokenTextNamesTheFileAndTheLine) {
    std::string listing = onFile("export").out;
    listing.insert(listing.find("KNK_MIN = "), "what is this\n");
    writeFile(text, listing);
    EXPECT_THAT(
        run("import " + inQuotes(text) + " -o " + inQuotes(again)),
        Fails(1, AllOf(isOneLine, StartsWith(text + ": "), ::testing::ContainsRegex("[Ll]ine [0-9]+"))));
    EXPECT_FALSE(fs::exists(again));
}

TEST_F(ZentaqctlText, ExportOfWhatIsNoCalibrationNamesTheFile) {
    writeFile(file, "short");
    EXPECT_THAT(onFile("export"), Fails(1, AllOf(isOneLine, StartsWith(file + ": "))));
}

TEST_F(Zentaqctl, ExportTakesAFileFromTheStandardInput) {
    const std::string text = onFile("export").out;
    EXPECT_THAT(text, StartsWith("Zentaq4 calibration text"));
    EXPECT_EQ(run("export -", contentOf(file)).out, text);
    EXPECT_THAT(run("export -", "hello").error, StartsWith("standard input: "));
}

}  // namespace
}  // namespace zentaq
