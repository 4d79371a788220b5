// zentaqctl: reads, changes, compares and converts calibration files without a window. The command line
// stands in command_line.cpp, the commands in commands_*.cpp.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "base/errors.h"
#include "command_line.h"

namespace {

constexpr int done = 0;
constexpr int refusedOrFailed = 1;
constexpr int wrongUsage = 2;

/// The database of the application folder that this program stands in, opened when it is first asked for;
/// none where it is missing or damaged.
class ReferenceData {
 public:
    const zentaq::Database* get() {
        if (!tried_) open();
        return database_ ? &*database_ : nullptr;
    }

 private:
    void open() {
        tried_ = true;
        zentaq::skipFailing([&] {
            const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
            database_ = zentaq::Database::open((folder / "bin/data/zentaq410-02.pak").string());
        });
    }

    bool tried_ = false;
    std::optional<zentaq::Database> database_;
};

std::string onOneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

/// Runs one command under the policy "ends at the first failure, told in one line".
int runCommand(const zentaq::ctl::Run& command, bool json) {
    ReferenceData reference;
    const zentaq::ctl::Context context{zentaq::DatabaseSource([&] { return reference.get(); }), std::cout,
                                       std::cerr, json};
    int status = refusedOrFailed;
    zentaq::endOnFailure(
        [&] {
            const int outcome = command(context);
            std::cout.flush();
            if (!std::cout) throw zentaq::Failure("Cannot write to the standard output");
            status = outcome;
        },
        [](const std::string& why) { std::cerr << onOneLine(why) << '\n'; });
    return status;
}

/// A port or a file that is opened where a standard stream was closed would get what is meant for the reader.
/// What is written to such a stream fails as before.
void fillStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) != -1) continue;
        // The lowest free descriptor is this one.
        if (::open("/dev/null", O_RDONLY) != stream) return;
    }
}

int runProgram(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    zentaq::ctl::CommandLine commandLine;
    try {
        const auto command = commandLine.parse(argc, argv);
        return runCommand(command, commandLine.json());
    } catch (const CLI::ParseError& error) {
        return commandLine.explain(error) ? done : wrongUsage;
    }
}

}  // namespace

int main(int argc, char** argv) {
    fillStandardStreams();
    try {
        return runProgram(argc, argv);
    } catch (const std::exception& failure) {
        std::fputs(failure.what(), stderr);
        std::fputc('\n', stderr);
        return refusedOrFailed;
    }
}
