// The whole program with its windows against a simulated unit at the pace of the wire, for measuring.
// Whatever these benchmarks tell is measured on the port itself, by reading along.
#pragma once

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <QTreeWidget>
#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "live/datalog_writer.h"
#include "platform/line_watch.h"
#include "qt/entry_box.h"
#include "system/flight_rig.h"
#include "windows/frm_dashboard.h"
#include "windows/frm_table.h"

namespace zentaq::bench {

/// Ten bits a byte at 38400 baud.
constexpr double byteSeconds = 10.0 / 38400;

/// User and system time of this process so far; the display server and the unit are others.
inline double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The value below which `share` of all lie. 0 for none.
inline double quantile(std::vector<double> values, double share) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

/// Counts what passes over the line, by command and in bytes, and knows when the last reply was whole.
class LineMeter : public LineWatch {
 public:
    struct Counts {
        std::array<int, 256> commands{};  ///< by the first letter of a command
        std::size_t bytes = 0;            ///< both ways
    };

    void written(std::string_view bytes, std::int64_t nowUs) override {
        if (bytes.empty()) return;
        ++counts.commands[static_cast<unsigned char>(bytes.front())];
        counts.bytes += bytes.size();
        lastWrite = std::string(bytes);
        lastWriteUs = nowUs;
        if (onWritten) onWritten(bytes, nowUs);
    }
    void arrived(std::span<const std::uint8_t> bytes, std::int64_t nowUs) override {
        counts.bytes += bytes.size();
        lastArrivalUs = nowUs;
    }
    void delivered(std::size_t, std::int64_t) override { lastReplyUs = lastArrivalUs; }

    int commands(char letter) const { return counts.commands[static_cast<unsigned char>(letter)]; }

    Counts counts;
    std::string lastWrite;
    std::int64_t lastWriteUs = 0;
    std::int64_t lastArrivalUs = 0;
    std::int64_t lastReplyUs = 0;  ///< when the last byte of the last whole reply came
    std::function<void(std::string_view, std::int64_t)> onWritten;
};

/// Writes one datalog record for each frame.
class FrameRecorder {
 public:
    FrameRecorder(Session& session, const std::string& path) : file_(path, std::ios::binary) {
        Unit& unit = session.link.linkedUnit();
        writeDatalogHeader(file_, unit);
        frames_ = session.frames.follow([&] { DataRecord(file_, unit, session.live, false, records_++); });
    }
    int records() const { return records_; }
    bool written() { return file_.flush().good(); }

 private:
    std::ofstream file_;
    int records_ = 0;
    FrameFeed::Subscription frames_;
};

inline std::string sampleOf(const std::string& extension) {
    for (const auto& entry : std::filesystem::directory_iterator(std::string(ZENTAQ_APP_DIR) + "/samples")) {
        if (entry.path().extension() == extension) return entry.path().string();
    }
    return {};
}

/// A program that has found its unit and opened a calibration of its kind.
struct WireBench {
    explicit WireBench(const QStringList& unitOptions = {}, const std::string& extension = ".ZQ4OA")
        : calibration(folder.path("bench" + extension)) {
        std::filesystem::create_directory(folder.path("app"));
        std::filesystem::copy_file(sampleOf(extension), calibration);
        unit = std::make_unique<UnitProcess>(folder.path("unit"), folder.path("memory.bin"), unitOptions);
        program = std::make_unique<Program>(*static_cast<QApplication*>(QCoreApplication::instance()),
                                            folder.path("app"), folder.path("unit"));
        session().platform().port.watch(meter);
        program->kernel.load();
        ready = Program::waitFor([this] { return program->identified(); }, 20'000) &&
                program->open(calibration) &&
                Program::waitFor([this] { return session().live.frames > 10; }, 5'000);
    }
    ~WireBench() { session().platform().port.unwatch(meter); }

    Session& session() { return program->session; }
    std::int64_t nowUs() { return session().platform().clock.monotonicUs(); }
    void openTable(const std::string& table, const std::string& title) {
        program->commands.openTable(table, title);
        Program::runFor(500);
    }

    /// A page by the text of its node; answers a box of it, nullptr where there is none.
    EntryBox* openPage(const char* page, const char* box) {
        auto* tree = program->windows.main().findChild<QTreeWidget*>("treeZentaq");
        const auto items = tree->findItems(page, Qt::MatchExactly | Qt::MatchRecursive);
        if (items.isEmpty()) return nullptr;
        tree->setCurrentItem(items[0]);
        Q_EMIT tree->itemActivated(items[0], 0);
        Program::runFor(500);
        return program->windows.main().findChild<EntryBox*>(box);
    }

    TemporaryFolder folder;
    std::string calibration;
    LineMeter meter;
    std::unique_ptr<UnitProcess> unit;
    std::unique_ptr<Program> program;
    bool ready = false;
};

}  // namespace zentaq::bench
