#include "trace/trace_store.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/file_type.h"
#include "trace/trace_line.h"

namespace zentaq {

namespace {

namespace fs = std::filesystem;

/// Gathered lines go to the file from here on, however short the time since the last ones.
constexpr std::size_t pieceBytes = 64U << 10U;

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw FileError("Cannot write " + path + ": " + reason);
}

[[noreturn]] void fail(const std::string& path, int error) {
    fail(path, std::generic_category().message(error));
}

bool isTrace(const std::string& path) {
    std::string head;
    skipFailing([&] { head = readFileStart(path, traceMagic.size()); });
    return head == traceMagic;
}

bool isFree(const std::string& path) {
    std::error_code missing;
    return fs::file_size(path, missing) == 0 || missing;
}

/// A wrong name on a command line must not cost anybody a calibration, nor wait for the reader of a pipe.
void refuseOtherFile(const std::string& path) {
    refuseOtherThanFile(path);
    if (!isFree(path) && !isTrace(path)) fail(path, "it is there already and no trace; it is left alone");
}

}  // namespace

TraceStore::TraceStore(std::string path, Head head, std::size_t mostBytes)
    : path_(std::move(path)), head_(std::move(head)), mostBytes_(mostBytes) {
    refuseOtherFile(path_);
    refuseOtherFile(olderPath(path_));
    if (isTrace(path_) && std::rename(path_.c_str(), olderPath(path_).c_str()) != 0) fail(path_, errno);
    begin();
    flush();
}

// What has appeared since the name was looked at belongs to somebody else, as a trace of another program
// does.
void TraceStore::begin() {
    constexpr int flags = O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    file_ = PosixHandle(::open(path_.c_str(), flags | O_EXCL, 0666));
    if (!file_.valid() && errno == EEXIST) {
        refuseOtherThanFile(path_);
        if (!isFree(path_)) fail(path_, EEXIST);
        file_ = PosixHandle(::open(path_.c_str(), flags | O_TRUNC, 0666));
    }
    struct stat status {};
    if (!file_.valid() || ::fstat(file_.get(), &status) != 0) fail(path_, errno);
    if (const std::string other = otherThanFile(status); !other.empty()) fail(path_, other);
    gathered_ = head_(++part_);
    written_ = 0;
}

// The old half is replaced in one step: an accident at any moment leaves what is newer.
void TraceStore::turn() {
    flush();
    file_.reset();
    if (std::rename(path_.c_str(), olderPath(path_).c_str()) != 0) fail(path_, errno);
    begin();
}

void TraceStore::add(std::string_view line) {
    const std::size_t size = written_ + gathered_.size() + line.size() + 1;
    if (size > mostBytes_ / 2) turn();
    gathered_ += line;
    gathered_ += '\n';
    if (gathered_.size() >= pieceBytes) flush();
}

// What goes to a file without a name is lost, and nobody would be told.
void TraceStore::refuseDeleted() const {
    struct stat found {};
    if (::fstat(file_.get(), &found) == 0 && found.st_nlink == 0) fail(path_, ENOENT);
}

void TraceStore::flush() {
    refuseDeleted();
    std::string_view rest = gathered_;
    while (!rest.empty()) {
        const auto count = ::write(file_.get(), rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            fail(path_, errno);
        }
    }
    written_ += gathered_.size();
    gathered_.clear();
}

}  // namespace zentaq
