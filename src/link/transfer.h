// A bulk transfer from its start to its end: the lines that go out or the file that records come to, how far
// it is, and for which unit it was begun.
#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "link/link_news.h"

namespace zentaq {

class Transfer {
 public:
    /// The transfer that goes by a command; by any other one than "P1" and "P3" a download.
    static TransferMode modeOf(std::string_view key);

    // ---- What it sends or writes. Each throws FileError where a file cannot be read or made
    /// The lines of a file.
    void sendFile(const std::string& path);
    /// The lines of a text: a disk that is pulled, or a file that is written to, leaves no half firmware.
    void sendText(std::string text);
    void writeFile(const std::string& path);
    void closeFile();
    /// False: no further line can be read.
    bool nextLine(std::string& line);
    /// It was not the end of the file that ended the lines.
    bool readFailed() const { return file_.bad(); }
    std::ostream& file() { return file_; }

    // ---- Its life
    /// Answers the command that it goes by. `serial`: of the unit that it is for; 0: not known.
    std::string_view begin(TransferMode mode, std::int32_t serial);
    /// Its command is written: from here on the wire is its own.
    void activate() { active_ = true; }
    void deactivate() { active_ = false; }
    void lineSent() { ++line_; }
    void recordCame() { ++lines_; }
    /// It is over, and its command waits no more. Its numbers stay until they are forgotten.
    void close() { key_ = {}; }
    void forgetNumbers() { line_ = lines_ = 0; }

    /// From its start to its end, on the wire or still queued.
    bool open() const { return !key_.empty(); }
    std::string_view key() const { return key_; }
    bool firmware() const { return key_ == "P3"; }
    /// A calibration or a firmware goes to the unit.
    bool programming() const { return firmware() || key_ == "P1"; }
    /// `TransferActive`: it is on the wire.
    bool active() const { return active_; }
    bool pending() const { return active_ || open(); }
    std::int32_t serial() const { return serial_; }
    int line() const { return line_; }    ///< `TransferLine`: lines sent
    int lines() const { return lines_; }  ///< `TransferLines`: lines of the file, or records read

    // ---- Of one that is open
    /// Lines sent, or records read.
    int done() const { return programming() ? line_ : lines_; }
    /// Lines of the file; 0 for a download.
    int total() const { return programming() ? fileLines_ : 0; }

 private:
    void openFile(const std::string& path, std::ios::openmode mode);

    std::string_view key_;
    bool active_ = false;
    std::int32_t serial_ = 0;
    int line_ = 0;
    int lines_ = 0;
    int fileLines_ = 0;
    std::fstream file_;
    std::istringstream text_;
};

}  // namespace zentaq
