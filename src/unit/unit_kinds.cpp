#include "unit/member_index.h"
#include "unit/parameter_tables.h"
#include "unit/unit_kind.h"

namespace zentaq {

const UnitKind& nullKind() {
    static const MemberIndex members(nullParameters());
    static const UnitKind kind = {
        .className = "clsNull", .numGpio = -1, .parameters = nullParameters(), .members = &members};
    return kind;
}

const UnitKind& orbaKind() {
    static const MemberIndex members(orbaParameters());
    static const UnitKind kind = {.slot = 3,
                                  .fileKind = 3,
                                  .className = "clsORBA",
                                  .model = "ORB A",
                                  .extension = ".ZQ4OA",
                                  .fileFilterExtension = "Zentaq4 ORBA File|*.ZQ4OA",
                                  .firmwarePrefix = "ZQA",
                                  .fileFilter = 4,
                                  .defaultRelease = 5,
                                  .defaultBuild = 99,
                                  .fileFloats = 2828,
                                  .orbFileLength = 2327,
                                  .numGpio = 7,
                                  .gpioBase = 336,
                                  .sizes = {.monitorLen = 35,
                                            .gpioLen = 21,
                                            .serialLen = 8,
                                            .binFirmLen = 39,
                                            .miscLen = 2,
                                            .codesLen = 16,
                                            .configLen = 39,
                                            .dataRecordLen = 33,
                                            .datalogMax = 8736,
                                            .wCmdLen = 65},
                                  .hasCalibration = true,
                                  .hasWideMonitor = true,
                                  .parameters = orbaParameters(),
                                  .members = &members};
    return kind;
}

const UnitKind* unitKindOfSlot(int slot) {
    if (slot == 0) return &nullKind();
    if (slot == 3) return &orbaKind();
    return nullptr;
}

}  // namespace zentaq
