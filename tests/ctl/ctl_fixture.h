// Runs the real zentaqctl on files of a temporary folder and keeps what it answered.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "refdata/refdata_fixture.h"

namespace zentaq {

namespace fs = std::filesystem;
using refdata::contentOf;
using refdata::TemporaryFolder;
using refdata::writeFile;
using ::testing::_;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

struct Outcome {
    int exitCode = -1;
    std::string out;
    std::string error;
};

inline void PrintTo(const Outcome& outcome, std::ostream* stream) {
    *stream << "exit code " << outcome.exitCode << ", output: " << outcome.out
            << ", errors: " << outcome.error;
}

using TextMatcher = ::testing::Matcher<const std::string&>;

inline auto Fails(int exitCode, const TextMatcher& error, const TextMatcher& out = _) {
    return AllOf(::testing::Field("exitCode", &Outcome::exitCode, exitCode),
                 ::testing::Field("error", &Outcome::error, error),
                 ::testing::Field("out", &Outcome::out, out));
}
inline auto Succeeds(const TextMatcher& out = _, const TextMatcher& error = _) {
    return Fails(0, error, out);
}
inline const TextMatcher isOneLine = ::testing::MatchesRegex("[^\n]*\n");

inline std::string inQuotes(const std::string& text) {
    return "'" + text + "'";
}

inline void expectOneLine(const std::string& text) {
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_THAT(text, ::testing::EndsWith("\n"));
}

inline void expectRefused(const Outcome& outcome, const std::string& why) {
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.error, why + "\n");
}

inline std::string outOfRange(const std::string& range) {
    return "Warning 1001: Data Input Error: " + range + " - Invalid Entry.";
}
inline const std::string notNumeric =
    "Warning 1000: Data Input Error: Non-numeric value detected. Retype Data";

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    for (std::size_t end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        lines.push_back(text.substr(at, end - at));
    }
    if (at < text.size()) lines.push_back(text.substr(at));
    return lines;
}

class Zentaqctl : public ::testing::Test {
 protected:
    Zentaqctl() { fs::copy_file(sample("Street 2.0 Four.ZQ4OA"), file); }

    static std::string sample(const std::string& name) { return ZENTAQ_APP_DIR "/samples/" + name; }

    Outcome run(const std::string& arguments, const std::string& input = {}) {
        const std::string in = folder.file("stdin.txt");
        writeFile(in, input);
        return shell(zentaqctl + " " + arguments + " <" + inQuotes(in));
    }
    /// What a line of the shell writes and ends with.
    Outcome shell(const std::string& line) {
        const std::string out = folder.file("stdout.txt");
        const std::string error = folder.file("stderr.txt");
        const int status =
            std::system(("( " + line + " ) >" + inQuotes(out) + " 2>" + inQuotes(error)).c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(error)};
    }
    Outcome onFile(const std::string& command, const std::string& rest = {}, const std::string& input = {}) {
        return run(command + " " + inQuotes(file) + " " + rest, input);
    }
    /// From now on the program runs where no database lies beside it.
    void withoutDatabase() {
        zentaqctl = inQuotes(folder.file("zentaqctl"));
        fs::copy_file(ZENTAQ_APP_DIR "/zentaqctl", folder.file("zentaqctl"));
    }
    /// Copies a sample, for a test that changes it.
    std::string copyOf(const std::string& name) {
        fs::copy_file(sample(name), folder.file(name));
        return folder.file(name);
    }

    /// What a command says of `file` to each of these words behind it.
    void expectAnswers(const std::string& command,
                       const std::vector<std::pair<std::string, TextMatcher>>& answers) {
        for (const auto& [words, answer] : answers) {
            EXPECT_THAT(onFile(command, words), Succeeds(answer)) << command << ' ' << words;
        }
    }
    /// Each of these words behind a command and `file` is refused for its reason and changes nothing.
    void expectRefusals(const std::string& command,
                        const std::vector<std::pair<std::string, std::string>>& refusals) {
        const std::string before = contentOf(file);
        for (const auto& [words, why] : refusals) {
            SCOPED_TRACE(command + " " + words);
            expectRefused(onFile(command, words), why);
        }
        EXPECT_TRUE(contentOf(file) == before);
    }
    /// Each of these words behind a command and `file` is done.
    void expectDone(const std::string& command, const std::vector<std::string>& each) {
        for (const std::string& words : each) EXPECT_THAT(onFile(command, words), Succeeds()) << words;
    }
    void expectWrongUsage(const std::vector<std::string>& commandLines) {
        for (const std::string& line : commandLines) {
            EXPECT_THAT(run(line), Fails(2, Not(IsEmpty()), IsEmpty())) << line;
        }
    }
    /// What Python makes of an expression over an answer in JSON, `d`. Fails the test on text that is no
    /// JSON.
    std::string fromJson(const std::string& text, const std::string& expression) {
        const std::string in = folder.file("answer.json");
        const std::string out = folder.file("python.txt");
        writeFile(in, text);
        const std::string script =
            "import json,sys; d=json.load(open(sys.argv[1], encoding=\"utf-8\")); "
            "sys.stdout.reconfigure(encoding=\"utf-8\"); print((" +
            expression + "))";
        const std::string command =
            inQuotes(ZENTAQ_PYTHON) + " -c " + inQuotes(script) + " " + inQuotes(in) + " >" + inQuotes(out);
        EXPECT_EQ(std::system(command.c_str()), 0) << text;
        std::string answer = contentOf(out);
        if (answer.ends_with('\n')) answer.pop_back();
        return answer;
    }
    float floatOf(const std::string& path, int index) const {
        const std::string bytes = contentOf(path);
        float value = NAN;
        if (bytes.size() >= 4U * static_cast<std::size_t>(index + 1)) {
            std::memcpy(&value, bytes.data() + 4 * index, sizeof value);
        }
        return value;
    }
    /// A cell behind the three header floats.
    float cellOf(const std::string& path, int cell) const { return floatOf(path, cell + 3); }
    /// Puts a number into a cell of `file`, past every check.
    void plant(int cell, float value) {
        std::string bytes = contentOf(file);
        std::memcpy(bytes.data() + 12 + 4 * cell, &value, sizeof value);
        writeFile(file, bytes);
    }

    TemporaryFolder folder;
    std::string zentaqctl = inQuotes(ZENTAQ_APP_DIR "/zentaqctl");
    std::string file = folder.file("Street.ZQ4OA");
};

}  // namespace zentaq
