#include "app/table_comparing.h"

#include "app/patience.h"
#include "base/errors.h"
#include "base/file_reader.h"
#include "base/text.h"
#include "config/database_host.h"
#include "unit/file_kind.h"

namespace zentaq {

namespace {

struct ReadFile {
    std::string bytes;
    std::string why;  ///< it could not be read
};

std::optional<ReadFile> bytesOf(Session& session, const std::string& path) {
    const auto read = std::make_shared<ReadFile>();
    const auto fetch = [read, path] {
        endOnFailure([&] { read->bytes = readFile(path, limits::calibration); },
                     [&](const std::string& why) { read->why = why; });
    };
    if (!waitPatiently(session, "Reading " + fileNameOf(path), fetch)) return {};
    return *read;
}

ComparedCalibration compared(Session& session, const std::string& path, const ReadFile& file) {
    if (!file.why.empty()) throw FileError(file.why);
    const CalibrationFileKind kind = kindOfCalibrationStart(file.bytes, path);
    const UnitKind* unitKind = unitKindOfSlot(kind.slot);
    if (unitKind == nullptr) throw FileError(fileNameOf(path) + " is no calibration of a known unit.");
    DatabaseHost host(DatabaseSource([&]() -> const Database& { return session.requireReference(); }));
    Unit unit(*unitKind, host);
    unit.FileOpen(path, file.bytes);
    return {std::make_shared<const Calibration>(unit.calibration()), unitKind, fileNameOf(path)};
}

}  // namespace

std::optional<ComparedCalibration> chooseCompared(Session& session) {
    FileRequest request;
    request.title = "Compare With Calibration File";
    request.folder = session.platform().userFolder;
    request.filter = "Zentaq4 File|*.ZQ4*";
    const std::string path = session.dialogs().openFile(request);
    if (path.empty()) return {};
    const auto file = bytesOf(session, path);
    if (!file) return {};
    std::optional<ComparedCalibration> chosen;
    endOnFailure(
        [&] { chosen = compared(session, path, *file); },
        [&](const std::string& why) {
            session.sysLog("TABLE: Not compared: " + why);
            session.dialogs().show(
                {"Compare", "The table is not compared.\n" + why + "\nChoose another calibration file.",
                 Icon::Exclamation, Buttons::Ok});
        });
    return chosen;
}

std::optional<ComparedCalibration> comparedAsOpened(Session& session) {
    if (!session.opened) return {};
    return ComparedCalibration{session.opened, &session.currentUnitObject().kind(), "as opened"};
}

}  // namespace zentaq
