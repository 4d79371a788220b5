// A kind of engine controller unit, as data: what differs between kinds stands here and nowhere else.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "base/battery_input.h"

namespace zentaq {

class MemberIndex;
struct ImageLayout;
struct Parameter;

/// Bytes the link expects for each reply, and how large a log may be. Shapes: counts.
struct SizeConstants {
    int monitorLen = 1;
    int gpioLen = 1;
    int serialLen = 1;
    int binFirmLen = 1;
    int miscLen = 2;
    int codesLen = 1;
    int configLen = 1;
    int dataRecordLen = 1;
    int datalogMax = 1;
    int wCmdLen = 1;
};

/// Where the shared rules of a kind find the cells that several members or no member stand for. The numbers
/// are those of the ORB A unless a kind says otherwise.
struct CellMap {
    static constexpr int none = -1;

    int legacyBar = 39;      ///< rating that old firmware knows, 1 to 4
    int mapBar = 124;        ///< rating in bar
    int mapScaler = 126;     ///< volts per user unit
    int mapOffset = 127;     ///< volts at zero
    int mapId = 128;         ///< key of the sensor list
    int mapUnits = 129;      ///< code of the user's pressure unit
    int baroTrim = 138;      ///< first of 8; none: no such curve
    int scale1 = 148;        ///< none: no fuel side
    int injectorOn = 150;    ///< none: no fuel side
    int minDuty = 316;       ///< none: no duty limits
    int maxDuty = 317;       ///< none: no duty limits
    int fuelTrimSent = 504;  ///< first of 8, as the unit takes them; none: no fuel side
    int trimSent = 520;      ///< first of 16, as the unit takes them
    int name = 560;          ///< first of 24 characters
    std::array<int, 2> outputTable = {1680, 1936};  ///< first of 256 cells each
    int optionType = 2203;
    int mapActive = 2222;
    int marginToggle = 2223;
    int marginValue = 2224;
    int ratio = 2225;          ///< stoichiometric ratio
    bool hasAxisWords = true;  ///< stop points, axis kinds and sizes, from cell 2226 on
    int userTrim = 2312;       ///< first of 8, as the user sees them
    int userFuelTrim = 2320;   ///< first of 8; none: no fuel side
    int notes = 2327;          ///< first of 500 characters
};

/// How `hasPIC18` and `GPIO_Req` of a kind behave.
enum class Trait : std::uint8_t {
    No,      ///< always false
    Yes,     ///< always true
    Written  ///< as it was last set; false at first
};

struct UnitKind {
    int slot = 0;                          ///< index in Units
    float fileKind = 0;                    ///< first float of its calibration files; 0: no file
    std::string_view className;            ///< "clsORBA"
    std::string_view model;                ///< "ORB A"
    std::string_view extension;            ///< ".ZQ4OA"
    std::string_view fileFilterExtension;  ///< "Zentaq4 ORBA File|*.ZQ4OA"
    std::string_view firmwarePrefix;       ///< "ZQA"; empty: any firmware is valid
    int fileFilter = 0;                    ///< one-based entry in the common file filter
    int defaultRelease = 0;                ///< firmware that a file gets when it is unknown
    int defaultBuild = 0;
    int newestRelease = 5;  ///< the last that a file's code has room for; later ones count as unknown
    int fileFloats = 0;     ///< floats behind the header of a saved file
    int orbFileLength = 0;  ///< index of the last parameter of the calibration proper
    int numGpio = 0;        ///< highest GPIO number, counted from 0
    int gpioBase = 0;       ///< function word of pin 0; a pin has 9 cells
    double batteryVoltsPerCount = batteryinput::voltsPerCount;  ///< of the byte that live frames carry
    SizeConstants sizes;
    bool hasCalibration = false;  ///< false for clsNull
    bool hasWideMonitor = false;
    Trait pic18 = Trait::No;
    Trait gpioRequest = Trait::No;
    CellMap cells;
    const ImageLayout* image = nullptr;
    std::span<const Parameter> parameters;
    const MemberIndex* members = nullptr;  ///< the same rows by name
};

/// The descriptions, by slot. Slots without an object have no description: nullptr.
const UnitKind* unitKindOfSlot(int slot);
const UnitKind& nullKind();
const UnitKind& orbaKind();
const UnitKind& orbLiteKind();
const UnitKind& pzk2Kind();
const UnitKind& orbcKind();
const UnitKind& orbdKind();
const UnitKind& orbd6Kind();  ///< slot 8, of the same class as slot 7

/// Whether two kinds are one class, in one or in two slots: their files and calibrations are the same.
bool shareFiles(const UnitKind& one, const UnitKind& other);

/// The description that a calibration file's first number selects, nullptr for none.
const UnitKind* unitKindOfFile(float fileKind);

}  // namespace zentaq
