// Two people's changes joined.
#include "ctl/compare_fixture.h"

namespace zentaq {
namespace {

TEST_F(ZentaqctlVersions, MergeTakesTheChangesOfBoth) {
    change(mine, "KNK_MIN 50");
    change(yours, "REV_Limiter 7200");
    EXPECT_THAT(merge(inQuotes(merged)), Succeeds(IsEmpty()));
    EXPECT_EQ(cellOf(merged, 34), 50);
    EXPECT_EQ(cellOf(merged, 58), 7200);
}

TEST_F(ZentaqctlVersions, MergeChangesNothingElse) {
    change(mine, "KNK_MIN 50");
    merge(inQuotes(merged));
    // The name of the file that it is written to stays out of it.
    EXPECT_TRUE(contentOf(merged) == contentOf(mine));
}

TEST_F(ZentaqctlVersions, MergeMayWriteOverOneOfItsFiles) {
    change(mine, "KNK_MIN 50");
    change(yours, "REV_Limiter 7200");
    EXPECT_EQ(merge(inQuotes(mine)).exitCode, 0);
    EXPECT_EQ(cellOf(mine, 58), 7200);
}

TEST_F(ZentaqctlVersions, MergeListsConflictsAndWritesNothing) {
    change(mine, "KNK_MIN 50");
    change(yours, "KNK_MIN 60");
    EXPECT_THAT(merge(inQuotes(merged)),
                Fails(1, "1 conflict: nothing was written\n",
                      StartsWith("KNK_MIN: 40 in the base, 50 in the first, 60 in the second")));
    EXPECT_FALSE(fs::exists(merged));
    change(mine, "REV_Limiter 7100");
    change(yours, "REV_Limiter 7200");
    const Outcome both = merge(inQuotes(merged));
    EXPECT_EQ(both.error, "2 conflicts: nothing was written\n");
    EXPECT_EQ(linesOf(both.out).size(), 2U);
}

TEST_F(ZentaqctlVersions, MergeOfTwoKindsFails) {
    EXPECT_THAT(run("merge " + inQuotes(base) + " " + inQuotes(mine) + " " +
                    inQuotes(sample("ORB L Six.ZQ4OL")) + " -o " + inQuotes(merged)),
                Fails(1, isOneLine));
    EXPECT_FALSE(fs::exists(merged));
}

TEST_F(ZentaqctlVersions, MergeThatCannotWriteFailsInOneLine) {
    EXPECT_THAT(merge(inQuotes(folder.file("no/such/place.ZQ4OA"))), Fails(1, isOneLine));
    expectRefused(merge("-"), "A calibration is not written to the standard output; name a file");
}

TEST_F(ZentaqctlVersions, MergeOfFilesUnderTwoNewNamesNamesTheResultAfterItsOwn) {
    const std::string ann = folder.file("ann.ZQ4OA");
    const std::string bob = folder.file("bob.ZQ4OA");
    change(base, "KNK_MIN 50 -o " + inQuotes(ann));
    change(base, "REV_Limiter 7200 -o " + inQuotes(bob));
    const auto join = [&] {
        return run("merge " + inQuotes(base) + " " + inQuotes(ann) + " " + inQuotes(bob) + " -o " +
                   inQuotes(merged));
    };
    const Outcome outcome = join();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.error;
    EXPECT_EQ(run("get " + inQuotes(merged) + " BiName").out, "merged\n");
    EXPECT_EQ(cellOf(merged, 34), 50);
    EXPECT_EQ(cellOf(merged, 58), 7200);

    // A name that somebody chose is a change like any other.
    change(ann, "BiName 'Wet track'");
    fs::remove(merged);
    EXPECT_THAT(
        join(),
        Fails(1, _, "name: \"tune\" in the base, \"Wet track\" in the first, \"bob\" in the second\n"));
}

TEST_F(ZentaqctlVersions, MergeRefusesACutFileWithoutForce) {
    const std::string lost =
        " is damaged: The file ends early: 831 of its 2828 cells are missing and were taken as 0.";
    change(yours, "KNK_MIN 50");
    const std::string whole = contentOf(yours);
    for (const std::string& cut : {base, mine, yours}) {
        const std::string before = contentOf(cut);
        writeFile(cut, before.substr(0, 8000));  // 2000 floats, 3 of them the header
        expectRefused(
            merge(inQuotes(yours)),
            cut + lost + " Look for a whole copy; --force takes it all the same. Nothing was written");
        EXPECT_TRUE(contentOf(yours) == (cut == yours ? whole.substr(0, 8000) : whole)) << cut;
        writeFile(cut, before);
    }
    writeFile(mine, contentOf(mine).substr(0, 8000));
    const Outcome forced = merge(inQuotes(merged) + " --force");
    EXPECT_EQ(forced.exitCode, 0) << forced.out;
    EXPECT_EQ(linesOf(forced.error).front(), mine + lost);
    EXPECT_EQ(cellOf(merged, 34), 50);
}

TEST_F(ZentaqctlVersions, MergeNamesTheFileThatIsNoCalibration) {
    writeFile(yours, "hello");
    expectRefused(merge(inQuotes(merged)),
                  yours + ": This is no calibration file: it ends inside its header, after 5 bytes");
}

}  // namespace
}  // namespace zentaq
