#include "sim/firmware_memory.h"

#include <utility>

#include "sim/firmware_file.h"

namespace zentaq::sim {

FirmwareMemory::FirmwareMemory(std::string_view prefix, std::string_view text)
    : prefix_(prefix), installed_{FirmwareState::Running, std::string(text)} {}

void FirmwareMemory::install(InstalledFirmware firmware) {
    abandon();
    change(std::move(firmware));
}

void FirmwareMemory::begin() {
    step_ = Step::Header;
    incoming_.clear();
    nextAddress_.reset();
    dataRecords_ = 0;
}

FirmwareMemory::Verdict FirmwareMemory::take(const std::optional<SRecord>& record) {
    if (!record) return refuse();
    const bool ends = record->type >= '7';
    if (ends) return takeEnd();
    const bool counts = record->type == '5' || record->type == '6';
    const bool good = step_ == Step::Header ? takeHeader(*record)
                      : counts              ? takeCount(*record)
                                            : takeData(*record);
    return good ? Verdict::Accepted : refuse();
}

bool FirmwareMemory::cyclePower() {
    abandon();
    if (installed_.state != FirmwareState::Programmed) return false;
    change({FirmwareState::Running, installed_.text});
    return true;
}

// The old firmware is erased when the new one has shown that it is for this kind, not before.
bool FirmwareMemory::takeHeader(const SRecord& record) {
    const auto text = firmwareTextOfHeader(record);
    if (!text || !isFirmwareText(*text, prefix_)) return false;
    incoming_ = *text;
    step_ = Step::Data;
    change({FirmwareState::Missing, {}});
    return true;
}

// A line goes on where the one before has ended: one that got lost is noticed at the next.
bool FirmwareMemory::takeData(const SRecord& record) {
    const bool isData = record.type >= '1' && record.type <= '3' && !record.data.empty();
    if (step_ != Step::Data || !isData || record.address != nextAddress_.value_or(record.address))
        return false;
    nextAddress_ = record.address + static_cast<std::int64_t>(record.data.size());
    ++dataRecords_;
    return true;
}

// Nothing but the end comes behind it.
bool FirmwareMemory::takeCount(const SRecord& record) {
    if (step_ != Step::Data || !record.data.empty() || record.address != dataRecords_) return false;
    step_ = Step::Counted;
    return true;
}

FirmwareMemory::Verdict FirmwareMemory::takeEnd() {
    if (!nextAddress_) return refuse();
    abandon();
    change({FirmwareState::Programmed, incoming_});
    return Verdict::Verified;
}

FirmwareMemory::Verdict FirmwareMemory::refuse() {
    abandon();
    return Verdict::Refused;
}

void FirmwareMemory::change(InstalledFirmware firmware) {
    if (firmware == installed_) return;
    installed_ = std::move(firmware);
    ++revision_;
}

}  // namespace zentaq::sim
