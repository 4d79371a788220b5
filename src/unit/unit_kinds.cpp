#include <algorithm>

#include "unit/gpio_pins.h"
#include "unit/image_layout.h"
#include "unit/member_index.h"
#include "unit/parameter_tables.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

// clang-format off
/// The lengths of log records and wide frames differ; the ORB A has a narrow frame and a firmware reply of its
/// own length.
constexpr SizeConstants sizesOf(int dataRecordLen, int datalogMax, int wCmdLen, int monitorLen = 28,
                                int binFirmLen = 38) {
    return {.monitorLen = monitorLen, .gpioLen = 21, .serialLen = 8, .binFirmLen = binFirmLen, .miscLen = 2,
            .codesLen = 16, .configLen = 39, .dataRecordLen = dataRecordLen, .datalogMax = datalogMax, .wCmdLen = wCmdLen};
}

constexpr CellMap orbcCells = {.userTrim = 2311, .userFuelTrim = 2319, .notes = 2326};

constexpr CellMap orbdCells = {.outputTable = {1424, 1680}, .userTrim = 2310, .userFuelTrim = 2318, .notes = 2325};

constexpr CellMap pzk2Cells = {.mapBar = 84, .mapScaler = 86, .mapOffset = 87, .mapId = 88, .mapUnits = 89,
    .baroTrim = CellMap::none, .scale1 = CellMap::none, .injectorOn = CellMap::none, .minDuty = CellMap::none,
    .maxDuty = CellMap::none, .fuelTrimSent = CellMap::none, .trimSent = 150, .name = 166,
    .outputTable = {512, 768}, .optionType = 1035, .mapActive = 1054, .marginToggle = 1055,
    .marginValue = 1056, .ratio = 1057, .hasAxisWords = false, .userTrim = 1185,
    .userFuelTrim = CellMap::none, .notes = 1200};

