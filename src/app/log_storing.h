// A datalog on its way from its file into the scratch table of the reference database, beside the program's
// thread, row by row with a line of the log for each.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/side_job.h"

namespace zentaq {

class LogStoring {
 public:
    LogStoring();
    ~LogStoring();
    LogStoring(const LogStoring&) = delete;
    LogStoring& operator=(const LogStoring&) = delete;

    /// One that runs is given up; the table is emptied first.
    void begin(SideWork* side, const std::string& path, const std::string& database, double cycleFactor);
    void cancel();
    bool running() const;
    double share() const;
    /// "Adding RPM: 1200 on line 4", of whole blocks of rows that are in the table by now.
    std::vector<std::string> takeLines();
    /// Why the rows are not in the table; empty where they are.
    std::string failure() const;

 private:
    struct Job;
    std::shared_ptr<Job> job_;
};

}  // namespace zentaq
