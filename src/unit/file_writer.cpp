#include "unit/file_writer.h"

#include <system_error>
#include <utility>

#include "platform/signals_held_off.h"

namespace zentaq {

ThreadedFileWriter::~ThreadedFileWriter() {
    if (thread_.joinable()) thread_.join();
}

void ThreadedFileWriter::begin(FileSave save) {
    if (thread_.joinable()) thread_.join();
    save_ = std::move(save);
    ended_ = false;
    const SignalsHeldOff heldOff;
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        run();  // a system that has no thread left still saves
    }
}

void ThreadedFileWriter::run() {
    saved_ = saveFile(save_);
    ended_ = true;
}

std::optional<FileSaved> ThreadedFileWriter::outcome() {
    if (!ended_.exchange(false)) return std::nullopt;
    if (thread_.joinable()) thread_.join();
    return std::move(saved_);
}

}  // namespace zentaq
