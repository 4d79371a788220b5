#include "app/general_config.h"
#include "app/general_fixture.h"
#include "base/errors.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

// ---- Captions and lists

TEST_F(GeneralConfigForm, CallsItsFieldsByTheirCaptions) {
    prepare();
    const std::pair<const char*, const char*> captions[] = {
        {"txtRPM", "Maximum Engine &Rev Limit (1000 to 20000) "},
        {"txtTOG", "Time for One Gama (TOG)"},
        {"txtUAP", "Maximum Controllable PulseWidth"},
        {"txtPOT", "Injector Offset Time (IOT)"},
        {"txtMIT", "Minimum Injector Turn-on Time (MIT)"},
        {"txtTPS", "TPS Fully Closed Throttle Voltage"},
        {"cmbCams", "Camshaft Style "},
        {"txtMAP", "MAP Sensor Installed"},
        {"txtMaxBoost", "Max Boost Pressure (0 to 100 kPa)"},
        {"txtINJ", "Number of Injectors (1 to 24) "},
        {"optInjAmp2", "2 Amp Inj Peak"},
        {"optInjAmp4", "4 Amp Inj Peak"},
        {"txtBHP", "Estimated Brake HorsePower"},
        {"chkAlcohol", "Check Box if Engine Alcohol Fueled"},
        {"txtLBHR", "lb/hr"},
        {"cmbEngine", "Engine Type"},
        {"cmbMAP", "MAP Sensor Installed"},
        {"cmbCols", "Columns"},
        {"cmbRows", "Rows"}};
    for (const auto& [control, caption] : captions)
        EXPECT_EQ(form.field(control).caption, caption) << control;
}

TEST_F(GeneralConfigForm, NamesTheHelpOfItsFields) {
    const std::pair<const char*, const char*> keys[] = {
        {"txtRPM", "helprevl"},         {"txtTOG", "helptog"},         {"txtPOT", "helptiot"},
        {"txtMIT", "helpmtot"},         {"txtTPS", "helpdace3"},       {"cmbCams", "helpCamtype"},
        {"txtMAP", "helpmaprange"},     {"txtMaxBoost", "helpMboost"}, {"txtINJ", "helpinjnum"},
        {"optInjAmp2", "help42inj"},    {"optInjAmp4", "help42inj"},   {"txtBHP", "helpBrakeHP"},
        {"chkAlcohol", "helpfueltype"}, {"txtLBHR", "helpinjsize"}};
    for (const auto& [control, key] : keys) EXPECT_EQ(form.field(control).help, key) << control;
    for (const std::string_view control : GeneralConfig::controls()) {
        EXPECT_TRUE(session.database->help(form.field(control).help)) << control;
    }
}

TEST_F(GeneralConfigForm, HasNoOtherControls) {
    EXPECT_EQ(GeneralConfig::controls().size(), 20U);
    EXPECT_THROW(form.field("txtNothing"), NoSuchMember);
    EXPECT_THROW(form.enter("txtNothing", "1"), NoSuchMember);
}

TEST_F(GeneralConfigForm, OffersTableDimensionsOf8To16AndBeginsWith16) {
    prepare();
    for (const char* control : {"cmbCols", "cmbRows"}) {
        const Field field = form.field(control);
        EXPECT_EQ(field.text, "16");
        EXPECT_THAT(field.choices, ElementsAre("8", "9", "10", "11", "12", "13", "14", "15", "16"));
        EXPECT_TRUE(form.enter(control, "8"));
        EXPECT_EQ(text(control), "8");
        EXPECT_FALSE(form.enter(control, "7"));
        EXPECT_FALSE(form.enter(control, "17"));
        EXPECT_EQ(text(control), "8");
    }
}

TEST_F(GeneralConfigForm, ATableOfTheIgnitionOnlyUnitHasItsFixedSize) {
    prepare("PZK-2", "4 Cylinder Coil per Plug");
    EXPECT_FALSE(form.field("cmbCols").enabled);
    EXPECT_EQ(text("cmbCols"), "16");
}

