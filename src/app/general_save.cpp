// The key "Save" of frmGeneralConfig: a new calibration gets its default values and its file; one in hand is
// stored where it is.

#include "app/general_config.h"
#include "app/save_commands.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "config/basic_figures.h"

namespace zentaq {

bool GeneralConfig::save() {
    const auto stored = std::make_shared<bool>(false);  // outlives this call where the save has to wait
    save([stored](bool saved) { *stored = saved; });
    return *stored;
}

void GeneralConfig::save(const Saved& then) {
    const auto again = [this, alive = std::weak_ptr<bool>(alive_), then] {
        if (!alive.expired()) save(then);
    };
    if (session_.saving.putsOff("Save of the general parameters", again)) return;
    if (!inHand()) {
        session_.messages.Display_Error(codes::NoModel);
        return then(false);
    }
    if (creating() && !session_.reference()) {
        tell("Reference Database", "The reference database could not be opened:\n" + session_.DatabaseFile +
                                       "\nA new calibration takes its engine, its sensor and its default "
                                       "values from there.\nInstall the program again to get it back.");
        return then(false);
    }
    if (unit().get("MAP_ID") == 0) {
        session_.messages.Display_Error(codes::NoSensor);
        return then(false);
    }
    creating() ? saveNew(then) : saveInHand(then);
}

void GeneralConfig::tell(const std::string& title, const std::string& text) {
    session_.dialogs().show({title, text, Icon::Critical, Buttons::Ok});
}

// ---- A new one

void GeneralConfig::saveNew(const Saved& then) {
    // A calibration without cylinders and trigger would run no engine.
    if (unit().get("Option_Type") == 0) {
        tell("Engine Type", "No engine selected.\nPlease choose the engine from the list.");
        return then(false);
    }
    const std::weak_ptr<bool> alive = alive_;
    const auto chosen = askCalibrationFile(session_, {}, session_.FileFilterIndex);
    // A form that was closed meanwhile has given the former calibration back.
    if (!chosen || alive.expired()) return then(false);
    // What has been entered so far is what a failure leaves in the form.
    const Calibration entered = unit().calibration();
    if (!fillWithDefaults()) {
        unit().calibration(entered);
        return then(false);
    }
    storeNew(*chosen, entered, then);
}

void GeneralConfig::storeNew(const ChosenFile& file, const Calibration& entered, const Saved& then) {
    const bool begun = endOnFailure([&] { beginSavingNew(file, entered, then); },
                                    [&](const std::string& why) {
                                        unit().calibration(entered);
                                        tellNotSaved(why);
                                    });
    if (!begun) then(false);
}

void GeneralConfig::beginSavingNew(const ChosenFile& file, const Calibration& entered, const Saved& then) {
    unit().BinFile(file.path);
    const Unit::FileContent content = unit().fileContent();
    const auto ended = [this, alive = std::weak_ptr<bool>(alive_), file, entered, content,
                        then](const FileSaved& saved) {
        if (alive.expired()) return;
        if (saved.outcome != FileSaved::Outcome::Done) {
            unit().calibration(entered);
            tellNotSaved(saved.why);
            return then(false);
        }
        unit().noteSaved(content);
        session_.messages.Display_Message(codes::DataSaved);
        if (alive.expired()) return;
        finishSaving(file, saved);
        then(true);
    };
    session_.saving.begin({file.path, content.bytes, std::nullopt}, ended);
}

bool GeneralConfig::fillWithDefaults() {
    return endOnFailure(
        [&] {
            Unit& made = unit();
            EngineFigures figures = figuresOf(made);
            if (made.kind().cells.hasAxisWords) {
                figures.rows = rows_;
                figures.columns = columns_;
            }
            const float turnOn = made.get("MT");
            const float closed = made.get("TPS_FCV");
            noteRefused(loadDefaults(made, session_.requireReference(), figures));
            made.store("MT", turnOn);
            made.store("TPS_FCV", closed);
        },
        [&](const std::string& why) {
            session_.addToLastLine("FAIL!");
            session_.sysLog("Default values not loaded: " + why);
            tell("Default Values", "The default values could not be loaded.\n" + why +
                                       "\nNothing was stored; what you have entered is still in the form.");
        });
}

void GeneralConfig::tellNotSaved(const std::string& why) {
    session_.sysLog("Calibration file not saved: " + why);
    tell("File Save Error", "The calibration could not be saved.\n" + why +
                                "\nWhat you have entered is still in the form: save again and choose another "
                                "folder.");
}

void GeneralConfig::finishSaving(const ChosenFile& file, const FileSaved& saved) {
    formerFile_.reset();  // the new one has taken its place
    formerCalibrations_.clear();
    session_.paintMemory.erase();
    session_.CurrentFile = file.path;
    session_.fileHolds = saved.holds;
    session_.noteOpened();
    session_.header().fileState = "OLD";
    session_.DataModified = false;
    entered_ = false;
    session_.fileNamed(file.path, file.sample);
    session_.FileFilterIndex = unit().kind().fileFilter;
    storeConfig();
    showComputed();
    session_.initializeOnFly(session_.link.unitAgrees());
    session_.windows().tell(&WindowNews::setupNodes);
}

// ---- The one in hand

void GeneralConfig::saveInHand(const Saved& then) {
    // The main window's command knows the files of the older generation, and tells what went wrong.
    SaveCommands(session_).saveInHand([this, alive = std::weak_ptr<bool>(alive_), then](bool saved) {
        if (alive.expired()) return;
        if (saved) {
            entered_ = false;
            storeConfig();
        }
        then(saved);
    });
}

void GeneralConfig::storeConfig() {
    endOnFailure(
        [&] {
            session_.requireReference().storeConfig(
                {session_.CurrentFile, session_.slotInHand(), std::string(model_->name)});
        },
        [&](const std::string& why) { session_.sysLog("Model of the file not remembered: " + why); });
}

}  // namespace zentaq
