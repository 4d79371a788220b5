// "Save As" of a datalog: the log in hand for other programs, written beside the program's thread.
#pragma once

#include <memory>
#include <string>

#include "app/side_job.h"
#include "logs/log_export.h"

namespace zentaq {

/// "Comma-separated values (CSV)".
std::string exportCaption(LogExport format);

class LogExporting {
 public:
    LogExporting();
    ~LogExporting();
    LogExporting(const LogExporting&) = delete;
    LogExporting& operator=(const LogExporting&) = delete;

    /// One that runs is given up: nothing of it stays.
    void begin(SideWork* side, const std::string& log, const std::string& target, LogExport format,
               const ExportedLog& about);
    void cancel();
    bool running() const;
    double share() const;
    /// Once it runs no more: why nothing was written; empty where it was.
    std::string failure() const;

 private:
    struct Job;
    std::shared_ptr<Job> job_;
};

}  // namespace zentaq
