// The ring of commands that wait to be written, with its count of those that the pollers look at.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zentaq {

class CommandRing {
 public:
    static constexpr int size = 512;

    /// At the end of the ring.
    void push(std::string_view command);
    /// In front of whatever waits.
    void pushInFront(std::string command);
    /// In front of the polls at the end of the ring, and only of them.
    void pushInFrontOfPolls(std::string_view command);

    /// The next command to go out, and its place behind the last one that was taken.
    const std::string& front() const { return place(head_); }
    /// The first command has been taken.
    void pop() { head_ = wrapped(head_ + 1); }
    /// One command has been written.
    void written() { --count_; }
    /// Whatever waits behind the first command is gone.
    void dropBehindFront();
    void clear();
    /// Nobody waits in an empty ring. What an overrun or a failed write left in the count would silence the
    /// pollers for good.
    void settle();
    /// Both ends to the first place, whatever waits; the count stays.
    void rewind() { head_ = tail_ = 0; }

    bool empty() const { return head_ == tail_; }
    /// Also where an empty text stands in the way.
    bool nothingToSend() const { return empty() || front().empty(); }
    bool holds(std::string_view command) const;
    /// The last waiting command that begins so; nullptr: none does.
    const std::string* last(char firstLetter) const;

    int head() const { return head_; }
    int tail() const { return tail_; }
    /// Commands queued and not yet written.
    int count() const { return count_; }

 private:
    std::string& place(int index) { return places_.at(static_cast<std::size_t>(index)); }
    const std::string& place(int index) const { return places_.at(static_cast<std::size_t>(index)); }
    static int wrapped(int index) { return index & (size - 1); }

    std::array<std::string, size> places_;
    int head_ = 0;
    int tail_ = 0;
    int count_ = 0;
};

}  // namespace zentaq