TEST_F(GeneralConfigForm, FieldsThatAModelLacksAreEmptyAndOff) {
    prepare("PZK-2", "4 Cylinder Coil per Plug");
    for (const char* control : {"txtUAP", "txtPOT", "txtMIT", "cmbCams", "txtINJ", "optInjAmp2", "optInjAmp4",
                                "txtBHP", "chkAlcohol", "txtLBHR"}) {
        const Field field = form.field(control);
        EXPECT_FALSE(field.enabled) << control;
        EXPECT_FALSE(field.on) << control;
        EXPECT_EQ(field.text, "") << control;
    }
    for (const char* control :
         {"txtRPM", "txtTPS", "txtMAP", "txtMaxBoost", "txtTOG", "cmbEngine", "cmbMAP"}) {
        EXPECT_TRUE(form.field(control).enabled) << control;
    }
}

TEST_F(GeneralConfigForm, ANewCalibrationBeginsWithPlainFigures) {
    prepare();
    EXPECT_EQ(text("txtRPM"), "7000");
    EXPECT_EQ(text("txtUAP"), "8");
    EXPECT_EQ(text("txtPOT"), "1");
    EXPECT_EQ(text("txtINJ"), "4");
    EXPECT_EQ(text("txtMaxBoost"), "0");
    EXPECT_EQ(text("txtBHP"), "0");
    EXPECT_EQ(text("cmbCams"), "Street / Stock");
    EXPECT_FLOAT_EQ(unit().get("MT"), session.database->defaults("MT").front());
    EXPECT_FLOAT_EQ(unit().get("TPS_FCV"), session.database->defaults("TPS_FCV").front());
    EXPECT_EQ(form.lblUAP(), "");
}

// ---- Text boxes

struct BoxCase {
    const char* control;
    const char* member;
    const char* inside;
    const char* withComma;  ///< the same kind of number with a decimal comma
    float commaValue;
    const char* lowest;  ///< empty: no limit
    const char* highest;
    const char* below;
    const char* above;
    const char* limits;  ///< as the warning words them
};

void PrintTo(const BoxCase& box, std::ostream* out) {
    *out << box.control;
}

// The rating of sensor "1 BAR" is 1 bar, so 100 kPa of boost. Without power any flow up to 500 goes.
const BoxCase boxes[] = {
    {"txtRPM", "REV_Limiter", "6500", "6500,5", 6500.5F, "1000", "20000", "999", "20001",
     "(1000 to 20000 RPM)"},
    {"txtTOG", "RPM_Size", "7.5", "7,25", 7.25F, "", "", "", "", ""},
    {"txtUAP", "scale1", "8.5", "7,25", 7.25F, "3", "30", "2.99", "30.01", "(3 to 30 milliseconds (ms))"},
    {"txtPOT", "INJ_On", "1.5", "1,25", 1.25F, "-15", "15", "-15.01", "15.01",
     "(-15 to 15 milliseconds (ms))"},
    {"txtMIT", "MT", "1.8", "1,4", 1.4F, "0", "5", "-0.01", "5.01", "(0 to 5 milliseconds (ms))"},
    {"txtTPS", "TPS_FCV", "0.6", "0,7", 0.7F, "0", "5", "-0.01", "5.01", "(0 to 5 Volts)"},
    {"txtMAP", "MAP_BAR", "2", "2,5", 2.5F, "1", "10", "0.99", "10.01", "(1.0 - 10.0 BAR)"},
    {"txtMaxBoost", "MAX_Boost", "50", "62,5", 0.625F, "0", "100", "-0.1", "100.1", "(0 to 100 kPa)"},
    {"txtINJ", "INJ_Number", "6", "7,0", 7, "1", "24", "0", "25", "(1 to 24)"},
    {"txtBHP", "BHP", "250", "250,5", 250.5F, "0", "5000", "-1", "5001", "(0 to 5000 HP)"},
    {"txtLBHR", "INJ_FlowRate", "42", "42,5", 42.5F, "0", "500", "-0.01", "500.01", "(0 to 500 Lbs/hr)"},
};

class TextBox : public GeneralConfigForm, public ::testing::WithParamInterface<BoxCase> {
 protected:
    const BoxCase& row = GetParam();

