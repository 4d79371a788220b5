// A host for Unit objects that records what they ask of the program: boxes, log lines, records. Nothing here
// blocks.
#pragma once

#include <map>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "unit/entry_outcome.h"
#include "unit/unit.h"
#include "unit/unit_host.h"

namespace zentaq {

/// What there is to tell of an entry: nothing of one that was taken.
inline Refusal refusalOf(const EntryOutcome& outcome) {
    return outcome ? Refusal{} : outcome.refusal();
}

inline void PrintTo(const Refusal& refusal, std::ostream* out) {
    *out << refusal.warning << " \"" << refusal.text << "\", " << refusal.entry << " -> " << refusal.limits;
}

/// As a file of this firmware code would have brought it, and one of this version of the program.
inline void setFirmwareCode(Unit& unit, float code) {
    Calibration calibration = unit.calibration();
    calibration.facts.firmwareCode = code;
    unit.calibration(calibration);
}
inline void setProgramVersion(Unit& unit, float version) {
    Calibration calibration = unit.calibration();
    calibration.facts.programVersion = version;
    unit.calibration(calibration);
}

class RecordingHost : public UnitHost {
 public:
    // ---- What happened, in order
    std::vector<UnitEvent> events;
    std::vector<std::string> informed;  ///< what a user reads of them in plain boxes
    std::vector<std::string> log;
    std::vector<std::string> lastLineAdditions;
    std::vector<std::string> sent;
    int yields = 0;
    int formChanges = 0;

    // ---- What the program around it is like. A calibration of kind 3 is in hand.
    FileHeader head{.currentUnit = 3, .fileState = ""};
    std::map<std::pair<int, int>, EngineFacts> engines;  ///< by kind and option type
    std::map<int, SensorFacts> sensors;                  ///< by id
    std::string referenceTrouble;  ///< why the reference data cannot be asked; empty where it can
    bool isFahrenheit = false;
    bool firmwareIsKnownFromLink = false;
    int linkedSlot = 3;  ///< of the unit that told it
    bool linkFails = false;
    std::map<int, LinkedState> linkedStates;  ///< by slot
    std::string folder;

    void sysLog(std::string_view text) override { log.emplace_back(text); }
    void addToLastLine(std::string_view text) override { lastLineAdditions.emplace_back(text); }
    void heard(const UnitNews& news) override {
        events.push_back(news.event);
        if (news.event != UnitEvent::Saved) informed.push_back(textOf(news));
    }
    void sendOnFly(std::string_view record) override {
        if (linkFails) throw std::runtime_error("the link is down");
        sent.emplace_back(record);
    }
    std::optional<EngineFacts> engine(int kind, int optionType) override {
        if (!referenceTrouble.empty()) throw Failure(referenceTrouble);
        const auto found = engines.find({kind, optionType});
        return found == engines.end() ? std::optional<EngineFacts>() : found->second;
    }
    std::optional<SensorFacts> mapSensor(int id) override {
        if (!referenceTrouble.empty()) throw Failure(referenceTrouble);
        const auto found = sensors.find(id);
        return found == sensors.end() ? std::optional<SensorFacts>() : found->second;
    }
    bool fahrenheit() const override { return isFahrenheit; }
    bool firmwareKnownFromLink(int slot) const override {
        return firmwareIsKnownFromLink && slot == linkedSlot;
    }
    LinkedState& linkedState(int slot) override { return linkedStates[slot]; }
    FileHeader& header() override { return head; }
    std::string applicationFolder() const override { return folder; }
    void yield() override { ++yields; }
    void formsChanged() override { ++formChanges; }

    /// Forgets what happened; the program around stays as it is.
    void forget() {
        events.clear();
        informed.clear();
        log.clear();
        lastLineAdditions.clear();
        sent.clear();
        yields = 0;
        formChanges = 0;
    }
};

}  // namespace zentaq
