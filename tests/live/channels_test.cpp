// Each channel by hand, in one row: what the wide frame of an ORB A makes of it, and its words and texts in a
// datalog, on the dashboard and among the data points.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

#include "base/text.h"
#include "live/dashboard_readings.h"
#include "live/datalog_writer.h"
#include "live/decoding.h"

namespace zentaq {
namespace {

using ::testing::UnorderedElementsAre;

constexpr double untold = NAN;

struct Expected {
    std::string_view name;
    double value;  ///< of `wideFrameOfOrba`
    std::string_view heading, logText;
    std::string_view label, caption, text, unit;
    std::string_view dataPoint;
};

/// The file's columns and the stored places of the data points follow this order.
constexpr auto expected = std::to_array<Expected>({
    {"RPM", 3100, "RPM", "3100", "lblTach", "Engine Speed", "3100", "rpm", "RPM"},  // 12 * 256 + 28
    // 600 / 4 = 150; (2.941176 + 0.54738) / 0.05295 = 65.884
    {"MAP", 65.9F, "MAP", "65.9", "lblMAP", "Manifold Pressure", "65.9", "kPa", "MAP"},
    {"TPS", 2, "TPS", "2", "lblTPS", "Throttle Position", "2.00", "v", "Throttle Position Sensor"},
    {"CLT", 79, "CLT", "79", "lblCLT", "Coolant Temperature", "79", "C", "Coolant Temp"},
    {"MAT", 27, "MAT", "27", "lblMAT", "Manifold Temperature", "27", "C", "Manifold Air Temp"},
    {"BATTV", 13.8F, "Batt V", "13.8", "lblVolt", "Battery Voltage", "13.8", "v", "Battery Voltage"},
    {"KNOCK", 20, "Knock", "20", "lblKNK", "Knock", "20", "%", "KNOCK"},
    {"EGOV", 1, "EGO V", "1", "lblEGOV", "EGO Voltage", "1.00", "v", "EGO Volts"},
    {"CHKE", 1, "ChkEng", "1", "CHKE", "Check Engine", "1", "", "CHKE"},
    {"PRIADV", 30, "Pri Adv", "30", "lblADV", "Advance", "30.0", "deg", "Ignition Advance"},
    {"SECADV", 18, "Sec Adv", "18", "lblSADV", "Secondary Advance", "18.0", "deg", "Secondary Advance"},
    {"KNKRET", 2, "Knock Retard", "2", "lblRetard", "Knock Retard", "2.0", "deg", "Knock Retard"},
    {"GAMA", 103, "GAMA", "103", "lblTFPW", "GAMA", "103", "%", "GAMA"},
    {"IPP", untold, "", "", "", "", "", "", "IPP"},
    {"PRIDUTY", 20, "Pri Duty", "20", "lblPID", "Primary Injector Dutycycle", "20.0", "%",
     "Primary Dutycycle"},
    {"PRIPW", 5, "Pri Pulsewidth", "5", "lblPPW", "Primary Injector ON Time", "5.00", "ms", "Pulse ON Time"},
    // Two turns at 3100 rpm last 38.71 ms.
    {"PRIOFFTIME", untold, "", "", "lblPOT", "Primary Injector OFF Time", "33.71", "ms", "Pulse OFF Time"},
    {"SECDUTY", 40, "Secondary Duty", "40", "lblSID", "Secondary Injector Dutycycle", "40.0", "%",
     "Staged Dutycycle"},
    {"SECPW", 2.5, "Secondary Pulsewidth", "2.5", "lblSPW", "Secondary Injector ON Time", "2.50", "ms",
     "Staged Pulse ON"},
    {"SECOFFTIME", untold, "", "", "lblSOT", "Secondary Injector OFF Time", "36.21", "ms", "Staged Pulse OFF"},
    // Narrow frames alone tell it.
    {"SECPERCENT", 0, "Secondary Percent of Primary", "0", "lblSIP", "Secondary Percent of Primary", "0", "%",
     "Secondary Percent"},
    {"EGOC", -5, "EGO Correction", "-5", "lblEGOC", "EGO Corrections", "-5", "%", "EGO Correction"},
    {"DAFR", 9.8F, "Desired AFR", "9.8", "lblDAFR", "Desired Air-to-Fuel Ratio", "9.80", ":1", "DAFR"},
    {"AAFR", 14.73F, "Actual AFR", "14.73", "lblAAFR", "Actual Air-to-Fuel Ratio", "14.73", ":1", "AFR"},
    {"IACP", 50, "IAC Pos", "50", "lblIAC", "Idle Air Control", "50", "%", "IAC Position"},  // 128 / 2.55
    {"IACD", 1, "Step Direction", "1", "lblIACDirection", "Idle Air Control Direction", "1", "", "IACD"},
    {"INJ_TOG", 9, "TOG", "9", "INJ_TOG", "TOG", "9.000", "ms", "INJ_TOG"},
    {"SEN_MAP", 5, "MAP Raw Voltage", "5", "SEN_MAP", "MAP Raw Voltage", "5.000", "v",
     "SEN_MAP"},  // 1023 / 204.6
    {"INJ_VE", 10, "VE Table", "10", "INJ_VE", "VE Table", "10", "%", "INJ_VE"},
    {"INJ_MAT", -10, "MAT Correction", "-10", "INJ_MAT", "MAT Correction", "-10", "%", "INJ_MAT"},
    {"INJ_CLT", 120, "CLT Correction", "120", "INJ_CLT", "CLT Correction", "120", "%", "INJ_CLT"},
    {"INJ_BARO", 0, "Barometric Correction", "0", "INJ_BARO", "Barometric Correction", "0", "%", "INJ_BARO"},
    {"INJ_SE0", 1, "SE0", "1", "INJ_SE0", "SE0", "1", "%", "INJ_SE0"},
    {"INJ_ASE0", 2, "ASE0", "2", "INJ_ASE0", "ASE0", "2", "%", "INJ_ASE0"},
    {"INJ_ASE1", 3, "ASE1", "3", "INJ_ASE1", "ASE1", "3", "%", "INJ_ASE1"},
    // 100 / (137 / (94.42871 * 0.0388))
    {"MAPACCL", 2.67433, "MAP Acceleration", "2.674", "MAPACCL", "MAP Acceleration", "2.674", "", "MAPACCL"},
    {"TPSACCL", 5, "TPS Acceleration", "5", "TPSACCL", "TPS Acceleration", "5.000", "V/s", "TPSACCL"},
    {"INJ_ACE2", 4, "ACE2", "4", "INJ_ACE2", "ACE2", "4", "%", "INJ_ACE2"},
    {"INJ_ACE5", 5, "ACE5", "5", "INJ_ACE5", "ACE5", "5", "%", "INJ_ACE5"},
    {"INJ_ACE6", 6, "ACE6", "6", "INJ_ACE6", "ACE6", "6", "%", "INJ_ACE6"},
    {"INJ_VLTCOMP", 0.08F, "Voltage Comp", "0.08", "INJ_VLTCOMP", "Voltage Comp", "0.080", "ms",
     "INJ_VLTCOMP"},  // 10 * 8 / 1000
    {"SEN_BLEND", 70, "Blend", "70", "SEN_BLEND", "Blend", "70", "%", "SEN_BLEND"},
    {"INJ_STAGE", 30, "Staged Percentage", "30", "INJ_STAGE", "Staged Percentage", "30", "%", "INJ_STAGE"},
    {"ADV_TBL", 20, "Table Advance", "20", "ADV_TBL", "Table Advance", "20.0", "deg", "ADV_TBL"},
    {"ADV_CLT", 4, "Coolant Advance", "4", "ADV_CLT", "Coolant Advance", "4.0", "deg", "ADV_CLT"},
    {"ADV_MAT", 0, "MAT Advance", "0", "ADV_MAT", "MAT Advance", "0.0", "deg", "ADV_MAT"},
    {"ADV_BARO", -4, "Barometric Advance", "-4", "ADV_BARO", "Barometric Advance", "-4.0", "deg", "ADV_BARO"},
    {"ADV_IDLE", 4, "Idle Advance", "4", "ADV_IDLE", "Idle Advance", "4.0", "deg", "ADV_IDLE"},
    {"ISRPM", 960, "Idle Speed", "960", "ISRPM", "Idle Speed", "960", "rpm", "ISRPM"},
});

class Channels : public testing::Test, public test::Decoding {
 protected:
    Channels() : Decoding(3) { decoder.MonitorW(unit, test::wideFrameOfOrba()); }