    void expectRefused(const char* entry) {
        const std::string shown = text(row.control);
        const float stored = unit().get(row.member);
        const int told = boxesShown();
        EXPECT_FALSE(form.enter(row.control, entry)) << entry;
        EXPECT_EQ(boxesShown(), told + 1) << entry;
        EXPECT_EQ(text(row.control), shown) << entry << ": the former text returns";
        EXPECT_EQ(unit().get(row.member), stored) << entry;
    }
    void expectOutside(const char* entry) {
        expectRefused(entry);
        EXPECT_EQ(box().text,
                  "Warning 1001: Data Input Error\n" + std::string(row.limits) + " - Invalid Entry.");
        EXPECT_EQ(box().title, "Data Input Error");
        EXPECT_EQ(fake.windows.calls.back(), "focus frmGeneralConfig");
    }
};

TEST_P(TextBox, TakesAValueInsideItsLimits) {
    prepare();
    EXPECT_TRUE(form.enter(row.control, row.inside));
    EXPECT_EQ(boxesShown(), 0);
    EXPECT_TRUE(form.modified());
    EXPECT_TRUE(form.enter(row.control, text(row.control))) << "what is shown is taken again";
}

TEST_P(TextBox, TakesADecimalCommaAsAPoint) {
    prepare();
    EXPECT_TRUE(form.enter(row.control, row.withComma));
    EXPECT_FLOAT_EQ(unit().get(row.member), row.commaValue);
    EXPECT_EQ(boxesShown(), 0);
}

TEST_P(TextBox, TakesItsLimitsAndNothingBeyond) {
    prepare();
    if (std::string(row.lowest).empty()) {
        EXPECT_TRUE(form.enter(row.control, "-123456"));
        EXPECT_TRUE(form.enter(row.control, "123456"));
        EXPECT_EQ(boxesShown(), 0);
        return;
    }
    EXPECT_TRUE(form.enter(row.control, row.lowest)) << row.lowest;
    EXPECT_TRUE(form.enter(row.control, row.highest)) << row.highest;
    EXPECT_EQ(boxesShown(), 0);
    expectOutside(row.below);
    expectOutside(row.above);
    expectOutside("-1e30");
    expectOutside("1e30");
}

TEST_P(TextBox, RefusesAnEmptyEntry) {
    prepare();
    form.enter(row.control, row.inside);
    for (const char* entry : {"", "   "}) {
        expectRefused(entry);
        EXPECT_EQ(box().title, "Error 1004") << entry;
    }
}

TEST_P(TextBox, RefusesWhatIsNoNumber) {
    prepare();
    for (const char* entry :
         {"-", "abc", "12x", "1.5.2", "1,5,2", "1.,5", "--3", "nan", "inf", "0x10", "1e99"}) {
        expectRefused(entry);
        EXPECT_EQ(box().text, "Warning 1000: Data Input Error\nNon-numeric value detected.\nRetype Data")
            << entry;
    }
}

TEST_P(TextBox, RefusesAnEntryBeforeAModelIsChosen) {
    startNew();
    EXPECT_FALSE(form.enter(row.control, row.inside));
    EXPECT_EQ(box().title, "Error 1004");
    EXPECT_EQ(text(row.control), "");
    EXPECT_FALSE(form.modified());
}

TEST_P(TextBox, ShowsWhatIsStoredAndChangesTheCalibrationInHand) {
    haveInHand();
    EXPECT_TRUE(form.enter(row.control, row.inside));
    EXPECT_TRUE(session.DataModified);
    EXPECT_TRUE(form.modified());
    const std::string shown = text(row.control);
    form.unload();
    form.load();
    EXPECT_EQ(text(row.control), shown);
}

TEST_P(TextBox, LeavingItUntouchedChangesNothing) {
    haveInHand();
    EXPECT_TRUE(form.enter(row.control, text(row.control)));
    EXPECT_FALSE(session.DataModified);
    EXPECT_EQ(boxesShown(), 0);
}

INSTANTIATE_TEST_SUITE_P(GeneralConfig, TextBox, ::testing::ValuesIn(boxes),
                         [](const auto& test) { return std::string(test.param.control); });

TEST_F(GeneralConfigForm, TellsTheLimitsThatNoCaptionTells) {
    prepare();
    EXPECT_EQ(form.field("txtRPM").limits, "");
    EXPECT_EQ(form.field("txtINJ").limits, "");
    EXPECT_EQ(form.field("txtMaxBoost").limits, "gauge, 0: none");
    EXPECT_EQ(form.field("txtPOT").limits, "(-15 to 15 milliseconds (ms))");
    EXPECT_EQ(form.field("txtLBHR").limits, "(0 to 500 Lbs/hr)");
    EXPECT_EQ(form.field("txtBHP").limits, "(0 to 5000 HP)");
}

