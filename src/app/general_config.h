// frmGeneralConfig without its window: the choices, fields and figures of a new calibration or of the one in
// hand. The window shows what this answers and hands every entry to it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/save_commands.h"
#include "app/session.h"
#include "base/field.h"
#include "config/injector_sizing.h"
#include "config/model_list.h"
#include "config/new_calibration.h"

namespace zentaq {

struct GeneralRow;

class GeneralConfig {
 public:
    explicit GeneralConfig(Session& session);
    ~GeneralConfig();

    /// The window opens: for a new calibration while `FileState` is "NEW", else for the one in hand.
    void load();
    /// The window closes. A new calibration that was not saved is dropped, and what was in hand before is
    /// back as it was.
    void unload();
    bool creating() const;  ///< `FileState` is "NEW"

    /// Control names in the order of the form.
    static std::span<const std::string_view> controls();
    /// As it is to be shown now. Throws NoSuchMember for a name that is none of controls().
    Field field(std::string_view control);

    /// Leaving a text box with this text, or choosing this entry of a list: checks, stores, recalculates.
    /// False: refused, the user has been told, and field().text holds what returns to the box.
    /// A text that field() has shown is taken without a check or a change.
    bool enter(std::string_view control, std::string_view text);
    /// A click on an option or a check box, which enter() takes as "1" or "0".
    void click(std::string_view control, bool on);

    /// "Zentaq Calculated TOG"; empty while nothing can be computed.
    std::string lblUAP() const { return lblUAP_; }
    const std::optional<InjectorSizing>& sizing() const { return sizing_; }

    /// Key "Save" of the form's toolbar. `then` is told whether the calibration is a file and the form has
    /// done its work: when it is on the disk, or at once when there is nothing to write. Until then the form
    /// takes nothing.
    using Saved = std::function<void(bool saved)>;
    void save(const Saved& then);
    /// The same for callers whose saves are done at once: answers what `then` is told.
    bool save();
    /// Something was entered that no file holds yet.
    bool modified() const;

 private:
    Unit& unit() { return session_.currentUnitObject(); }
    bool inHand() const { return model_ != nullptr; }
    const ModelEntry* modelInHand();
    std::vector<const ModelEntry*> modelChoices();
    std::vector<EngineRow> engines();
    std::vector<MapSensorRow> sensors();
    std::string textOf(const GeneralRow& row);
    std::vector<std::string> choicesOf(const GeneralRow& row);
    bool enabled(const GeneralRow& row);
    std::string limitsOf(const GeneralRow& row);

    bool choose(const GeneralRow& row, std::string_view text);
    bool chooseModel(std::string_view text);
    bool chooseEngineByName(std::string_view text);
    bool chooseSensorByName(std::string_view text);
    bool chooseCamshaft(const GeneralRow& row, std::string_view text);
    bool chooseSize(const GeneralRow& row, std::string_view text);
    bool enterText(const GeneralRow& row, std::string_view text);
    bool refuseChoice();
    bool write(std::string_view member, double value);
    void noteChange(const GeneralRow& row);
    void noteRefused(const RefusedMembers& refused);

    void begin(const ModelEntry& model);
    void keepFormer(const Unit& one);
    void takeFirmware(Unit& chosen);
    float atFirst(std::string_view member);
    void putFigures(const std::string& engine, int sensor);
    void putBack();
    void showComputed();
    void offerPulse();
    void computeFlow();
    void computePulse();

    void saveNew(const Saved& then);
    void saveInHand(const Saved& then);
    void storeNew(const ChosenFile& file, const Calibration& entered, const Saved& then);
    void beginSavingNew(const ChosenFile& file, const Calibration& entered, const Saved& then);
    bool fillWithDefaults();
    void tellNotSaved(const std::string& why);
    void finishSaving(const ChosenFile& file, const FileSaved& saved);
    void storeConfig();
    void tell(const std::string& title, const std::string& text);

    Session& session_;
    // What was in hand before a new calibration was begun, and comes back unless that one is stored.
    std::optional<FileInHand> formerFile_;           ///< empty while none is being made
    std::map<int, Calibration> formerCalibrations_;  ///< of every kind that was tried, by slot
    std::optional<InjectorSizing> sizing_;
    std::string lblUAP_;
    const ModelEntry* model_ = nullptr;  ///< nullptr while none is chosen
    bool open_ = false;
    bool entered_ = false;
    std::map<std::string, float, std::less<>>
        figures_;   ///< what was entered into a new calibration, by member
    int rows_ = 0;  ///< of the tables of a new calibration
    int columns_ = 0;
    std::string formerForm_;
    /// Until the form is closed: asked by what comes behind a box, and when a save ends.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace zentaq