// No two kinds share a number.
constexpr SerialRange orbaSerials[] = {{10, 9'999}, {200'000, 209'999}};
constexpr SerialRange orbLiteSerials[] = {{300'000, 309'999}};
constexpr SerialRange pzk2Serials[] = {{500'000, 509'999}};
constexpr SerialRange orbcSerials[] = {{350'000, 359'999}};
constexpr SerialRange orbdSerials[] = {{700'000, 709'999}};
constexpr SerialRange orbd6Serials[] = {{750'000, 759'999}};

constexpr UnitModel orbaModels[] = {
    {1, "ORB A Standard", 1, "A Std"}, {2, "ORB A 6/12", 2, "A 6/12"}, {3, "ORB AR", 3, "A r"}};
constexpr UnitModel orbLiteModels[] = {{4, "ORB L"}};
constexpr UnitModel pzk2Models[] = {{5, "PZK-2"}};
constexpr UnitModel orbdModels[] = {{6, "ORB D"}};
constexpr UnitModel orbcModels[] = {{7, "ORB C"}};

constexpr std::uint32_t orbaOldFiles[] = {8704, 8720};
constexpr std::uint32_t orbLiteOldFiles[] = {9312};
constexpr std::uint32_t pzk2OldFiles[] = {4804};

UnitKind orba() {
    static const MemberIndex members(orbaParameters());
    return {.slot = 3, .fileKind = 3, .className = "clsORBA", .model = "ORB A", .name = "ORB A", .label = "A",
            .extension = ".ZQ4OA", .fileFilterExtension = "Zentaq4 ORBA File|*.ZQ4OA", .fileFilter = 4,
            .serials = orbaSerials, .models = orbaModels, .hasCalibration = true,
            .firmwarePrefix = "ZQA", .expected = {5, 99}, .wideFrom = 5,
            .configurationFrom = 5, .resizesFrom = 5,
            .fileFloats = 2828, .orbFileLength = 2327, .unnamedFileBytes = 8718, .oldFileBytes = orbaOldFiles,
            .image = &orbImage(), .parameters = orbaParameters(), .members = &members,
            .numGpio = 7, .gpioBase = 336, .pins = &orbaPins, .coilOutputs = {8, 12},
            .sizes = sizesOf(33, 8736, 65, 35, 39),
            .narrowFrame = NarrowFrame::OrbA, .narrowFrameHasSum = false,
            .batteryVoltsPerCount = batteryinput::voltsPerCountOrbA, .coarsePulses = true,
            .analogCodes = true, .answersOldIdentify = true, .bareProgramLines = true,
            .tree = TreeShape::Full, .engines = 3, .displayedEngines = 3};
}

UnitKind orbLite() {
    static const MemberIndex members(orbLiteParameters());
    return {.slot = 4, .fileKind = 4, .className = "clsORBALite", .model = "ORB L", .name = "ORB L",
            .label = "L", .extension = ".ZQ4OL", .fileFilterExtension = "Zentaq4 ORBL File|*.ZQ4OL",
            .fileFilter = 2,
            .serials = orbLiteSerials, .models = orbLiteModels, .hasCalibration = true,
            .firmwarePrefix = "ZQL", .expected = {7, 99}, .newestRelease = 7,
            .wideFrom = 7, .configurationFrom = 7, .resizesFrom = 7, .pic18From = FirmwareVersion{7, 0},
            .pic18 = Trait::Written, .gpioRequest = Trait::Written,
            .fileFloats = 2828, .orbFileLength = 2327, .unnamedFileBytes = 9324,
            .oldFileBytes = orbLiteOldFiles, .image = &orbImage(), .parameters = orbLiteParameters(),
            .members = &members,
            .numGpio = 8, .gpioBase = 336, .pins = &orbLitePins, .lastPinOfReply = 8, .coilOutputs = {8, 8},
            .sizes = sizesOf(36, 2048, 66), .narrowFrame = NarrowFrame::Usual,
            .tree = TreeShape::Full, .defaultsSuffix = "_ORBL", .engines = 4, .displayedEngines = 4};
}

UnitKind pzk2() {
    static const MemberIndex members(pzk2Parameters());
    constexpr int noLog = 0;
    return {.slot = 5, .fileKind = 5, .className = "clsPZK2", .model = "PZK-2", .name = "PZK-2",
            .label = "PZK-2", .extension = ".ZQ4PZK", .fileFilterExtension = "Zentaq4 PZK-2 File|*.ZQ4PZK",
            .fileFilter = 3,
            .serials = pzk2Serials, .models = pzk2Models, .hasCalibration = true, .fuelSide = false,
            .firmwarePrefix = "ZPK", .expected = {5, 99}, .configurationFrom = 5,
            .pic18From = FirmwareVersion{4, 6}, .pic18 = Trait::Written, .gpioRequest = Trait::Yes,
            .fileFloats = 1701, .orbFileLength = 1200, .unnamedFileBytes = 4816, .oldFileBytes = pzk2OldFiles,
            .cells = pzk2Cells, .image = &pzk2Image(), .parameters = pzk2Parameters(), .members = &members,
            .numGpio = 3, .gpioBase = 94, .pins = &pzk2Pins, .lastPinOfReply = 8, .coilOutputs = {4, 4},
            .sizes = sizesOf(34, noLog, 23), .narrowFrame = NarrowFrame::Ignition,
            .tree = TreeShape::Ignition, .retardInputVolts = 5, .defaultsSuffix = "_PZK2", .engines = 5,
            .displayedEngines = 5};
}

UnitKind orbc() {
    static const MemberIndex members(orbcParameters());
    return {.slot = 6, .fileKind = 6, .className = "clsORBC", .model = "ORB C", .name = "ORB C", .label = "C",
            .extension = ".ZQ4OC", .fileFilterExtension = "Zentaq4 ORBc File|*.ZQ4OC", .fileFilter = 6,
            .serials = orbcSerials, .models = orbcModels, .hasCalibration = true,
            .firmwarePrefix = "ZQC", .expected = {3, 99}, .wideFrom = 3,
            .configurationFrom = 3, .resizesFrom = 5, .pic18 = Trait::Yes, .gpioRequest = Trait::Written,
            .fileFloats = 2827, .orbFileLength = 2326, .unnamedFileBytes = 9320, .cells = orbcCells,
            .image = &orbImage(), .parameters = orbcParameters(), .members = &members,
            .numGpio = 12, .gpioBase = 334, .pins = &orbcPins, .lastPinOfReply = 12, .coilOutputs = {6, 6},
            .sizes = sizesOf(40, 1820, 70), .narrowFrame = NarrowFrame::Usual,
            .tree = TreeShape::Full, .defaultsSuffix = "_ORBC", .engines = 6, .displayedEngines = 6};
}

UnitKind orbd() {
    static const MemberIndex members(orbdParameters());
    return {.slot = 7, .fileKind = 7, .className = "clsORBd", .model = "ORB D", .name = "ORB D", .label = "D",
            .extension = ".ZQ4OD", .fileFilterExtension = "Zentaq4 ORBd File|*.ZQ4OD", .fileFilter = 5,
            .serials = orbdSerials, .models = orbdModels, .hasCalibration = true,
            .firmwarePrefix = "ZQD", .expected = {5, 99}, .wideFrom = 5,
            .configurationFrom = 5, .resizesFrom = 5, .pic18 = Trait::Yes, .gpioRequest = Trait::Written,
            .fileFloats = 2826, .orbFileLength = 2325, .unnamedFileBytes = 9316, .cells = orbdCells,
            .image = &orbImage(), .parameters = orbdParameters(), .members = &members,
            .numGpio = 6, .gpioBase = 336, .pins = &orbdPins, .lastPinOfReply = 8, .coilOutputs = {4, 4},
            .sizes = sizesOf(34, 2184, 62), .narrowFrame = NarrowFrame::Usual,
            .tree = TreeShape::Small, .defaultsSuffix = "_ORBD", .engines = 7, .displayedEngines = 4};
}

// clang-format on

/// The smaller size of the ORB D: its files, its engines and its list entry are those of the larger one.
UnitKind orbd6() {
    UnitKind kind = orbd();
    kind.slot = 8;
    kind.name = "ORB D6";
    kind.label = "D6";
    kind.serials = orbd6Serials;
    kind.models = {};
    kind.pins = &orbd6Pins;
    return kind;
}

}  // namespace

std::span<const UnitKind> unitKinds() {
    static const std::array kinds = {
        orba(), orbLite(), pzk2(), orbc(), orbd(), orbd6(),
    };
    return kinds;
}

const UnitKind* unitKindOfSlot(int slot) {
    if (slot == nullKind().slot) return &nullKind();
    const auto found = std::ranges::find(unitKinds(), slot, &UnitKind::slot);
    return found == unitKinds().end() ? nullptr : &*found;
}

const UnitKind* unitKindOfSerial(std::int32_t serialNumber) {
    for (const UnitKind& kind : unitKinds()) {
        for (const SerialRange& range : kind.serials) {
            if (serialNumber >= range.first && serialNumber <= range.last) return &kind;
        }
    }
    return nullptr;
}

const UnitKind* unitKindOfFile(float fileKind) {
    // By slot and not by `fileKind`: files that say 8 open in slot 8, though its class writes 7. Slot 0 is no
    // kind of file, a fraction is none either.
    for (const UnitKind& kind : unitKinds()) {
        if (fileKind == static_cast<float>(kind.slot)) return &kind;
    }
    return nullptr;
}

const UnitKind& nullKind() {
    static const MemberIndex members(nullParameters());
    static const UnitKind kind = {.className = "clsNull",
                                  .cells = {.hasAxisWords = false},
                                  .parameters = nullParameters(),
                                  .members = &members,
                                  .numGpio = -1,
                                  .pins = &noPins};
    return kind;
}

// In the order of unitKinds.
const UnitKind& orbaKind() {
    return unitKinds()[0];
}
const UnitKind& orbLiteKind() {
    return unitKinds()[1];
}
const UnitKind& pzk2Kind() {
    return unitKinds()[2];
}
const UnitKind& orbcKind() {
    return unitKinds()[3];
}
const UnitKind& orbdKind() {
    return unitKinds()[4];
}
const UnitKind& orbd6Kind() {
    return unitKinds()[5];
}

bool shareFiles(const UnitKind& one, const UnitKind& other) {
    return one.hasCalibration && one.className == other.className;
}

}  // namespace zentaq