TEST_F(GeneralConfigForm, TheNumberOfInjectorsIsAWholeOne) {
    prepare();
    form.enter("txtINJ", "6");
    const int told = boxesShown();
    EXPECT_FALSE(form.enter("txtINJ", "6.5"));
    EXPECT_EQ(boxesShown(), told + 1);
    EXPECT_EQ(box().text, "Warning 1002: Data Input Error\nEnter Whole Numbers Only");
    EXPECT_EQ(text("txtINJ"), "6");
}

TEST_F(GeneralConfigForm, AnOffsetTimeIsKeptInEighths) {
    prepare();
    EXPECT_TRUE(form.enter("txtPOT", "1.3"));
    EXPECT_EQ(text("txtPOT"), "1.25");  // 10.4 eighths
}

// ---- Boost

TEST_F(GeneralConfigForm, TheBoostIsLimitedByTheSensorInItsOwnUnit) {
    prepare();
    const std::pair<const char*, const char*> sensors[] = {
        {"2.5 BAR (10-260 kPa)", "Max Boost Pressure (0 to 250 kPa)"},          // 2.5 * 100
        {"2 BAR (1.3-30.2 PSIA)", "Max Boost Pressure (0 to 29.01 PSI)"},       // 2 * 14.504
        {"3 BAR (-14.5 to 31.1 PSIG)", "Max Boost Pressure (0 to 43.51 PSI)"},  // 3 * 14.504
        {"1 BAR (78-786 mmHg)", "Max Boost Pressure (0 to 750.1 mmHg)"},
        {"2 BAR (2.6-61.4 inHg)", "Max Boost Pressure (0 to 59.06 inHg)"}};  // 2 * 29.53
    for (const auto& [sensor, caption] : sensors) {
        ASSERT_TRUE(form.enter("cmbMAP", sensor));
        EXPECT_EQ(form.field("txtMaxBoost").caption, caption);
    }
    EXPECT_TRUE(form.enter("txtMaxBoost", "59.06"));
    EXPECT_FALSE(form.enter("txtMaxBoost", "59.07"));
    EXPECT_THAT(box().text, HasSubstr("(0 to 59.06 inHg) - Invalid Entry."));
    EXPECT_NEAR(unit().get("MAX_Boost"), 2, 1e-4);  // its reader answers bar
}

TEST_F(GeneralConfigForm, AnAirFlowSensorHasNoBoost) {
    session.database->addMapSensor({.description = "Meter", .scale = 0.05F, .offset = 0, .units = 6});
    prepare();
    form.enter("txtMaxBoost", "30");
    ASSERT_TRUE(form.enter("cmbMAP", "Meter"));
    const Field field = form.field("txtMaxBoost");
    EXPECT_EQ(field.caption, "Max Boost Pressure (Not Used)");
    EXPECT_FALSE(field.enabled);
    EXPECT_EQ(field.text, "");
    EXPECT_TRUE(form.enter("txtMaxBoost", "20")) << "nothing is stored, nothing is refused";
    EXPECT_EQ(boxesShown(), 0);
    EXPECT_EQ(unit().DirectIndex(2200), 30);
}

// ---- Lists, options, check box

TEST_F(GeneralConfigForm, ACamshaftIsStreetOrRace) {
    prepare();
    EXPECT_THAT(form.field("cmbCams").choices, ElementsAre("Street / Stock", "Race / High Perf"));
    EXPECT_TRUE(form.enter("cmbCams", "Race / High Perf"));
    EXPECT_EQ(unit().get("CAMSTL"), 1);
    EXPECT_TRUE(form.enter("cmbCams", "Street / Stock"));
    EXPECT_EQ(unit().get("CAMSTL"), 0);
    EXPECT_FALSE(form.enter("cmbCams", "Wild"));
    EXPECT_EQ(text("cmbCams"), "Street / Stock");
}

