// A datalog on its way from its file into memory, beside the program's thread: what has been read by now can
// be shown while the rest comes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/side_job.h"
#include "live/datalog_reader.h"
#include "logs/log_columns.h"

namespace zentaq {

class LogLoading {
 public:
    LogLoading();
    ~LogLoading();
    LogLoading(const LogLoading&) = delete;
    LogLoading& operator=(const LogLoading&) = delete;

    /// One that runs is given up. `ready` is asked beside the thread, until the file may be read: it may
    /// still be being written.
    void begin(SideWork* side, const std::string& path, double cycleFactor, std::function<bool()> ready = {});
    void cancel();

    /// Takes what has been read by now, some blocks at most. Whether anything was taken.
    bool take(LogColumns& log);
    /// The rest of it is still being read, or to be taken.
    bool running() const;
    /// Of the file, from 0 to 1.
    double share() const;

    // ---- Once it runs no more
    /// Why nothing could be read, or no more; empty for a log that was read.
    std::string failure() const;
    DatalogReading reading() const;

 private:
    struct Block;
    struct Job;
    static void read(Job& job, const std::string& path, double cycleFactor,
                     const std::function<bool()>& ready);

    std::shared_ptr<Job> job_;
};

}  // namespace zentaq
