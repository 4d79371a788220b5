// A second description of the link's rules, for comparison: ring, ticks, replies and ends of transfers,
// written without a look at the link's own code and without its tables. It knows no port, no file and no live
// values.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace zentaq::reference {

/// All that can be seen of a link from outside after one step.
struct Observed {
    std::string command;
    int head = 0, tail = 0, queued = 0;
    bool ready = false, transferActive = false, onFlyBusy = false, suspended = false;
    int line = 0, lines = 0;
    std::vector<std::uint8_t> rx;

    bool open = false;
    int threshold = 0;        ///< bytes that the reply must have
    std::size_t waiting = 0;  ///< bytes in the port that nobody has read

    std::int32_t serial = 0;
    int kind = 0;
    bool found = false, identified = false, wide = false, oldFirmware = false;
    int subType = 0;
    std::string binName;
    std::array<int, 9> release{}, build{};
    std::array<bool, 9> pic18{};

    std::string activity, title;
    int image = 0;
    bool connected = false, progress = false, upgradeEnabled = true;
    bool sending = false, received = false;  ///< the two lamps

    // What has happened since the step before.
    std::vector<std::string> written;
    std::vector<std::string> calls;  ///< log lines, boxes, messages and changes of on-the-fly mode, in order
    std::vector<bool> locks;
    int frames = 0, codesReceived = 0, codesCleared = 0, kindsFound = 0;  ///< since the start

    bool operator==(const Observed&) const = default;
};

/// Bytes that are no letters as "<FF>".
std::string printable(const std::string& raw);
/// One line a field.
std::string describe(const Observed& seen);

class Model {
 public:
    Model();

    // ---- What happens from outside; each call is one step
    void send(const std::string& command);
    void tick();
    /// Bytes come, and the port tells of them.
    void deliver(const std::string& bytes);
    /// Bytes come too late or too few: the port says nothing.
    void arrive(const std::string& bytes);
    void otherEvent();
    void open();
    void close();
    void closeWithKill();
    void failNextWrite() { failWrite_ = true; }
    void processResponse();
    /// Starts a transfer of these lines. False: refused, for another one runs.
    bool beginLines(const std::string& key, std::vector<std::string> lines, int total,
                    const std::vector<std::string>& logLines);
    bool beginDatalog(const std::vector<std::string>& logLines);
    void suspend(bool on) { now_.suspended = on; }
    void currentUnit(int kind) { currentUnit_ = kind; }
    void fileFirmware(int code) { fileFirmware_ = code; }
    void expectedFirmware(int release, int build) { known_ = {release, build}; }

    bool checkSum(const std::string& command) const;

    /// Empties what has happened.
    Observed take();
    const Observed& now() const { return now_; }
    /// The reply length of a command as things are.
    int lengthOf(const std::string& key) const;

 private:
    struct Fault {};  ///< a reply shorter than an index, a text that is no number

    int byte(int index) const;
    std::uint32_t number(int first) const;
    std::string text(int first, int count) const;

    void watchTransfer();
    void idle();
    bool lineIsQuiet();
    void replied();
    void waiting();
    void output(const std::string& command);
    void nextLine();
    void timedOut(const std::string& key);
    void lost(bool always);
    void drop();
    void end(bool success);
    int failureCode(const std::string& key);
    bool queued(const std::string& command) const;
    void push(const std::string& command);
    bool anotherUnit(int kind) const;
    void unknownAnswer();
    void newcomer();
    void handle();
    void identify();
    void firmware();
    void record();
    void status(const std::string& key);
    void message(const std::string& title, int image);
    void log(const std::string& line) { now_.calls.push_back("log: " + line); }
    bool pending() const { return now_.transferActive || !transfer_.empty(); }

    Observed now_;
    std::array<std::string, 512> ring_;
    int tick_ = 0, pace_ = 0, retry_ = 0, stall_ = 0;
    int asked_ = 0, tail_ = 0, quiet_ = 0, impatient_ = 0;
    bool long_ = false;  ///< the frame before was too long
    std::string inPort_;
    bool failWrite_ = false;
    int currentUnit_ = 0, fileFirmware_ = 0;
    bool told_ = false;  ///< the unit has told its firmware
    int before_ = 0;     ///< firmware number of its object before that
    std::array<int, 2> known_{99, 999};
    bool broken_ = false;          ///< a firmware broke off between its lines
    bool linesOut_ = false;        ///< and lines of it had gone out
    int silent_ = 0;               ///< starts since then without an answer
    int firmwareKind_ = 0;         ///< of the unit that the last firmware was for
    std::int32_t meant_ = 0;       ///< serial number of the unit that the transfer is for
    bool away_ = false;            ///< the port was not open all the time since a firmware began
    bool ask_ = false;             ///< an identify goes out before a firmware that waits
    int unknown_ = 0;              ///< answers to it that told no kind
    std::array<int, 3> warned_{};  ///< serial number, release and build of the firmware that was warned of
    std::string transfer_;         ///< key of the transfer that runs or waits
    std::vector<std::string> lines_;
    std::size_t next_ = 0;
};

}  // namespace zentaq::reference
