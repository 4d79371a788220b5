#include "app/log_loading.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"

namespace zentaq {

namespace {

/// The first rows are seen at once, the others come in larger pieces.
constexpr std::size_t firstRows = 512;
constexpr std::size_t blockRows = 4096;
constexpr std::size_t mostBlocks = 16;  ///< that wait for the program's thread
constexpr int blocksAtOnce = 4;         ///< that it takes between two pictures
constexpr auto pause = std::chrono::milliseconds(5);

}  // namespace

struct LogLoading::Block {
    std::optional<DatalogHead> head;
    std::size_t rowsExpected = 0;
    std::size_t width = 0;
    std::vector<double> values;  ///< row by row
};

struct LogLoading::Job : SideJob {
    bool waits = false;  ///< there is another thread that takes the blocks
    std::mutex mutex;
    std::condition_variable taken;
    std::deque<Block> blocks;
    std::string failure;
    DatalogReading reading;

    void give(Block block) {
        std::unique_lock lock(mutex);
        taken.wait(lock, [this] { return !waits || cancelled || blocks.size() < mostBlocks; });
        blocks.push_back(std::move(block));
    }
};

namespace {

template <typename Job, typename Block>
class BlockSink : public DatalogSink {
 public:
    BlockSink(Job& job, std::uint64_t bytes) : job_(job), bytes_(bytes) {}

    void head(const DatalogHead& head) override {
        // Nearly all of a log is its numbers, some three to four bytes each.
        constexpr std::uint64_t bytesOfValue = 4;
        block_.head = head;
        block_.width = head.columns.size();
        block_.rowsExpected = static_cast<std::size_t>(bytes_ / (bytesOfValue * (block_.width + 1)));
        most_ = firstRows;
    }
    void row(std::span<const double> values, std::int64_t /*line*/) override {
        block_.values.insert(block_.values.end(), values.begin(), values.end());
        if (++rows_ >= most_) give();
    }
    void give() {
        Block next;
        next.width = block_.width;
        job_.give(std::exchange(block_, std::move(next)));
        rows_ = 0;
        most_ = blockRows;
        block_.values.reserve(most_ * block_.width);
    }

 private:
    Job& job_;
    std::uint64_t bytes_;
    Block block_;
    std::size_t rows_ = 0;
    std::size_t most_ = firstRows;
};

}  // namespace

void LogLoading::begin(SideWork* side, const std::string& path, double cycleFactor,
                       std::function<bool()> ready) {
    cancel();
    job_ = std::make_shared<Job>();
    job_->waits = side != nullptr;
    beginSideJob<Job>(side, job_, [path, cycleFactor, ready = std::move(ready)](Job& job) {
        read(job, path, cycleFactor, ready);
    });
}

LogLoading::LogLoading() = default;
LogLoading::~LogLoading() {
    cancel();
}

void LogLoading::cancel() {
    if (!job_) return;
    job_->cancelled = true;
    job_->taken.notify_all();
    job_.reset();
}

void LogLoading::read(Job& job, const std::string& path, double cycleFactor,
                      const std::function<bool()>& ready) {
    const auto work = [&] {
        while (ready && !ready() && !job.cancelled) std::this_thread::sleep_for(pause);
        checkFile(path, limits::datalogByRows);
        std::ifstream in(path, std::ios::binary);
        if (!in) throw FileError(path + ": the file cannot be read.");
        std::error_code unknown;
        const auto bytes = std::filesystem::file_size(path, unknown);
        BlockSink<Job, Block> sink(job, unknown ? 0 : bytes);
        DatalogOptions options;
        options.cycleFactor = cycleFactor;
        options.goOn = [&](std::uint64_t read) {
            if (!unknown && bytes > 0) job.share = static_cast<double>(read) / static_cast<double>(bytes);
            return !job.cancelled;
        };
        DatalogReading reading = readDatalog(in, sink, options);
        sink.give();
        const std::lock_guard lock(job.mutex);
        job.reading = std::move(reading);
    };
    endOnFailure(work, [&](const std::string& why) {
        const std::lock_guard lock(job.mutex);
        job.failure = why;
    });
}

bool LogLoading::take(LogColumns& log) {
    if (!job_) return false;
    bool any = false;
    for (int i = 0; i < blocksAtOnce || !job_->waits; ++i) {
        Block block;
        {
            const std::lock_guard lock(job_->mutex);
            if (job_->blocks.empty()) break;
            block = std::move(job_->blocks.front());
            job_->blocks.pop_front();
        }
        job_->taken.notify_all();
        if (block.head) log.begin(*block.head, block.rowsExpected);
        const std::span<const double> values(block.values);
        for (std::size_t at = 0; at < values.size(); at += block.width)
            log.append(values.subspan(at, block.width));
        any = true;
    }
    return any;
}

bool LogLoading::running() const {
    if (!job_) return false;
    // Asked in this order: what it gave before its end is seen.
    const bool ended = job_->ended;
    const std::lock_guard lock(job_->mutex);
    return !ended || !job_->blocks.empty();
}

double LogLoading::share() const {
    return job_ ? job_->share.load() : 0;
}

std::string LogLoading::failure() const {
    if (!job_) return {};
    const std::lock_guard lock(job_->mutex);
    return job_->failure;
}

DatalogReading LogLoading::reading() const {
    if (!job_) return {};
    const std::lock_guard lock(job_->mutex);
    return job_->reading;
}

}  // namespace zentaq
