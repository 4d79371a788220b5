#include "app/pin_manager.h"

#include <filesystem>

#include "app/command_guards.h"
#include "base/errors.h"

namespace zentaq {

PinManager::PinManager(Session& session) : session_(session) {
    session_.sysLog("GPIO Manager App. Loaded.");
}

PinManager::~PinManager() {
    session_.sysLog("GPIO Manager App. Terminated.");
}

std::vector<GpioPinRow> PinManager::pins() {
    return GpioModel(unit()).Show_GPIO();
}

GpioFunctionList PinManager::functions(int pin) {
    return GpioModel(unit()).Show_GPIO_Func(pin);
}

std::vector<GpioParamRow> PinManager::parameters(int pin) {
    GpioModel model(unit());
    return model.Show_GPIO_Param(pin, model.storedCode(pin));
}

void PinManager::choose(int pin, int code) {
    GpioModel model(unit());
    switch (model.choose(pin, code)) {
        case GpioChoice::Changed:
            return changed();
        case GpioChoice::UnitInUse:
            session_.dialogs().show({std::string(gpioUnitInUseTitle), std::string(gpioUnitInUseText),
                                     Icon::Exclamation, Buttons::Ok});
            return;
        case GpioChoice::NotOffered:
            session_.dialogs().show(
                {"General Purpose Input/Output", model.whyNot(pin, code), Icon::Exclamation, Buttons::Ok});
            return;
        case GpioChoice::Unchanged:
            break;
    }
}

bool PinManager::enter(int pin, int row, std::string_view text) {
    const std::vector<GpioParamRow> rows = parameters(pin);
    if (row < 0 || row >= static_cast<int>(rows.size())) return true;
    if (text == rows[static_cast<std::size_t>(row)].value) return true;
    if (session_.messages.tell(GpioModel(unit()).enter(pin, row, text))) return false;
    changed();
    return true;
}

void PinManager::changed() {
    session_.markModified();
    session_.windows().tell(&WindowNews::showUnit);
}

// ---- The unit's own datalog

std::string PinManager::chooseFile() {
    FileRequest request;
    request.title = "Save Internal Datalog file";
    request.folder = session_.platform().userFolder;
    request.filter = "Zentaq4 Datalog(*.dat)|*.dat";
    request.defaultExtension = "dat";
    for (;;) {
        const std::string path = session_.dialogs().saveFile(request);
        std::error_code failed;
        if (path.empty() || !std::filesystem::exists(path, failed)) return path;
        session_.dialogs().show({"File Exists",
                                 "A file with that name already exists.\nPlease enter a different name.",
                                 Icon::Exclamation, Buttons::Ok});
    }
}

void PinManager::retrieveDatalog() {
    const auto linked = [this] { return session_.link.linked().LinkedUnitKind != 0; };
    const auto refused = [&] {
        if (!linked()) session_.inform("No Unit Connected.");
        return !linked() || refusedByTransfer(session_);
    };
    if (refused()) return;
    const std::string path = chooseFile();
    // The box let other commands in, and the unit may have gone.
    if (path.empty() || refused()) return;
    session_.link.AutoPollSuspended(true);
    endOnFailure(
        [&] { session_.link.Program_Unit(TransferMode::Datalog, path); },
        [&](const std::string& why) {
            session_.link.AutoPollSuspended(false);
            session_.dialogs().show({"Retrieve Datalog from unit",
                                     "The datalog cannot be written.\n" + why + "\nChoose another place.",
                                     Icon::Exclamation, Buttons::Ok});
        });
}

}  // namespace zentaq
