// What a file is.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, InfoShowsWhatAFileIs) {
    const std::string version = std::string(ZENTAQ_VERSION).substr(2);  // "10.2" of "4.10.2"
    EXPECT_THAT(
        onFile("info"),
        Succeeds(
            AllOf(StartsWith("Kind:     3\nModel:    ORB A\n"), HasSubstr("\nVersion:  " + version + "\n"),
                  HasSubstr("\nFirmware: 5099 (release 5, build 99)\n"),
                  HasSubstr("\nName:     Street 2.0 Four\n"), HasSubstr("\nFloats:   2828\n"),
                  HasSubstr("\nBytes:    11324\n"), HasSubstr("\nNotes:    Sample: 2.0 liter four")),
            IsEmpty()));
}

TEST_F(Zentaqctl, AFileThatIsNoCalibrationIsRefusedInOneLine) {
    writeFile(file, "hello, this is no calibration");
    EXPECT_THAT(onFile("info"), Fails(1, AllOf(isOneLine, HasSubstr("is no calibration file")), IsEmpty()));
    EXPECT_EQ(run("info " + inQuotes(folder.path())).exitCode, 1);
}

TEST_F(Zentaqctl, AFileWithMoreValuesThanACalibrationIsRefused) {
    writeFile(file, contentOf(file) + std::string(1000, '\0'));  // 2828 + 250 > 3001
    EXPECT_THAT(onFile("info"), Fails(1, isOneLine));
}

TEST_F(Zentaqctl, InfoAnswersInJson) {
    const std::string json = onFile("info", "--json").out;
    EXPECT_EQ(fromJson(json, "d[\"kind\"], d[\"model\"], d[\"firmwareCode\"], d[\"release\"], d[\"build\"]"),
              "(3, 'ORB A', 5099, 5, 99)");
    EXPECT_EQ(fromJson(json, "d[\"name\"], d[\"floats\"], d[\"bytes\"]"), "('Street 2.0 Four', 2828, 11324)");
    EXPECT_EQ(fromJson(json, "d[\"file\"]"), file);
}

TEST_F(Zentaqctl, InfoInJsonKeepsQuotesAndLinesOfTheNotes) {
    const std::string notes = "say \"14.7\"\\ and\nmore";
    ASSERT_EQ(onFile("set", "NOTES_TEXT " + inQuotes(notes)).exitCode, 0);
    EXPECT_EQ(fromJson(onFile("info", "--json").out, "d[\"notes\"]"), notes);
}

TEST_F(Zentaqctl, InfoKnowsEveryKind) {
    for (const auto& [name, start] :
         {std::pair("ORB L Six.ZQ4OL", "Kind:     4\nModel:    ORB L\n"),
          std::pair("ORB C Six.ZQ4OC", "Kind:     6\nModel:    ORB C\n"),
          std::pair("ORB D Four.ZQ4OD", "Kind:     7\nModel:    ORB D\n"),
          std::pair("PZK-2 Classic Four.ZQ4PZK", "Kind:     5\nModel:    PZK-2\n")}) {
        EXPECT_THAT(run("info " + inQuotes(sample(name))).out, StartsWith(start));
    }
}

TEST_F(Zentaqctl, InfoTellsHowMuchAShortFileLacks) {
    writeFile(file, contentOf(file).substr(0, 5000));  // 1250 floats, 3 of them the header
    EXPECT_THAT(onFile("info").out, HasSubstr("\nFloats:   1247 of 2828; the others read as 0\n"));
    EXPECT_EQ(fromJson(onFile("info", "--json").out, "d[\"floats\"]"), "1247");
}

TEST_F(Zentaqctl, ADamagedFileIsNamed) {
    plant(-1, 1e30F);  // the firmware code
    const std::string told = file + ": the file is damaged, it holds a number out of all range. The number 1";
    EXPECT_THAT(onFile("info"), Fails(1, AllOf(isOneLine, StartsWith(told))));
}

}  // namespace
}  // namespace zentaq
