// The fields of frmGeneralConfig by keyboard: what is taken, what is refused, and what stands in the box
// afterwards.
#include <tuple>

#include "windows/frm_general_config_fixture.h"

namespace zentaq {
namespace {

class GeneralFields : public GeneralWindow {
 protected:
    void expectFormerText(std::size_t told) {
        EXPECT_EQ(boxes(), told);
        EXPECT_EQ(shown("txtRPM"), "7000") << "the former text returns";
        EXPECT_EQ(focusName(), "txtRPM") << "the field keeps the focus";
    }
};

TEST_F(GeneralFields, EveryBoxForANumberHandsOverWhatIsTyped) {
    openPrepared();
    for (const auto& [control, member, typed] :
         {std::tuple("txtRPM", "REV_Limiter", "6500"), std::tuple("txtMAP", "MAP_BAR", "2.5"),
          std::tuple("txtTPS", "TPS_FCV", "0.75"), std::tuple("txtINJ", "INJ_Number", "8"),
          std::tuple("txtPOT", "INJ_On", "1.25"), std::tuple("txtMIT", "MT", "1.5"),
          std::tuple("txtUAP", "scale1", "9.5")}) {
        put(control, typed);
        EXPECT_EQ(boxes(), 0u) << boxText();
        EXPECT_EQ(shown(control), typed);
        EXPECT_FLOAT_EQ(unit().get(member), std::stof(typed)) << control;
    }
    put("txtMaxBoost", "50");
    EXPECT_EQ(boxes(), 0u) << boxText();
    EXPECT_FLOAT_EQ(unit().get("MAX_Boost"), 0.5F);
}

TEST_F(GeneralFields, ABoxRefusesOnceByEnterAndByTheTabKeyAndBringsTheFormerTextBack) {
    openPrepared();
    typeOver("txtRPM", "20001");
    escape();
    expectFormerText(0);
    EXPECT_TRUE(form->isVisible());
    put("txtRPM", "20001");
    expectFormerText(1);
    EXPECT_EQ(boxText(), "Warning 1001: Data Input Error\n(1000 to 20000 RPM) - Invalid Entry.");
    put("txtRPM", "");
    expectFormerText(2);
    EXPECT_EQ(boxText(), noUnitText);
    typeOver("txtRPM", "20001");
    tab();
    expectFormerText(3);
    tab();
    EXPECT_EQ(boxes(), 3u) << "the former text is left without a check";
    EXPECT_NE(focusName(), "txtRPM");
}

TEST_F(GeneralFields, EveryFieldWithLimitsShowsThemBesideTheBoxOrInItsCaption) {
    openPrepared();
    EXPECT_EQ(label("lblLimits_txtMAP"), "(1.0 - 10.0 BAR)");
    EXPECT_EQ(label("lblCaption_txtRPM"), "Maximum Engine &Rev Limit (1000 to 20000) ");
    EXPECT_EQ(label("lblCaption_txtMaxBoost"), "Max Boost Pressure (0 to 100 kPa)");
}

TEST_F(GeneralFields, LeavingAFieldTakesItsTextAndShowsTheNumber) {
    openPrepared();
    typeOver("txtUAP", "8,5");
    EXPECT_FLOAT_EQ(unit().get("scale1"), 8.0f);
    tab();
    EXPECT_FLOAT_EQ(unit().get("scale1"), 8.5f);
    EXPECT_EQ(shown("txtUAP"), "8.5");
    EXPECT_EQ(focusName(), "txtTOG");
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

// 22.5 * 2.2 = 49.5; 49.5 * 8.5714 / 7.3714 = 57.558.
TEST_F(GeneralFields, TheSpaceKeyTurnsTheFuelBoxAndTheFlowFollows) {
    openPrepared();
    put("txtBHP", "200");
    go("chkAlcohol");
    for (const bool on : {true, false}) {
        key(Qt::Key_Space, Qt::NoModifier, " ");
        EXPECT_EQ(find<QCheckBox>("chkAlcohol")->isChecked(), on);
        EXPECT_EQ(unit().get("Alcohol"), on ? 1.0f : 0.0f);
        EXPECT_EQ(shown("txtLBHR"), on ? "57.56" : "26.16");
    }
}

TEST_F(GeneralFields, TheArrowKeysChangeThePeakCurrent) {
    openPrepared();
    go("optInjAmp2");
    key(Qt::Key_Right);
    EXPECT_EQ(focusName(), "optInjAmp4");
    EXPECT_EQ(unit().get("AMP42"), 1.0f);
    EXPECT_TRUE(find<QRadioButton>("optInjAmp4")->isChecked());
    key(Qt::Key_Left);
    EXPECT_EQ(unit().get("AMP42"), 0.0f);
    EXPECT_TRUE(find<QRadioButton>("optInjAmp2")->isChecked());
}

TEST_F(GeneralFields, AnEntryWithoutAModelAnswersError1004AndTheFieldIsEmptyAgain) {
    const auto told = [&](const char* control) {
        EXPECT_EQ(boxes(), 1u) << control;
        EXPECT_EQ(boxText(), noUnitText) << control;
        EXPECT_EQ(focusName(), control);
        dialogs.boxes.clear();
    };
    openNew();
    put("txtTOG", "5");
    told("txtTOG");
    EXPECT_EQ(shown("txtTOG"), "");
    for (const char* control : {"chkAlcohol", "optInjAmp2"}) {
        go(control);
        key(Qt::Key_Space, Qt::NoModifier, " ");
        told(control);
        EXPECT_FALSE(find<QAbstractButton>(control)->isChecked()) << control;
    }
    go("cmbMAP");
    key(Qt::Key_Down);
    told("cmbMAP");
    EXPECT_EQ(chosen("cmbMAP"), "");
    EXPECT_EQ(unit().kind().slot, 0);
}

TEST_F(GeneralFields, WalkingThroughAnEmptyFormAsksNothing) {
    openNew();
    constexpr int twiceAround = 50;
    for (int i = 0; i < twiceAround; ++i) tab();
    EXPECT_EQ(boxes(), 0u);
}

TEST_F(GeneralFields, WhatAUnitLacksIsPaleWithItsLabels) {
    openPrepared("PZK-2", "4 Cylinder Coil per Plug");
    for (const char* name : {"txtINJ", "lblCaption_txtINJ", "optInjAmp2", "cmbCams", "chkAlcohol",
                             "lblInjectorSize", "lblComputed"}) {
        EXPECT_FALSE(usable(name)) << name;
    }
    for (const char* name : {"txtRPM", "lblCaption_txtRPM", "cmbEngine", "lblRange"}) {
        EXPECT_TRUE(usable(name)) << name;
    }
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
