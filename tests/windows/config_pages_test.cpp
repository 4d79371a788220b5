#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QRadioButton>
#include <filesystem>
#include <set>

#include "base/message_codes.h"
#include "base/number_text.h"
#include "config/gui_rules.h"
#include "config/quiet_calibration.h"
#include "config/shown_value.h"
#include "config/tree.h"
#include "qt/entry_box.h"
#include "windows/frm_config_page_form.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;

struct SampleRow {
    const char* name;
    const char* file;
    int slot;
};
constexpr SampleRow samples[] = {{"OrbA", "Street 2.0 Four.ZQ4OA", 3},
                                 {"OrbL", "ORB L Six.ZQ4OL", 4},
                                 {"Pzk2", "PZK-2 Classic Four.ZQ4PZK", 5},
                                 {"OrbC", "ORB C Six.ZQ4OC", 6},
                                 {"OrbD", "ORB D Four.ZQ4OD", 7}};

/// A page of a sample calibration in a window of its own, with what the calibration itself says beside it.
class ConfigPages : public FakesTest, public testing::WithParamInterface<SampleRow> {
 protected:
    ConfigPages() {
        const std::string data = fake.folder.path("reference.pak");
        std::filesystem::copy_file(builtReference(), data);
        fake.session.database = Database::open(data);
        fake.session.makeUnits();
    }
    void open(const SampleRow& sample) {
        const std::string path = std::string(ZENTAQ_APP_DIR "/samples/") + sample.file;
        fake.session.CurrentUnit(static_cast<float>(sample.slot));
        unit().FileOpen(path);
        fake.session.noteOpened();
        reference = QuietCalibration::open(path, &*fake.session.database);
        form = std::make_unique<PageForm>(fake.session, nullptr);
        form->resize(1000, 600);
        form->show();
        form->activateWindow();
        settle();
    }
    Unit& unit() { return fake.session.currentUnitObject(); }
    static void settle() {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    static QString nameOf(const FieldRow& row, int element, int elements) {
        const QString name = QString::fromUtf8(row.control);
        return elements > 1 ? name + "_" + QString::number(element) : name;
    }
    QWidget* control(const QString& name) { return form->widget()->findChild<QWidget*>(name); }
    /// Types a text into a box and presses Enter.
    void type(EntryBox& box, const std::string& text) {
        box.setFocus();
        box.setText(QString::fromStdString(text));
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(&box, &enter);
        settle();
    }
    std::vector<int> visiblePages() {
        std::vector<int> pages;
        for (const int page : fieldPageNumbers()) {
            if (guiRules(unit()).pageVisible(page)) pages.push_back(page);
        }
        return pages;
    }
    /// Another value that the member takes, as it is typed; empty where none was found.
    std::string otherValue(const FieldRow& row, int element) {
        const Parameter& parameter = *reference->unit.find(row.member);
        const Limits limits = reference->unit.limits(row.member, element);
        const std::string now = shownValue(unit(), parameter, row, element);
        std::vector<double> candidates(limits.listed.begin(), limits.listed.end());
        for (const double step : {1.0, -1.0, 0.5, -0.5, 0.05, -0.05, 2.0, -2.0})
            candidates.push_back(parseNumber(now).value_or(0) + step);
        if (!limits.unlimited()) {
            candidates.push_back(static_cast<double>(limits.minimum));
            candidates.push_back(static_cast<double>(limits.maximum));
        }
        for (const double candidate : candidates) {
            const std::string text = numberText(static_cast<float>(candidate));
            if (text == now || !reference->unit.set(row.member, fieldEntry(unit(), row, text), element))
                continue;
            return text;
        }
        return {};
    }

    std::unique_ptr<QuietCalibration> reference;
    std::unique_ptr<PageForm> form;
};

TEST_P(ConfigPages, EveryControlOfEveryVisiblePageShowsItsMember) {
    open(GetParam());
    int seen = 0;
    for (const int page : visiblePages()) {
        form->showPage(page);
        settle();
        for (const FieldRow& row : fieldsOfPage(page)) {
            const int elements = fieldExists(unit(), row) ? shownElements(unit(), row) : 0;
            if (elements == 0) {
                EXPECT_EQ(control(nameOf(row, 0, 1)), nullptr) << page << " " << row.control;
                continue;
            }
            for (int element = 0; element < elements; ++element) {
                QWidget* shown = control(nameOf(row, element, elements));
                ASSERT_NE(shown, nullptr) << page << " " << row.control << " " << element;
                ++seen;
                if (auto* button = qobject_cast<QAbstractButton*>(shown)) {
                    EXPECT_EQ(button->isChecked(), fieldIsOn(unit(), row)) << row.control;
                    continue;
                }
                const Parameter* parameter = parameterOf(unit(), row);
                if (parameter == nullptr || qobject_cast<QComboBox*>(shown) != nullptr) continue;
                const std::string text = shownValue(unit(), *parameter, row, element);
                if (auto* box = qobject_cast<EntryBox*>(shown)) {
                    EXPECT_EQ(box->text().toStdString(), text) << row.control;
                }
                if (auto* fact = qobject_cast<QLabel*>(shown)) {
                    std::string whole = text;
                    for (int i = 1; i < parameter->count; ++i)
                        whole += ", " + shownValue(unit(), *parameter, row, i);
                    EXPECT_EQ(fact->text().toStdString(), whole) << row.control;
                }
            }
        }
    }
    EXPECT_GT(seen, GetParam().slot == 5 ? 40 : 200);
}

TEST_P(ConfigPages, EveryBoxRefusesWhatItsMemberRefusesAndStoresMarksAndSendsWhatItTakes) {
    open(GetParam());
    unit().ONFLY_MODE(true);
    reference->unit.ONFLY_MODE(true);
    std::set<std::string> without;
    for (const int page : visiblePages()) {
        form->showPage(page);
        settle();
        for (const FieldRow& row : fieldsOfPage(page)) {
            if (row.kind != FieldKind::Number || !fieldExists(unit(), row)) continue;
            const int elements = shownElements(unit(), row);
            for (int element = 0; element < elements; element += std::max(1, elements - 1)) {
                SCOPED_TRACE(std::string(row.control) + " " + numberText(element));
                auto* box = qobject_cast<EntryBox*>(control(nameOf(row, element, elements)));
                ASSERT_NE(box, nullptr);
                if (!box->isEnabled()) continue;
                // What is no number at all, and what lies outside.
                const QString before = box->text();
                for (const char* wrong : {"abc", "", "1e30"}) {
                    // Some figures that no unit reads have no range.
                    if (wrong[0] == '1' && reference->unit.limits(row.member, element).unlimited()) continue;
                    fake.dialogs.boxes.clear();
                    type(*box, wrong);
                    EXPECT_EQ(fake.dialogs.boxes.size(), 1U) << wrong;
                    EXPECT_EQ(box->text(), before) << wrong;
                }
                fake.dialogs.boxes.clear();
                fake.session.DataModified = false;
                reference->unit.calibration(unit().calibration());
                const std::size_t sent = reference->host.records().size();
                const std::string text = otherValue(row, element);
                if (text.empty()) {
                    without.insert(std::string(row.control));
                    continue;
                }
                fake.session.unitMemory = {};
                type(*box, text);
                // Another firing order is another page.
                box = qobject_cast<EntryBox*>(control(nameOf(row, element, elements)));
                ASSERT_NE(box, nullptr);
                if (!fake.dialogs.boxes.empty()) {
                    // The page has limits of its own, by the neighbors and by what a figure means.
                    EXPECT_EQ(box->text(), before);
                    EXPECT_FALSE(fake.session.DataModified);
                    without.insert(std::string(row.control));
                    continue;
                }
                EXPECT_EQ(unit().calibration().cells, reference->unit.calibration().cells);
                EXPECT_EQ(box->text().toStdString(),
                          shownValue(unit(), *parameterOf(unit(), row), row, element));
                EXPECT_TRUE(fake.session.DataModified);
                EXPECT_EQ(fake.session.unitMemory.changesNotStored(),
                          reference->host.records().size() > sent);
            }
        }
    }
    EXPECT_THAT(without, ::testing::IsSubsetOf({"EGO_AFRatio", "EGO_Volts", "txtINJ", "txtLBHR",
                                                "txtMaxBoost", "txtBHP", "txtCYL_FIRE"}));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, ConfigPages, testing::ValuesIn(samples),
                         [](const auto& sample) { return std::string(sample.param.name); });

class ConfigPage : public ConfigPages {
 protected:
    void openOrbA(int page) {
        open(samples[0]);
        form->showPage(page);
        settle();
    }
    EntryBox& box(const char* name) { return *qobject_cast<EntryBox*>(control(name)); }
    void click(const char* name) {
        auto* button = qobject_cast<QAbstractButton*>(control(name));
        ASSERT_NE(button, nullptr) << name;
        button->click();
        settle();
    }
    QString former(const char* name) {
        return form->widget()->findChild<QLabel*>(QStringLiteral("lblFormer_") + name)->text();
    }
};

TEST_F(ConfigPage, AFieldThatDiffersFromTheFileAsOpenedSaysWhatThatHeld) {
    openOrbA(33);
    EXPECT_EQ(former("txtKNOCK_CTL1"), "");
    const QString opened = box("txtKNOCK_CTL1").text();
    type(box("txtKNOCK_CTL1"), "44");
    EXPECT_EQ(former("txtKNOCK_CTL1"), "opened: " + opened);
    type(box("txtKNOCK_CTL1"), opened.toStdString());
    EXPECT_EQ(former("txtKNOCK_CTL1"), "");
}

TEST_F(ConfigPage, TheOptionOfKnockControlEnablesItsCompanions) {
    openOrbA(33);
    unit().set("opt_KnockActive", 0);
    form->showPage(33);
    EXPECT_FALSE(box("txtKNOCK_CTL1").isEnabled());
    click("optKnock_Active");
    EXPECT_TRUE(box("txtKNOCK_CTL1").isEnabled());
    EXPECT_EQ(unit().get("opt_KnockActive"), 1);
    click("optKnock_Active");
    EXPECT_FALSE(box("txtKNOCK_CTL1").isEnabled());
}

TEST_F(ConfigPage, AnOutOfRangeNumberBringsTheFormerOneBackWithOneWarning) {
    openOrbA(9);
    const QString before = box("txtREV_Primary").text();
    type(box("txtREV_Primary"), "20001");
    EXPECT_EQ(lastBox().title, "Data Input Error");
    EXPECT_THAT(lastBox().text, HasSubstr("(1000 to 20000 RPM) - Invalid Entry."));
    EXPECT_EQ(box("txtREV_Primary").text(), before);
    EXPECT_TRUE(box("txtREV_Primary").hasFocus());
}

TEST_F(ConfigPage, OfTheStagesAtTheLimitOneIsSetAtATime) {
    openOrbA(9);
    const auto on = [&](const char* name) { return qobject_cast<QRadioButton*>(control(name))->isChecked(); };
    click("optFullCut");
    EXPECT_TRUE(on("optFullCut"));
    EXPECT_FALSE(on("opt3Stage"));
    EXPECT_EQ(unit().get("OVR1THR"), 0) << "the writer of the full cut clears the thresholds";
    click("optZeroAdv");
    EXPECT_TRUE(on("optZeroAdv"));
    EXPECT_EQ(unit().get("opt_FullCut"), 0);
    click("opt3Stage");
    EXPECT_TRUE(on("opt3Stage"));
    EXPECT_GT(unit().get("OVR1THR"), 0);
    EXPECT_TRUE(box("txtREV_Wait1").isEnabled());
}

TEST_F(ConfigPage, TheCanOptionWarnsOnlyWhenItIsSet) {
    openOrbA(20);
    click("optTDC_Param1");
    EXPECT_EQ(lastBox().title, "CAN Warning");
    EXPECT_EQ(lastBox().text,
              "To use the CAN bus you MUST have the CAN 'Y' cable.\nIf you do not have the 'Y' cable, you "
              "must clip "
              "pin 1 from your\nserial cable to prevent communication problems with Zentaq.");
    EXPECT_EQ(unit().get("opt_TDCParam1"), 1);
    fake.dialogs.boxes.clear();
    click("optTDC_Param1");
    EXPECT_TRUE(fake.dialogs.boxes.empty());
    EXPECT_EQ(unit().get("opt_TDCParam1"), 0);
}

TEST_F(ConfigPage, NotesEndAtFiveHundredCharactersAndTheCounterSaysSo) {
    openOrbA(15);
    auto* notes = form->widget()->findChild<QPlainTextEdit*>("txtNotesSection");
    ASSERT_NE(notes, nullptr);
    notes->setPlainText("idle hunts");
    EXPECT_EQ(unit().NOTES_TEXT(), "idle hunts");
    EXPECT_TRUE(fake.session.DataModified);
    EXPECT_EQ(form->widget()->findChild<QLabel*>("lblNotesCounter")->text(), "(10 of 500 characters)");
    notes->setPlainText(QString(510, 'x'));
    EXPECT_EQ(unit().NOTES_TEXT(), std::string(500, 'x'));
    EXPECT_EQ(notes->toPlainText().size(), 500);
}

TEST_F(ConfigPage, VoltsOfTheSensorStayBetweenTheirNeighbors) {
    openOrbA(38);
    type(box("EGO_Volts_1"), "0.7");  // 0, 0.45, 0.65: the third is passed
    EXPECT_THAT(lastBox().text,
                HasSubstr("New Value Must be greater than the value to the left and less than the value "
                          "to the Right"));
    EXPECT_EQ(box("EGO_Volts_1").text(), "0.45");
    fake.dialogs.boxes.clear();
    type(box("EGO_Volts_9"), "4.8");
    EXPECT_THAT(lastBox().text, testing::EndsWith("New Value Must be greater than the value to the left."));
    fake.dialogs.boxes.clear();
    type(box("EGO_Volts_1"), "0.5");
    EXPECT_TRUE(fake.dialogs.boxes.empty());
    EXPECT_FLOAT_EQ(unit().get("X", 1), 0.5F);
}

TEST_F(ConfigPage, RatiosOfTheSensorStayBetweenTheirNeighborsWithTheRangeInTheWarning) {
    openOrbA(38);
    type(box("EGO_AFRatio_1"), "23");  // 22.4, 15.89, 14.9
    EXPECT_THAT(lastBox().text, HasSubstr("(14.9 to 22.4 AFR, 2)"));
    EXPECT_EQ(box("EGO_AFRatio_1").text(), "15.89");
    type(box("EGO_AFRatio_1"), "22.4");
    EXPECT_FLOAT_EQ(unit().get("Y", 1), 22.4F) << "both ends are inside";
}

TEST_F(ConfigPage, APresetFillsTheCurveAndItsKindOfSensor) {
    openOrbA(38);
    unit().set("FuelTrim", 3, 1);
    auto* list = qobject_cast<QComboBox*>(control("EGO_Type"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->currentText(), "Narrow band, 0 to 5 V");
    const int wide = list->findText("0 to 5 V = 10.0 to 20.0");
    ASSERT_GE(wide, 0);
    list->setCurrentIndex(wide);
    Q_EMIT list->activated(wide);
    settle();
    EXPECT_EQ(unit().get("EGO_Type"), 2);
    EXPECT_FLOAT_EQ(unit().get("X", 9), 5);
    EXPECT_FLOAT_EQ(unit().get("Y", 0), 10);
    EXPECT_FLOAT_EQ(unit().get("Y", 9), 20);
    EXPECT_EQ(unit().get("FuelTrim", 1), 0) << "a new curve begins without trims";
    EXPECT_EQ(fake.session.notices.text(fake.clock.monotonicUs()),
              "With a new curve the fuel trims of the cylinders begin anew, at 0.");
    type(box("EGO_Volts_1"), "0.6");
    EXPECT_EQ(qobject_cast<QComboBox*>(control("EGO_Type"))->placeholderText(), "Wideband, own curve");
}

TEST_F(ConfigPage, TheThrottleAloneHasTheWholeShareAtEverySpeed) {
    openOrbA(1);
    click("chk_Alpha_N");
    for (int i = 0; i < 8; ++i) EXPECT_EQ(unit().get("LOWBLD", i), 100);
    click("chk_Alpha_N");
    EXPECT_EQ(unit().get("LOWBLD", 0), 0);
}

TEST_F(ConfigPage, AMemberWhoseValueIsItsSwitchIsZeroWhenItIsOff) {
    openOrbA(21);
    type(box("txtRevApproach"), "300");
    EXPECT_TRUE(qobject_cast<QCheckBox*>(control("optRevApproach"))->isChecked());
    click("optRevApproach");
    EXPECT_EQ(unit().get("REV_Limit_Approach"), 0);
    click("optRevApproach");
    EXPECT_GT(unit().get("REV_Limit_Approach"), 0);
}

TEST_F(ConfigPage, WithoutThePressureTheCutOfDecelerationStoresZeroAndWithItTheSensorsEnd) {
    openOrbA(3);
    ASSERT_EQ(unit().get("MAP_Active"), 1);
    click("optMAP_Active");
    EXPECT_EQ(unit().get("MAP_Active"), 0);
    EXPECT_EQ(unit().DirectIndex(210), 0);
    EXPECT_FALSE(box("txtDCCL_3").isEnabled());
    click("optMAP_Active");
    EXPECT_NEAR(unit().get("DCCL_3"), unit().MAPMax(), 0.05);
}

TEST_F(ConfigPage, TypedAheadIsTakenWhenThePageIsLeftAndKeptWhenItIsRefused) {
    openOrbA(9);
    box("txtREV_Hysteresis").setFocus();
    box("txtREV_Hysteresis").setText("120");
    EXPECT_TRUE(form->commit());
    EXPECT_EQ(unit().get("REV_Hysteresis"), 120);
    box("txtREV_Hysteresis").setText("9999");
    EXPECT_FALSE(form->commit());
    EXPECT_EQ(unit().get("REV_Hysteresis"), 120);
}

TEST_F(ConfigPage, TemperaturesAreTypedInTheUsersScale) {
    openOrbA(27);
    fake.settings.set("System", "TemperatureToggle", "1");
    form->showPage(27);
    type(box("txtCLT_SENSOR3"), "212");
    EXPECT_FLOAT_EQ(unit().get("CLT_Default"), 100);
    EXPECT_EQ(box("txtCLT_SENSOR3").text(), "212");
}

}  // namespace
}  // namespace zentaq
