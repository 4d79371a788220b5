#include "app/fold.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "testing/memory_settings.h"

namespace zentaq {
namespace {

class FullStore : public SettingsStore {
 public:
    std::string get(const std::string&, const std::string&, const std::string& fallback) const override {
        return fallback;
    }
    void set(const std::string&, const std::string&, const std::string&) override {
        throw std::runtime_error("full");
    }
};

TEST(Fold, FoldsByItselfWhereRoomIsShortAndOpensWithTheRoom) {
    MemorySettings settings;
    Fold fold(settings, "foldMessages");
    EXPECT_FALSE(fold.folded());
    fold.roomShort(true);
    EXPECT_TRUE(fold.folded());
    fold.roomShort(false);
    EXPECT_FALSE(fold.folded());
    EXPECT_EQ(settings.get("Forms", "foldMessages"), "") << "nobody has chosen anything";
}

TEST(Fold, KeepsWhatTheUserChoseWhateverTheRoomDoes) {
    MemorySettings settings;
    Fold fold(settings, "foldMessages");
    fold.toggle();
    EXPECT_TRUE(fold.folded());
    EXPECT_EQ(settings.get("Forms", "foldMessages"), "1");
    fold.roomShort(true);
    fold.roomShort(false);
    EXPECT_TRUE(fold.folded());
    EXPECT_TRUE(Fold(settings, "foldMessages").folded()) << "the next start knows it";
    fold.toggle();
    EXPECT_FALSE(fold.folded());
    EXPECT_EQ(settings.get("Forms", "foldMessages"), "0");
}

TEST(Fold, OpensWhereRoomIsShortWhenTheUserWantsItAndUntilThereIsRoomAgain) {
    MemorySettings settings;
    Fold fold(settings, "foldMessages");
    fold.roomShort(true);
    fold.toggle();
    EXPECT_FALSE(fold.folded());
    fold.roomShort(true);
    EXPECT_FALSE(fold.folded()) << "another size, still short";
    fold.toggle();
    EXPECT_TRUE(fold.folded());
    EXPECT_EQ(settings.get("Forms", "foldMessages"), "") << "short room is nobody's choice";
    fold.toggle();
    fold.roomShort(false);
    fold.roomShort(true);
    EXPECT_TRUE(fold.folded());
}

TEST(Folds, OpenMessagesAndDashboardOneAtATimeWhereRoomIsShortForBoth) {
    MemorySettings settings;
    Folds folds(settings);
    folds.messages.roomShort(true);
    folds.dashboard.roomShort(true);
    folds.toggle(folds.messages);
    EXPECT_FALSE(folds.messages.folded());
    folds.toggle(folds.dashboard);
    EXPECT_FALSE(folds.dashboard.folded());
    EXPECT_TRUE(folds.messages.folded());
    folds.toggle(folds.messages);
    EXPECT_FALSE(folds.messages.folded());
    EXPECT_TRUE(folds.dashboard.folded());
}

TEST(Folds, LeaveADashboardAloneThatHasRoomWhenTheMessagesHaveNone) {
    MemorySettings settings;
    Folds folds(settings);
    folds.messages.roomShort(true);
    folds.toggle(folds.messages);
    EXPECT_FALSE(folds.messages.folded());
    EXPECT_FALSE(folds.dashboard.folded());
    folds.toggle(folds.dashboard);
    EXPECT_TRUE(folds.dashboard.folded());
    EXPECT_FALSE(folds.messages.folded());
}

TEST(Fold, IsOpenWhereTheStoreCannotBeRead) {
    class Unreadable : public FullStore {
     public:
        std::string get(const std::string&, const std::string&, const std::string&) const override {
            throw std::runtime_error("no settings");
        }
    } settings;
    Fold fold(settings, "foldTree");
    EXPECT_FALSE(fold.folded());
    fold.toggle();
    EXPECT_TRUE(fold.folded());
}

TEST(Fold, GoesOnWithAStoreThatTakesNothing) {
    FullStore settings;
    Fold fold(settings, "foldTree");
    fold.toggle();
    EXPECT_TRUE(fold.folded());
    fold.toDefault();
    EXPECT_FALSE(fold.folded());
}

}  // namespace
}  // namespace zentaq
