#include "trace/trace_file.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "trace/trace_store.h"

namespace zentaq {

namespace {

/// Frames further apart do not belong to one run of them.
constexpr double longestGapMs = 1000;
/// More than the longest file has of the shortest lines that are ever written.
constexpr std::size_t mostLines = 1'000'000;
/// How a reply in several lumps is told.
constexpr std::string_view lumpsWord = " lumps";

/// The next line without its end; whether it had one.
struct TakenLine {
    std::string_view text;
    bool ended = false;
};

TakenLine takeLine(std::string_view& rest) {
    const auto end = rest.find('\n');
    TakenLine line{rest.substr(0, end), end != std::string_view::npos};
    rest.remove_prefix(line.ended ? end + 1 : rest.size());
    if (line.text.ends_with('\r')) line.text.remove_suffix(1);
    return line;
}

/// Whether the line belongs to the head, and says something known.
bool takeHeadLine(TraceFile& trace, std::string_view text) {
    const auto blank = text.find(' ');
    const std::string_view name = text.substr(0, blank);
    const std::string value = shownLine(trimmed(blank == std::string_view::npos ? "" : text.substr(blank)));
    if (name == "program") {
        trace.program = value;
    } else if (name == "begun") {
        trace.begun = value;
    } else if (name == "port") {
        trace.port = value;
    } else if (name == "part") {
        skipFailing([&] { trace.part = static_cast<int>(std::clamp(numberOf(value), 1.0, 1e9)); });
    } else {
        return name == "columns";
    }
    return true;
}

void takeEvent(TraceFile& trace, const TakenLine& line) {
    if (auto event = parseTraceLine(line.text)) {
        // A program that opens its port later than its trace knows none in the head.
        if (event->text.starts_with(portOpened)) trace.port = event->text.substr(portOpened.size());
        if (trace.lines.size() == mostLines) throw FileError("has too many lines for a wire trace");
        trace.lines.push_back(std::move(*event));
    } else if (line.ended) {
        ++trace.unknownLines;
    } else {
        trace.cut = true;
    }
}

std::string contentOf(const std::string& path) {
    // A film or a disk image is not called too long, but what it is.
    std::string head = readFileStart(path, traceMagic.size());
    return head == traceMagic ? readFile(path, limits::trace) : head;
}

/// The half in front of `trace`, where it stands beside it.
std::optional<TraceFile> olderHalf(const std::string& path, const TraceFile& trace) {
    std::optional<TraceFile> older;
    if (trace.part < 2) return older;
    skipFailing([&] { older = parseTrace(contentOf(TraceStore::olderPath(path))); });
    const bool fits = older && older->begun == trace.begun && older->part == trace.part - 1;
    return fits ? older : std::nullopt;
}

bool inTime(const TraceLine& line, const TraceFilter& filter) {
    const double seconds = static_cast<double>(line.timeUs) / 1e6;
    return (!filter.fromSeconds || seconds >= *filter.fromSeconds) &&
           (!filter.toSeconds || seconds <= *filter.toSeconds);
}

bool isFrame(const TraceLine& line) {
    return line.direction == TraceDirection::Received && line.problem.empty() &&
           (line.command == "W" || line.command == "F");
}

bool isWholeReply(const TraceLine& line) {
    return line.direction == TraceDirection::Received && line.problem != trouble::unasked &&
           line.problem != trouble::tooShort;
}

bool isIdentity(const TraceLine& line) {
    return line.direction == TraceDirection::Received && line.problem.empty() &&
           (line.command == "E" || line.command == "B");
}

/// What stands in front of the count of bytes.
std::string identityWords(std::string_view text) {
    const auto count = text.rfind(" bytes");
    const auto end = count == std::string_view::npos ? 0 : text.rfind(", ", count);
    return std::string(text.substr(0, end == std::string_view::npos ? 0 : end));
}

/// Notes of the program stand between a command and the time-out that it is told by.
void addCommandBefore(const TraceFile& trace, std::size_t index, std::vector<std::size_t>& chosen) {
    const std::size_t end = chosen.empty() ? 0 : chosen.back() + 1;
    for (std::size_t i = index; i > end; --i) {
        if (trace.lines[i - 1].direction != TraceDirection::Written) continue;
        chosen.push_back(i - 1);
        return;
    }
}

double msBetween(const TraceLine& first, const TraceLine& second) {
    return static_cast<double>(second.timeUs - first.timeUs) / 1000;
}

/// Adds the lines up one after the other.
class Adder {
 public:
    explicit Adder(TraceSummary& summary) : summary_(summary) {}

