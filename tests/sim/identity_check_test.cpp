#include "sim/identity_check.h"

#include <gtest/gtest.h>

#include <functional>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

struct Range {
    const char* model;
    std::uint32_t first;
    std::uint32_t last;
};

// Which unit a serial number stands for.
constexpr Range ranges[] = {{"A", 10, 9999},           {"A", 200000, 209999}, {"A 6/12", 200000, 209999},
                            {"A r", 200000, 209999},   {"L", 300000, 309999}, {"C", 350000, 359999},
                            {"PZK-2", 500000, 509999}, {"D", 700000, 709999}, {"D6", 750000, 759999}};

/// What is wrong with a model's identity that is changed so; empty for nothing.
std::string faultOf(std::string_view model, const std::function<void(UnitIdentity&)>& change) {
    const UnitProfile& profile = *findProfile(model);
    UnitIdentity identity = defaultIdentity(profile);
    change(identity);
    std::string why;
    endOnFailure([&] { checkIdentity(profile, identity); }, [&](const std::string& text) { why = text; });
    return why;
}

bool acceptsSerial(std::string_view model, std::uint32_t serial) {
    return faultOf(model, [&](UnitIdentity& identity) { identity.serial = serial; }).empty();
}

bool acceptsFirmware(std::string_view model, const std::string& firmware) {
    return faultOf(model, [&](UnitIdentity& identity) { identity.firmware = firmware; }).empty();
}

TEST(IdentityCheck, EveryModelAsDeliveredPasses) {
    for (const UnitProfile* profile : allProfiles()) {
        EXPECT_NO_THROW(checkIdentity(*profile, defaultIdentity(*profile))) << profile->model;
    }
}

TEST(IdentityCheck, SerialNumbersOfTheModelPassAndTheirNeighboursDoNot) {
    for (const Range& range : ranges) {
        EXPECT_TRUE(acceptsSerial(range.model, range.first)) << range.model;
        EXPECT_TRUE(acceptsSerial(range.model, range.last)) << range.model;
        EXPECT_FALSE(acceptsSerial(range.model, range.first - 1)) << range.model;
        EXPECT_FALSE(acceptsSerial(range.model, range.last + 1)) << range.model;
    }
}

TEST(IdentityCheck, SerialNumberOfAnotherModelIsRefusedWithTheRightOnes) {
    EXPECT_EQ(faultOf("A", [](UnitIdentity& identity) { identity.serial = 300001; }),
              "Serial numbers of the ORB A are 10 to 9999 or 200000 to 209999, not 300001");
}

TEST(IdentityCheck, FirmwareNeedsThePrefixOfTheKindAndFiveDigits) {
    EXPECT_TRUE(acceptsFirmware("A", "ZQA-404012"));
    EXPECT_TRUE(acceptsFirmware("L", "ZQL  07100"));
    EXPECT_TRUE(acceptsFirmware("PZK-2", "ZPK-404006"));
    EXPECT_FALSE(acceptsFirmware("L", "ZQA-405099"));
    EXPECT_FALSE(acceptsFirmware("D", "ZQC-405099"));
    EXPECT_FALSE(acceptsFirmware("A", "ZQA-40509"));
    EXPECT_FALSE(acceptsFirmware("A", "ZQA-4050990"));
    EXPECT_FALSE(acceptsFirmware("A", "ZQA-4O5099"));
    EXPECT_FALSE(acceptsFirmware("A", ""));
}

TEST(IdentityCheck, OldSerialReplyBelongsToTheOrbAOnly) {
    const auto old = [](UnitIdentity& identity) { identity.serialFormat = SerialFormat::Old; };
    for (const UnitProfile* profile : allProfiles()) {
        EXPECT_EQ(faultOf(profile->model, old).empty(), profile->firmwarePrefix == "ZQA") << profile->model;
    }
}

TEST(IdentityCheck, OctalSerialReplyNeedsOctalDigits) {
    const auto accepts = [](std::uint32_t number) {
        return faultOf("D",
                       [&](UnitIdentity& identity) {
                           identity.serialFormat = SerialFormat::Octal;
                           identity.serial = number;
                       })
            .empty();
    };
    EXPECT_TRUE(accepts(700017));
    EXPECT_FALSE(accepts(700018));
}

}  // namespace
}  // namespace zentaq::sim
