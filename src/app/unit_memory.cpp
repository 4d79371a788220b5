#include "app/unit_memory.h"

#include <algorithm>
#include <utility>

namespace zentaq {

void UnitMemory::unitIs(std::int32_t serial, std::string name) {
    if (serial != serial_) forgetChanges();
    serial_ = serial;
    name_ = std::move(name);
    lost_ = false;
}

void UnitMemory::heard(const LinkNews& news) {
    switch (news.event) {
        case LinkEvent::LinkLost:
            lost_ = serial_ != 0;
            asked_.clear();  // nobody will answer them
            return;
        case LinkEvent::PortNamed:
        case LinkEvent::AdapterBack:
            adapterAway_ = false;
            return;
        case LinkEvent::AdapterAway:
            adapterAway_ = true;
            return;
        case LinkEvent::ChangesSaved:
            return stored();
        default:
            return;
    }
}

// A whole program takes the place of all changes, a new firmware knows none.
void UnitMemory::transferEnded(const TransferEnd& end) {
    if (end.mode != TransferMode::Datalog && end.succeeded()) forgetChanges();
}

void UnitMemory::stored() {
    // One that nobody counted came from elsewhere, and stored what the unit had by then.
    if (asked_.empty()) return;
    stored_ = std::max(stored_, asked_.front());
    asked_.pop_front();
}

void UnitMemory::forgetChanges() {
    stored_ = sent_;
    asked_.clear();
}

}  // namespace zentaq
