// Every window of the program and every page and state of it that is laid out otherwise, shown one at a time
// on the screen of this process as a user has it before him.
#pragma once

#include <functional>
#include <ostream>
#include <vector>

#include "windows/table_windows_fixture.h"

namespace zentaq {

class EveryWindowTest : public WindowTest {
 public:
    using Look = std::function<void(QWidget& window)>;

    /// With the real reference database and the user guide: their texts are what needs the room.
    EveryWindowTest();

    /// The part of the screen that windows may use.
    static QRect room();

    // ---- What shows a window and has it looked at
    void mainWindow(const Look& look);
    void mainWithCalibration(const Look& look);
    void mainWithTable(const Look& look);
    /// The list of pins, one of which has an output table.
    void mainWithPins(const Look& look);
    /// A page by the text of its node.
    void mainWithFields(const QString& page, const Look& look);
    void undockedTable(const Look& look);
    /// A kind of unit without fuel.
    void mainWithSparkOnly(const Look& look);
    /// Every part of the state strip has something to say, and the dashboard a code.
    void mainInTrouble(const Look& look);
    /// Messages, tree and dashboard each the other way round than by themselves.
    void mainWithLog(const QString& tab, const Look& look);
    void mainWithDetail(const Look& look);
    void mainFolded(const Look& look);
    void menusOpen(const Look& look);
    void colorDialog(const Look& look);
    void general(const Look& look);
    void generalOfNewCalibration(const Look& look);
    void sensors(const Look& look);
    void sensorBeingEdited(const Look& look);
    void optionPage(int page, const Look& look);
    void guide(const Look& look);
    void guideSearch(const Look& look);
    void fastHelp(const Look& look);
    void about(const Look& look);
    void tableDialog(const char* command, const Look& look);
    void surface(const Look& look);
    void curve(const Look& look);
    void doubts(const Look& look);
    void mainWithDockedCurve(const Look& look);
    void mainWithOutputTable(const Look& look);
    void splash(const Look& look);
    void fileOpenPrompt(const Look& look);
    void filePromptToSave(const Look& look);
    void inputPrompt(const Look& look);
    void messageBoxes(const Look& look);

 private:
    void settle();
    void maximiseMain();
    void openSensors();
    /// The longest of its entries.
    static void chooseLongest(QWidget& window, const char* list);
    /// Runs what waits for the user, and closes it when it has been looked at.
    void modal(const std::function<void()>& run, const Look& look);
};

struct ShownWindow {
    const char* name;
    void (*show)(EveryWindowTest& program, const EveryWindowTest::Look& look);
};

inline std::ostream& operator<<(std::ostream& out, const ShownWindow& window) {
    return out << window.name;
}

const std::vector<ShownWindow>& everyWindow();

}  // namespace zentaq
