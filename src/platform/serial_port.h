// What the link needs of a serial port: one port at 38400,N,8,1 that delivers whole replies.
// Ports are told by number; number n is the n-th entry of the port list.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/line_watch.h"

namespace zentaq {

/// Why a port tells its owner something. Only DataReceived carries bytes.
enum class CommEvent { Error = 1, DataReceived = 2 };

/// One entry of the port list, shown wherever a user picks a port.
struct PortInfo {
    int number = 0;           ///< 1-based
    std::string device;       ///< "/dev/ttyUSB0" or the simulated unit's terminal
    std::string description;  ///< what it is, in words
    std::string identity;     ///< stable across replugging
};

class SerialPort {
 public:
    virtual ~SerialPort() = default;

    /// Opens port `number` (1 or more). Throws Failure if it is absent or busy.
    /// A port whose device vanishes later stays "open": it comes back by its identity.
    virtual void open(int number) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;

    /// Whether a port that is opened from now on stands for its number: while its device has said nothing, it
    /// gives way to another one that takes the number. Else the user means that device and no other.
    virtual void followsNumber(bool) {}

    /// Hands all bytes to the line at once; returns without waiting. Throws Failure on an error of the line.
    virtual void write(std::string_view bytes) = 0;

    /// Returns and empties the receive buffer.
    virtual std::vector<std::uint8_t> read() = 0;

    /// 0: never deliver. n: tell DataReceived, once, when at least n bytes are there and the line is quiet.
    virtual void setReceiveThreshold(int bytes) = 0;

    virtual std::vector<PortInfo> list() const = 0;

    void onEvent(std::function<void(CommEvent)> handler) { handler_ = std::move(handler); }

    /// Lets a watcher read along until it is taken away; it must outlive that.
    void watch(LineWatch& watcher) { watchers_.push_back(&watcher); }
    void unwatch(LineWatch& watcher) { std::erase(watchers_, &watcher); }

 protected:
    /// Calls one operation of every watcher.
    template <typename... Formal, typename... Actual>
    void tell(void (LineWatch::*news)(Formal...), const Actual&... facts) {
        for (LineWatch* watcher : watchers_) (watcher->*news)(facts...);
    }
    void raise(CommEvent event) {
        if (handler_) handler_(event);
    }

 private:
    std::function<void(CommEvent)> handler_;
    std::vector<LineWatch*> watchers_;
};

}  // namespace zentaq