TEST_F(GeneralConfigForm, OneOfThePeakCurrentsIsOn) {
    prepare();
    EXPECT_TRUE(form.field("optInjAmp2").on);
    EXPECT_FALSE(form.field("optInjAmp4").on);
    form.click("optInjAmp4", true);
    form.click("optInjAmp2", false);  // the group turns the other one off
    EXPECT_EQ(unit().get("AMP42"), 1);
    EXPECT_TRUE(unit().Get_Control3(3));
    EXPECT_FALSE(form.field("optInjAmp2").on);
    EXPECT_TRUE(form.field("optInjAmp4").on);
    form.click("optInjAmp2", true);
    EXPECT_EQ(unit().get("AMP42"), 0);
    EXPECT_FALSE(unit().Get_Control3(3));
}

TEST_F(GeneralConfigForm, AClickBeforeAModelIsChosenIsRefused) {
    startNew();
    form.click("chkAlcohol", true);
    EXPECT_EQ(box().title, "Error 1004");
    EXPECT_FALSE(form.field("chkAlcohol").on);
    EXPECT_FALSE(form.enter("cmbCams", "Race / High Perf"));
    EXPECT_FALSE(form.enter("cmbEngine", fourCylinders));
    EXPECT_FALSE(form.enter("cmbMAP", oneBar));
    EXPECT_EQ(boxesShown(), 4);
}

TEST_F(GeneralConfigForm, AlcoholIsAMemberOfTheCalibration) {
    prepare();
    form.click("chkAlcohol", true);
    EXPECT_EQ(unit().get("Alcohol"), 1);
    EXPECT_TRUE(form.field("chkAlcohol").on);
    form.click("chkAlcohol", false);
    EXPECT_EQ(unit().get("Alcohol"), 0);
}

// ---- Computed figures. A sequential four: k = 0.4 + 0.0125 * 4 = 0.45, one injection in 60,000 / RPM ms.

class Computed : public GeneralConfigForm {
 protected:
    Computed() {
        prepare();
        form.enter("txtRPM", "6000");
        form.enter("txtBHP", "200");
    }
};

TEST_F(Computed, AFlowFollowsFromThePower) {
    EXPECT_DOUBLE_EQ(form.sizing()->InjectionPeriod, 10);
    EXPECT_DOUBLE_EQ(form.sizing()->InjectorFlowNeed, 22.5);  // 0.45 * 200 / 4
    EXPECT_EQ(text("txtLBHR"), "25.57");                      // 22.5 * 10 / 8.8 = 25.568
    EXPECT_EQ(unit().get("INJ_FlowRate"), 25.57F);
    EXPECT_EQ(form.lblUAP(), "8.800");
    EXPECT_EQ(form.field("txtLBHR").limits, "(25.57 to 500 Lbs/hr)");
}

TEST_F(Computed, EachFigureThatMattersIsComputedWith) {
    form.enter("txtRPM", "7000");
    EXPECT_EQ(text("txtLBHR"), "26.16");  // 22.5 * 8.571 / 7.371
    form.enter("txtRPM", "6000");
    form.enter("txtINJ", "8");
    EXPECT_EQ(text("txtLBHR"), "12.78");  // 11.25 * 10 / 8.8
    form.enter("txtINJ", "4");
    form.click("chkAlcohol", true);
    EXPECT_EQ(text("txtLBHR"), "56.25");  // 49.5 * 10 / 8.8
    form.click("chkAlcohol", false);
    form.enter("cmbCams", "Race / High Perf");
    EXPECT_EQ(text("txtLBHR"), "31.25");  // 27.5 * 10 / 8.8
    form.enter("cmbCams", "Street / Stock");
    form.enter("txtMAP", "2");
    EXPECT_EQ(text("txtLBHR"), "28.41");  // 0.5 * 50 * 10 / 8.8
    form.enter("txtMAP", "2,5");
    EXPECT_EQ(text("txtLBHR"), "25.57");  // 2.5 adds nothing
    form.enter("txtMAP", "3.5");
    EXPECT_EQ(text("txtLBHR"), "31.25");  // 0.55 * 50 * 10 / 8.8
    form.enter("txtMAP", "1");
    form.enter("txtINJ", "8");
    form.enter("cmbEngine", "8 Cylinder Coil per Plug, Sequential Injection");
    EXPECT_EQ(text("txtLBHR"), "14.20");  // (0.4 + 0.1) * 200 / 8 * 10 / 8.8
    form.enter("txtBHP", "400");
    EXPECT_EQ(text("txtLBHR"), "28.41");
}

