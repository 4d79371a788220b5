// Import of a datalog of an hour into the reference database, side by side with the database's own shell.
// Aims: at most 0.5 times the time of the shell's ".import" of the same file into the same table, and at most
// twice the size of the file in memory.
//
//   log_import [ROWS] [LOG]     a log of so many rows is made where none is named
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "app/console.h"
#include "app/log_loading.h"
#include "app/log_storing.h"
#include "live/datalog_writer.h"
#include "platform/posix_clock.h"
#include "platform/side_work.h"

namespace {

namespace fs = std::filesystem;
using Seconds = std::chrono::duration<double>;

constexpr int hourOfRows = 180'000;
constexpr int pins = 20;

/// 46 channels behind the frame, as a recording has them, and the pins.
std::string rowText(int frame) {
    char text[1024];
    const double t = frame * 0.02;
    int length = std::snprintf(
        text, sizeof text,
        "%d\t%d\t%.1f\t%.2f\t%d\t25\t%.1f\t%d\t%.2f\t0\t%.1f\t%.1f\t0\t105\t%.1f\t%.2f\t0\t0\t0\t"
        "%d\t14.7\t%.2f\t25\t0\t5.123\t%.3f\t-3\t2\t0\t1\t0\t0\t0\t0.125\t1.25\t0\t0\t0\t-0.152\t0\t"
        "0\t24.5\t0\t0\t0\t0\t900",
        frame, static_cast<int>(3500 + 2500 * std::sin(t / 7)), 60 + 38 * std::sin(t / 3),
        2 + 1.8 * std::sin(t / 3), 80 + frame % 5, 13.8 + frame % 7 * 0.1, frame % 20,
        0.5 + 0.4 * std::sin(t), 20 + 10 * std::sin(t / 7), 18 + 10 * std::sin(t / 7),
        30 + 20 * std::sin(t / 3), 6 + 3 * std::sin(t / 3), static_cast<int>(8 * std::sin(t / 5)),
        14.7 + 0.9 * std::sin(t / 5), 2 + std::sin(t / 3));
    std::string line(text, static_cast<std::size_t>(length));
    for (int pin = 0; pin < 9; ++pin) line += "\t" + std::to_string(frame * (pin + 3) % 256);
    for (int pin = 9; pin < pins; ++pin) line += "\t 0";
    return line + "\r\n";
}

void makeLog(const std::string& path, int rows) {
    std::ofstream out(path, std::ios::binary);
    out << "ZENTAQ 4.10 DATALOG\tZQA-405099\r\n1\t10\t90";
    for (int i = 0; i < pins; ++i) out << "\t0";
    out << "\tkPa\t14.7\r\nFrame";
    for (int i = 1; i < 67; ++i) out << "\tColumn " << i;
    out << "\r\n";
    for (int frame = 1; frame <= rows; ++frame) out << rowText(frame);
}

/// Runs in a process of its own, so that its peak of memory is its own.
struct Ran {
    double seconds = 0;
    double peakMegabytes = 0;
};
template <typename Work>
Ran apart(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    rusage used{};
    ::wait4(child, &status, 0, &used);
    if (status != 0) std::cerr << "failed\n";
    return {Seconds(std::chrono::steady_clock::now() - begin).count(),
            static_cast<double>(used.ru_maxrss) / 1024};
}

void importOurs(const std::string& log, const std::string& database, const std::string& logFile) {
    const zentaq::PosixClock clock;
    zentaq::Console console(clock);
    console.logFile(logFile);
    console.LogToFile(true);
    zentaq::ThreadedSideWork side;
    zentaq::LogStoring storing;
    storing.begin(&side, log, database, 120);
    while (storing.running()) {
        ::usleep(10'000);
        console.SysLogBlock(storing.takeLines());
    }
    console.SysLogBlock(storing.takeLines());
    if (!storing.failure().empty()) std::cerr << storing.failure() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : hourOfRows;
    std::string folder = (fs::temp_directory_path() / "zentaq-bench-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) return 1;
    const std::string log = argc > 2 ? argv[2] : folder + "/run.dat";
    if (argc <= 2) makeLog(log, rows);
    const double megabytes = static_cast<double>(fs::file_size(log)) / 1e6;
    std::cout << rows << " rows, " << megabytes << " MB\n";
    const std::string reference = ZENTAQ_APP_DIR "/bin/data/zentaq410-02.pak";
    double best = 1e9;
    double bestShell = 1e9;
    double peak = 0;
    for (int round = 0; round < 3; ++round) {
        fs::copy_file(reference, folder + "/ours.pak", fs::copy_options::overwrite_existing);
        fs::copy_file(reference, folder + "/shell.pak", fs::copy_options::overwrite_existing);
        fs::remove(folder + "/zentaq.log");
        const Ran ours = apart([&] { importOurs(log, folder + "/ours.pak", folder + "/zentaq.log"); });
        const std::string command = "sqlite3 '" + folder + "/shell.pak' '.mode tabs' '.import --skip 3 \"" +
                                    log + "\" Datalog2' 2>/dev/null";
        const Ran shell = apart([&] {
            if (std::system(command.c_str()) != 0) ::_exit(1);
        });
        best = std::min(best, ours.seconds);
        bestShell = std::min(bestShell, shell.seconds);
        peak = std::max(peak, ours.peakMegabytes);
        std::cout << "import " << ours.seconds << " s, " << ours.peakMegabytes << " MB; shell "
                  << shell.seconds << " s\n";
    }
    std::cout << "import / shell: " << best / bestShell
              << " (aim: at most 0.5); peak / file: " << peak / megabytes << " (aim: at most 2)\n";

    // The window's way: rows in memory, the first of them to be seen.
    zentaq::ThreadedSideWork side;
    zentaq::LogLoading loading;
    zentaq::LogColumns columns;
    const auto begin = std::chrono::steady_clock::now();
    double first = 0;
    loading.begin(&side, log, 120);
    while (loading.running()) {
        if (!loading.take(columns)) ::usleep(1000);
        if (first == 0 && !columns.empty()) first = Seconds(std::chrono::steady_clock::now() - begin).count();
    }
    std::cout << "in memory: first rows after " << first << " s, all " << columns.rows() << " after "
              << Seconds(std::chrono::steady_clock::now() - begin).count() << " s\n";
    fs::remove_all(folder);
    return 0;
}
