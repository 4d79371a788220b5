// The settings file has the format of the toolkit's own store, which wrote it before: each reads what the
// other one has written.
#include <gtest/gtest.h>

#include <QSettings>
#include <QStringList>
#include <string>
#include <vector>

#include "qt/qt_settings.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

class SettingsFormat : public testing::Test {
 protected:
    TemporaryFolder folder;
    std::string path = folder.path("Zentaq4.ini");

    QSettings toolkits() const { return QSettings(QString::fromStdString(path), QSettings::IniFormat); }
};

/// What a settings file may hold, and more.
std::vector<QString> texts() {
    std::vector<QString> texts{
        QStringLiteral(""),
        QStringLiteral(" "),
        QStringLiteral("\tblanks\t "),
        QStringLiteral("  both ends  "),
        QStringLiteral("7"),
        QStringLiteral("1E5"),
        QStringLiteral("true"),
        QStringLiteral("@bytes"),
        QStringLiteral("100 %"),
        QStringLiteral("-1.5e-3"),
        QStringLiteral("00012"),
        QStringLiteral("a,b"),
        QStringLiteral("a;b=c"),
        QStringLiteral("\"quoted\" 'too'"),
        QStringLiteral("C:\\a\\"),
        QStringLiteral("@Invalid()"),
        QStringLiteral("@@"),
        QStringLiteral("@String("),
        QStringLiteral("\u03BB\u00B0"),
        QStringLiteral("\U0001F697"),
        QStringLiteral("[x]\n[y]"),
        QStringLiteral("# %20 %U1234"),
        QStringLiteral("\x01"
                       "23\x1F"
                       "f"),
        QString(20'000, u'x'),
    };
    for (ushort code = 1; code < 0x180; ++code) texts.push_back(u'a' + QString(QChar(code)) + u'1');
    return texts;
}

TEST_F(SettingsFormat, WhatTheToolkitsStoreWroteReadsAsEqualValues) {
    const auto wanted = texts();
    {
        QSettings store = toolkits();
        for (std::size_t i = 0; i < wanted.size(); ++i)
            store.setValue(QStringLiteral("System/Odd%1").arg(i), wanted[i]);
        store.setValue(QStringLiteral("Forms/a \u03BB\U0001F697/b%"), 7);
        store.setValue(QStringLiteral("General/on"), true);
        store.setValue(QStringLiteral("System/rate"), 12.5);
        store.setValue(
            QStringLiteral("System/list"),
            QStringList{QStringLiteral("a"), QStringLiteral("b, c "), QString(), QStringLiteral("@d")});
        store.setValue(QStringLiteral("System/nothing"), QVariant());
    }
    QtSettings settings(path);
    settings.onTrouble([](const std::string& what) { ADD_FAILURE() << what; });
    for (std::size_t i = 0; i < wanted.size(); ++i)
        EXPECT_EQ(settings.get("System", "Odd" + std::to_string(i), "none"), wanted[i].toStdString()) << i;
    EXPECT_EQ(settings.get("Forms", "a \u03BB\U0001F697/b%"), "7");
    EXPECT_EQ(settings.get("General", "on"), "true");
    EXPECT_EQ(settings.get("System", "rate"), "12.5");
    EXPECT_EQ(settings.get("System", "list"), "a,b, c ,,@d");
    EXPECT_EQ(settings.get("System", "nothing", "none"), "none");
}

TEST_F(SettingsFormat, WhatTheToolkitsStoreWroteStaysWhenAnotherKeyIsSet) {
    const auto wanted = texts();
    const QStringList list{QStringLiteral("a"), QStringLiteral("b, c "), QString(), QStringLiteral("@d")};
    {
        QSettings store = toolkits();
        for (std::size_t i = 0; i < wanted.size(); ++i)
            store.setValue(QStringLiteral("System/Odd%1").arg(i), wanted[i]);
        store.setValue(QStringLiteral("System/list"), list);
        store.setValue(QStringLiteral("System/bytes"), QByteArray("a\0\xFF", 3));
        store.setValue(QStringLiteral("above"), 1);
        store.setValue(QStringLiteral("General/on"), true);
    }
    QtSettings(path).set("System", "CommPort", "9");
    const QSettings store = toolkits();
    for (std::size_t i = 0; i < wanted.size(); ++i)
        EXPECT_EQ(store.value(QStringLiteral("System/Odd%1").arg(i)).toString(), wanted[i]) << i;
    EXPECT_EQ(store.value(QStringLiteral("System/list")).toStringList(), list);
    EXPECT_EQ(store.value(QStringLiteral("System/bytes")).toByteArray(), QByteArray("a\0\xFF", 3));
    EXPECT_EQ(store.value(QStringLiteral("above")).toString(), QStringLiteral("1"));
    EXPECT_EQ(store.value(QStringLiteral("General/on")).toString(), QStringLiteral("true"));
    EXPECT_EQ(store.value(QStringLiteral("System/CommPort")).toString(), QStringLiteral("9"));
    EXPECT_EQ(store.status(), QSettings::NoError);
}

TEST_F(SettingsFormat, TheToolkitsStoreAndTheProgramReadWhatIsWritten) {
    const auto wanted = texts();
    {
        QtSettings settings(path);
        for (std::size_t i = 0; i < wanted.size(); ++i)
            settings.set("System", "Odd" + std::to_string(i), wanted[i].toStdString());
        settings.set("Forms", "a \u03BB\U0001F697/b%", "7");
        settings.set("General", "on", "1");
    }
    const QSettings store = toolkits();
    const QtSettings again(path);
    EXPECT_EQ(store.status(), QSettings::NoError);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_EQ(store.value(QStringLiteral("System/Odd%1").arg(i)).toString(), wanted[i]) << i;
        EXPECT_EQ(again.get("System", "Odd" + std::to_string(i), "none"), wanted[i].toStdString()) << i;
    }
    EXPECT_EQ(store.value(QStringLiteral("Forms/a \u03BB\U0001F697/b%")).toString(), QStringLiteral("7"));
    EXPECT_EQ(store.value(QStringLiteral("General/on")).toString(), QStringLiteral("1"));
}

}  // namespace
}  // namespace zentaq
