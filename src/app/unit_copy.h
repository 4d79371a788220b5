// A calibration of the kind in hand in a unit of its own, in surroundings that answer as those of the one in
// hand do: as it was opened, or a copy to work something out on.
#pragma once

#include <optional>

#include "app/session.h"
#include "unit/quiet_host.h"

namespace zentaq {

class UnitCopy {
 public:
    UnitCopy(Session& session, const Calibration& calibration)
        : host_(session), unit_(session.currentUnitObject().kind(), host_) {
        unit_.calibration(calibration);
    }
    Unit& unit() { return unit_; }

 private:
    class Host : public QuietHost {
     public:
        explicit Host(UnitHost& asked) : asked_(asked) {}
        bool fahrenheit() const override { return asked_.fahrenheit(); }
        std::optional<EngineFacts> engine(int kind, int optionType) override {
            return asked_.engine(kind, optionType);
        }
        std::optional<SensorFacts> mapSensor(int id) override { return asked_.mapSensor(id); }
        LinkedState& linkedState(int slot) override { return asked_.linkedState(slot); }

     private:
        UnitHost& asked_;
    };
    Host host_;
    Unit unit_;
};

}  // namespace zentaq
