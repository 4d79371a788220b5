// zentaqctl under fire: each command that writes a calibration.
#include <fcntl.h>

#include "saves/saved_under_fire.h"

namespace zentaq::testing {
namespace {

constexpr const char* sample = ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA";

class ShellSaves : public SavesUnderFire, public ::testing::WithParamInterface<int> {
 public:
    static constexpr int count = 7;

 protected:
    ShellSaves() {
        content = TemporaryFolder::read(sample);
        later = content;
        later.replace(12 + 4 * 34, 4, std::string("\0\0\x40\x42", 4));  // KNK_MIN 48
    }

    int exec(const std::vector<std::string>& words) const {
        const int error = ::open(messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        ::dup2(error, STDERR_FILENO);
        ::dup2(nothing, STDOUT_FILENO);
        ::dup2(nothing, STDIN_FILENO);
        std::vector<std::string> all{"zentaqctl"};
        all.insert(all.end(), words.begin(), words.end());
        std::vector<char*> pointers;
        for (std::string& word : all) pointers.push_back(word.data());
        pointers.push_back(nullptr);
        ::execv(ZENTAQ_APP_DIR "/zentaqctl", pointers.data());
        return Nonsense;
    }
    /// A command that writes `file`, which holds `before`, or is not there.
    SaveUnderFire command(const std::string& name, const std::vector<std::string>& words,
                          std::optional<std::string> before) {
        SaveUnderFire save = saveNamed(name);
        save.prepare = [this, before] {
            clear();
            if (before) std::ofstream(file, std::ios::binary) << *before;
        };
        save.run = [this, words] { return exec(words); };
        save.isSpoken = [this] {
            const std::string told = TemporaryFolder::read(messages);
            return !told.empty() && told.ends_with('\n');
        };
        const std::string made = contentAfter(save);
        save.isNew = [made](const std::optional<std::string>& found) { return found == made; };
        return save;
    }
    /// What the command makes where nothing disturbs it.
    std::string contentAfter(const SaveUnderFire& save) const {
        save.prepare();
        const pid_t child = ::fork();
        if (child == 0) ::_exit(save.run());
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << save.name << ": " << TemporaryFolder::read(messages);
        return TemporaryFolder::read(file);
    }
    std::string writeBeside(const std::string& name, const std::string& what) const {
        return folder.write(name, what);
    }
    std::string outputOf(const std::string& arguments) const {
        const std::string out = folder.file("out");
        const std::string line =
            std::string("'" ZENTAQ_APP_DIR "/zentaqctl' ") + arguments + " >'" + out + "'";
        EXPECT_EQ(std::system(line.c_str()), 0) << line;
        return TemporaryFolder::read(out);
    }

    std::vector<SaveUnderFire> all() {
        const std::string base = writeBeside("base.ZQ4OA", content);
        const std::string other = writeBeside("other.ZQ4OA", later);
        const std::string listing = writeBeside("listing.txt", outputOf("export '" + other + "'"));
        std::string table = outputOf("table '" + base + "' ADV");
        const auto cell = table.find("12.5");
        EXPECT_NE(cell, std::string::npos);
        table.replace(cell, 4, "13.5");
        const std::string cells = writeBeside("table.txt", table);
        const std::string old = writeBeside("old.BIN", std::string(8704, '\0'));
        return {
            command("set", {"set", file, "REV_Limiter", "6100"}, content),
            command("cell", {"cell", file, "34", "41"}, content),
            command("table", {"table", file, "ADV", "--from", cells}, content),
            command("import", {"import", listing, "-o", file, "--force"}, content),
            command("merge", {"merge", base, file, other, "-o", file}, content),
            command("import-bin", {"import-bin", old, "-o", file, "--force"}, content),
            command("new",
                    {"new", "--unit", "ORB A Standard", "--engine",
                     "4 Cylinder Coil per Plug, Sequential Injection", "--sensor", "1 BAR (10-105 kPa)", "-o",
                     file},
                    {}),
        };
    }

    SaveUnderFire chosen() {
        auto saves = all();
        EXPECT_EQ(saves.size(), std::size_t{count});
        return saves.at(static_cast<std::size_t>(GetParam()));
    }

    std::string messages = folder.file("messages");
    std::string content;
    std::string later;
};

// One of them a test, so that they run side by side.
INSTANTIATE_TEST_SUITE_P(EachOf, ShellSaves, ::testing::Range(0, ShellSaves::count));

TEST_P(ShellSaves, KilledAtAnyCallLeaveTheOldFileOrTheNewOneAndTheNextOneIsWhole) {
    kill(chosen());
}

TEST_P(ShellSaves, FailingAtAnyCallLeaveTheOldFileAndSaySoOrTheNewOne) {
    fail(chosen());
}

}  // namespace
}  // namespace zentaq::testing
