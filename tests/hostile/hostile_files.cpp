#include "hostile/hostile_files.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>

#include "base/text.h"
#include "calibration/calibration_listing.h"
#include "trace/trace_line.h"
#include "sim/firmware_file.h"
#include "temporary_folder.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

using namespace std::string_literals;

std::string sampleFile() {
    return TemporaryFolder::read(ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA");
}

void plantFloat(std::string& content, std::size_t cell, float value) {
    if (content.size() >= 4 * (cell + 1)) std::memcpy(content.data() + 4 * cell, &value, sizeof value);
}

std::string oldFile() {
    constexpr std::size_t floats = 2176;
    std::string content(4 * floats, '\0');
    plantFloat(content, 292, 2);  // the rating of the sensor
    plantFloat(content, 27, 16);  // columns of a table
    return content;
}

std::string tableText() {
    std::string text = "VE";
    for (int column = 0; column < 16; ++column) text += "\t" + std::to_string(600 + 400 * column);
    for (int row = 15; row >= 0; --row) {
        text += "\n" + std::to_string(10 + 6 * row);
        for (int column = 0; column < 16; ++column) text += "\t" + std::to_string((row * column) % 40 - 20);
    }
    return text + "\n";
}

std::string traceText() {
    std::string text = std::string(traceMagic) +
                       "\nprogram  4.10.2\nbegun    2024-05-01 10:00:00\npart     1\nport     1, /dev/x\n\n";
    for (int i = 0; i < 200; ++i) {
        TraceLine asked{.timeUs = 20'000 * i, .direction = TraceDirection::Written};
        asked.bytes = "W";
        asked.command = "W";
        TraceLine answered{.timeUs = 20'000 * i + 17'000, .direction = TraceDirection::Received};
        answered.bytes = std::string(20, 'x');
        answered.command = "W";
        answered.text = "20 bytes, after 17.0 ms";
        if (i % 20 == 0) answered.problem = "wrong-sum";
        text += formatTraceLine(asked) + "\n" + formatTraceLine(answered) + "\n";
    }
    return text;
}

std::string datalogText() {
    std::string text = "ZENTAQ 4.10 DATALOG\tZQA-505099\r\n1\t10\t90";
    for (int i = 0; i < 20; ++i) text += "\t0";
    text += "\tkPa\t14.64\r\nFrame\tRPM\tMAP\tTPS\tCLT\tMAT\tBatt V\r\n";
    for (int i = 0; i < 100; ++i) text += std::to_string(i) + "\t3000\t80\t2.5\t80\t30\t13.8\r\n";
    return text;
}

std::string hexText() {
    std::string text;
    for (int i = 0; i < 65; ++i) text += i % 2 == 0 ? "1F " : "a0 ";
    return text + "\n";
}

std::array<std::string, formCount> goodFiles() {
    return {
        sampleFile(),
        oldFile(),
        listingOf(sampleFile()),
        tableText(),
        hexText(),
        traceText(),
        sim::simulatedFirmware("ZQA-505099"),
        datalogText(),
        "Unit ORB A\nEngine 4 Cylinder\nSensor 1 BAR\nREV_Limiter 7000\nVE row 1 1 2 3 4 5 6 7 8 9 10 11 12 "
        "13 14 15 16\nNote fine\n",
        "ID\tName\tValue\n1\tone\t1.5\n2\ttwo\\n\t-3\n",
        "fuel\t1\t\tFuel\tSome words. More words.\nfuel\t2\tve\tThe VE table\tIt has cells.\n"};
}

constexpr std::string_view hostileWords[] = {
    "nan", "inf",    "-inf",  "1e999", "-1e999",    "99999999999999999999999", "", "0x7FFF", "1,5",
    "-",   "1e-999", "70000", "-1",    "2147483648"};
constexpr std::string_view controls[] = {"\x1B[2J",
                                         "\x1B]0;owned\a",
                                         "\r",
                                         std::string_view("\0\0", 2),
                                         "\xE2\x80\xAE",
                                         "\xE2\x80\x8B",
                                         "\xC2\x9B"
                                         "1m",
                                         "\xFF\xFE",
                                         "\xC0\xAF",
                                         "\b\b\b",
                                         "\x7F",
                                         "\xED\xA0\x80"};

/// Names as a mean archive may bring them along.
const std::vector<std::string>& names() {
    static const std::vector<std::string> all = {"plain.ZQ4OA",
                                                 "two words.ZQ4OA",
                                                 "-o",
                                                 "line\nbreak.ZQ4OA",
                                                 "\x1B[31mred\x1B[0m.ZQ4OA",
                                                 "\x1B]0;title\a.ZQ4OA",
                                                 "tune\xE2\x80\xAE"
                                                 "AO4QZ.exe",
                                                 "no\xE2\x80\x8Bwidth.ZQ4OA",
                                                 "'; rm -rf $HOME; '.ZQ4OA",
                                                 "quote\".ZQ4OA",
                                                 "back\\slash.ZQ4OA",
                                                 "\xFF\xFE.ZQ4OA",
                                                 "tab\tbell\a.ZQ4OA",
                                                 "per%s%n%d.ZQ4OA",
                                                 std::string(249, 'x') + ".ZQ4OA",
                                                 "<b>bold<i>.ZQ4OA"};
    return all;
}

void makeSocket(const std::string& path) {
    // A long path does not fit into an address, a name in the working folder does.
    const fs::path before = fs::current_path();
    fs::current_path(fs::path(path).parent_path());
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::strncpy(name.sun_path, fs::path(path).filename().c_str(), sizeof name.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool bound = ::bind(socket, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0;
    ::close(socket);
    fs::current_path(before);
    if (!bound) throw std::runtime_error("no socket " + path);
}

void write(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

bool isText(Form form) {
    return form != Form::Calibration && form != Form::Old;
}

}  // namespace

const std::string& goodFile(Form form) {
    static const std::array<std::string, formCount> files = goodFiles();
    return files.at(static_cast<std::size_t>(form));
}

// The faults with bytes of their own come most often, as each of them is another file every time.
Fault faultOf(int number) {
    constexpr int usual = 8;
    const int turn = number / usual;
    if (number % usual == usual - 1) return static_cast<Fault>(usual + turn % (faultCount - usual));
    return static_cast<Fault>(number % usual);
}

std::size_t HostileFiles::below(std::size_t end) {
    return end == 0 ? 0 : random_() % end;
}

std::string HostileFiles::noise(std::size_t length) {
    std::string bytes(length, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random_() & 0xFFU);
    return bytes;
}

void HostileFiles::flip(std::string& content) {
    if (content.empty()) return;
    for (std::size_t count = 1 + below(20); count > 0; --count) {
        char& byte = content[below(content.size())];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << below(8)));
    }
}

void HostileFiles::plantFloats(std::string& content) {
    using Limits = std::numeric_limits<float>;
    constexpr float hostile[] = {Limits::quiet_NaN(),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::max(),
                                 Limits::lowest(),
                                 Limits::denorm_min(),
                                 70'000,
                                 -70'000,
                                 2'147'483'648.0F,
                                 -0.0F,
                                 255.5F,
                                 1e10F};
    // Now one cell, now all over the file.
    for (std::size_t count = below(3) == 0 ? content.size() / 8 : 1 + below(8); count > 0; --count) {
        plantFloat(content, 1 + below(content.size() / 4), hostile[below(std::size(hostile))]);
    }
}

void HostileFiles::plantNumbers(std::string& content) {
    if (!isText(form_)) return plantFloats(content);
    for (std::size_t count = 1 + below(6); count > 0; --count) {
        const std::size_t from = content.find_first_of("0123456789", below(content.size()));
        if (from == std::string::npos) continue;
        const std::size_t end = content.find_first_not_of("0123456789.", from);
        content.replace(from, std::min(end, content.size()) - from,
                        hostileWords[below(std::size(hostileWords))]);
    }
}

void HostileFiles::spoilLines(std::string& content) {
    std::vector<std::string> lines = split(content, '\n');
    for (std::size_t count = 1 + below(4); count > 0; --count) {
        const std::size_t at = below(lines.size());
        const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
        switch (below(5)) {
            case 0:
                lines.insert(place, lines[at]);
                break;
            case 1:
                if (lines.size() > 1) lines.erase(place);
                break;
            case 2:
                std::swap(lines[at], lines[below(lines.size())]);
                break;
            case 3:
                lines[at] += std::string(35'000, 'x');
                break;
            default:
                lines[at] = lines[at].substr(0, below(lines[at].size() + 1));
        }
    }
    content.clear();
    for (const std::string& line : lines) content += line + '\n';
}

void HostileFiles::plantControls(std::string& content) {
    for (std::size_t count = 1 + below(8); count > 0; --count) {
        content.insert(below(content.size() + 1), controls[below(std::size(controls))]);
    }
}

std::string HostileFiles::content(Fault fault) {
    std::string content = goodFile(form_);
    switch (fault) {
        case Fault::Noise:
            return noise(below(20'000));
        case Fault::Cut:
            content.resize(below(content.size()));
            break;
        case Fault::Stretched:
            content += below(2) == 0 ? noise(1 + below(5000)) : content.substr(0, 1 + below(content.size()));
            break;
        case Fault::Flipped:
            flip(content);
            break;
        case Fault::Numbers:
            plantNumbers(content);
            break;
        case Fault::Lines:
            spoilLines(content);
            break;
        case Fault::Controls:
            plantControls(content);
            break;
        case Fault::Foreign:
            return goodFile(static_cast<Form>(below(formCount)));
        case Fault::Empty:
            return {};
        case Fault::Long:
            while (content.size() < 3'000'000) content += content.substr(content.size() / 2) + "\n";
            break;
        default:
            break;
    }
    return content;
}

std::string HostileFiles::make(const std::string& folder, int number) {
    const Fault fault = faultOf(number);
    const bool badName = fault == Fault::Name || number % 5 == 0;
    const std::string name = badName ? names()[below(names().size())] : "file.ZQ4OA";
    const std::string path = folder + "/" + name;
    switch (fault) {
        case Fault::Huge:
            write(path, goodFile(form_));
            if (::truncate(path.c_str(), off_t{2} << 30) != 0) throw std::runtime_error("no huge file");
            break;
        case Fault::Pipe:
            if (::mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
            break;
        case Fault::Folder:
            fs::create_directory(path);
            break;
        case Fault::Device:
            fs::create_symlink("/dev/zero", path);
            break;
        case Fault::Socket:
            makeSocket(path.size() < 90 ? path : folder + "/socket");
            return path.size() < 90 ? path : folder + "/socket";
        case Fault::Circle:
            fs::create_symlink(name, path);
            break;
        case Fault::Missing:
            break;
        default:
            write(path, content(fault));
    }
    return path;
}

}  // namespace zentaq
