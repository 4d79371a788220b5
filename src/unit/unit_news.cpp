#include "unit/unit_news.h"

#include "base/number_text.h"

namespace zentaq {

std::string textOf(const UnitNews& news) {
    switch (news.event) {
        case UnitEvent::Saved:
            break;
        case UnitEvent::CustomSensor:
            return "Your BIN file appears to use a custom MAP sensor.\n"
                   "Your tune has been preserved, but the senor must be defined to give accurate readings.\n"
                   "You can define the customer sensor under Sensor Parameters->MAP and selecting the Custom "
                   "button.";
        case UnitEvent::Migrated:
            return "Your BIN file has been updated to work with this firmware.\n"
                   "You should do a Save As... and reprogram your unit.";
        case UnitEvent::ReleaseOwed:
            return "The calibration could not be brought to firmware release " + numberText(news.release) +
                   ".\n" + std::string(news.why) +
                   "\nIt stays as it is, and nothing of it is sent to the unit.";
    }
    return {};
}

}  // namespace zentaq