    void take(const TraceLine& line) {
        if (!line.problem.empty()) takeProblem(line);
        if (line.command.empty()) return;
        CommandSummary& command = summary_.commands[line.command];
        if (!line.problem.empty()) ++command.problems;
        if (line.direction == TraceDirection::Written) {
            ++command.written;
            asked_ = &line;
        }
        if (isWholeReply(line)) takeReply(command, line);
        if (isFrame(line)) takeFrame(line);
        if (isIdentity(line)) takeIdentity(line);
    }

    void finish() {
        for (auto& [key, command] : summary_.commands) std::ranges::sort(command.replyMs);
        if (spans_ > 0 && spanMs_ > 0) summary_.framesPerSecond = spans_ * 1000.0 / spanMs_;
    }

 private:
    void takeProblem(const TraceLine& line) {
        ProblemSummary& problem = summary_.problems[line.problem];
        if (++problem.count == 1) {
            problem.rank = summary_.problems.size();
            problem.firstUs = line.timeUs;
        }
        problem.lastUs = line.timeUs;
        if (!line.command.empty()) ++problem.commands[line.command];
    }

    void takeIdentity(const TraceLine& line) {
        const std::string words = identityWords(line.text);
        const bool known = std::ranges::find(summary_.units, words) != summary_.units.end();
        if (!words.empty() && !known) summary_.units.push_back(words);
    }

    void takeReply(CommandSummary& command, const TraceLine& line) {
        if (asked_ == nullptr || asked_->command != line.command) return;
        ++command.replies;
        command.replyMs.push_back(msBetween(*asked_, line));
        if (line.text.find(lumpsWord) != std::string::npos) ++command.lumped;
        asked_ = nullptr;
    }

    void takeFrame(const TraceLine& line) {
        ++summary_.frames;
        const double gapMs = frame_ == nullptr ? longestGapMs + 1 : msBetween(*frame_, line);
        if (frame_ != nullptr && gapMs > summary_.longestPauseMs) {
            summary_.longestPauseMs = gapMs;
            summary_.pauseEndUs = line.timeUs;
        }
        if (gapMs <= longestGapMs) {
            ++spans_;
            spanMs_ += gapMs;
        }
        frame_ = &line;
    }

    TraceSummary& summary_;
    const TraceLine* asked_ = nullptr;
    const TraceLine* frame_ = nullptr;
    int spans_ = 0;
    double spanMs_ = 0;
};

}  // namespace

TraceFile parseTrace(std::string_view content) {
    if (takeLine(content).text != traceMagic) throw FileError("is no wire trace");
    TraceFile trace;
    bool inHead = true;
    while (!content.empty()) {
        const TakenLine line = takeLine(content);
        if (trimmed(line.text).empty()) {
            inHead = false;
        } else if (inHead && !parseTraceLine(line.text)) {
            if (!takeHeadLine(trace, line.text)) ++trace.unknownLines;
        } else {
            takeEvent(trace, line);
        }
    }
    return trace;
}

TraceFile readTrace(const std::string& path) {
    const std::string content = contentOf(path);
    TraceFile trace;
    endOnFailure([&] { trace = parseTrace(content); },
                 [&](const std::string& why) { throw FileError(path + ": " + why); });
    if (auto older = olderHalf(path, trace)) {
        trace.lines.insert(trace.lines.begin(), std::make_move_iterator(older->lines.begin()),
                           std::make_move_iterator(older->lines.end()));
        trace.unknownLines += older->unknownLines;
    }
    return trace;
}

std::vector<std::size_t> chosenLines(const TraceFile& trace, const TraceFilter& filter) {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < trace.lines.size(); ++i) {
        const TraceLine& line = trace.lines[i];
        const bool wanted = inTime(line, filter) && (!filter.problems || !line.problem.empty()) &&
                            (filter.command.empty() || line.command == filter.command);
        if (!wanted) continue;
        if (filter.problems) addCommandBefore(trace, i, chosen);
        chosen.push_back(i);
    }
    return chosen;
}

TraceSummary summaryOf(const TraceFile& trace, const std::vector<std::size_t>& chosen) {
    TraceSummary summary;
    summary.lines = static_cast<int>(chosen.size());
    if (chosen.empty()) return summary;
    summary.seconds = msBetween(trace.lines[chosen.front()], trace.lines[chosen.back()]) / 1000;
    Adder adder(summary);
    for (const std::size_t index : chosen) adder.take(trace.lines[index]);
    adder.finish();
    return summary;
}

double quantile(const std::vector<double>& ascending, double share) {
    if (ascending.empty()) return 0;
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(ascending.size())));
    return ascending[std::clamp<std::size_t>(rank, 1, ascending.size()) - 1];
}

}  // namespace zentaq
