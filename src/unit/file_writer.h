// Who does a save. The program's window goes on while the thread of a ThreadedFileWriter waits for the disk;
// what it hands over and gets back is plain data, and nothing is shared meanwhile.
#pragma once

#include <atomic>
#include <optional>
#include <thread>
#include <utility>

#include "unit/file_save.h"

namespace zentaq {

class FileWriter {
 public:
    virtual ~FileWriter() = default;
    /// Begins a save. The outcome of the one before has been fetched.
    virtual void begin(FileSave save) = 0;
    /// How the save ended, once; nothing while it runs.
    virtual std::optional<FileSaved> outcome() = 0;
};

/// For programs without a window: has ended when begin returns.
class InlineFileWriter : public FileWriter {
 public:
    void begin(FileSave save) override { outcome_ = saveFile(save); }
    std::optional<FileSaved> outcome() override { return std::exchange(outcome_, std::nullopt); }

 private:
    std::optional<FileSaved> outcome_;
};

class ThreadedFileWriter : public FileWriter {
 public:
    ThreadedFileWriter() = default;
    /// Waits for a save that runs: it is not cut short.
    ~ThreadedFileWriter() override;
    ThreadedFileWriter(const ThreadedFileWriter&) = delete;
    ThreadedFileWriter& operator=(const ThreadedFileWriter&) = delete;

    void begin(FileSave save) override;
    std::optional<FileSaved> outcome() override;

 private:
    void run();

    FileSave save_;    ///< the thread's while it runs
    FileSaved saved_;  ///< the same
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

}  // namespace zentaq
