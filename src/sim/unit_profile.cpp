#include "sim/unit_profile.h"

#include <cctype>

#include "base/text.h"
#include "sim/frame_tables.h"

namespace zentaq::sim {

namespace {

using namespace frames;

constexpr SerialNumbers serialsA[] = {{10, 9999}, {200000, 209999}};
constexpr SerialNumbers serialsL[] = {{300000, 309999}};
constexpr SerialNumbers serialsC[] = {{350000, 359999}};
constexpr SerialNumbers serialsD[] = {{700000, 709999}};
constexpr SerialNumbers serialsD6[] = {{750000, 759999}};
constexpr SerialNumbers serialsPzk2[] = {{500000, 509999}};

constexpr int usualLogRecords = 300;

constexpr UnitProfile profileA{
    .model = "A",
    .fullName = "ORB A",
    .linkStem = "orb-a",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsA,
    .defaultSerial = 200001,
    .knowsOldSerialReply = true,
    .firmwarePrefix = "ZQA",
    .defaultFirmware = "ZQA-405099",
    .firmwareReplyLength = 39,
    .subtypeByte = 37,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = false,
    .codesReplyLength = 16,
    // The narrow frame has neither head nor checksum: its last byte is the direction of the idle motor.
    .narrow = {.length = 35, .headed = false, .fields = narrowFieldsA, .gpio = narrowGpioA},
    .wide = {.length = 65, .headed = true, .fields = wideFieldsA, .gpio = widePinsA},
    .wideFromRelease = 5,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsA},
    .logRecord = {.length = 33, .headed = true, .fields = logFieldsA, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = false,
};

// The subtypes of the ORB A tell themselves apart in the firmware reply only.
struct Subtype {
    std::string_view model;
    std::string_view fullName;
    std::string_view linkStem;
    std::uint32_t defaultSerial;
    std::uint8_t subtype;
};

constexpr UnitProfile subtypeOfA(const Subtype& type) {
    UnitProfile profile = profileA;
    profile.model = type.model;
    profile.fullName = type.fullName;
    profile.linkStem = type.linkStem;
    profile.defaultSerial = type.defaultSerial;
    profile.subtype = type.subtype;
    return profile;
}

constexpr UnitProfile profileA612 = subtypeOfA({"A 6/12", "ORB A 6/12", "orb-a612", 200002, 1});
constexpr UnitProfile profileAr = subtypeOfA({"A r", "ORB A r", "orb-ar", 200003, 2});

constexpr UnitProfile profileL{
    .model = "L",
    .fullName = "ORB L",
    .linkStem = "orb-l",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsL,
    .defaultSerial = 300001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZQL",
    .defaultFirmware = "ZQL-407099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = false,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFields, .gpio = {}},
    .wide = {.length = 66, .headed = true, .fields = wideFields, .gpio = widePinsL},
    .wideFromRelease = 7,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsL},
    .logRecord = {.length = 36, .headed = true, .fields = logFields, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = true,
};

constexpr UnitProfile profileC{
    .model = "C",
    .fullName = "ORB C",
    .linkStem = "orb-c",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsC,
    .defaultSerial = 350001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZQC",
    .defaultFirmware = "ZQC-403099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = true,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFields, .gpio = {}},
    .wide = {.length = 70, .headed = true, .fields = wideFields, .gpio = widePinsC},
    .wideFromRelease = 3,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsC},
    .logRecord = {.length = 40, .headed = true, .fields = logFields, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = true,
};

constexpr UnitProfile profileD{
    .model = "D",
    .fullName = "ORB D",
    .linkStem = "orb-d",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsD,
    .defaultSerial = 700001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZQD",
    .defaultFirmware = "ZQD-405099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = true,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFields, .gpio = {}},
    .wide = {.length = 62, .headed = true, .fields = wideFields, .gpio = widePinsD},
    .wideFromRelease = 5,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsD},
    .logRecord = {.length = 34, .headed = true, .fields = logFields, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = true,
};

// The same unit for six cylinders, told apart by its serial numbers only.
constexpr UnitProfile sixCylinderD() {
    UnitProfile profile = profileD;
    profile.model = "D6";
    profile.fullName = "ORB D6";
    profile.linkStem = "orb-d6";
    profile.serialNumbers = serialsD6;
    profile.defaultSerial = 750001;
    return profile;
}

constexpr UnitProfile profileD6 = sixCylinderD();

constexpr UnitProfile profilePzk2{
    .model = "PZK-2",
    .fullName = "PZK-2",
    .linkStem = "pzk-2",
    .calibrationName = "SIMULATED PZK-2",
    .serialNumbers = serialsPzk2,
    .defaultSerial = 500001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZPK",
    .defaultFirmware = "ZPK-405099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = false,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFieldsPzk2, .gpio = {}},
    .wide = {},
    .wideFromRelease = 0,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsPzk2},
    .logRecord = {.length = 34, .headed = true, .fields = logFieldsPzk2, .gpio = {}},
    .logRecords = 0,  // it answers D, but has no room for records of its own
    .baseAddress = 0x1100,
    .memorySize = 64 * 16,
    .memorySizeOlder = 64 * 16,
    .fullMemoryFromRelease = 0,
    .nameOffset = 166,
    .linesEndInLineFeed = true,
};

constexpr const UnitProfile* profiles[] = {&profileA, &profileA612, &profileAr, &profileL,
                                           &profileC, &profileD,    &profileD6, &profilePzk2};

/// Letters and digits alone, upper case, without the family name in front.
std::string plainName(std::string_view model) {
    std::string plain;
    for (const char c : upper(model)) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) plain += c;
    }
    constexpr std::string_view family = "ORB";
    return plain.starts_with(family) ? plain.substr(family.size()) : plain;
}

}  // namespace

std::span<const UnitProfile* const> allProfiles() {
    return profiles;
}

const UnitProfile* findProfile(std::string_view model) {
    const std::string wanted = plainName(model);
    for (const UnitProfile* profile : profiles) {
        if (plainName(profile->model) == wanted) return profile;
    }
    return nullptr;
}

std::string modelList() {
    std::string list;
    for (const UnitProfile* profile : profiles) {
        if (!list.empty()) list += ", ";
        list += profile->model;
    }
    return list;
}

}  // namespace zentaq::sim
