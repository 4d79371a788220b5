// Many changes of one file at the same time: each is in the file when all have ended.
#include <deque>
#include <optional>

#include "ctl/link_fixture.h"
#include "unit/file_lock.h"

namespace zentaq {
namespace {

class ParallelChanges : public Zentaqctl {
 protected:
    /// Starts all at once, and what they end with.
    std::vector<int> endsOf(const std::vector<Words>& commands) {
        const int sink = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
        std::deque<Running> programs;
        for (const Words& words : commands)
            programs.emplace_back(ZENTAQ_APP_DIR "/zentaqctl", words, sink, sink);
        std::vector<int> ends;
        for (Running& program : programs) ends.push_back(program.wait());
        ::close(sink);
        return ends;
    }
    void runAll(const std::vector<Words>& commands) {
        EXPECT_THAT(endsOf(commands), ::testing::Each(0)) << contentOf(output);
    }

    std::string output = folder.file("output");
};

TEST_F(ParallelChanges, OfTwoMembersLoseNoneInSixtyPairs) {
    for (int pair = 0; pair < 60; ++pair) {
        const float limit = static_cast<float>(5000 + pair);
        const float knock = static_cast<float>(20 + pair % 50);
        runAll({{"set", file, "REV_Limiter", std::to_string(5000 + pair)},
                {"set", file, "KNK_MIN", std::to_string(20 + pair % 50)}});
        ASSERT_EQ(cellOf(file, 58), limit) << "pair " << pair;
        ASSERT_EQ(cellOf(file, 34), knock) << "pair " << pair;
    }
}

/// Commands that make one new file: one of them has it, and the other one is told.
class ParallelMakers : public ParallelChanges {
 protected:
    struct Maker {
        Words words;
        std::string made;  ///< what the file holds when this one has made it
    };
    static constexpr int pairs = 30;

    std::string fresh = folder.file("fresh.ZQ4OA");

    /// What a command makes where it is alone.
    Maker maker(Words words) {
        fs::remove(fresh);
        runAll({words});
        Maker each{std::move(words), contentOf(fresh)};
        fs::remove(fresh);
        return each;
    }
    void race(const std::vector<Maker>& makers) {
        std::vector<Words> commands;
        for (const Maker& each : makers) commands.push_back(each.words);
        for (int pair = 0; pair < pairs; ++pair) {
            fs::remove(fresh);
            const std::vector<int> ends = endsOf(commands);
            std::vector<std::string> left;
            for (std::size_t i = 0; i < ends.size(); ++i) {
                if (ends[i] == 0) left.push_back(makers[i].made);
            }
            ASSERT_EQ(left.size(), 1U) << "pair " << pair << ": " << contentOf(output);
            ASSERT_TRUE(contentOf(fresh) == left[0]) << "pair " << pair;
            ASSERT_THAT(contentOf(output), HasSubstr(fresh + " is there already; --force puts the new "));
        }
    }
    std::string changed(const std::string& name, int limit) {
        const std::string copy = folder.file(name);
        fs::copy_file(file, copy);
        runAll({{"set", copy, "REV_Limiter", std::to_string(limit)}});
        return copy;
    }
};

TEST_F(ParallelMakers, OfNewCalibrationsLoseNone) {
    const auto wanted = [](int limit) { return "REV_Limiter=" + std::to_string(limit); };
    const auto words = [&](int limit) {
        return Words{"new",
                     "--unit",
                     "ORB A Standard",
                     "--engine",
                     "4 Cylinder Coil per Plug, Sequential Injection",
                     "--sensor",
                     "1 BAR (10-105 kPa)",
                     "--set",
                     wanted(limit),
                     "-o",
                     fresh};
    };
    race({maker(words(5000)), maker(words(6000))});
}

TEST_F(ParallelMakers, OfImportedFilesLoseNone) {
    const std::string first = folder.file("first.BIN");
    const std::string second = folder.file("second.BIN");
    writeFile(first, std::string(8704, '\0'));
    writeFile(second, std::string(40, '\0') + std::string(4, '\1') + std::string(8660, '\0'));
    race({maker({"import-bin", first, "-o", fresh}), maker({"import-bin", second, "-o", fresh})});
    const std::string text = folder.file("text");
    const std::string other = folder.file("other");
    runAll({{"export", file, "-o", text}});
    runAll({{"export", changed("other.ZQ4OA", 5100), "-o", other}});
    race({maker({"import", text, "-o", fresh}), maker({"import", other, "-o", fresh})});
}

TEST_F(ParallelMakers, OfChangesUnderANewNameLoseNone) {
    const std::string other = changed("other.ZQ4OA", 5200);
    race({maker({"set", file, "KNK_MIN", "40", "-o", fresh}),
          maker({"cell", other, "34", "50", "-o", fresh})});
    race({maker({"merge", file, file, other, "-o", fresh}),
          maker({"set", file, "KNK_MIN", "41", "-o", fresh})});
}

TEST_F(ParallelMakers, OfATextAndACalibrationLoseNoCalibration) {
    race({maker({"export", file, "-o", fresh}), maker({"set", file, "KNK_MIN", "40", "-o", fresh})});
    race({maker({"image", file, "-o", fresh}), maker({"set", file, "KNK_MIN", "40", "-o", fresh})});
}

TEST_F(ParallelChanges, OfSixteenCellsLoseNone) {
    std::vector<Words> commands;
    for (int i = 0; i < 16; ++i)
        commands.push_back({"cell", file, std::to_string(912 + i), std::to_string(i + 1)});
    runAll(commands);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(cellOf(file, 912 + i), static_cast<float>(i + 1)) << i;
}

TEST_F(ParallelChanges, WaitForTheOneThatIsBeingMade) {
    const int sink = ::open(output.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    std::optional<FileLock> other(std::in_place, file);
    Running set(ZENTAQ_APP_DIR "/zentaqctl", {"set", file, "REV_Limiter", "6000"}, sink, sink);
    plant(34, 77);  // before it reads
    other.reset();
    EXPECT_EQ(set.wait(), 0);
    EXPECT_EQ(cellOf(file, 34), 77);
    EXPECT_EQ(cellOf(file, 58), 6000);
    ::close(sink);
}

}  // namespace
}  // namespace zentaq
