#include "link/transfer.h"

#include <cerrno>
#include <cstring>

#include "base/errors.h"
#include "base/file_reader.h"

namespace zentaq {

namespace {

/// Lines of a text; a last line without an end counts.
int lineCount(std::istream& text) {
    int lines = 0;
    for (std::string line; std::getline(text, line);) ++lines;
    return lines;
}

/// Lines of a text file. Throws FileError.
int ORB_File_Length(const std::string& path) {
    std::istringstream text(readFile(path, limits::image));
    return lineCount(text);
}

std::string_view keyOf(TransferMode mode) {
    switch (mode) {
        case TransferMode::Calibration:
            return "P1";
        case TransferMode::Firmware:
            return "P3";
        default:
            return "D";
    }
}

}  // namespace

TransferMode Transfer::modeOf(std::string_view key) {
    if (key == "P1") return TransferMode::Calibration;
    return key == "P3" ? TransferMode::Firmware : TransferMode::Datalog;
}

void Transfer::sendFile(const std::string& path) {
    fileLines_ = ORB_File_Length(path);
    openFile(path, std::ios::in);
}

void Transfer::sendText(std::string text) {
    closeFile();
    text_.str(std::move(text));
    fileLines_ = lineCount(text_);
    text_.clear();
    text_.seekg(0);
}

void Transfer::writeFile(const std::string& path) {
    openFile(path, std::ios::out | std::ios::trunc);
}

void Transfer::openFile(const std::string& path, std::ios::openmode mode) {
    closeFile();
    file_.open(path, mode | std::ios::binary);
    const int reason = errno;
    if (!file_) throw FileError("Cannot open " + path + ": " + std::strerror(reason));
}

void Transfer::closeFile() {
    if (file_.is_open()) file_.close();
    file_.clear();
    text_.str({});
    text_.clear();
}

bool Transfer::nextLine(std::string& line) {
    std::istream& lines = firmware() ? static_cast<std::istream&>(text_) : file_;
    if (!std::getline(lines, line)) return false;
    if (line.ends_with('\r')) line.pop_back();
    return true;
}

std::string_view Transfer::begin(TransferMode mode, std::int32_t serial) {
    key_ = keyOf(mode);
    serial_ = serial;
    // kept: one line more than a firmware file has.
    lines_ = firmware() ? fileLines_ + 1 : total();
    return key_;
}

}  // namespace zentaq
