// What was in hand before a new calibration was begun, so that it can come back whole.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "app/general_config.h"
#include "config/unit_snapshot.h"

namespace zentaq {

struct GeneralConfig::Former {
    explicit Former(Session& session);
    /// Before the first change of an object.
    void keep(const Unit& unit) { units.try_emplace(unit.kind().slot, unit); }

    FileHeader header;
    std::string currentFile;
    std::optional<std::string> fileHolds;
    int fileFilterIndex;
    bool dataModified;
    bool onTheFly;
    // The on-the-fly state follows the link: one that came or went meanwhile decides anew.
    int linkedKind;
    bool identified;
    std::map<int, UnitSnapshot> units;  ///< by slot
};

/// Changes of a new calibration stay away from the engine, whatever the link says meanwhile.
class QuietUnit {
 public:
    QuietUnit(Unit& unit, bool quiet) : unit_(unit), was_(unit.ONFLY_MODE()) {
        if (quiet) unit_.ONFLY_MODE(false);
    }
    ~QuietUnit() { unit_.ONFLY_MODE(was_); }
    QuietUnit(const QuietUnit&) = delete;
    QuietUnit& operator=(const QuietUnit&) = delete;

 private:
    Unit& unit_;
    bool was_;
};

}  // namespace zentaq
