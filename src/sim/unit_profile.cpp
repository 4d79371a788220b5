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

// clang-format off
constexpr UnitProfile profileA{
    .model = "A", .fullName = "ORB A", .linkStem = "orb-a",
    .serialNumbers = serialsA, .defaultSerial = 200001, .knowsOldSerialReply = true,
    .firmwarePrefix = "ZQA", .defaultFirmware = "ZQA-405099", .firmwareReplyLength = 39, .subtypeByte = 37,
    // The narrow frame has neither head nor checksum: its last byte is the direction of the idle motor.
    .narrow = {.length = 35, .headed = false, .fields = narrowFieldsA, .gpio = narrowGpioA},
    .wide = {.length = 65, .fields = wideFieldsA, .gpio = widePinsA}, .wideFromRelease = 5,
    .inputs = {.length = 21, .gpio = listedPinsA},
    .logRecord = {.length = 33, .fields = logFieldsA},
    .linesEndInLineFeed = false};

/// A model that another one's profile describes but for its names and its serial number.
constexpr UnitProfile variant(UnitProfile profile, std::string_view model, std::string_view fullName,
                              std::string_view linkStem, std::uint32_t defaultSerial) {
    profile.model = model;
    profile.fullName = fullName;
    profile.linkStem = linkStem;
    profile.defaultSerial = defaultSerial;
    return profile;
}

// The subtypes of the ORB A tell themselves apart in the firmware reply only.
constexpr UnitProfile withSubtype(UnitProfile profile, std::uint8_t subtype) {
    profile.subtype = subtype;
    return profile;
}
constexpr auto profileA612 = withSubtype(variant(profileA, "A 6/12", "ORB A 6/12", "orb-a612", 200002), 1);
constexpr auto profileAr = withSubtype(variant(profileA, "A r", "ORB A r", "orb-ar", 200003), 2);

constexpr UnitProfile profileL{
    .model = "L", .fullName = "ORB L", .linkStem = "orb-l",
    .serialNumbers = serialsL, .defaultSerial = 300001,
    .firmwarePrefix = "ZQL", .defaultFirmware = "ZQL-407099",
    .narrow = {.length = 28, .fields = narrowFields},
    .wide = {.length = 66, .fields = wideFields, .gpio = widePinsL}, .wideFromRelease = 7,
    .inputs = {.length = 21, .gpio = listedPinsL},
    .logRecord = {.length = 36, .fields = logFields}};

constexpr UnitProfile profileC{
    .model = "C", .fullName = "ORB C", .linkStem = "orb-c",
    .serialNumbers = serialsC, .defaultSerial = 350001,
    .firmwarePrefix = "ZQC", .defaultFirmware = "ZQC-403099", .hasPic18 = true,
    .narrow = {.length = 28, .fields = narrowFields},
    .wide = {.length = 70, .fields = wideFields, .gpio = widePinsC}, .wideFromRelease = 3,
    .inputs = {.length = 21, .gpio = listedPinsC},
    .logRecord = {.length = 40, .fields = logFields}};

constexpr UnitProfile profileD{
    .model = "D", .fullName = "ORB D", .linkStem = "orb-d",
    .serialNumbers = serialsD, .defaultSerial = 700001,
    .firmwarePrefix = "ZQD", .defaultFirmware = "ZQD-405099", .hasPic18 = true,
    .narrow = {.length = 28, .fields = narrowFields},
    .wide = {.length = 62, .fields = wideFields, .gpio = widePinsD}, .wideFromRelease = 5,
    .inputs = {.length = 21, .gpio = listedPinsD},
    .logRecord = {.length = 34, .fields = logFields}};

// The same unit for six cylinders, told apart by its serial numbers only.
constexpr UnitProfile sixCylinderD() {
    UnitProfile profile = variant(profileD, "D6", "ORB D6", "orb-d6", 750001);
    profile.serialNumbers = serialsD6;
    return profile;
}

constexpr UnitProfile profileD6 = sixCylinderD();

constexpr UnitProfile profilePzk2{
    .model = "PZK-2", .fullName = "PZK-2", .linkStem = "pzk-2", .calibrationName = "SIMULATED PZK-2",
    .serialNumbers = serialsPzk2, .defaultSerial = 500001,
    .firmwarePrefix = "ZPK", .defaultFirmware = "ZPK-405099",
    .narrow = {.length = 28, .fields = narrowFieldsPzk2},
    .inputs = {.length = 21, .gpio = listedPinsPzk2},
    .logRecord = {.length = 34, .fields = logFieldsPzk2},
    .logRecords = 0,  // it answers D, but has no room for records of its own
    .memorySize = 64 * 16, .memorySizeOlder = 64 * 16, .fullMemoryFromRelease = 0, .nameOffset = 166};
// clang-format on

constexpr const UnitProfile* profiles[] = {
    &profileA, &profileA612, &profileAr, &profileL, &profileC, &profileD, &profileD6, &profilePzk2,
};

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
