// log export: datalogs for other programs; autove: a fuel table corrected by a datalog.
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <ostream>
#include <thread>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "commands.h"
#include "log_file.h"
#include "logs/log_export.h"
#include "open_table.h"
#include "tables/auto_ve_run.h"

namespace zentaq::ctl {

namespace {

namespace fs = std::filesystem;

LogExport exportNamed(const std::string& name) {
    for (const LogExport one : {LogExport::Csv, LogExport::Msl, LogExport::Mlg}) {
        if (exportName(one) == name) return one;
    }
    throw Failure("There is no form \"" + name + "\"; there are csv, msl and mlg.");
}

/// One log on its way into one file.
struct Job {
    std::string log;
    std::string output;
};

/// The name of a log with the ending of a form, in a folder.
std::string outputIn(const std::string& folder, const std::string& log, LogExport format) {
    const std::string stem = fs::path(fileNameOf(log)).stem().string();
    return (fs::path(folder) / (stem + "." + std::string(exportName(format)))).string();
}

DatalogReading exportOne(const Job& job, LogExport format) {
    LogFile log(job.log);
    ExportedLog about{fileNameOf(job.log), 0, readMarks(job.log)};
    struct stat facts {};
    if (::stat(job.log.c_str(), &facts) == 0) about.startedAt = facts.st_mtime;
    NewFile file(job.output);
    DatalogReading reading;
    try {
        reading = exportLog(log.stream(), file.stream(), format, about);
    } catch (const FileError& failure) {
        throw FileError(job.output + ": " + failure.what());
    } catch (const Failure& failure) {
        throw FileError(job.log + ": " + failure.what());
    }
    file.keep();
    return reading;
}

std::vector<Job> jobsFor(const Context& context, const std::vector<std::string>& logs,
                         const std::string& output, LogExport format) {
    std::error_code error;
    const bool folder = fs::is_directory(output, error);
    if (!folder && logs.size() > 1)
        throw Failure("Several logs go into a folder, and " + output + " is none. Make it first.");
    std::vector<Job> jobs;
    for (const std::string& log : logs)
        jobs.push_back({log, folder ? outputIn(output, log, format) : output});
    for (const Job& job : jobs) {
        if (std::ranges::count(jobs, job.output, &Job::output) > 1)
            throw Failure("Two logs would both go into " + job.output + ".");
        refuseSameFile(job.output, job.log);
        if (!context.force && fs::exists(job.output, error))
            throw Failure(job.output + " exists already; --force writes over it.");
    }
    return jobs;
}

/// A sample a row.
class AutoVeRows : public DatalogSink {
 public:
    explicit AutoVeRows(AutoVeRun& run) : run_(run) {}

    void head(const DatalogHead& head) override {
        mapUnits = head.mapUnits;
        rpm_ = channelPlace(head.columns, "RPM");
        map_ = channelPlace(head.columns, "MAP");
        correction_ = channelPlace(head.columns, "EGOC");
    }
    void row(std::span<const double> values, std::int64_t /*line*/) override {
        // A speed or a correction that is no 16-bit number is no sample.
        const bool fits = skipFailing([&] {
            const std::int16_t rpm = toInt16(values[rpm_]);
            const std::int16_t correction = toInt16(values[correction_]);
            run_.Auto_VE(rpm, static_cast<float>(values[map_]), correction);
        });
        unfit += fits ? 0 : 1;
    }

    std::string mapUnits;
    std::int64_t unfit = 0;

 private:
    AutoVeRun& run_;
    std::size_t rpm_ = 0;
    std::size_t map_ = 0;
    std::size_t correction_ = 0;
};

int cellsChanged(const Calibration& before, const Calibration& after) {
    int changed = 0;
    for (std::size_t i = 0; i < before.cells.size(); ++i)
        changed += before.cells[i] != after.cells[i] ? 1 : 0;
    return changed;
}

}  // namespace

void logExport(const Context& context, const std::vector<std::string>& logs, const std::string& output,
               const std::string& form) {
    const LogExport format = exportNamed(form);
    const std::vector<Job> jobs = jobsFor(context, logs, output, format);
    std::vector<std::string> told(jobs.size());
    std::vector<std::string> failed(jobs.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < jobs.size(); i = next++) {
            endOnFailure([&] { told[i] = warningsText(jobs[i].log, exportOne(jobs[i], format)); },
                         [&](const std::string& why) { failed[i] = why; });
        }
    };
    // A file a core.
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> others;
    for (std::size_t i = 1; i < std::min(cores, jobs.size()); ++i) others.emplace_back(work);
    work();
    for (std::thread& other : others) other.join();
    int failures = 0;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        context.notes << told[i];
        if (failed[i].empty()) continue;
        ++failures;
        if (jobs.size() > 1) context.notes << failed[i] << '\n';
    }
    if (failures == 0) return;
    if (jobs.size() == 1) throw FileError(failed.front());
    throw Failure(many(failures, "log was", "logs were") + " not exported, " +
                  numberText(static_cast<int>(jobs.size()) - failures) + " were.");
}

void autoVe(const Context& context, const std::string& file, const std::string& log, int constant,
            const std::string& output) {
    constexpr int leastConstant = 5;
    constexpr int mostConstant = 200;
    if (constant < leastConstant || constant > mostConstant)
        throw Failure("Please use a value from 5 to 200.");
    Change change(context, file, output);
    Unit& unit = change.calibration().unit;
    const Calibration before = unit.calibration();
    OpenTable table(context, unit, "VE");
    AutoVeRun run(table.sheet);
    run.rule().constant(constant);
    AutoVeRows rows(run);
    const DatalogReading reading = LogFile(log).read(rows);
    notePressureUnits(context, rows.mapUnits, unit);
    tellWarnings(context, log, reading);
    if (rows.unfit > 0) {
        context.notes << log << ": " << many(rows.unfit, "row", "rows")
                      << " passed over: the speed or the correction is no 16-bit number\n";
    }
    const std::vector<Refusal> refused = table.sheet.saveEntireTable();
    change.save();
    context.notes << many(reading.rows, "row", "rows") << ", "
                  << many(cellsChanged(before, unit.calibration()), "cell", "cells") << " of VE changed\n";
    if (refused.empty()) return;
    context.notes << many(static_cast<std::int64_t>(refused.size()), "cell keeps its", "cells keep their")
                  << " old value: " << cellsOf(refused) << '\n';
}

}  // namespace zentaq::ctl
