// The command line itself: exit status, help, broken output.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, WrongUsageEndsWithTwo) {
    const std::string name = inQuotes(file);
    for (const std::string& arguments :
         {std::string(), std::string("program"), std::string("get"), "get " + name,
          "set " + name + " KNK_MIN", "set " + name + " VE 5 --index x", "image " + name,
          "image " + name + " --firmware five -o x", "image " + name + " --firmware 5 -o x",
          "info " + name + " --loud", "get " + name + " VE 1 2"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_FALSE(outcome.error.empty()) << arguments;
        EXPECT_THAT(outcome.out, IsEmpty()) << arguments;
    }
}

TEST_F(Zentaqctl, HelpAndVersionAreNoFailure) {
    EXPECT_EQ(run("--help").exitCode, 0);
    EXPECT_THAT(run("set --help").out, HasSubstr("--index"));
    EXPECT_EQ(run("--version").out, ZENTAQ_VERSION "\n");
}

TEST_F(Zentaqctl, FailsWhenItsAnswerCannotBeWritten) {
    const std::string command =
        inQuotes(ZENTAQ_APP_DIR "/zentaqctl") + " get " + inQuotes(file) + " VE >/dev/full 2>/dev/null";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST_F(Zentaqctl, AnUnknownCommandIsNamed) {
    EXPECT_THAT(run("inof x"), Fails(2, StartsWith("inof is no command\n")));
}

TEST_F(Zentaqctl, WrongUsageOfTheCommandsThatWriteEndsWithTwo) {
    const std::string name = inQuotes(file);
    const std::string before = contentOf(file);
    for (const std::string& arguments : std::vector<std::string>{
             "cell " + name, "cell " + name + " x", "cell " + name + " 34 -o x",
             "cell " + name + " 34 5 --json", "table " + name, "table " + name + " FOO",
             "table " + name + " VE -o x", "table " + name + " VE --from x --json",
             "members " + name + " --kind A", "members --kind Z", "diff " + name,
             "merge " + name + " " + name + " -o x", "merge " + name + " " + name + " " + name, "import x",
             "import-bin x", "export", "record " + name + " KNK_MIN", "set " + name + " KNK_MIN 5 --json"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_FALSE(outcome.error.empty()) << arguments;
        EXPECT_THAT(outcome.out, IsEmpty()) << arguments;
    }
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, WorksWithoutADatabaseWhereNoValueDependsOnIt) {
    const std::string program = folder.file("zentaqctl");  // no database beside it
    fs::copy_file(ZENTAQ_APP_DIR "/zentaqctl", program);
    const auto answer = [&](const std::string& member) {
        const std::string out = folder.file("out.txt");
        const std::string command = " get " + inQuotes(file) + " " + member + " >" + inQuotes(out) + " 2>&1";
        EXPECT_EQ(std::system((inQuotes(program) + command).c_str()), 0);
        return contentOf(out);
    };
    EXPECT_EQ(answer("REV_Limiter"), "7000\n");
    EXPECT_EQ(answer("TOOTHMAX"), "0\n") << "of the engine, which nobody knows here";
    EXPECT_EQ(onFile("get", "TOOTHMAX").out, "58\n");
}

TEST_F(Zentaqctl, AnEmptyOutputNameDoesNotMeanTheFileItself) {
    const std::string before = contentOf(file);
    for (const char* arguments : {"KNK_MIN 45 -o ''", "KNK_MIN 45 --output=''"}) {
        EXPECT_EQ(onFile("set", arguments).exitCode, 2) << arguments;
    }
    EXPECT_EQ(onFile("cell", "34 45 -o ''").exitCode, 2);
    EXPECT_EQ(onFile("image", "-o ''").exitCode, 2);
    EXPECT_EQ(onFile("export", "-o ''").exitCode, 2);
    EXPECT_EQ(contentOf(file), before);
}

}  // namespace
}  // namespace zentaq
