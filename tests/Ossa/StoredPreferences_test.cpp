#include "Ossa/Common/ApplicationPreferences.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStoredPreferences.h"
#include "PreferencesTestObject.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QMetaProperty>
#include <QSignalSpy>

namespace {

const QString Group = QStringLiteral("Stored");

class StoredPreferences : public testing::Test
{
protected:
    void SetUp() override { OssDebugLog::instance()->clear(); }

    void TearDown() override { OssSettings().remove(Group); }

    static void store(const char *key, const QVariant &value)
    {
        OssSettings().setValue(Group + QLatin1Char('/') + QLatin1String(key), value);
    }

    void load() { OssStoredPreferences::load(&object, Group); }

    static int logged() { return OssDebugLog::instance()->lines().size(); }

    PreferencesTestObject object;
};

TEST_F(StoredPreferences, whatIsSavedIsLoadedUnderThePropertysNames)
{
    object.flag = false;
    object.count = -7;
    object.ratio = 0.1;
    object.note = QStringLiteral("a, \"b\"");
    object.mode = QStringLiteral("Leave");
    object.anchor = PreferencesTestObject::Anchor(7);
    OssStoredPreferences::save(&object, Group);
    EXPECT_EQ(OssSettings().value(Group + QStringLiteral("/anchor")).toInt(), 7);
    PreferencesTestObject other;
    OssStoredPreferences::load(&other, Group);
    for (int i = 1; i < object.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = object.metaObject()->property(i);
        EXPECT_EQ(property.read(&other), property.read(&object)) << property.name();
    }
    EXPECT_EQ(logged(), 0);
}

TEST_F(StoredPreferences, whatIsNotStoredIsTheDefaultWhereThatIsToldAndStaysElse)
{
    object.count = 12;
    object.ratio = 0.75;
    load();
    EXPECT_EQ(object.count, 12);
    EXPECT_EQ(object.ratio, PreferencesTestObject().ratio);
    EXPECT_EQ(logged(), 0);
}

TEST_F(StoredPreferences, whatIsNoValueIsRefusedWithALine)
{
    const ExpectedLog expected("in the settings is no value for");
    object.flag = false;
    object.count = 12;
    object.mode = QStringLiteral("Leave");
    object.anchor = PreferencesTestObject::Center;
    for (const char *key : {"flag", "count", "ratio", "mode", "anchor"})
        store(key, QStringLiteral("Rubbish"));
    load();
    EXPECT_TRUE(object.flag);
    EXPECT_EQ(object.count, 4);
    EXPECT_EQ(object.ratio, 0.5);
    EXPECT_EQ(object.mode, QStringLiteral("Leave")) << "it has no default to go back to";
    EXPECT_EQ(object.anchor, PreferencesTestObject::Center);
    EXPECT_EQ(logged(), 5);
    store("anchor", QStringLiteral("Cursor"));
    store("flag", QStringLiteral("false"));
    load();
    EXPECT_EQ(object.anchor, PreferencesTestObject::Cursor);
    EXPECT_FALSE(object.flag);
}

TEST_F(StoredPreferences, aReaderThatAsksForItConverts)
{
    for (const char *key : {"flag", "count", "anchor"})
        store(key, QStringLiteral("Rubbish"));
    OssStoredPreferences::load(&object, Group, OssStoredPreferences::Unfit::Converted);
    EXPECT_TRUE(object.flag);
    EXPECT_EQ(object.count, 0);
    EXPECT_EQ(object.anchor, PreferencesTestObject::Center);
    EXPECT_EQ(logged(), 0);
}

TEST(ApplicationPreferencesTest, aStoredScaleThatNobodyCanUseIsNone)
{
    const QString key = QStringLiteral("Application/interfaceScale");

    const struct
    {
        const char *stored;
        int percent;
    } cases[] = {{"150 %", 150}, {"100 %", 100}, {"300 %", 300}, {"99 %", 100},
                 {"301 %", 100}, {"large", 100}, {"", 100}};

    for (const auto &c : cases) {
        OssSettings().setValue(key, QString::fromUtf8(c.stored));
        EXPECT_EQ(ApplicationPreferences::storedInterfaceScale(), c.percent) << c.stored;
    }
    OssSettings().remove(key);
    EXPECT_EQ(ApplicationPreferences::storedInterfaceScale(), 100);
}

TEST(ApplicationPreferencesTest, onlyWhatIsOfferedIsTakenAndEachHasItsName)
{
    auto *preferences = ApplicationPreferences::instance();
    QSignalSpy changed(preferences, &ApplicationPreferences::autosaveIntervalChanged);
    preferences->setAutosaveInterval(QStringLiteral("never"));
    preferences->setInterfaceScale(QStringLiteral("7 %"));
    EXPECT_TRUE(changed.isEmpty());
    EXPECT_NE(preferences->interfaceScale(), QStringLiteral("7 %"));

    const struct
    {
        const char *interval;
        int seconds;
        int changes;
    } cases[] = {{"Off", 0, 1}, {"Off", 0, 0}, {"30 minutes", 1800, 1}, {"1 minute", 60, 1}};

    for (const auto &c : cases) {
        changed.clear();
        preferences->setAutosaveInterval(QString::fromLatin1(c.interval));
        EXPECT_EQ(preferences->autosaveSeconds(), c.seconds) << c.interval;
        EXPECT_EQ(changed.size(), c.changes) << c.interval;
    }
    preferences->resetAutosaveInterval();
    preferences->setInterfaceScale(QStringLiteral("150 %"));
    EXPECT_EQ(preferences->interfaceScale(), QStringLiteral("150 %"));
    preferences->resetInterfaceScale();

    const struct
    {
        const char *key;
        const char *name;
    } names[] = {{"reopenLastProject", "Open Last Project"},
                 {"interfaceScale", "Size of Texts and Icons"},
                 {"autosaveInterval", "Copy Unsaved Work Every"},
                 {"someOtherThing", "Some Other Thing"}};

    for (const auto &c : names)
        EXPECT_EQ(preferences->prettyPropertyName(QLatin1String(c.key)), QLatin1String(c.name));
}

} // namespace
