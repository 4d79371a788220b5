#include "unit/image_layout.h"
#include "unit/member_index.h"
#include "unit/parameter_tables.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

/// What the kinds other than the ORB A have in common. The lengths of log records and wide frames differ.
constexpr SizeConstants sizesOf(int dataRecordLen, int datalogMax, int wCmdLen) {
    return {.monitorLen = 28,
            .gpioLen = 21,
            .serialLen = 8,
            .binFirmLen = 38,
            .miscLen = 2,
            .codesLen = 16,
            .configLen = 39,
            .dataRecordLen = dataRecordLen,
            .datalogMax = datalogMax,
            .wCmdLen = wCmdLen};
}

constexpr CellMap orbcCells = {.userTrim = 2311, .userFuelTrim = 2319, .notes = 2326};

constexpr CellMap orbdCells = {
    .outputTable = {1424, 1680}, .userTrim = 2310, .userFuelTrim = 2318, .notes = 2325};

constexpr CellMap pzk2Cells = {.mapBar = 84,
                               .mapScaler = 86,
                               .mapOffset = 87,
                               .mapId = 88,
                               .mapUnits = 89,
                               .baroTrim = CellMap::none,
                               .scale1 = CellMap::none,
                               .injectorOn = CellMap::none,
                               .minDuty = CellMap::none,
                               .maxDuty = CellMap::none,
                               .fuelTrimSent = CellMap::none,
                               .trimSent = 150,
                               .name = 166,
                               .outputTable = {512, 768},
                               .optionType = 1035,
                               .mapActive = 1054,
                               .marginToggle = 1055,
                               .marginValue = 1056,
                               .ratio = 1057,
                               .hasAxisWords = false,
                               .userTrim = 1185,
                               .userFuelTrim = CellMap::none,
                               .notes = 1200};

UnitKind orbdInSlot(int slot) {
    static const MemberIndex members(orbdParameters());
    return {.slot = slot,
            .fileKind = 7,
            .className = "clsORBd",
            .model = "ORB D",
            .extension = ".ZQ4OD",
            .fileFilterExtension = "Zentaq4 ORBd File|*.ZQ4OD",
            .firmwarePrefix = "ZQD",
            .fileFilter = 5,
            .defaultRelease = 5,
            .defaultBuild = 99,
            .fileFloats = 2826,
            .orbFileLength = 2325,
            .numGpio = 6,
            .gpioBase = 336,
            .sizes = sizesOf(34, 2184, 62),
            .hasCalibration = true,
            .hasWideMonitor = true,
            .pic18 = Trait::Yes,
            .gpioRequest = Trait::Written,
            .cells = orbdCells,
            .image = &orbImage(),
            .parameters = orbdParameters(),
            .members = &members};
}

}  // namespace

const UnitKind& nullKind() {
    static const MemberIndex members(nullParameters());
    static const UnitKind kind = {.className = "clsNull",
                                  .numGpio = -1,
                                  .cells = {.hasAxisWords = false},
                                  .parameters = nullParameters(),
                                  .members = &members};
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
                                  .batteryVoltsPerCount = batteryinput::voltsPerCountOrbA,
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
                                  .image = &orbImage(),
                                  .parameters = orbaParameters(),
                                  .members = &members};
    return kind;
}

const UnitKind& orbLiteKind() {
    static const MemberIndex members(orbLiteParameters());
    static const UnitKind kind = {.slot = 4,
                                  .fileKind = 4,
                                  .className = "clsORBALite",
                                  .model = "ORB L",
                                  .extension = ".ZQ4OL",
                                  .fileFilterExtension = "Zentaq4 ORBL File|*.ZQ4OL",
                                  .firmwarePrefix = "ZQL",
                                  .fileFilter = 2,
                                  .defaultRelease = 7,
                                  .defaultBuild = 99,
                                  .newestRelease = 7,
                                  .fileFloats = 2828,
                                  .orbFileLength = 2327,
                                  .numGpio = 8,
                                  .gpioBase = 336,
                                  .sizes = sizesOf(36, 2048, 66),
                                  .hasCalibration = true,
                                  .hasWideMonitor = true,
                                  .pic18 = Trait::Written,
                                  .gpioRequest = Trait::Written,
                                  .image = &orbImage(),
                                  .parameters = orbLiteParameters(),
                                  .members = &members};
    return kind;
}

