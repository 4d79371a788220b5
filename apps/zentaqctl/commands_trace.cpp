// trace: a wire trace as a reader wants it: its lines, only what went wrong, or what they add up to.
#include <algorithm>
#include <ostream>

#include "base/json_writer.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "trace/trace_file.h"

namespace zentaq::ctl {

namespace {

constexpr double medianShare = 0.5;
constexpr double highShare = 0.95;

std::string onLeft(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

std::string tenths(double value) {
    return formatNumber(value, "##0.0");
}

std::string many(int count, const char* one, const char* more) {
    return numberText(count) + " " + (count == 1 ? one : more);
}

void writeTimes(std::ostream& out, const std::vector<double>& ms) {
    for (const double share : {0.0, medianShare, highShare, 1.0}) {
        out << rightAligned(ms.empty() ? "-" : tenths(quantile(ms, share)), 10);
    }
}

void writeCommands(std::ostream& out, const TraceSummary& summary) {
    out << "Command   written   replies    min ms    median      95 %       max  in lumps  problems\n";
    for (const auto& [key, command] : summary.commands) {
        // Bytes that were under way at the beginning belong to no command.
        if (command.written + command.replies + command.problems == 0) continue;
        out << onLeft(key, 7) << rightAligned(numberText(command.written), 10)
            << rightAligned(numberText(command.replies), 10);
        writeTimes(out, command.replyMs);
        out << rightAligned(numberText(command.lumped), 10) << rightAligned(numberText(command.problems), 10)
            << '\n';
    }
}

std::string seconds(std::int64_t us) {
    return tenths(static_cast<double>(us) / 1e6) + " s";
}

std::string troubledCommands(const ProblemSummary& problem) {
    std::string text;
    for (const auto& [key, count] : problem.commands) {
        text += (text.empty() ? ", at " : ", ") + key;
        if (count > 1) text += " " + numberText(count) + " times";
    }
    return text;
}

void writeProblem(std::ostream& out, const std::string& kind, const ProblemSummary& problem) {
    out << "  " << onLeft(kind, 10) << rightAligned(numberText(problem.count), 6) << "  ";
    if (problem.count > 1) out << "first ";
    out << "at " << seconds(problem.firstUs);
    if (problem.count > 1) out << ", last at " << seconds(problem.lastUs);
    out << troubledCommands(problem) << '\n';
}

/// What happened first stands first: a short answer before the lost link that follows from it.
void writeProblems(std::ostream& out, const TraceSummary& summary) {
    if (summary.problems.empty()) {
        out << "Problems: none\n";
        return;
    }
    using Row = const std::pair<const std::string, ProblemSummary>*;
    std::vector<Row> rows;
    for (const auto& row : summary.problems) rows.push_back(&row);
    std::ranges::sort(rows, {}, [](Row row) { return row->second.rank; });
    out << "Problems:\n";
    for (const Row row : rows) writeProblem(out, row->first, row->second);
}

void writeFrames(std::ostream& out, const TraceSummary& summary) {
    if (summary.frames == 0) return;
    out << ", " << many(summary.frames, "live frame", "live frames") << ", "
        << tenths(summary.framesPerSecond) << " a second while they came";
    if (summary.longestPauseMs <= 0) return;
    out << ", longest pause " << tenths(summary.longestPauseMs) << " ms, until "
        << seconds(summary.pauseEndUs);
}

void writeSummary(std::ostream& out, const TraceFile& trace, const TraceSummary& summary) {
    out << "Trace of Zentaq4 " << trace.program << ", begun " << trace.begun << "; port " << trace.port
        << "\n"
        << many(summary.lines, "line", "lines") << " in " << tenths(summary.seconds) << " s";
    writeFrames(out, summary);
    out << '\n';
    for (const std::string& unit : summary.units) out << "Unit: " << shownLine(unit) << '\n';
    if (!summary.commands.empty()) writeCommands(out, summary);
    writeProblems(out, summary);
}

// ---- JSON

void writeLine(JsonWriter& json, const TraceLine& line) {
    const char direction = static_cast<char>(line.direction);
    json.beginObject().member("ms", static_cast<double>(line.timeUs) / 1000);
    json.member("direction", std::string_view(&direction, 1));
    json.member("count", static_cast<int>(line.bytes.size())).member("bytes", hexBytes(line.bytes));
    json.member("problem", line.problem).member("command", line.command).member("text", line.text);
    json.endObject();
}

void writeCommand(JsonWriter& json, const CommandSummary& command) {
    const std::vector<double>& ms = command.replyMs;
    json.beginObject().member("written", command.written).member("replies", command.replies);
    json.member("minMs", quantile(ms, 0)).member("medianMs", quantile(ms, medianShare));
    json.member("highMs", quantile(ms, highShare)).member("maxMs", quantile(ms, 1));
    json.member("inLumps", command.lumped).member("problems", command.problems).endObject();
}

void writeProblem(JsonWriter& json, const ProblemSummary& problem) {
    json.beginObject().member("count", problem.count);
    json.member("firstMs", static_cast<double>(problem.firstUs) / 1000);
    json.member("lastMs", static_cast<double>(problem.lastUs) / 1000).key("commands").beginObject();
    for (const auto& [key, count] : problem.commands) json.member(key, count);
    json.endObject().endObject();
}

void writeJson(std::ostream& out, const TraceFile& trace, const std::vector<std::size_t>& shown,
               const TraceSummary& summary, bool lines) {
    JsonWriter json(out);
    json.beginObject().member("program", trace.program).member("begun", trace.begun);
    json.member("port", trace.port).member("unknownLines", trace.unknownLines).member("cut", trace.cut);
    if (lines) {
        json.key("lines").beginArray();
        for (const std::size_t index : shown) writeLine(json, trace.lines[index]);
        json.endArray();
    }
    json.key("summary").beginObject();
    json.member("lines", summary.lines).member("seconds", summary.seconds).member("frames", summary.frames);
    json.member("framesPerSecond", summary.framesPerSecond);
    json.member("longestPauseMs", summary.longestPauseMs);
    json.member("pauseEndMs", static_cast<double>(summary.pauseEndUs) / 1000).key("units").beginArray();
    for (const std::string& unit : summary.units) json.value(unit);
    json.endArray().key("commands").beginObject();
    for (const auto& [key, command] : summary.commands) writeCommand(json.key(key), command);
    json.endObject().key("problems").beginObject();
    for (const auto& [kind, problem] : summary.problems) writeProblem(json.key(kind), problem);
    json.endObject().endObject().endObject();
    out << '\n';
}

void noteLosses(const Context& context, const TraceFile& trace) {
    if (trace.unknownLines > 0) {
        context.notes << many(trace.unknownLines, "line was", "lines were")
                      << " not understood and left out\n";
    }
    if (trace.cut) context.notes << "The trace ends in the middle of a line, which was left out\n";
}

}  // namespace

void showTrace(const Context& context, const std::string& file, const TraceFilter& filter, bool summaryOnly) {
    const TraceFile trace = readTrace(file);
    const std::vector<std::size_t> shown = chosenLines(trace, filter);
    // What went right counts, too.
    TraceFilter counted = filter;
    counted.problems = false;
    const TraceSummary summary = summaryOf(trace, chosenLines(trace, counted));
    if (context.json) {
        writeJson(context.out, trace, shown, summary, !summaryOnly);
    } else {
        if (!summaryOnly) {
            for (const std::size_t index : shown) {
                context.out << formatTraceLine(trace.lines[index]) << '\n';
            }
            context.out << '\n';
        }
        writeSummary(context.out, trace, summary);
    }
    noteLosses(context, trace);
}

}  // namespace zentaq::ctl