TEST_F(Computed, ASensorMattersByItsRating) {
    form.enter("cmbMAP", "2 BAR (9-208 kPa)");
    EXPECT_EQ(text("txtLBHR"), "28.41");  // (0.45 + 0.05) * 50 * 10 / 8.8
    EXPECT_EQ(form.lblUAP(), "17.600");   // 8.8 * 2 / 1
    form.enter("txtMaxBoost", "60");      // kPa: 0.6 bar
    EXPECT_EQ(form.lblUAP(), "11.000");   // 8.8 * 2 / 1.6
    EXPECT_EQ(text("txtLBHR"), "28.41");
}

TEST_F(Computed, LargerInjectorsTakeAShorterPulseAndSmallerOnesAreRefused) {
    EXPECT_TRUE(form.enter("txtLBHR", "45"));
    EXPECT_EQ(text("txtLBHR"), "45.00");
    EXPECT_EQ(form.lblUAP(), "5.000");  // 10 * 22.5 / 45
    EXPECT_FALSE(form.enter("txtLBHR", "25.56"));
    EXPECT_EQ(box().text, "Warning 1001: Data Input Error\n(25.57 to 500 Lbs/hr) - Invalid Entry.");
    EXPECT_EQ(text("txtLBHR"), "45.00");
    EXPECT_TRUE(form.enter("txtLBHR", "25.57"));
    EXPECT_TRUE(form.enter("txtLBHR", "500"));
    EXPECT_FALSE(form.enter("txtLBHR", "500.1"));
}

TEST_F(Computed, AnEmptySpeedLeavesTheLastFigures) {
    EXPECT_FALSE(form.enter("txtRPM", ""));
    EXPECT_EQ(text("txtLBHR"), "25.57");
    EXPECT_EQ(form.lblUAP(), "8.800");
    unit().store("REV_Limiter", 0);  // as in a calibration where it was never given
    form.enter("txtBHP", "300");
    EXPECT_EQ(text("txtLBHR"), "25.57");
    EXPECT_EQ(form.lblUAP(), "8.800");
}

// "###.##" leaves out what is nothing and keeps the point, "###.00" has its two decimals always.
TEST_F(Computed, TheFormatsOfTheFlowWriteWholeAndSmallNumbersInTheirWay) {
    form.enter("cmbCams", "Race / High Perf");
    form.enter("txtBHP", "160");  // 0.55 * 160 / 4 * 10 / 8.8 = 25
    EXPECT_EQ(text("txtLBHR"), "25.00");
    EXPECT_EQ(form.field("txtLBHR").limits, "(25. to 500 Lbs/hr)");
    EXPECT_TRUE(form.enter("txtLBHR", "25"));
    form.enter("txtBHP", "1");  // 0.55 / 4 * 10 / 8.8 = 0.15625
    EXPECT_EQ(text("txtLBHR"), ".16");
    EXPECT_EQ(form.field("txtLBHR").limits, "(.16 to 500 Lbs/hr)");
    EXPECT_FALSE(form.enter("txtLBHR", "0.15"));
    EXPECT_TRUE(form.enter("txtLBHR", "0.16"));
    EXPECT_EQ(boxesShown(), 1);
}

TEST_F(Computed, NoPowerLeavesTheLastFigures) {
    EXPECT_TRUE(form.enter("txtBHP", "0"));
    EXPECT_EQ(text("txtLBHR"), "25.57");
    EXPECT_DOUBLE_EQ(form.sizing()->InjectorFlowNeed, 22.5);
}

TEST_F(Computed, AnEngineOfSeveralInjectionsShowsTwoPulses) {
    unit().store("PHDSEQ", 0);
    form.enter("txtBHP", "200.0");
    // 10 ms in two parts: 22.5 * 5 / 3.8 = 29.605; 2 * 3.8 + 1.2
    EXPECT_EQ(text("txtLBHR"), "29.61");
    EXPECT_EQ(form.lblUAP(), "8.800");
    EXPECT_DOUBLE_EQ(form.sizing()->InjectionPeriod, 5);
}

TEST_F(Computed, AShortPulseIsShownWithoutALeadingZero) {
    EXPECT_TRUE(form.enter("txtLBHR", "300"));
    EXPECT_EQ(form.lblUAP(), ".750");  // 10 * 22.5 / 300
}

}  // namespace
}  // namespace zentaq
