#include "app/log_exporting.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "base/errors.h"

namespace zentaq {

struct LogExporting::Job : SideJob {
    std::mutex mutex;
    std::string failure;
};

namespace {

/// Beside the target, which it becomes when it is whole.
void writeWhole(SideJob& job, const std::string& log, const std::string& target, LogExport format,
                const ExportedLog& about) {
    const std::string partial = target + ".part";
    std::ifstream in(log, std::ios::binary);
    std::ofstream out(partial, std::ios::binary | std::ios::trunc);
    if (!out) throw FileError(target + ": the file cannot be made there.");
    std::error_code unknown;
    const auto bytes = std::filesystem::file_size(log, unknown);
    DatalogOptions options;
    options.goOn = [&](std::uint64_t read) {
        if (!unknown && bytes > 0) job.share = static_cast<double>(read) / static_cast<double>(bytes);
        return !job.cancelled;
    };
    const bool whole = !exportLog(in, out, format, about, options).cancelled;
    out.close();
    if (!out) throw FileError(target + ": the disk is full, or it has gone.");
    if (!whole) throw FileError(target + ": it was given up.");
    if (std::rename(partial.c_str(), target.c_str()) != 0)
        throw FileError(target + ": the file that stands there cannot be replaced.");
}

}  // namespace

LogExporting::LogExporting() = default;
LogExporting::~LogExporting() {
    cancel();
}

std::string exportCaption(LogExport format) {
    switch (format) {
        case LogExport::Msl:
            return "MSL text";
        case LogExport::Mlg:
            return "MLG binary";
        case LogExport::Csv:
            break;
    }
    return "Comma-separated values (CSV)";
}

void LogExporting::begin(SideWork* side, const std::string& log, const std::string& target, LogExport format,
                         const ExportedLog& about) {
    cancel();
    job_ = std::make_shared<Job>();
    beginSideJob<Job>(side, job_, [log, target, format, about](Job& job) {
        endOnFailure([&] { writeWhole(job, log, target, format, about); },
                     [&](const std::string& why) {
                         std::remove((target + ".part").c_str());
                         const std::lock_guard lock(job.mutex);
                         job.failure = why;
                     });
    });
}

void LogExporting::cancel() {
    if (job_) job_->cancelled = true;
    job_.reset();
}

bool LogExporting::running() const {
    return job_ && !job_->ended;
}

double LogExporting::share() const {
    return job_ ? job_->share.load() : 0;
}

std::string LogExporting::failure() const {
    if (!job_) return {};
    const std::lock_guard lock(job_->mutex);
    return job_->failure;
}

}  // namespace zentaq
