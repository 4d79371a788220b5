#include "config/unit_snapshot.h"

#include <utility>

namespace zentaq {

UnitSnapshot::UnitSnapshot(const Unit& unit)
    : binFile_(unit.BinFile()),
      firmWare_(unit.FirmWare()),
      serial_(unit.Serial()),
      release_(unit.FW_Release()),
      build_(unit.FW_Build()),
      defaultSplit_(unit.DefaultSplit()),
      teeth_(unit.teeth()),
      onTheFly_(unit.ONFLY_MODE()) {
    for (int i = 0; i < Unit::cellCount; ++i) cells_[static_cast<std::size_t>(i)] = unit.DirectIndex(i);
    for (int i = 0; i < 3; ++i) control_[static_cast<std::size_t>(i)] = unit.controlByte(i);
}

void UnitSnapshot::restore(Unit& unit) const {
    unit.ONFLY_MODE(false);
    // A release that moves takes the cells of the calibration in hand with it; these are whole as they are.
    float& inHand = unit.host().header().currentUnit;
    const float current = std::exchange(inHand, 0.0F);
    unit.FW_Release(release_);
    inHand = current;
    unit.FW_Build(build_);
    unit.BinFile(binFile_);  // writes the name into the cells, so before them
    unit.FirmWare(firmWare_);
    unit.Serial(serial_);
    unit.DefaultSplit(defaultSplit_);
    unit.teeth(teeth_);
    for (int i = 0; i < Unit::cellCount; ++i) unit.AssignDirectIndex(cells_[static_cast<std::size_t>(i)], i);
    for (int i = 0; i < 3; ++i) unit.controlByte(i, control_[static_cast<std::size_t>(i)]);
    unit.ONFLY_MODE(onTheFly_);
}

}  // namespace zentaq
