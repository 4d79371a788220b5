// The command line itself: exit status, help, broken output.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, WrongUsageEndsWithTwo) {
    const std::string name = inQuotes(file);
    expectWrongUsage({"", "program", "get", "get " + name, "set " + name + " KNK_MIN",
                      "set " + name + " VE 5 --index x", "image " + name,
                      "image " + name + " --firmware five -o x", "image " + name + " --firmware 5 -o x",
                      "info " + name + " --loud", "get " + name + " VE 1 2"});
}

TEST_F(Zentaqctl, HelpAndVersionAreNoFailure) {
    EXPECT_EQ(run("--help").exitCode, 0);
    EXPECT_THAT(run("set --help").out, HasSubstr("--index"));
    EXPECT_EQ(run("--version").out, ZENTAQ_VERSION "\n");
}

TEST_F(Zentaqctl, FailsWhenItsAnswerCannotBeWritten) {
    EXPECT_EQ(shell(zentaqctl + " get " + inQuotes(file) + " VE >/dev/full").exitCode, 1);
}

TEST_F(Zentaqctl, AnUnknownCommandIsNamed) {
    EXPECT_THAT(run("inof x"), Fails(2, StartsWith("inof is no command\n")));
}

TEST_F(Zentaqctl, WrongUsageOfTheCommandsThatWriteEndsWithTwo) {
    const std::string name = inQuotes(file);
    const std::string before = contentOf(file);
    expectWrongUsage({"cell " + name, "cell " + name + " x", "cell " + name + " 34 -o x",
                      "cell " + name + " 34 5 --json", "table " + name, "table " + name + " FOO",
                      "table " + name + " VE -o x", "table " + name + " VE --from x --json",
                      "members " + name + " --kind A", "members --kind Z", "diff " + name,
                      "merge " + name + " " + name + " -o x", "merge " + name + " " + name + " " + name,
                      "import x", "import-bin x", "export", "record " + name + " KNK_MIN",
                      "set " + name + " KNK_MIN 5 --json"});
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, WorksWithoutADatabaseWhereNoValueDependsOnIt) {
    EXPECT_EQ(onFile("get", "TOOTHMAX").out, "58\n");
    withoutDatabase();
    EXPECT_THAT(onFile("get", "REV_Limiter"), Succeeds("7000\n", IsEmpty()));
    EXPECT_THAT(onFile("get", "TOOTHMAX"), Succeeds("0\n", IsEmpty()))
        << "of the engine, which nobody knows here";
}

TEST_F(Zentaqctl, AnEmptyOutputNameDoesNotMeanTheFileItself) {
    const std::string before = contentOf(file);
    const std::string name = inQuotes(file);
    expectWrongUsage({"set " + name + " KNK_MIN 45 -o ''", "set " + name + " KNK_MIN 45 --output=''",
                      "cell " + name + " 34 45 -o ''", "image " + name + " -o ''",
                      "export " + name + " -o ''"});
    EXPECT_EQ(contentOf(file), before);
}

}  // namespace
}  // namespace zentaq
