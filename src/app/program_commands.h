// What is programmed into the unit on the link: the calibration in hand, or a firmware.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "app/session.h"

namespace zentaq {

class ProgramCommands {
 public:
    explicit ProgramCommands(Session& session) : session_(session) {}

    void programOrb();       ///< mnuProgramORB
    void firmwareUpgrade();  ///< mnuFirmwareUpgrade

 private:
    /// The unit that a command was begun with.
    struct LinkedIdentity {
        int kind = 0;  ///< 0: none
        std::int32_t serial = 0;
    };
    LinkedIdentity linkedIdentity() const;
    bool isStillThere(const LinkedIdentity& unit, const std::string& title);

    void programNow();
    bool broughtToFirmware();
    /// What speaks against programming the calibration in hand, one line each; empty for nothing.
    std::string doubts();
    bool leavesDoubts();
    void startProgramming(const LinkedIdentity& unit);
    /// Tells with the numbered errors why the calibration in hand cannot go to the unit on the link.
    bool mayProgram();
    void sendCalibration();
    void tellNotConverted(const std::string& why);

    void upgradeNow();
    /// The firmware file of the user's choice; empty when there is none.
    std::string chooseFirmware();
    /// The slot of the unit that a firmware will go to; 0 when nobody knows.
    int slotForFirmware(const LinkedIdentity& begunWith) const;
    bool firmwareIsValid(const std::string& path, int slot);
    bool mayUpgrade(const std::string& path, const LinkedIdentity& begunWith);
    /// The text of a whole firmware file; nothing, after a box, of any other.
    std::optional<std::string> readFirmware(const std::string& path);
    void startFirmware(const std::string& path, const std::string& text, const LinkedIdentity& begunWith);

    Session& session_;
};

}  // namespace zentaq
