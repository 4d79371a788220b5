#include "logs/plot_layout.h"

#include <gtest/gtest.h>

#include "testing/memory_settings.h"

namespace zentaq {
namespace {

using Panes = std::vector<PlotPane>;

TEST(PlotLayoutText, TellsPanesChannelsAndScales) {
    const Panes panes{{{"RPM"}}, {{"MAP", "TPS"}}, {{"DAFR", "AAFR"}, true}};
    EXPECT_EQ(panesText(panes), "RPM;MAP,TPS;=DAFR,AAFR");
    EXPECT_EQ(panesIn("RPM;MAP,TPS;=DAFR,AAFR"), panes);
}

TEST(PlotLayoutText, KeepsANameThatHoldsItsSigns) {
    const Panes panes{{{"a,b", "50%;=x"}}};
    EXPECT_EQ(panesText(panes), "a%2Cb,50%25%3B%3Dx");
    EXPECT_EQ(panesIn(panesText(panes)), panes);
}

TEST(PlotLayoutText, TakesWhatAnybodyMayHaveWrittenIntoTheSettings) {
    EXPECT_EQ(panesIn(""), Panes{});
    EXPECT_EQ(panesIn(";;=;,"), Panes{});
    EXPECT_EQ(panesIn("RPM;RPM,MAP"), (Panes{{{"RPM"}}, {{"MAP"}}})) << "a channel has one place";
    EXPECT_EQ(panesIn("50%"), (Panes{{{"50%"}}}));
    EXPECT_EQ(panesIn("%zz"), (Panes{{{"%zz"}}}));
}

TEST(PlotPanes, OfChannelsPutThoseOfOneKindOnOneScale) {
    EXPECT_EQ(panesOf({"RPM", "DAFR", "MAP", "AAFR"}),
              (Panes{{{"RPM"}}, {{"DAFR", "AAFR"}, true}, {{"MAP"}}}));
}

TEST(PlotPanes, AChannelJoinsOneOutOfWhereItWas) {
    Panes panes{{{"RPM"}}, {{"MAP"}}, {{"TPS"}}};
    joinPane(panes, "RPM", 2);
    EXPECT_EQ(panes, (Panes{{{"MAP"}}, {{"TPS", "RPM"}}}));
    joinPane(panes, "CLT", 0);
    EXPECT_EQ(panes, (Panes{{{"MAP", "CLT"}}, {{"TPS", "RPM"}}}));
    joinPane(panes, "MAT", 9);
    EXPECT_EQ(panes, (Panes{{{"MAP", "CLT"}}, {{"TPS", "RPM"}}, {{"MAT"}}}));
}

TEST(PlotPanes, AChannelGetsOneOfItsOwnOutOfWhereItWas) {
    Panes panes{{{"RPM"}}, {{"MAP", "TPS"}}};
    newPane(panes, "TPS", 0);
    EXPECT_EQ(panes, (Panes{{{"TPS"}}, {{"RPM"}}, {{"MAP"}}}));
    newPane(panes, "TPS", 3);
    EXPECT_EQ(panes, (Panes{{{"RPM"}}, {{"MAP"}}, {{"TPS"}}}));
}

TEST(PlotPanes, GoWithTheirLastChannel) {
    Panes panes{{{"RPM"}}, {{"MAP", "TPS"}}};
    removeChannel(panes, "RPM");
    removeChannel(panes, "TPS");
    removeChannel(panes, "KNOCK");
    EXPECT_EQ(panes, (Panes{{{"MAP"}}}));
    EXPECT_EQ(channelsOf(panes), std::vector<std::string>{"MAP"});
}

TEST(SavedPlotLayouts, ComeBackInTheOrderOfSaving) {
    MemorySettings settings;
    PlotLayouts layouts(settings);
    EXPECT_TRUE(layouts.all().empty());
    const PlotLayout fuel{"Fuel, all", {{{"DAFR", "AAFR"}, true}}};
    const PlotLayout spark{"Spark", {{{"PRIADV"}}, {{"KNOCK"}}}};
    layouts.save(fuel);
    layouts.save(spark);
    EXPECT_EQ(PlotLayouts(settings).all(), (std::vector<PlotLayout>{fuel, spark}));
    EXPECT_EQ(settings.get("Plots", "Layout2Panes"), "PRIADV;KNOCK");
}

TEST(SavedPlotLayouts, AreWrittenOverByTheirNameAndRemoved) {
    MemorySettings settings;
    PlotLayouts layouts(settings);
    layouts.save({"One", {{{"RPM"}}}});
    layouts.save({"Two", {{{"MAP"}}}});
    layouts.save({"One", {{{"TPS"}}}});
    EXPECT_EQ(layouts.all(), (std::vector<PlotLayout>{{"One", {{{"TPS"}}}}, {"Two", {{{"MAP"}}}}}));
    layouts.remove("One");
    layouts.remove("Three");
    EXPECT_EQ(layouts.all(), (std::vector<PlotLayout>{{"Two", {{{"MAP"}}}}}));
    EXPECT_EQ(settings.get("Plots", "Layout2Name"), "");
}

}  // namespace
}  // namespace zentaq
