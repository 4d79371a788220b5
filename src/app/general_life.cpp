// The life of frmGeneralConfig: it opens, begins a new calibration beside the one in hand, and gives that one
// back where the new one is not stored.
#include <algorithm>
#include <optional>
#include <utility>

#include "app/general_config.h"
#include "app/general_fields.h"
#include "base/errors.h"
#include "base/rounding.h"
#include "config/basic_figures.h"

namespace zentaq {

namespace {

/// Members of the form that the sets of default values would write over: what the form says goes first.
constexpr std::string_view fromDefaults[] = {"MT", "TPS_FCV"};

std::string titleOf(const std::string& file) {
    return file.empty() ? std::string() : "Current Calibration File: " + file;
}

}  // namespace

void GeneralConfig::load() {
    if (formerFile_) return;  // a new calibration is being made
    if (!open_) {
        open_ = true;
        alive_ = std::make_shared<bool>(true);
        session_.sysLog("General Config App. Initialized.");
        formerForm_ = session_.messages.ActiveFormName;
        session_.messages.ActiveFormName = window::generalConfig;
    }
    entered_ = false;
    figures_.clear();
    rows_ = columns_ = mostCells;
    model_ = creating() ? nullptr : modelInHand();
    showComputed();
}

void GeneralConfig::unload() {
    if (!open_) return;
    open_ = false;
    alive_.reset();
    if (creating()) putBack();
    entered_ = false;
    model_ = nullptr;
    session_.sysLog("General Config App. Terminated.");
    // Another form may have taken its place by now.
    if (session_.messages.ActiveFormName == window::generalConfig)
        session_.messages.ActiveFormName = formerForm_;
}

// ---- A new calibration

void GeneralConfig::begin(const ModelEntry& model) {
    const int slot = slotOfModel(model, session_.link.linked().SerialNumber);
    const bool otherKind = !inHand() || session_.slotInHand() != slot;
    std::string engine;
    int sensor = 0;
    if (inHand()) {
        skipFailing([&] { engine = textOf(generalRow("cmbEngine")); });
        skipFailing([&] { sensor = toInt16(static_cast<double>(unit().get("MAP_ID"))); });
    }
    if (!formerFile_) {
        formerFile_ = session_.fileInHand();
        formerFile_->fileHeader.fileState = session_.slotInHand() == 0 ? "" : "OLD";
        if (session_.slotInHand() != 0) keepFormer(unit());
        session_.initializeOnFly(false);
        session_.windows().removeForms();
    }
    Unit& chosen = session_.Units(slot);
    keepFormer(chosen);
    takeFirmware(chosen);
    // The unit on the link has told these; a calibration that begins takes nothing from them.
    const std::string firmWare = chosen.FirmWare();
    const std::string serial = chosen.Serial();
    startNewCalibration(chosen);
    chosen.FirmWare(firmWare);
    chosen.Serial(serial);
    chosen.ONFLY_MODE(false);

    model_ = &model;
    session_.CurrentFile.clear();
    session_.fileIsSample = false;
    session_.fileHolds.reset();
    session_.DataModified = false;
    session_.FileFilterIndex = chosen.kind().fileFilter;
    putFigures(engine, sensor);
    entered_ = true;
    if (!otherKind) return;
    session_.windows().tell(&WindowNews::titleChanged, "");
    session_.windows().tell(&WindowNews::setupNodes);
}

/// Before the first change of an object.
void GeneralConfig::keepFormer(const Unit& one) {
    formerCalibrations_.try_emplace(one.kind().slot, one.calibration());
}

void GeneralConfig::takeFirmware(Unit& chosen) {
    const int slot = chosen.kind().slot;
    if (chosen.FW_Release() != 0 || session_.expectedFirmware(slot).release == 0) return;
    chosen.FW_Release(session_.expectedFirmware(slot).release);
    chosen.FW_Build(session_.expectedFirmware(slot).build);
}

/// What the default values of the unit kind say; plain figures without a database.
float GeneralConfig::atFirst(std::string_view member) {
    EngineFigures figures;
    skipFailing([&] { figures = startingFigures(session_.requireReference(), unit().kind()); });
    if (member == "REV_Limiter") return figures.revLimit;
    if (member == "scale1") return figures.fullScalePulse;
    if (member == "INJ_On") return figures.openingTime;
    if (member == "INJ_Number") return figures.injectors;
    if (std::ranges::find(fromDefaults, member) == std::end(fromDefaults)) return 0;
    const std::string plain(member);
    const std::string own = plain + std::string(unit().kind().defaultsSuffix);
    float value = 0;
    skipFailing([&] { value = session_.requireReference().defaults(plain).at(0); });
    skipFailing([&] { value = session_.requireReference().defaults(own).at(0); });
    return value;
}

/// Another model keeps what the user has entered for the former one.
void GeneralConfig::putFigures(const std::string& engine, int sensor) {
    Unit& chosen = unit();
    if (sensor != 0) {
        skipFailing([&] {
            const auto row = session_.requireReference().mapSensor(sensor);
            if (row) noteRefused(chooseSensor(chosen, *row));
        });
    }
    for (const GeneralRow& row : generalRows()) {
        // The sensor tells its rating, or else it reads as the smallest.
        if (row.member.empty() || row.member == "MAP_BAR" || !chosen.has(row.member)) continue;
        chosen.store(row.member, atFirst(row.member));
    }
    const auto rows = engines();
    const auto found = std::ranges::find(rows, engine, &EngineRow::displayValue);
    if (found != rows.end()) {
        noteRefused(chooseEngine(chosen, *found));
        chosen.store("INJ_Number", static_cast<float>(usualInjectors(*found)));
    }
    for (const auto& [member, value] : figures_) chosen.store(member, value);
    chosen.Initialize_Trims();
    offerPulse();
    showComputed();
    if (!figures_.contains("INJ_FlowRate")) computeFlow();
}

void GeneralConfig::putBack() {
    if (!formerFile_) {
        session_.header().fileState = session_.slotInHand() == 0 ? "" : "OLD";
        return;
    }
    const LinkedUnit& linked = session_.link.linked();
    session_.windows().removeForms();
    session_.fileInHand() = *std::exchange(formerFile_, std::nullopt);
    for (const auto& [slot, calibration] : std::exchange(formerCalibrations_, {})) {
        Unit& one = session_.Units(slot);
        const int release = one.FW_Release();
        const int build = one.FW_Build();
        one.calibration(calibration);
        // A unit that told its firmware meanwhile has the calibration moved to it now.
        if (!linked.tells(slot)) continue;
        one.FW_Build(build);
        one.FW_Release(release);
    }
    session_.followLinkedKind();
    session_.initializeOnFly(session_.link.unitAgrees());
    session_.windows().tell(&WindowNews::titleChanged, titleOf(session_.CurrentFile));
    session_.windows().tell(&WindowNews::setupNodes);
    if (session_.slotInHand() == 0) session_.windows().tell(&WindowNews::showStartTab);
}

}  // namespace zentaq
