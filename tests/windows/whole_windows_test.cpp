// Every window shows all of its texts and controls on each screen that a tuner has: the screens of this test
// are physical ones with a title bar and a panel taken off, at the scales that a desktop sets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QProcess>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "windows/every_window.h"
#include "windows/layout_faults.h"

namespace zentaq {
namespace {

/// Where a program that a test starts writes what is in sight; none otherwise.
constexpr const char* sightFile = "ZENTAQ_SIGHT_FILE";

/// A line for each widget with a name that is in sight: the window, and the name with what it stands in.
void writeSight(const QWidget& window, const char* row) {
    QFile file(qEnvironmentVariable(sightFile));
    if (file.fileName().isEmpty()) return;
    ASSERT_TRUE(file.open(QIODevice::Append));
    for (const QWidget* one : window.findChildren<QWidget*>()) {
        if (!one->isVisible() || one->size().isEmpty()) continue;
        if (one->objectName().isEmpty() || one->objectName().startsWith("qt_")) continue;
        file.write(QByteArray(row) + ' ' + QByteArray::fromStdString(pathOf(*one)) + '\n');
    }
}

QStringList textsWithLetters(const QWidget& widget) {
    QStringList texts;
    const auto addActions = [&](const QList<QAction*>& actions) {
        for (const QAction* action : actions) {
            if (action->isVisible()) texts << action->text();
        }
    };
    if (const auto* menu = qobject_cast<const QMenuBar*>(&widget)) addActions(menu->actions());
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) texts << button->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) texts << group->title();
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (label != nullptr && label->buddy() != nullptr) texts << label->text();
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        for (int tab = 0; tab < tabs->count(); ++tab) texts << tabs->tabText(tab);
    }
    return texts;
}

/// Two controls in sight with one letter for Alt: neither of them does what the key says.
std::vector<std::string> lettersTwice(const QWidget& window) {
    std::map<QKeySequence, QString> taken;
    std::vector<std::string> twice;
    QList<const QWidget*> all = window.findChildren<const QWidget*>();
    for (const QWidget* widget : all) {
        if (!widget->isVisible()) continue;
        for (const QString& text : textsWithLetters(*widget)) {
            const QKeySequence letter = QKeySequence::mnemonic(text);
            if (letter.isEmpty()) continue;
            const auto [other, first] = taken.try_emplace(letter, text);
            if (!first)
                twice.push_back((letter.toString() + ": " + other->second + ", " + text).toStdString());
        }
    }
    return twice;
}

/// On the screen of this process, whichever that is.
class WholeWindowTest : public EveryWindowTest, public testing::WithParamInterface<ShownWindow> {};

TEST_P(WholeWindowTest, HasNoFaults) {
    int looks = 0;
    GetParam().show(*this, [&](QWidget& window) {
        ++looks;
        EXPECT_TRUE(window.isVisible());
        EXPECT_THAT(lettersTwice(window), testing::IsEmpty());
        for (const std::string& fault : layoutFaults(window, room())) ADD_FAILURE() << fault;
        writeSight(window, GetParam().name);
    });
    EXPECT_GT(looks, 0);
}

INSTANTIATE_TEST_SUITE_P(Every, WholeWindowTest, testing::ValuesIn(everyWindow()),
                         [](const auto& row) { return std::string(row.param.name); });

class FilePromptTest : public EveryWindowTest {};

TEST_F(FilePromptTest, IsWholeHoweverAnotherProgramOnAnotherScreenLeftItsOwn) {
    for (const int left : {20, 600}) {
        QSettings kept(QSettings::UserScope, QStringLiteral("QtProject"));
        kept.setValue("FileDialog/sidebarWidth", left);
        kept.sync();
        int looks = 0;
        fileOpenPrompt([&](QWidget& window) {
            ++looks;
            EXPECT_THAT(layoutFaults(window, room()), testing::IsEmpty()) << left;
        });
        EXPECT_EQ(looks, 1);
    }
}

