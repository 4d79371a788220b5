// The fields of frmGeneralConfig by keyboard: what is taken, what is refused, and what stands in the box
// afterwards.
#include <ostream>

#include "windows/frm_general_config_fixture.h"

namespace zentaq {
namespace {

/// A box for a number, on a new ORB A calibration for four cylinders with a sensor of 1 bar.
struct NumberBox {
    const char* control;
    const char* member;
    const char* first;  ///< text before anything is typed
    const char* inside;
    const char* lowest;
    const char* highest;
    const char* below;
    const char* above;
    const char* limits;  ///< what the warning says
};

void PrintTo(const NumberBox& box, std::ostream* out) {
    *out << box.control;
}

constexpr NumberBox numberBoxes[] = {
    {"txtRPM", "REV_Limiter", "7000", "6500", "1000", "20000", "999", "20001", "(1000 to 20000 RPM)"},
    {"txtMAP", "MAP_BAR", "1", "2.5", "1", "10", "0.9", "10.1", "(1.0 - 10.0 BAR)"},
    {"txtTPS", "TPS_FCV", "0.5", "0.75", "0", "5", "-0.1", "5.1", "(0 to 5 Volts)"},
    {"txtINJ", "INJ_Number", "4", "8", "1", "24", "0", "25", "(1 to 24)"},
    {"txtPOT", "INJ_On", "1", "1.25", "-15", "15", "-15.1", "15.1", "(-15 to 15 milliseconds (ms))"},
    {"txtMIT", "MT", "1.2", "1.5", "0", "5", "-0.1", "5.1", "(0 to 5 milliseconds (ms))"},
    {"txtUAP", "scale1", "8", "9.5", "3", "30", "2.9", "30.1", "(3 to 30 milliseconds (ms))"},
    {"txtMaxBoost", "", "0", "50", "0", "100", "-1", "101", "(0 to 100 kPa)"},
};

class GeneralNumber : public GeneralWindow, public testing::WithParamInterface<NumberBox> {
 protected:
    GeneralNumber() { openPrepared(); }

