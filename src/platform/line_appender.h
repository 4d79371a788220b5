// A text file that grows line by line for hours. Each line is appended with an open and a close of its own,
// so that a crash loses one at most, and beside the program's thread, which no slow disk holds up.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace zentaq {

class LineAppender {
 public:
    LineAppender();
    /// What was given is written before it goes.
    ~LineAppender();
    LineAppender(const LineAppender&) = delete;
    LineAppender& operator=(const LineAppender&) = delete;

    /// A new file with these first bytes; what stood there before goes.
    void begin(const std::string& path, std::string head);
    void append(std::string line);

    /// Why it came to an end, with path and reason; empty while all goes well. Nothing is written behind a
    /// failure.
    std::string failure() const;
    /// Lines on the disk, the head aside.
    std::int64_t written() const;
    /// Nothing is left to be written.
    bool idle() const;

 private:
    struct State;
    void give(std::string bytes, bool anew);

    std::shared_ptr<State> state_;
};

}  // namespace zentaq