    /// The fields of a line, without its end.
    std::vector<std::string> fieldsOf(std::string line) {
        std::erase(line, '\r');
        std::erase(line, '\n');
        return split(line, '\t');
    }
    std::vector<std::string> headings() {
        std::ostringstream out;
        writeDatalogHeader(out, unit);
        return fieldsOf(split(out.str(), '\n').at(2));
    }
    std::vector<std::string> logTexts() {
        std::ostringstream out;
        DataRecord(out, unit, live, false, 1);
        return fieldsOf(out.str());
    }
};

bool carries(const UnitKind& kind, char command, const Channel& channel) {
    const auto content = contentOfFrame(kind, command);
    return content && std::ranges::find(content->values, &channel) != content->values.end();
}

bool isNarrow(const Channel& channel) {
    return carries(orbaKind(), 'F', channel) || carries(orbcKind(), 'F', channel);
}

TEST_F(Channels, AreTheseInThisOrderWithTheseDataPoints) {
    std::vector<std::string_view> names, places, expectedNames, expectedPlaces;
    for (const Channel& channel : channels) {
        names.push_back(channel.name);
        places.push_back(channel.dataPoint);
    }
    for (const Expected& row : expected) {
        expectedNames.push_back(row.name);
        expectedPlaces.push_back(row.dataPoint);
    }
    EXPECT_EQ(names, expectedNames);
    EXPECT_EQ(places, expectedPlaces);
    EXPECT_EQ(std::set(names.begin(), names.end()).size(), names.size());
}

TEST_F(Channels, AreToldByTheWideFrame) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const Expected& row = expected.at(i);
        if (std::isnan(row.value)) {
            EXPECT_TRUE(std::isnan(channels.at(i).in(live))) << row.name;
        } else {
            EXPECT_NEAR(channels.at(i).in(live), row.value, row.name == "MAPACCL" ? 0.0001 : 0) << row.name;
        }
    }
}

