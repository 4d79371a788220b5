#include "unit/file_save.h"

#include <filesystem>

#include "base/errors.h"
#include "base/file_reader.h"
#include "unit/file_lock.h"
#include "unit/safe_file.h"

namespace zentaq {

namespace {

/// A file that is gone is no change: the save brings it back.
bool wasChanged(const FileSave& save, FileSaved& saved) {
    std::error_code error;
    if (!save.known || !std::filesystem::exists(save.path, error)) return false;
    saved.holds = knownStart(save.path);
    return saved.holds != *save.known;
}

}  // namespace

std::string knownStart(const std::string& path) {
    return readFileStart(path, knownBytes);
}

FileSaved saveFile(const FileSave& save) {
    FileSaved saved;
    endOnFailure(
        [&] {
            const FileLock lock(save.path);
            if (wasChanged(save, saved)) {
                saved.outcome = FileSaved::Outcome::Changed;
                return;
            }
            writeFileStartSafely(save.path, save.start);
            saved.outcome = FileSaved::Outcome::Done;
            // The surplus of a longer file is not known. A file that cannot be read back is asked about next
            // time.
            saved.holds = save.start;
            skipFailing([&] { saved.holds = knownStart(save.path); });
        },
        [&](const std::string& why) { saved.why = why; });
    return saved;
}

}  // namespace zentaq
