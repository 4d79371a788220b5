// Commands that change a unit, where another one has taken its place since its user was told of it.
#include <atomic>
#include <mutex>
#include <thread>

#include "ctl/link_fixture.h"
#include "platform/pty_pair.h"

namespace zentaq {
namespace {

/// Two units of one kind behind one terminal: the first one answers who it is once, and from then on the
/// other.
class ExchangedUnit {
 public:
    ExchangedUnit() : thread_([this] { serve(); }) {}
    ~ExchangedUnit() {
        stop_ = true;
        thread_.join();
    }
    ExchangedUnit(const ExchangedUnit&) = delete;
    ExchangedUnit& operator=(const ExchangedUnit&) = delete;

    const std::string& path() const { return line_.path(); }
    /// All commands so far, one behind the other.
    std::string commands() const {
        const std::scoped_lock lock(mutex_);
        return commands_;
    }

 private:
    static constexpr char firstSerial = 0x41;  // 0x030D41 is 200001

    static std::string sealed(std::string reply) {
        unsigned sum = 0;
        for (std::size_t i = 2; i < reply.size(); ++i) sum += static_cast<unsigned char>(reply[i]);
        return reply + static_cast<char>(sum & 0xFFU);
    }
    void serve() {
        const std::string head = "\xFA\xA5\x55";
        int asked = 0;
        while (!stop_) {
            if (!line_.waitForBytes(20)) continue;
            const std::string command = line_.received();
            {
                const std::scoped_lock lock(mutex_);
                commands_ += command;
            }
            if (command == "E") {
                const char last = static_cast<char>(firstSerial + (asked++ == 0 ? 0 : 1));
                line_.send(sealed(head + std::string{'\0', '\x03', '\x0D', last}));
            } else if (command == "B") {
                line_.send(sealed(head + std::string(24, ' ') + "ZQA-504099" + std::string(1, '\0')));
            } else {
                line_.send("AR");
            }
        }
    }

    PtyPair line_;
    std::string commands_;
    mutable std::mutex mutex_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

class ZentaqctlExchanged : public ZentaqctlOnLink {
 protected:
    void expectNothingSent(const std::string& command, const std::string& sentFile) {
        ExchangedUnit unit;
        EXPECT_THAT(run(command + " --port " + inQuotes(unit.path()) + " " + inQuotes(sentFile)),
                    Fails(1, HasSubstr("200002 answers now in the place of ORB A 200001. Nothing was "
                                       "sent to it.\n")));
        EXPECT_EQ(unit.commands(), "EBEB");
    }
};

TEST_F(ZentaqctlExchanged, ProgramSendsNothingToIt) {
    expectNothingSent("program", file);
}

TEST_F(ZentaqctlExchanged, FirmwareSendsNothingToIt) {
    const std::string firmware = makeFirmware("A", "ZQA-505100");
    expectNothingSent("firmware --yes", firmware);
}

}  // namespace
}  // namespace zentaq
