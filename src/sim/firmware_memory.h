// The firmware in a simulated unit, and the boot loader that takes another one record by record.
// Knows nothing of the line: it is given whole records and tells what becomes of each.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sim/srecord.h"

namespace zentaq::sim {

enum class FirmwareState {
    Running,    ///< the unit works
    Missing,    ///< only the boot loader is left
    Programmed  ///< a new one is in place and starts with the next power cycle
};

/// What is in the unit and outlives its power.
struct InstalledFirmware {
    FirmwareState state = FirmwareState::Running;
    std::string text;  ///< of the firmware that runs or is programmed; empty while it is missing

    bool operator==(const InstalledFirmware&) const = default;
};

class FirmwareMemory {
 public:
    enum class Verdict { Accepted, Refused, Verified };

    /// `prefix` is the start of the firmware texts of the kind, "ZQA"; `text` the firmware that runs.
    FirmwareMemory(std::string_view prefix, std::string_view text);

    const InstalledFirmware& installed() const { return installed_; }
    /// Puts in what was installed before. Ends any programming.
    void install(InstalledFirmware firmware);
    /// Grows with every change of what is installed.
    unsigned revision() const { return revision_; }

    /// Whether lines are expected.
    bool programming() const { return step_ != Step::None; }
    /// Begins with an empty hand: the firmware stays until the first record is accepted.
    void begin();
    /// Takes the next record; nothing stands for a damaged one. Refused and Verified end the programming.
    Verdict take(const std::optional<SRecord>& record);
    /// Ends the programming where it stands.
    void abandon() { step_ = Step::None; }
    /// Ends any programming. Answers whether a new firmware has started.
    bool cyclePower();

 private:
    enum class Step { None, Header, Data, Counted };

    bool takeHeader(const SRecord& record);
    bool takeData(const SRecord& record);
    bool takeCount(const SRecord& record);
    Verdict takeEnd();
    Verdict refuse();
    void change(InstalledFirmware firmware);

    std::string prefix_;
    InstalledFirmware installed_;
    unsigned revision_ = 0;

    Step step_ = Step::None;
    std::string incoming_;
    std::optional<std::int64_t> nextAddress_;
    std::int64_t dataRecords_ = 0;
};

}  // namespace zentaq::sim
