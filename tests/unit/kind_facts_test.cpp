// Every kind of unit tells all that the program asks of a kind.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "unit/gpio_pins.h"
#include "unit/image_layout.h"
#include "unit/member_index.h"
#include "unit/parameter.h"
#include "unit/unit_kind.h"

namespace zentaq::testing {
namespace {

TEST(UnitKinds, AreThoseWithACalibrationInTheOrderOfTheirSlots) {
    int before = 0;
    for (const UnitKind& kind : unitKinds()) {
        EXPECT_GT(kind.slot, before);
        EXPECT_TRUE(kind.hasCalibration) << kind.name;
        EXPECT_EQ(unitKindOfSlot(kind.slot), &kind) << kind.name;
        before = kind.slot;
    }
    EXPECT_GT(before, 0);
    EXPECT_FALSE(nullKind().hasCalibration);
}

TEST(UnitKinds, HaveNoFactMissing) {
    for (const UnitKind& kind : unitKinds()) {
        SCOPED_TRACE(kind.name);
        for (const std::string_view text : {kind.className, kind.model, kind.name, kind.label, kind.extension,
                                            kind.fileFilterExtension, kind.firmwarePrefix}) {
            EXPECT_FALSE(text.empty());
        }
        EXPECT_GT(kind.fileKind, 0);
        EXPECT_GT(kind.fileFilter, 1) << "the first entry is for all kinds";
        EXPECT_FALSE(kind.serials.empty());
        EXPECT_GT(kind.expected.release, 0);
        EXPECT_GT(kind.configurationFrom, 0);
        EXPECT_GE(kind.newestRelease, kind.expected.release);
        EXPECT_EQ(kind.pic18From.has_value(), kind.pic18 == Trait::Written);
        EXPECT_GT(kind.fileFloats, kind.orbFileLength);
        EXPECT_NE(kind.image, nullptr);
        EXPECT_FALSE(kind.parameters.empty());
        EXPECT_NE(kind.members, nullptr);
        EXPECT_GT(kind.gpioBase, 0);
        ASSERT_NE(kind.pins, nullptr);
        EXPECT_NE(kind.pins->kind, gpio_kinds::noUnit);
        EXPECT_FALSE(kind.pins->rows.empty());
        for (const GpioPin& pin : kind.pins->rows) EXPECT_LE(pin.pin, kind.numGpio);
        EXPECT_EQ(kind.lastPinOfReply < 0, kind.gpioRequest == Trait::No);
        EXPECT_GT(kind.coilOutputs[0], 0);
        EXPECT_GE(kind.coilOutputs[1], kind.coilOutputs[0]);
        EXPECT_GT(kind.sizes.monitorLen, 1);
        EXPECT_GT(kind.sizes.configLen, 1);
        EXPECT_NE(kind.narrowFrame, NarrowFrame::None);
        EXPECT_NE(kind.tree, TreeShape::None);
        EXPECT_GT(kind.engines, 0);
        EXPECT_GT(kind.displayedEngines, 0);
    }
}

TEST(UnitKinds, HaveCellsAndMembersOfTheFuelSideOrNone) {
    for (const UnitKind& kind : unitKinds()) {
        SCOPED_TRACE(kind.name);
        for (const int cell : {kind.cells.scale1, kind.cells.injectorOn, kind.cells.minDuty,
                               kind.cells.maxDuty, kind.cells.fuelTrimSent, kind.cells.userFuelTrim}) {
            EXPECT_EQ(cell != CellMap::none, kind.fuelSide);
        }
        for (const char* member : {"VE", "Get_AFR", "scale1", "FuelTrim"})
            EXPECT_EQ(kind.members->find(member) != nullptr, kind.fuelSide) << member;
        EXPECT_EQ(kind.tree == TreeShape::Ignition, !kind.fuelSide);
        EXPECT_EQ(kind.retardInputVolts != 0, !kind.fuelSide);
    }
}

TEST(UnitKinds, AreToldApartByNameLabelAndSerialNumber) {
    std::set<std::string_view> names;
    std::set<std::string_view> labels;
    for (const UnitKind& kind : unitKinds()) {
        EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
        EXPECT_TRUE(labels.insert(kind.label).second) << kind.label;
        for (const SerialRange& range : kind.serials) {
            EXPECT_LE(range.first, range.last) << kind.name;
            EXPECT_EQ(unitKindOfSerial(range.first), &kind) << kind.name;
            EXPECT_EQ(unitKindOfSerial(range.last), &kind) << kind.name;
        }
    }
}

TEST(UnitKinds, OfOneClassShareWhatFilesAndListsAskFor) {
    std::set<int> places;
    for (const UnitKind& kind : unitKinds()) {
        SCOPED_TRACE(kind.name);
        bool offered = false;
        for (const UnitKind& other : unitKinds()) {
            const bool share = shareFiles(kind, other);
            offered = offered || (share && !other.models.empty());
            EXPECT_EQ(kind.fileKind == other.fileKind, share) << other.name;
            EXPECT_EQ(kind.extension == other.extension, share) << other.name;
            EXPECT_EQ(kind.fileFilter == other.fileFilter, share) << other.name;
            if (kind.unnamedFileBytes != 0) {  // newer kinds have always named theirs
                EXPECT_EQ(kind.unnamedFileBytes == other.unnamedFileBytes, share) << other.name;
            }
            EXPECT_EQ(kind.firmwarePrefix == other.firmwarePrefix, share) << other.name;
            EXPECT_EQ(kind.engines == other.engines, share) << other.name;
            EXPECT_EQ(kind.defaultsSuffix == other.defaultsSuffix, share) << other.name;
        }
        EXPECT_TRUE(offered) << "no model of the list is of this class";
        for (const UnitModel& model : kind.models) {
            EXPECT_FALSE(model.name.empty());
            EXPECT_TRUE(places.insert(model.place).second) << model.name;
            EXPECT_EQ(model.label.empty(), kind.models.size() == 1) << model.name;
        }
    }
    EXPECT_EQ(*places.begin(), 1);
    EXPECT_EQ(*places.rbegin(), std::ssize(places));
}

TEST(UnitKinds, ShowTheEnginesOfTheOrbLOnTheOrbD) {
    EXPECT_EQ(orbaKind().engines, 3);
    EXPECT_EQ(orbLiteKind().engines, 4);
    EXPECT_EQ(pzk2Kind().engines, 5);
    EXPECT_EQ(orbcKind().engines, 6);
    EXPECT_EQ(orbdKind().engines, 7);
    EXPECT_EQ(orbd6Kind().engines, 7);
    for (const UnitKind& kind : unitKinds()) {
        EXPECT_EQ(kind.displayedEngines, shareFiles(kind, orbdKind()) ? 4 : kind.engines) << kind.name;
    }
}

}  // namespace
}  // namespace zentaq::testing