const UnitKind& pzk2Kind() {
    static const MemberIndex members(pzk2Parameters());
    constexpr int noLog = 0;
    static const UnitKind kind = {.slot = 5,
                                  .fileKind = 5,
                                  .className = "clsPZK2",
                                  .model = "PZK-2",
                                  .extension = ".ZQ4PZK",
                                  .fileFilterExtension = "Zentaq4 PZK-2 File|*.ZQ4PZK",
                                  .firmwarePrefix = "ZPK",
                                  .fileFilter = 3,
                                  .defaultRelease = 5,
                                  .defaultBuild = 99,
                                  .fileFloats = 1701,
                                  .orbFileLength = 1200,
                                  .numGpio = 3,
                                  .gpioBase = 94,
                                  .sizes = sizesOf(34, noLog, 23),
                                  .hasCalibration = true,
                                  .pic18 = Trait::Written,
                                  .gpioRequest = Trait::Yes,
                                  .cells = pzk2Cells,
                                  .image = &pzk2Image(),
                                  .parameters = pzk2Parameters(),
                                  .members = &members};
    return kind;
}

const UnitKind& orbcKind() {
    static const MemberIndex members(orbcParameters());
    static const UnitKind kind = {.slot = 6,
                                  .fileKind = 6,
                                  .className = "clsORBC",
                                  .model = "ORB C",
                                  .extension = ".ZQ4OC",
                                  .fileFilterExtension = "Zentaq4 ORBc File|*.ZQ4OC",
                                  .firmwarePrefix = "ZQC",
                                  .fileFilter = 6,
                                  .defaultRelease = 3,
                                  .defaultBuild = 99,
                                  .fileFloats = 2827,
                                  .orbFileLength = 2326,
                                  .numGpio = 12,
                                  .gpioBase = 334,
                                  .sizes = sizesOf(40, 1820, 70),
                                  .hasCalibration = true,
                                  .hasWideMonitor = true,
                                  .pic18 = Trait::Yes,
                                  .gpioRequest = Trait::Written,
                                  .cells = orbcCells,
                                  .image = &orbImage(),
                                  .parameters = orbcParameters(),
                                  .members = &members};
    return kind;
}

const UnitKind& orbdKind() {
    static const UnitKind kind = orbdInSlot(7);
    return kind;
}

const UnitKind& orbd6Kind() {
    static const UnitKind kind = orbdInSlot(8);
    return kind;
}

const UnitKind* unitKindOfSlot(int slot) {
    using Describe = const UnitKind& (*)();
    static constexpr std::array<Describe, 9> slots = {nullKind, nullptr,  nullptr,  orbaKind, orbLiteKind,
                                                      pzk2Kind, orbcKind, orbdKind, orbd6Kind};
    if (slot < 0 || slot >= static_cast<int>(slots.size())) return nullptr;
    const Describe describe = slots[static_cast<std::size_t>(slot)];
    return describe == nullptr ? nullptr : &describe();
}

bool shareFiles(const UnitKind& one, const UnitKind& other) {
    return one.hasCalibration && one.className == other.className;
}

const UnitKind* unitKindOfFile(float fileKind) {
    // Slot 0 is no kind of file. A fraction is none either.
    for (const UnitKind* kind :
         {&orbaKind(), &orbLiteKind(), &pzk2Kind(), &orbcKind(), &orbdKind(), &orbd6Kind()}) {
        if (fileKind == static_cast<float>(kind->slot)) return kind;
    }
    return nullptr;
}

}  // namespace zentaq
