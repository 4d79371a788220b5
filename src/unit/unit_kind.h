// A kind of engine controller unit, as data: what differs between kinds stands here and nowhere else.
#pragma once

#include <span>
#include <string_view>

namespace zentaq {

class MemberIndex;
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
    int fileFloats = 0;     ///< floats behind the header of a saved file
    int orbFileLength = 0;  ///< index of the last parameter of the calibration proper
    int numGpio = 0;        ///< highest GPIO number, counted from 0
    int gpioBase = 0;       ///< function word of pin 0
    SizeConstants sizes;
    bool hasCalibration = false;  ///< false for clsNull
    bool hasWideMonitor = false;
    std::span<const Parameter> parameters;
    const MemberIndex* members = nullptr;  ///< the same rows by name
};

/// The descriptions, by slot. Slots without an object have no description: nullptr.
const UnitKind* unitKindOfSlot(int slot);
const UnitKind& nullKind();
const UnitKind& orbaKind();

}  // namespace zentaq