TEST_F(Channels, StandInDatalogsWithThePinsBehindTheFirstFortyNine) {
    std::vector<std::string> names{"Frame"}, texts{"1"};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (!expected.at(i).heading.empty()) {
            names.emplace_back(expected.at(i).heading);
            texts.emplace_back(expected.at(i).logText);
        }
        if (i != 48) continue;
        for (int pin = 1; pin <= 20; ++pin) names.push_back("GPIO" + std::to_string(pin));
        for (const char* text : {"21", "22", "23", "24", "25", "26", "27", "28", "0"})
            texts.emplace_back(text);
        texts.insert(texts.end(), 11, " 0");
    }
    EXPECT_EQ(headings(), names);
    EXPECT_EQ(logTexts(), texts);
}

TEST_F(Channels, StandOnTheDashboard) {
    const auto readings = dashboardReadings(live, unit, {});
    for (const Expected& row : expected) {
        if (row.caption.empty()) continue;
        const DashboardReading* reading = findReading(readings, row.label);
        ASSERT_NE(reading, nullptr) << row.label;
        EXPECT_EQ(reading->caption, row.caption);
        EXPECT_EQ(reading->text, row.text) << row.caption;
        EXPECT_EQ(reading->unit, row.unit) << row.caption;
    }
}

TEST_F(Channels, LackNoWordThatAReaderOfThemNeeds) {
    for (const Channel& channel : channels) {
        EXPECT_FALSE(channel.dataPoint.empty()) << channel.name;
        if (channel.name == "IPP") continue;  // neither told nor computed
        EXPECT_FALSE(channel.reading.caption.empty()) << channel.name;
        EXPECT_FALSE(channel.reading.format.empty()) << channel.name;
        EXPECT_LT(channel.span.low, channel.span.high) << channel.name;
        const bool told = !std::holds_alternative<std::monostate>(channel.value);
        EXPECT_EQ(channel.log.heading.empty(), !told) << channel.name;
        EXPECT_TRUE(told || channel.shown != nullptr) << channel.name;
    }
}

TEST_F(Channels, AreCarriedByTheFramesThatTheirRowsTell) {
    for (const Channel& channel : channels) {
        const bool wide = carries(orbaKind(), 'W', channel);
        EXPECT_EQ(channel.is(Channel::wideOnly), wide && !isNarrow(channel)) << channel.name;
        EXPECT_EQ(channel.is(Channel::ignition), carries(pzk2Kind(), 'F', channel)) << channel.name;
        const bool told = !std::holds_alternative<std::monostate>(channel.value);
        if (channel.name == "SECPERCENT") continue;  // follows from two others
        EXPECT_EQ(told, wide) << channel.name;
    }
}

TEST_F(Channels, AtAGlanceAreFourteen) {
    std::vector<std::string_view> names;
    for (const Channel& channel : channels) {
        if (channel.is(Channel::glance)) names.push_back(channel.name);
    }
    EXPECT_THAT(names, UnorderedElementsAre("RPM", "MAP", "TPS", "CLT", "MAT", "BATTV", "AAFR", "DAFR",
                                            "EGOC", "PRIADV", "KNOCK", "PRIPW", "PRIDUTY", "CHKE"));
}

}  // namespace
}  // namespace zentaq