struct ScreenRow {
    const char* name;
    QSize room;
};

std::ostream& operator<<(std::ostream& out, const ScreenRow& row) {
    return out << row.name;
}

class WholeWindowsOnAScreen : public testing::TestWithParam<ScreenRow> {
 protected:
    /// The toolkit takes screen and scale once, when the program starts.
    static QProcessEnvironment environment(const char* scale, const QString& configuration) {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("QT_QPA_PLATFORM", "offscreen:configfile=" + configuration);
        variables.insert("QT_SCALE_FACTOR", scale);
        return variables;
    }
    /// Ends well, and has looked at every window.
    static void lookAtAll(const char* scale, const QString& folder) {
        const QString configuration = folder + "/screen.json";
        describe(GetParam(), configuration);
        QProcessEnvironment variables = environment(scale, configuration);
        variables.insert(sightFile, folder + '/' + scale);
        QProcess program;
        program.setProcessEnvironment(variables);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QCoreApplication::applicationFilePath(),
                      {"--gtest_filter=*/WholeWindowTest.*", "--gtest_brief=1"});
        constexpr int waitMs = 100'000;
        ASSERT_TRUE(program.waitForFinished(waitMs));
        const QByteArray told = program.readAll();
        EXPECT_EQ(program.exitCode(), 0) << told.toStdString();
        EXPECT_TRUE(told.contains("[  PASSED  ] " +
                                  QByteArray::number(static_cast<int>(everyWindow().size())) + " tests"))
            << told.toStdString();
    }
    static void describe(const ScreenRow& row, const QString& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral(R"({"synchronousWindowSystemEvents": false, "windowFrameMargins": false,
            "screens": [{"name": "laptop", "x": 0, "y": 0, "width": %1, "height": %2,
                         "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                       .arg(row.room.width())
                       .arg(row.room.height())
                       .toUtf8());
    }
};

// ---- What has no room at a larger scale

using Sight = std::set<std::string>;

Sight sightOf(const QString& path) {
    std::ifstream file(path.toStdString());
    Sight lines;
    for (std::string line; std::getline(file, line);) lines.insert(line);
    return lines;
}

/// What leads to a part that is out of sight: it must be in sight itself.
struct Way {
    const char* part;
    const char* leads;
};
constexpr Way ways[] = {
    {"/frmDashBoard/", "/frmDashBoard/btnMore "},
    {"/fraMessages/", "/fraMessages/cmdFoldMessages "},
    {"/stateStrip/", "/stateStrip/stripMore "},
    {"dlgDialog1/splitter/sidebar ", "dlgDialog1/lookInCombo "},
};

bool hasWay(const std::string& lost, const Sight& sight) {
    const std::string window = lost.substr(0, lost.find(' ') + 1);
    return std::ranges::any_of(ways, [&](const Way& way) {
        return lost.find(way.part) != std::string::npos &&
               std::ranges::any_of(sight, [&](const std::string& one) {
                   return one.starts_with(window) && one.find(way.leads) != std::string::npos;
               });
    });
}

TEST_P(WholeWindowsOnAScreen, ShowAllOfThemselvesAndLoseNoControlAtALargerScale) {
    const QTemporaryDir folder;
    lookAtAll("1", folder.path());
    const Sight all = sightOf(folder.filePath("1"));
    EXPECT_GT(all.size(), 10 * everyWindow().size());
    for (const char* scale : {"1.5", "2"}) {
        SCOPED_TRACE(scale);
        lookAtAll(scale, folder.path());
        const Sight left = sightOf(folder.filePath(scale));
        for (const std::string& one : all) {
            if (!left.contains(one) && !hasWay(one, left)) ADD_FAILURE() << one;
        }
    }
}

constexpr ScreenRow screenRows[] = {{"1366x768", {1366, 700}}, {"1920x1080", {1920, 1010}}};

INSTANTIATE_TEST_SUITE_P(Laptop, WholeWindowsOnAScreen, testing::ValuesIn(screenRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq
