// A file as a listing, from the shell.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, PrintsAListingWithTheNamesOfTheReferenceData) {
    const Outcome printed = onFile("print");
    EXPECT_THAT(printed, Succeeds(StartsWith(file + "  DATE: "), IsEmpty()));
    EXPECT_THAT(printed.out, HasSubstr("\n1.  WIZARD & BASIC PARAMETERS\n"));
    EXPECT_THAT(
        printed.out,
        HasSubstr("\nCurrent Engine Configuration = 4 Cylinder Coil per Plug, Sequential Injection\n"));
    EXPECT_THAT(printed.out, HasSubstr("\nMAP Sensor Installed: 1 BAR (10-105 kPa)\n"));
    EXPECT_THAT(printed.out, ::testing::EndsWith("software version 4.10.2.\n"));
}

TEST_F(Zentaqctl, PrintsWithoutReferenceDataAllTheSame) {
    withoutDatabase();
    EXPECT_THAT(onFile("print"), Succeeds(HasSubstr("\nCurrent Engine Configuration = \n")));
}

TEST_F(Zentaqctl, PrintsPagesIntoATextAndADocumentIntoAPdf) {
    const std::string text = folder.file("out.txt");
    const std::string pdf = folder.file("out.pdf");
    EXPECT_EQ(onFile("print", "-o " + inQuotes(text)).exitCode, 0);
    EXPECT_THAT(contentOf(text), HasSubstr("\f"));
    EXPECT_THAT(contentOf(text), HasSubstr("PAGE 2\n"));
    EXPECT_EQ(onFile("print", "-o " + inQuotes(pdf)).exitCode, 0);
    EXPECT_THAT(contentOf(pdf), StartsWith("%PDF-1.4\n"));
    // It can be made again at any time; what is none of it stays.
    EXPECT_EQ(onFile("print", "-o " + inQuotes(pdf)).exitCode, 0);
    writeFile(text, "my own notes");
    EXPECT_EQ(onFile("print", "-o " + inQuotes(text)).exitCode, 1);
    EXPECT_EQ(contentOf(text), "my own notes");
}

TEST_F(Zentaqctl, PrintsEverySampleOfEveryKind) {
    for (const char* name : {"Street V8.ZQ4OA", "Turbo Four.ZQ4OA", "ORB L Six.ZQ4OL", "ORB C Six.ZQ4OC",
                             "ORB D Four.ZQ4OD", "PZK-2 Classic Four.ZQ4PZK"}) {
        EXPECT_THAT(run("print " + inQuotes(sample(name))),
                    Succeeds(HasSubstr("-- SOFTWARE VERSION --"), IsEmpty()))
            << name;
    }
}

}  // namespace
}  // namespace zentaq
