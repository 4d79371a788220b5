// zentaqctl: reads, changes, compares and converts calibration files without a window. The command line
// stands in command_line.cpp, the commands in commands_*.cpp.
#include <fcntl.h>
#include <unistd.h>

#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "base/errors.h"
#include "base/shown_text.h"
#include "command_line.h"

namespace {

constexpr int done = 0;
constexpr int refusedOrFailed = 1;
constexpr int wrongUsage = 2;

/// The database of the application folder that this program stands in, opened when it is first asked for.
class ReferenceData {
 public:
    /// Throws Failure, with the reason, where it cannot be opened. One that another program has locked is
    /// waited for once; whoever asks again learns the same.
    const zentaq::Database& get() {
        if (!database_ && why_.empty()) open();
        if (!database_) throw zentaq::Failure(why_);
        return *database_;
    }

 private:
    void open() {
        const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
        const std::string path = (folder / "bin/data/zentaq410-02.pak").string();
        zentaq::endOnFailure([&] { database_ = zentaq::Database::open(path); },
                             [&](const std::string& why) { why_ = why; });
    }

    std::string why_;
    std::optional<zentaq::Database> database_;
};

/// Stands between a standard stream and its terminal while it lives: nothing that a file, a unit or the
/// command line brought along speaks to the terminal.
class ShownStream {
 public:
    explicit ShownStream(std::ostream& stream)
        : stream_(stream), own_(*stream.rdbuf()), shown_(own_), plain_(&own_) {
        stream_.rdbuf(&shown_);
    }
    ~ShownStream() { stream_.rdbuf(&own_); }
    ShownStream(const ShownStream&) = delete;
    ShownStream& operator=(const ShownStream&) = delete;

    std::ostream& stream() { return stream_; }
    /// Past all that.
    std::ostream& plain() { return plain_; }

 private:
    std::ostream& stream_;
    std::streambuf& own_;
    zentaq::ShownBuffer shown_;
    std::ostream plain_;
};

struct Streams {
    ShownStream out{std::cout};
    ShownStream error{std::cerr};
};

/// Scripts see where no unit was reached or a signal ended a command.
int outcomeOf(const zentaq::ctl::Run& command, const zentaq::ctl::Context& context) {
    try {
        return command(context);
    } catch (const zentaq::ctl::CommandEnd& end) {
        context.notes << zentaq::shownError(end.what()) << '\n';
        return end.status;
    }
}

/// Runs one command under the policy "ends at the first failure, told in one line".
int runCommand(const zentaq::ctl::Run& command, const zentaq::ctl::CommandLine& line, Streams& streams) {
    ReferenceData reference;
    const zentaq::ctl::Context context{
        .database = zentaq::DatabaseSource([&]() -> const zentaq::Database& { return reference.get(); }),
        .out = streams.out.stream(),
        .notes = streams.error.stream(),
        .data = streams.out.plain(),
        .json = line.json(),
        .force = line.force(),
        .trace = line.trace()};
    int status = refusedOrFailed;
    zentaq::endOnFailure(
        [&] {
            const int outcome = outcomeOf(command, context);
            context.out.flush();
            context.data.flush();
            if (!context.out || !context.data) throw zentaq::Failure("Cannot write to the standard output");
            status = outcome;
        },
        [&](const std::string& why) { context.notes << zentaq::shownError(why) << '\n'; });
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
    Streams streams;
    zentaq::ctl::CommandLine commandLine;
    try {
        const auto command = commandLine.parse(argc, argv);
        return runCommand(command, commandLine, streams);
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
        std::cerr << zentaq::shownError(zentaq::textOfFailure(failure)) << '\n';
        return refusedOrFailed;
    }
}
