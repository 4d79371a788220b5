// What a command may replace: a wrong name on a command line costs nobody a file.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

class ZentaqctlOutputs : public Zentaqctl {
 protected:
    ZentaqctlOutputs() {
        fs::copy_file(sample("Street V8.ZQ4OA"), other);
        content = contentOf(other);
    }
    void expectKept(const Outcome& outcome, const std::string& what) {
        expectRefused(outcome, other + " is there already; --force puts the new " + what + " in its place");
        EXPECT_EQ(contentOf(other), content);
    }
    std::string other = folder.file("Other.ZQ4OA");
    std::string content;
};

TEST_F(ZentaqctlOutputs, NoCommandReplacesACalibrationThatItWasNotToChange) {
    const std::string out = "-o " + inQuotes(other);
    const std::string text = folder.file("street.txt");
    const std::string old = folder.file("old.BIN");
    ASSERT_EQ(onFile("export", "-o " + inQuotes(text)).exitCode, 0);
    writeFile(old, std::string(8704, '\0'));
    expectKept(onFile("set", "KNK_MIN 45 " + out), "calibration");
    expectKept(onFile("cell", "34 45 " + out), "calibration");
    expectKept(onFile("table", "VE --from - " + out, onFile("table", "VE").out), "calibration");
    expectKept(run("import " + inQuotes(text) + " " + out), "calibration");
    expectKept(run("import-bin " + inQuotes(old) + " " + out), "calibration");
    expectKept(run("merge " + inQuotes(file) + " " + inQuotes(file) + " " + inQuotes(file) + " " + out),
               "calibration");
    expectKept(onFile("image", out), "image");
    expectKept(onFile("export", out), "text");
}

TEST_F(ZentaqctlOutputs, NoCommandWritesOverAnInputOfAnotherForm) {
    const std::string link = folder.file("link");
    fs::create_symlink(file, link);
    const std::string name = inQuotes(file);
    const std::string before = contentOf(file);
    for (const auto& [command, output] :
         {std::pair("image " + name + " -o " + name, file), std::pair("export " + name + " -o " + name, file),
          std::pair("export " + name + " -o " + inQuotes(link), link),
          std::pair("import " + name + " -o " + name, file),
          std::pair("import-bin " + name + " -o " + name, file),
          std::pair("table " + name + " VE --from " + name, file)}) {
        SCOPED_TRACE(command);
        expectRefused(run(command), output + " would be overwritten; name another file");
        EXPECT_TRUE(contentOf(file) == before);
    }
}

TEST_F(ZentaqctlOutputs, AMissingInputIsNamed) {
    const std::string missing = folder.file("missing.ZQ4OA");
    const std::string name = inQuotes(missing);
    for (const std::string& command :
         {"info " + name, "get " + name + " KNK_MIN", "diff " + inQuotes(file) + " " + name, "export " + name,
          "import " + name + " -o x", "table " + inQuotes(file) + " VE --from " + name}) {
        SCOPED_TRACE(command);
        expectRefused(run(command), "Cannot open " + missing + ": No such file or directory");
    }
    // Its length is asked first: it tells the kind.
    expectRefused(run("import-bin " + name + " -o x"),
                  "Cannot read " + missing + ": No such file or directory");
}

TEST_F(ZentaqctlOutputs, ForceReplacesIt) {
    EXPECT_EQ(onFile("set", "KNK_MIN 45 --force -o " + inQuotes(other)).exitCode, 0);
    EXPECT_EQ(cellOf(other, 34), 45);
    EXPECT_EQ(onFile("export", "--force -o " + inQuotes(other)).exitCode, 0);
    EXPECT_THAT(contentOf(other), StartsWith("Zentaq4 calibration text"));
}

TEST_F(ZentaqctlOutputs, ACalibrationThatTheCommandWorksOnIsItsToChange) {
    EXPECT_EQ(onFile("set", "KNK_MIN 45 -o " + inQuotes(file)).exitCode, 0);
    fs::create_symlink(file, folder.file("link"));
    EXPECT_EQ(onFile("set", "KNK_MIN 46 -o " + inQuotes(folder.file("link"))).exitCode, 0);
    EXPECT_EQ(cellOf(file, 34), 46);
    const std::string theirs = folder.file("theirs.ZQ4OA");
    fs::copy_file(file, theirs);
    EXPECT_EQ(run("merge " + inQuotes(file) + " " + inQuotes(file) + " " + inQuotes(theirs) + " -o " +
                  inQuotes(theirs))
                  .exitCode,
              0);
}

TEST_F(ZentaqctlOutputs, AnImageAndATextTakeThePlaceOfTheirFormerSelves) {
    const std::string image = folder.file("street.s19");
    const std::string text = folder.file("street.txt");
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(onFile("image", "-o " + inQuotes(image)).exitCode, 0) << turn;
        EXPECT_EQ(onFile("export", "-o " + inQuotes(text)).exitCode, 0) << turn;
    }
    expectRefused(onFile("image", "-o " + inQuotes(text)),
                  text + " is there already; --force puts the new image in its place");
    expectRefused(onFile("export", "-o " + inQuotes(image)),
                  image + " is there already; --force puts the new text in its place");
}

TEST_F(ZentaqctlOutputs, AnEmptyFileIsNoLoss) {
    writeFile(other, "");
    EXPECT_EQ(onFile("set", "KNK_MIN 45 -o " + inQuotes(other)).exitCode, 0);
    EXPECT_EQ(cellOf(other, 34), 45);
}

}  // namespace
}  // namespace zentaq
