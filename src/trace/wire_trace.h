// The wire trace: what was written and read, when, and what it means, as lines of a text file that a user can
// send. The file is bounded: when it is full, the older half goes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "trace/trace_line.h"
#include "trace/trace_store.h"
#include "trace/wire_words.h"
#include "platform/clock.h"
#include "platform/line_watch.h"
#include "platform/serial_port.h"

namespace zentaq {

/// Nothing of it throws but `start`, and nothing waits: lines are gathered and written once a second, and at
/// once where something went wrong.
class WireTrace : public LineWatch {
 public:
    /// `mostBytes`: of the file and its older half together.
    explicit WireTrace(Clock& clock, std::size_t mostBytes = TraceStore::defaultMost)
        : clock_(clock), mostBytes_(mostBytes) {}
    ~WireTrace() override { stop(); }
    WireTrace(const WireTrace&) = delete;
    WireTrace& operator=(const WireTrace&) = delete;

    /// Begins a new file; the trace that stood there is kept as FILE.old. `linkedSlot` and `oldFirmware` tell
    /// the unit that is on the link by now, 0 for none. Throws FileError where it cannot be written.
    void start(const std::string& path, int linkedSlot = 0, bool oldFirmware = false);
    void stop();
    bool running() const { return store_.has_value(); }

    /// Told the reason, once, when the trace ends because its file cannot be written any more.
    void onFailure(std::function<void(const std::string&)> handler) { onFailure_ = std::move(handler); }

    /// A line of the program's own: what it logged.
    void note(std::string_view text);
    /// The program has given up the unit.
    void linkLost();
    /// To be called now and then: lines do not wait longer than a second for the file.
    void tend();

    void opened(const PortInfo& port, std::int64_t nowUs) override;
    void closed(std::int64_t nowUs) override;
    void written(std::string_view bytes, std::int64_t nowUs) override;
    void arrived(std::span<const std::uint8_t> bytes, std::int64_t nowUs) override;
    void delivered(std::size_t bytes, std::int64_t nowUs) override;
    void lost(const PortInfo& port, std::int64_t nowUs) override;
    void returned(const PortInfo& port, std::int64_t nowUs) override;

 private:
    struct Lump {
        std::size_t bytes;
        std::int64_t firstUs;
        std::int64_t us;  ///< of its last byte
    };

    TraceLine lineAt(TraceDirection direction, std::int64_t nowUs) const;
    TraceLine received(std::string bytes, std::int64_t nowUs) const;
    void add(const TraceLine& line);
    void addEvent(std::int64_t nowUs, std::string_view problem, std::string text);
    void flush();
    void fail(const std::string& why);
    std::string head(int part) const;

    std::string takePending();
    bool restFollows(std::size_t count);
    std::string batchOf(std::size_t count, std::int64_t nowUs, std::size_t& before);
    std::string lumpsText() const;
    void tellUnasked(std::string bytes, std::int64_t nowUs);
    /// The command in flight gets no answer any more.
    void giveUp(std::int64_t nowUs);
    /// What came and was never given to the program.
    void settle(std::int64_t nowUs);
    /// The same where the program itself ended the waiting.
    void settleUnfinished(std::int64_t nowUs);
    std::string unanswered(std::int64_t nowUs) const;

    Clock& clock_;
    std::size_t mostBytes_;
    std::function<void(const std::string&)> onFailure_;
    std::optional<TraceStore> store_;
    std::optional<PortInfo> port_;  ///< that is open; followed while no trace runs, too
    std::string begun_;
    std::int64_t startUs_ = 0;
    std::int64_t flushedUs_ = 0;

    WireWords words_;
    bool asked_ = false;    ///< a command has been written since the trace began
    bool waiting_ = false;  ///< its answer has not come
    std::int64_t askedUs_ = 0;
    std::string pending_;  ///< came, and was not given to the program yet
    std::vector<Lump> lumps_;
    std::size_t begunBytes_ = 0;  ///< of these, the beginning of an answer that the program was given already
    std::string kept_;  ///< the last bytes that were written down though the port may hold them still
};

}  // namespace zentaq
