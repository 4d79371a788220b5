// A kind of engine controller unit, as data: what differs between kinds stands here and nowhere else.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "base/battery_input.h"
#include "unit/firmware_version.h"

namespace zentaq {

class MemberIndex;
struct GpioPins;
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

/// Serial numbers of a kind, both ends included.
struct SerialRange {
    std::int32_t first;
    std::int32_t last;
};

/// What a new calibration can be for: a kind, or one of the variants of its engine list.
struct UnitModel {
    int place;               ///< in the list of models, from 1
    std::string_view name;   ///< "ORB A Standard"
    int variant = 0;         ///< of the engine list
    std::string_view label;  ///< "A Std": of the unit on the link; empty: the kind's own
};

/// Which nodes the configuration tree has. One bit each: a node is of several shapes.
enum class TreeShape : std::uint8_t { None = 0, Full = 1, Small = 2, Ignition = 4 };

/// Which values the narrow frame ("F") has, and where.
enum class NarrowFrame : std::uint8_t { None, OrbA, Usual, Ignition };

struct UnitKind {
    int slot = 0;                          ///< index in Units
    float fileKind = 0;                    ///< first float of its calibration files; 0: no file
    std::string_view className;            ///< "clsORBA"; two kinds of one class share files and calibrations
    std::string_view model;                ///< "ORB A"
    std::string_view name;                 ///< as `model`, with the kinds of one class told apart: "ORB D6"
    std::string_view label;                ///< of the unit on the link: "A", "D6"
    std::string_view extension;            ///< ".ZQ4OA"
    std::string_view fileFilterExtension;  ///< "Zentaq4 ORBA File|*.ZQ4OA"
    int fileFilter = 0;                    ///< one-based entry in the common file filter
    std::span<const SerialRange> serials;
    std::span<const UnitModel> models;  ///< empty for the second kind of a class
    bool hasCalibration = false;        ///< false for clsNull
    bool fuelSide = true;  ///< tables, curves, gauges and readings of the fuel; false: ignition only

    // Firmware.
    std::string_view firmwarePrefix;  ///< "ZQA"; empty: any firmware is valid
    FirmwareVersion expected;         ///< what the program expects, and what a file gets when it is unknown
    int newestRelease = 5;      ///< the last that a file's code has room for; later ones count as unknown
    int wideFrom = 0;           ///< first release that answers "W"; 0: none does
    int configurationFrom = 0;  ///< first release that is asked for its configuration ("C")
    int resizesFrom = 0;        ///< first release whose tables may have other than 16 rows; 0: none
    std::optional<FirmwareVersion> pic18From;  ///< from here on the configuration tells `hasPIC18`
    Trait pic18 = Trait::No;
    Trait gpioRequest = Trait::No;

    // Files and cells.
    int fileFloats = 0;                           ///< floats behind the header of a saved file
    int orbFileLength = 0;                        ///< index of the last parameter of the calibration proper
    std::uint32_t unnamedFileBytes = 0;           ///< of files from before their first number named the kind
    std::span<const std::uint32_t> oldFileBytes;  ///< of files of the older generation
    CellMap cells;
    const ImageLayout* image = nullptr;
    std::span<const Parameter> parameters;
    const MemberIndex* members = nullptr;  ///< the same rows by name

    // Inputs and outputs.
    int numGpio = 0;   ///< highest GPIO number, counted from 0
    int gpioBase = 0;  ///< function word of pin 0; a pin has 9 cells
    const GpioPins* pins = nullptr;
    int lastPinOfReply = -1;           ///< of the reply to "I"; -1: the kind knows no "I"
    std::array<int, 2> coilOutputs{};  ///< of the smallest and of the largest variant

    // Frames and replies.
    SizeConstants sizes;
    NarrowFrame narrowFrame = NarrowFrame::None;
    bool narrowFrameHasSum = true;                              ///< its last byte is a checksum, and no value
    double batteryVoltsPerCount = batteryinput::voltsPerCount;  ///< of the byte that live frames carry
    bool coarsePulses = false;        ///< frames tell pulse widths in the coarse scale of the unit's own log
    bool analogCodes = false;         ///< words 4 and 10 of the codes are of analog inputs, not of outputs
    bool answersOldIdentify = false;  ///< old firmware identifies itself by six bytes
    bool bareProgramLines = false;    ///< takes the lines of a program without CR and LF

    // What the program shows and offers.
    TreeShape tree = TreeShape::None;
    double retardInputVolts = 0;      ///< span of MATADV's axis: a retard input; 0: the air temperature
    std::string_view defaultsSuffix;  ///< of sets of default values that are for this kind: "_PZK2"
    int engines = 0;                  ///< number of the kind's engines in the reference database
    int displayedEngines = 0;         ///< kept: the display of the ORB D reads the engines of the ORB L

    bool hasWideMonitor() const { return wideFrom != 0; }
};

/// The kinds with a calibration, by slot.
std::span<const UnitKind> unitKinds();

/// nullptr for a slot without an object.
const UnitKind* unitKindOfSlot(int slot);
/// nullptr for a number in no range.
const UnitKind* unitKindOfSerial(std::int32_t serialNumber);
/// The description that a calibration file's first number selects, nullptr for none.
const UnitKind* unitKindOfFile(float fileKind);

const UnitKind& nullKind();
const UnitKind& orbaKind();
const UnitKind& orbLiteKind();
const UnitKind& pzk2Kind();
const UnitKind& orbcKind();
const UnitKind& orbdKind();
const UnitKind& orbd6Kind();  ///< slot 8, of the same class as slot 7

/// Whether two kinds are one class, in one or in two slots: their files and calibrations are the same.
bool shareFiles(const UnitKind& one, const UnitKind& other);

}  // namespace zentaq