    void takes(const char* text) {
        put(GetParam().control, text);
        EXPECT_EQ(boxes(), 0u) << text << ": " << boxText();
        EXPECT_EQ(shown(GetParam().control), text);
        if (*GetParam().member != 0) {
            EXPECT_FLOAT_EQ(unit().get(GetParam().member), std::stof(text));
        }
    }
    void refuses(const char* text, const std::string& told) {
        const std::size_t before = boxes();
        put(GetParam().control, text);
        EXPECT_EQ(boxes(), before + 1) << text;
        EXPECT_EQ(boxText(), told) << text;
        EXPECT_EQ(shown(GetParam().control), GetParam().first) << "the former text returns";
        EXPECT_EQ(focused(), GetParam().control);
    }
};

TEST_P(GeneralNumber, TakesWhatLiesInsideAndAtItsLimits) {
    EXPECT_EQ(shown(GetParam().control), GetParam().first);
    takes(GetParam().inside);
    takes(GetParam().lowest);
    takes(GetParam().highest);
}

TEST_P(GeneralNumber, RefusesWhatLiesOutsideWithOneBoxEach) {
    const std::string told =
        "Warning 1001: Data Input Error\n" + std::string(GetParam().limits) + " - Invalid Entry.";
    refuses(GetParam().below, told);
    refuses(GetParam().above, told);
}

TEST_P(GeneralNumber, RefusesAnEmptyBoxAndWhatIsNoNumber) {
    const std::string noNumber = "Warning 1000: Data Input Error\nNon-numeric value detected.\nRetype Data";
    refuses("", noUnitText);
    refuses("-", noNumber);
    refuses("abc", noNumber);
}

TEST_P(GeneralNumber, RefusesOnceWhenLeftByTheTabKey) {
    typeOver(GetParam().control, GetParam().above);
    tab();
    EXPECT_EQ(boxes(), 1u);
    EXPECT_EQ(shown(GetParam().control), GetParam().first);
    EXPECT_EQ(focused(), GetParam().control) << "the field keeps the focus";
    tab();
    EXPECT_EQ(boxes(), 1u) << "the former text is left without a check";
    EXPECT_NE(focused(), GetParam().control);
}

TEST_P(GeneralNumber, EscapeBringsTheFormerTextBackAndTellsNothing) {
    typeOver(GetParam().control, GetParam().above);
    escape();
    EXPECT_EQ(shown(GetParam().control), GetParam().first);
    EXPECT_EQ(boxes(), 0u);
    EXPECT_TRUE(form->isVisible());
}

INSTANTIATE_TEST_SUITE_P(Every, GeneralNumber, testing::ValuesIn(numberBoxes),
                         [](const auto& made) { return std::string(made.param.control); });

class GeneralFields : public GeneralWindow {};

TEST_F(GeneralFields, EveryFieldWithLimitsShowsThemBesideTheBoxOrInItsCaption) {
    openPrepared();
    EXPECT_EQ(label("lblLimits_txtMAP"), "(1.0 - 10.0 BAR)");
    EXPECT_EQ(label("lblLimits_txtTPS"), "(0 to 5 Volts)");
    EXPECT_EQ(label("lblLimits_txtPOT"), "(-15 to 15 milliseconds (ms))");
    EXPECT_EQ(label("lblLimits_txtMIT"), "(0 to 5 milliseconds (ms))");
    EXPECT_EQ(label("lblLimits_txtUAP"), "(3 to 30 milliseconds (ms))");
    EXPECT_EQ(label("lblCaption_txtRPM"), "Maximum Engine &Rev Limit (1000 to 20000) ");
    EXPECT_EQ(label("lblCaption_txtINJ"), "Number of Injectors (1 to 24) ");
    EXPECT_EQ(label("lblCaption_txtMaxBoost"), "Max Boost Pressure (0 to 100 kPa)");
}

TEST_F(GeneralFields, ACommaIsADecimalPoint) {
    openPrepared();
    put("txtUAP", "8,5");
    EXPECT_EQ(boxes(), 0u);
    EXPECT_EQ(shown("txtUAP"), "8.5");
    EXPECT_FLOAT_EQ(unit().get("scale1"), 8.5f);
}

TEST_F(GeneralFields, LeavingAFieldTakesItsText) {
    openPrepared();
    typeOver("txtRPM", "6500");
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 7000.0f);
    tab();
    EXPECT_FLOAT_EQ(unit().get("REV_Limiter"), 6500.0f);
    EXPECT_EQ(focused(), "txtBHP");
}

// k = 0.4 + 0.0125 * 4 = 0.45; 0.45 * 200 / 4 = 22.5 lb/hr; 60000 / 7000 = 8.5714 ms between injections;
// 22.5 * 8.5714 / 7.3714 = 26.163 lb/hr; 8.5714 * 22.5 / 26.163 = 7.371 ms at a full sensor of 1 bar.
TEST_F(GeneralFields, ThePowerGivesTheInjectorsAndTheirPulse) {
    openPrepared();
    EXPECT_EQ(label("lblUAP"), "");
    put("txtBHP", "200");
    EXPECT_EQ(shown("txtLBHR"), "26.16");
    EXPECT_EQ(label("lblLimits_txtLBHR"), "(26.16 to 500 Lbs/hr)");
    EXPECT_EQ(label("lblUAP"), "7.371");
}

// 60000 / 6000 = 10 ms; 22.5 * 10 / 8.8 = 25.568 lb/hr; 10 * 22.5 / 25.568 = 8.8 ms.
TEST_F(GeneralFields, TheComputedFiguresFollowTheRevLimit) {
    openPrepared();
    put("txtBHP", "200");
    put("txtRPM", "6000");
    EXPECT_EQ(shown("txtLBHR"), "25.57");
    EXPECT_EQ(label("lblUAP"), "8.800");
}

// 22.5 * 2.2 = 49.5; 49.5 * 8.5714 / 7.3714 = 57.558.
TEST_F(GeneralFields, TheSpaceKeyOnTheFuelBoxMultipliesTheFlow) {
    openPrepared();
    put("txtBHP", "200");
    go("chkAlcohol");
    key(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_TRUE(find<QCheckBox>("chkAlcohol")->isChecked());
    EXPECT_EQ(unit().get("Alcohol"), 1.0f);
    EXPECT_EQ(shown("txtLBHR"), "57.56");
    key(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_EQ(unit().get("Alcohol"), 0.0f);
    EXPECT_EQ(shown("txtLBHR"), "26.16");
}

// 0.55 * 200 / 4 = 27.5; 27.5 * 8.5714 / 7.3714 = 31.977.
TEST_F(GeneralFields, ARaceCamTakesItsOwnFactor) {
    openPrepared();
    put("txtBHP", "200");
    pick("cmbCams", "Race / High Perf");
    EXPECT_EQ(unit().get("CAMSTL"), 1.0f);
    EXPECT_EQ(shown("txtLBHR"), "31.98");
}

TEST_F(GeneralFields, TheInjectorSizeIsNeverBelowTheComputedFlowNorAbove500) {
    openPrepared();
    put("txtBHP", "200");
    for (const char* text : {"26", "500.1"}) {
        put("txtLBHR", text);
        EXPECT_EQ(boxText(), "Warning 1001: Data Input Error\n(26.16 to 500 Lbs/hr) - Invalid Entry.");
        EXPECT_EQ(shown("txtLBHR"), "26.16");
    }
    EXPECT_EQ(boxes(), 2u);
    put("txtLBHR", "42");
    EXPECT_EQ(boxes(), 2u);
    EXPECT_EQ(shown("txtLBHR"), "42.00");
}

TEST_F(GeneralFields, TheArrowKeysChangeThePeakCurrent) {
    openPrepared();
    go("optInjAmp2");
    key(Qt::Key_Right);
    EXPECT_EQ(focused(), "optInjAmp4");
    EXPECT_EQ(unit().get("AMP42"), 1.0f);
    EXPECT_TRUE(find<QRadioButton>("optInjAmp4")->isChecked());
    key(Qt::Key_Left);
    EXPECT_EQ(unit().get("AMP42"), 0.0f);
    EXPECT_TRUE(find<QRadioButton>("optInjAmp2")->isChecked());
}

TEST_F(GeneralFields, AnEntryWithoutAModelAnswersError1004AndTheBoxIsEmptyAgain) {
    for (const char* control : {"txtMAP", "txtMaxBoost", "txtRPM", "txtBHP", "txtTPS", "txtINJ", "txtLBHR",
                                "txtPOT", "txtMIT", "txtUAP", "txtTOG"}) {
        openNew();
        dialogs.boxes.clear();
        put(control, "5");
        EXPECT_EQ(boxes(), 1u) << control;
        EXPECT_EQ(boxText(), noUnitText) << control;
        EXPECT_EQ(shown(control), "") << control;
        EXPECT_EQ(focused(), control);
    }
}

TEST_F(GeneralFields, AnOptionWithoutAModelAnswersError1004AndStaysOff) {
    for (const char* control : {"chkAlcohol", "optInjAmp2"}) {
        openNew();
        dialogs.boxes.clear();
        go(control);
        key(Qt::Key_Space, Qt::NoModifier, " ");
        EXPECT_EQ(boxes(), 1u) << control;
        EXPECT_EQ(boxText(), noUnitText) << control;
        EXPECT_FALSE(find<QAbstractButton>(control)->isChecked()) << control;
    }
}

TEST_F(GeneralFields, AListWithoutAModelAnswersError1004AndStaysEmpty) {
    openNew();
    go("cmbMAP");
    key(Qt::Key_Down);
    EXPECT_EQ(boxes(), 1u);
    EXPECT_EQ(boxText(), noUnitText);
    EXPECT_EQ(chosen("cmbMAP"), "");
    EXPECT_EQ(unit().kind().slot, 0);
}

TEST_F(GeneralFields, WalkingThroughAnEmptyFormAsksNothing) {
    openNew();
    constexpr int twiceAround = 50;
    for (int i = 0; i < twiceAround; ++i) tab();
    EXPECT_EQ(boxes(), 0u);
}

TEST_F(GeneralFields, TheListsOfferModelsCamsAndSizesInTheirOrder) {
    openPrepared();
    const auto entries = [&](const char* name) {
        std::vector<std::string> texts;
        const auto* list = find<QComboBox>(name);
        for (int i = 0; i < list->count(); ++i) texts.push_back(list->itemText(i).toStdString());
        return texts;
    };
    using testing::ElementsAre;
    EXPECT_THAT(entries("cmbORB_UNIT"),
                ElementsAre("ORB A Standard", "ORB A 6/12", "ORB AR", "ORB L", "PZK-2", "ORB D", "ORB C"));
    EXPECT_THAT(entries("cmbCams"), ElementsAre("Street / Stock", "Race / High Perf"));
    EXPECT_THAT(entries("cmbCols"), ElementsAre("8", "9", "10", "11", "12", "13", "14", "15", "16"));
    EXPECT_EQ(entries("cmbRows"), entries("cmbCols"));
    EXPECT_EQ(chosen("cmbCols"), "16");
    EXPECT_EQ(chosen("cmbRows"), "16");
}

TEST_F(GeneralFields, AnotherModelFillsTheEngineListForItsVariant) {
    openNew();
    constexpr auto twelve = "12 Cylinder Wasted Spark, Paired Injection";
    pick("cmbORB_UNIT", "ORB A Standard");
    EXPECT_EQ(find<QComboBox>("cmbEngine")->findText(twelve), -1);
    pick("cmbORB_UNIT", "ORB A 6/12");
    EXPECT_GE(find<QComboBox>("cmbEngine")->findText(twelve), 0);
}

TEST_F(GeneralFields, AnIgnitionOnlyUnitHasNoInjectors) {
    openPrepared("PZK-2", "4 Cylinder Coil per Plug");
    for (const char* control : {"txtINJ", "optInjAmp2", "optInjAmp4", "txtLBHR", "txtPOT", "txtMIT", "txtUAP",
                                "txtBHP", "cmbCams", "chkAlcohol"}) {
        EXPECT_FALSE(usable(control)) << control;
    }
    for (const char* control : {"txtRPM", "txtTPS", "txtMAP", "txtMaxBoost", "cmbMAP", "cmbEngine"}) {
        EXPECT_TRUE(usable(control)) << control;
    }
    EXPECT_FALSE(usable("lblInjectorSize"));
    EXPECT_TRUE(usable("lblRange"));
    EXPECT_FALSE(usable("lblComputed"));
}

TEST_F(GeneralFields, ABoxWhoseCaptionAloneDoesNotTellHasALabelOfItsOwn) {
    openPrepared();
    EXPECT_EQ(label("lblRange"), "MAP Sensor Range");
    EXPECT_EQ(find<QLabel>("lblRange")->buddy(), find("txtMAP"));
    EXPECT_EQ(find("txtMAP")->accessibleName(), "MAP Sensor Range, MAP Sensor Installed");
    EXPECT_EQ(find("cmbMAP")->accessibleName(), "MAP Sensor Installed");
    EXPECT_EQ(label("lblInjectorSize"), "Injector Size");
    EXPECT_EQ(find("txtLBHR")->accessibleName(), "Injector Size, lb/hr");
}

TEST_F(GeneralFields, TheLabelsThatStandForNoSingleBoxAreThere) {
    openPrepared();
    EXPECT_EQ(label("lblDimensions"), "Table Start Dimensions");
    EXPECT_EQ(label("lblComputed"), "Zentaq Calculated TOG");
    EXPECT_EQ(label("lblCaption_cmbCols"), "Columns");
    EXPECT_EQ(label("lblCaption_cmbRows"), "Rows");
    EXPECT_EQ(label("lblCaption_txtLBHR"), "lb/hr");
}

TEST_F(GeneralFields, ASensorInAnotherUnitChangesTheBoostCaption) {
    openPrepared();
    pick("cmbMAP", "2 BAR (1.3-30.2 PSIA)");
    // 2 bar of 14.504 PSI each, with the two decimals that this sensor's pressures are shown with.
    EXPECT_EQ(label("lblCaption_txtMaxBoost"), "Max Boost Pressure (0 to 29.01 PSI)");
}

TEST_F(GeneralFields, ASensorIsShownEscapedAndChosenAsItIs) {
    const QString shown = "Turbo\\x1B[31m <b>x</b>\\n";
    session.database->addMapSensor({0, "Turbo\x1B[31m <b>x</b>\n", 0.03F, -0.3F, 1});
    openPrepared();
    pick("cmbMAP", shown);
    EXPECT_EQ(chosen("cmbMAP"), shown.toStdString()) << "the form took it and shows it";
    EXPECT_FALSE(Qt::mightBeRichText(find<QComboBox>("cmbMAP")->toolTip()) &&
                 find<QComboBox>("cmbMAP")->toolTip().contains("<b>"))
        << "no tip draws it as HTML";
    EXPECT_EQ(session.database->mapSensorByName("Turbo\x1B[31m <b>x</b>\n")->scale, 0.03F);
}

}  // namespace
}  // namespace zentaq
