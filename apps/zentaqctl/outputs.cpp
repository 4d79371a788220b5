#include "outputs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/file_type.h"
#include "unit/safe_file.h"

namespace zentaq::ctl {

namespace fs = std::filesystem;

namespace {

/// What an output must show of itself to be known by.
constexpr std::size_t beginningBytes = 128;

/// What is no file is left to the writer, which has its own words for it.
bool losesSomething(const std::string& output) {
    std::error_code ignored;
    return fs::is_regular_file(output, ignored) && fs::file_size(output, ignored) > 0;
}

bool sameFile(const std::string& one, std::string_view other) {
    std::error_code ignored;
    return one == other || fs::equivalent(one, other, ignored);
}

[[noreturn]] void refuse(const std::string& output, std::string_view what) {
    throw FileError(output + " is there already; --force puts the new " + std::string(what) +
                    " in its place");
}

bool isHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

}  // namespace

void refuseReplacing(const Context& context, const std::string& output, std::string_view what,
                     std::initializer_list<std::string_view> inputs) {
    if (context.force || output.empty() || output == "-" || !losesSomething(output)) return;
    const bool wanted =
        std::ranges::any_of(inputs, [&](std::string_view input) { return sameFile(output, input); });
    if (!wanted) refuse(output, what);
}

void refuseReplacingOther(const Context& context, const std::string& output, std::string_view what,
                          bool (*isOwn)(std::string_view beginning)) {
    if (context.force || output.empty() || output == "-" || !losesSomething(output)) return;
    bool own = false;
    skipFailing([&] { own = isOwn(readFileStart(output, beginningBytes)); });
    if (!own) refuse(output, what);
}

bool wroteNew(const Context& context, const std::string& output, std::string_view content) {
    std::error_code ignored;
    if (context.force || output.empty() || output == "-" || fs::exists(output, ignored)) return false;
    return writeNewFileSafely(output, content);
}

void writeCalibration(const Context& context, const std::string& output, std::string_view bytes,
                      std::initializer_list<std::string_view> inputs) {
    if (wroteNew(context, output, bytes)) return;
    refuseReplacing(context, output, "calibration", inputs);
    writeFileSafely(output, bytes);
}

void saveCalibration(const Context& context, Unit& unit, std::initializer_list<std::string_view> inputs) {
    const Unit::FileContent content = unit.fileContent();
    if (wroteNew(context, unit.BinFile(), content.bytes)) return unit.noteSaved(content);
    refuseReplacing(context, unit.BinFile(), "calibration", inputs);
    unit.SaveFile();
}

bool beginsWithSRecord(std::string_view beginning) {
    constexpr std::size_t shortest = 10;
    const auto end = beginning.find_first_of("\r\n");
    if (end == std::string_view::npos || end < shortest || beginning.front() != 'S') return false;
    return std::ranges::all_of(beginning.substr(1, end - 1), isHexDigit);
}

GrowingFile::Buffer::Buffer(PosixHandle file) : file_(std::move(file)) {
    setp(pending_.data(), pending_.data() + pending_.size());
}

// A command that ends by a failure has what came before it in the file.
GrowingFile::Buffer::~Buffer() {
    Buffer::sync();
}

GrowingFile::Buffer::int_type GrowingFile::Buffer::overflow(int_type character) {
    if (sync() != 0) return traits_type::eof();
    if (!traits_type::eq_int_type(character, traits_type::eof())) sputc(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
}

int GrowingFile::Buffer::sync() {
    const char* from = pbase();
    while (reason_ == 0 && from < pptr()) {
        const ssize_t count = ::write(file_.get(), from, static_cast<std::size_t>(pptr() - from));
        if (count > 0) from += count;
        if (count < 0 && errno != EINTR) reason_ = errno;
    }
    setp(pending_.data(), pending_.data() + pending_.size());
    return reason_ == 0 ? 0 : -1;
}

// Some disks tell only here that they are full.
void GrowingFile::Buffer::close() {
    const bool closed = ::close(file_.release()) == 0 || errno == EINTR;
    if (!closed && reason_ == 0) reason_ = errno;
}

GrowingFile::GrowingFile(PosixHandle file, std::string name)
    : std::ostream(nullptr), buffer_(std::move(file)), name_(std::move(name)) {
    rdbuf(&buffer_);
}

void GrowingFile::finish() {
    flush();
    buffer_.close();
    if (buffer_.reason() != 0)
        throw FileError("Cannot write " + name_ + ": " + std::strerror(buffer_.reason()));
}

std::unique_ptr<GrowingFile> openGrowing(const Context& context, const std::string& output,
                                         std::string_view what) {
    refuseOtherThanFile(output);
    constexpr mode_t forEveryone = 0666;  // less the user's mask
    std::error_code ignored;
    const bool free = fs::exists(output, ignored) && !losesSomething(output);
    const int how = context.force || free ? O_TRUNC : O_EXCL;
    constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    PosixHandle file(::open(output.c_str(), flags | how, forEveryone));
    if (!file.valid() && errno == EEXIST) refuse(output, what);
    struct stat status {};
    if (!file.valid() || ::fstat(file.get(), &status) != 0)
        throw FileError("Cannot write " + output + ": " + std::strerror(errno));
    if (!S_ISREG(status.st_mode)) throw FileError("Cannot write " + output + ": " + otherThanFile(status));
    return std::make_unique<GrowingFile>(std::move(file), output);
}

}  // namespace zentaq::ctl
