#include "app/log_storing.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "live/datalog_reader.h"
#include "logs/log_channel.h"
#include "refdata/datalog_table.h"

namespace zentaq {

struct LogStoring::Job : SideJob {
    std::mutex mutex;
    std::vector<std::string> lines;
    std::string failure;

    void give(std::vector<std::string>& more) {
        const std::lock_guard lock(mutex);
        lines.insert(lines.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
        more.clear();
    }
};

namespace {

/// Nearly every speed is a whole number, whose digits cost a tenth of the others'.
std::string speedText(double value) {
    constexpr double most = 1e6;
    const bool whole = value >= 0 && value < most && value == static_cast<int>(value);
    return whole ? std::to_string(static_cast<int>(value)) : numberText(value);
}

template <typename Job>
class TableSink : public DatalogSink {
 public:
    TableSink(Job& job, std::string database) : job_(job), database_(std::move(database)) {}

    void head(const DatalogHead& head) override {
        table_.emplace(database_, head.format == DatalogFormat::Oldest ? "Datalog" : "Datalog2");
        table_->clear();
        speed_ = static_cast<std::size_t>(columnOfChannel(head.columns, "RPM"));
    }
    void row(std::span<const double> values, std::int64_t line) override {
        table_->add(values);
        lines_.push_back("Adding RPM: " + speedText(values[speed_]) + " on line " + std::to_string(line));
        if (static_cast<std::int64_t>(lines_.size()) >= DatalogTable::blockRows) job_.give(lines_);
    }
    void finish() {
        table_->flush();
        job_.give(lines_);
    }

 private:
    Job& job_;
    std::string database_;
    std::optional<DatalogTable> table_;
    std::size_t speed_ = 0;
    std::vector<std::string> lines_;
};

}  // namespace

void LogStoring::begin(SideWork* side, const std::string& path, const std::string& database,
                       double cycleFactor) {
    cancel();
    job_ = std::make_shared<Job>();
    beginSideJob<Job>(side, job_, [path, database, cycleFactor](Job& job) {
        const auto work = [&] {
            checkFile(path, limits::datalogByRows);
            std::ifstream in(path, std::ios::binary);
            std::error_code unknown;
            const auto bytes = std::filesystem::file_size(path, unknown);
            TableSink sink(job, database);
            DatalogOptions options;
            options.cycleFactor = cycleFactor;
            options.goOn = [&](std::uint64_t read) {
                if (!unknown && bytes > 0) job.share = static_cast<double>(read) / static_cast<double>(bytes);
                return !job.cancelled;
            };
            readDatalog(in, sink, options);
            sink.finish();
        };
        endOnFailure(work, [&](const std::string& why) {
            const std::lock_guard lock(job.mutex);
            job.failure = why;
        });
    });
}

LogStoring::LogStoring() = default;
LogStoring::~LogStoring() {
    cancel();
}

bool LogStoring::running() const {
    return job_ && !job_->ended;
}

double LogStoring::share() const {
    return job_ ? job_->share.load() : 0;
}

void LogStoring::cancel() {
    if (job_) job_->cancelled = true;
    job_.reset();
}

std::vector<std::string> LogStoring::takeLines() {
    if (!job_) return {};
    const std::lock_guard lock(job_->mutex);
    return std::exchange(job_->lines, {});
}

std::string LogStoring::failure() const {
    if (!job_) return {};
    const std::lock_guard lock(job_->mutex);
    return job_->failure;
}

}  // namespace zentaq
