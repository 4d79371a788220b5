#include "link/command_ring.h"

#include <utility>

namespace zentaq {

namespace {

/// What the pollers ask for all the time; which of them comes first matters to nobody.
bool isPoll(std::string_view command) {
    return command == "W" || command == "F" || command == "I" || command == "T";
}

}  // namespace

void CommandRing::push(std::string_view command) {
    place(tail_) = command;
    ++count_;
    tail_ = wrapped(tail_ + 1);
    // kept: the overrun loses the oldest command, and the count goes on counting it.
    if (tail_ == head_) head_ = wrapped(head_ + 1);
}

void CommandRing::pushInFront(std::string command) {
    // In a full ring the oldest command gives way.
    const int front = wrapped(head_ - 1);
    if (front != tail_) head_ = front;
    place(head_) = std::move(command);
    ++count_;
}

void CommandRing::pushInFrontOfPolls(std::string_view command) {
    push(command);
    int at = wrapped(tail_ - 1);
    while (at != head_ && isPoll(place(wrapped(at - 1)))) {
        const int before = wrapped(at - 1);
        std::swap(place(before), place(at));
        at = before;
    }
}

void CommandRing::dropBehindFront() {
    tail_ = wrapped(head_ + 1);
    // The dropped commands no longer wait; left in the count they would silence the pollers for good.
    count_ = 1;
}

void CommandRing::clear() {
    tail_ = head_;
    count_ = 0;
}

void CommandRing::settle() {
    if (empty()) count_ = 0;
}

bool CommandRing::holds(std::string_view command) const {
    for (int index = head_; index != tail_; index = wrapped(index + 1)) {
        if (place(index) == command) return true;
    }
    return false;
}

const std::string* CommandRing::last(char firstLetter) const {
    for (int index = tail_; index != head_;) {
        index = wrapped(index - 1);
        if (place(index).starts_with(firstLetter)) return &place(index);
    }
    return nullptr;
}

}  // namespace zentaq
