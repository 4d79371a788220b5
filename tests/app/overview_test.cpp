// The page that only shows: what the calibration is, what was changed, what to look at.
#include "app/overview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "app/fake_platform.h"
#include "base/number_text.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class Overview : public ::testing::Test {
 protected:
    Overview() {
        const std::string data = fake.folder.path("reference.pak");
        std::filesystem::copy_file(builtReference(), data);
        fake.session.database = Database::open(data);
        fake.session.makeUnits();
    }
    void openSample() {
        fake.session.CurrentUnit(3);
        unit().FileOpen(ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA");
        fake.session.noteOpened();
    }
    Unit& unit() { return fake.session.currentUnitObject(); }
    PageRow group(const std::string& caption) {
        for (PageRow& row : overview(fake.session)) {
            if (row.caption == caption) return row;
        }
        ADD_FAILURE() << caption;
        return {};
    }
    PageRow changes() { return group("Changes since it was opened"); }

    FakeSession fake;
};

TEST_F(Overview, IsEmptyWhileNothingIsInHand) {
    EXPECT_THAT(overview(fake.session), IsEmpty());
    EXPECT_THAT(doubtsInHand(fake.session), IsEmpty());
}

TEST_F(Overview, BeginsWithTheCalibrationAndKnowsOfNoChangeAfterOpening) {
    openSample();
    EXPECT_EQ(overview(fake.session).front().text, "ORB A");
    EXPECT_EQ(changes().text, "none");
    EXPECT_THAT(changes().elements, IsEmpty());
}

TEST_F(Overview, TellsEachChangeWithWhatItWasWhenOpened) {
    openSample();
    const float warm = unit().get("CHKTBL", 3);
    unit().set("CHKTBL", 199, 3);
    unit().set("REV_Limiter", 6400);
    const PageRow all = changes();
    EXPECT_EQ(all.text, "2");
    ASSERT_THAT(all.elements, SizeIs(2));
    EXPECT_THAT(all.elements, Contains(::testing::Field(&Field::member, "REV_Limiter")));
    const auto curve = std::ranges::find(all.elements, "CHKTBL[3]", &Field::member);
    ASSERT_NE(curve, all.elements.end());
    EXPECT_EQ(curve->text, "199");
    EXPECT_EQ(curve->limits, "opened: " + numberText(warm));
    EXPECT_EQ(curve->unit, "%");
    EXPECT_TRUE(curve->caption.starts_with("Warm-Up Enrichments")) << curve->caption;
    unit().set("CHKTBL", warm, 3);
    EXPECT_EQ(changes().text, "1") << "what is as it was is no change";
}

TEST_F(Overview, ManyChangesAreToldByTheirNumber) {
    openSample();
    for (int i = 0; i < 256; ++i) {
        unit().set("VE", unit().get("VE", i) + 1, i);
        unit().set("ADV", unit().get("ADV", i) + 1, i);
    }
    const PageRow all = changes();
    EXPECT_THAT(all.elements, SizeIs(301));
    EXPECT_EQ(all.elements.back().caption, "and 212 more");
}

TEST_F(Overview, TellsWhatIsInDoubtAndChangesNothing) {
    openSample();
    for (int i = 0; i < 8; ++i) unit().set("BLDTBL", 4000 - 500 * i, i);
    const Calibration before = unit().calibration();
    const PageRow doubts = group("To look at before programming");
    const auto blend = std::ranges::find(doubts.elements, "BLDTBL", &Field::member);
    ASSERT_NE(blend, doubts.elements.end());
    EXPECT_EQ(blend->text, "4000 is followed by 3500");
    EXPECT_EQ(blend->caption, "the speeds of the blend do not rise");
    EXPECT_EQ(blend->limits, "enter them in rising order");
    EXPECT_TRUE(unit().calibration() == before);
}

}  // namespace
}  // namespace zentaq
