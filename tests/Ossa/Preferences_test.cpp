#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Dialogs/PreferencesDialog.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStoredPreferences.h"
#include "support/ExpectedLog.h"
#include "support/InterfacePreferences.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaProperty>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

// Preferences as the dialog shows them and as they are stored.

namespace {

using Object = PreferencesTestObject;

/// Every value that differs from the default, as "name=value".
std::string changed(const Object &object)
{
    const Object fresh;
    QStringList all;
    for (int i = 1; i < object.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = object.metaObject()->property(i);
        if (property.read(&object) != property.read(&fresh))
            all.append(text(property.name()) + text("=") + property.read(&object).toString());
    }
    return all.join(QLatin1Char(' ')).toStdString();
}

class Preferences : public testing::Test
{
protected:
    Preferences()
    {
        for (const char *key : {"flag", "count", "ratio", "note", "mode", "anchor"})
            OssPreferenceManager::instance()->registerPreference(text("Tests"), text("General"),
                                                                 &object, text(key));
        open();
    }

    void open()
    {
        dialog = std::make_unique<PreferencesDialog>();
        dialog->show();
    }

    template <class Widget>
    Widget *editor(const char *key)
    {
        auto *widget = dialog->findChild<Widget *>(text(key));
        EXPECT_NE(widget, nullptr) << key;
        return widget;
    }

    void press(QDialogButtonBox::StandardButton button)
    {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
    }

    void choose(const char *key, int row)
    {
        auto *list = editor<QComboBox>(key);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Home);
        for (int i = 0; i < row; ++i)
            QTest::keyClick(list, Qt::Key_Down);
    }

    void type(QWidget *field, const char *typed)
    {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text(typed));
    }

    void changeEverything()
    {
        QTest::keyClick(editor<QCheckBox>("flag"), Qt::Key_Space);
        type(editor<QSpinBox>("count"), "12");
        type(editor<QDoubleSpinBox>("ratio"), "0.75");
        choose("mode", 2);
        choose("anchor", 0);
        type(editor<QLineEdit>("note"), "other");
    }

    Object object;
    std::unique_ptr<PreferencesDialog> dialog;
};

const QString Group = text("Stored");

class StoredPreferences : public testing::Test
{
protected:
    void SetUp() override { OssDebugLog::instance()->clear(); }

    void TearDown() override { OssSettings().remove(Group); }

    static void store(const char *key, const char *value)
    {
        OssSettings().setValue(Group + QLatin1Char('/') + text(key), text(value));
    }

    void load() { OssStoredPreferences::load(&object, Group); }

    static int logged() { return OssDebugLog::instance()->lines().size(); }

    Object object;
};

} // namespace

TEST_F(Preferences, editorsShowTheValues)
{
    EXPECT_TRUE(editor<QCheckBox>("flag")->isChecked());
    EXPECT_EQ(editor<QCheckBox>("flag")->toolTip(), text("What the flag does"));
    EXPECT_EQ(editor<QSpinBox>("count")->value(), 4);
    EXPECT_EQ(editor<QLineEdit>("note")->text(), text("text"));
    EXPECT_EQ(editor<QComboBox>("mode")->count(), 3);
    EXPECT_EQ(editor<QComboBox>("anchor")->currentText(), text("Cursor"));
    QWidget *const group = editor<QCheckBox>("flag")->parentWidget();
    for (const char *key : {"count", "ratio", "note", "mode", "anchor"})
        EXPECT_EQ(editor<QWidget>(key)->parentWidget(), group) << key << " is of the same group";
}

TEST_F(Preferences, changesAreThereAtOnceOkSavesThemOnceAndCancelTakesThemBack)
{
    const char *const wanted = "flag=false count=12 ratio=0.75 note=other mode=Leave anchor=0";
    changeEverything();
    EXPECT_EQ(changed(object), wanted);
    press(QDialogButtonBox::Cancel);
    EXPECT_EQ(changed(object), "");
    EXPECT_EQ(object.saves, 0);
    open();
    changeEverything();
    press(QDialogButtonBox::Ok);
    EXPECT_EQ(changed(object), wanted);
    EXPECT_EQ(object.saves, 1);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(Preferences, escapeIsCancel)
{
    QTest::keyClick(editor<QCheckBox>("flag"), Qt::Key_Space);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_TRUE(object.flag);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(Preferences, valuesOutsideTheEnumerationSurvive)
{
    object.anchor = Object::Anchor(7);
    open();
    EXPECT_EQ(editor<QComboBox>("anchor")->currentIndex(), -1);
    dialog->accept();
    EXPECT_EQ(int(object.anchor), 7);
}

TEST_F(Preferences, resetShowsAndAppliesTheDefaultsOfThePage)
{
    changeEverything();
    auto *pages = dialog->findChild<QListWidget *>();
    pages->setCurrentItem(pages->findItems(text("Tests"), Qt::MatchExactly).first());
    press(QDialogButtonBox::RestoreDefaults);
    EXPECT_TRUE(object.flag);
    EXPECT_TRUE(editor<QCheckBox>("flag")->isChecked());
    EXPECT_EQ(editor<QSpinBox>("count")->value(), 4);
    press(QDialogButtonBox::Cancel);
}

TEST_F(StoredPreferences, whatIsSavedIsLoadedUnderThePropertysNames)
{
    object.flag = false;
    object.count = -7;
    object.ratio = 0.1;
    object.note = text("a, \"b\"");
    object.mode = text("Leave");
    object.anchor = Object::Anchor(7);
    OssStoredPreferences::save(&object, Group);
    EXPECT_EQ(OssSettings().value(Group + text("/anchor")).toInt(), 7);
    Object other;
    OssStoredPreferences::load(&other, Group);
    EXPECT_EQ(changed(other), changed(object));
    EXPECT_EQ(logged(), 0);
}

TEST_F(StoredPreferences, whatIsNotStoredIsTheDefaultWhereThatIsToldAndStaysElse)
{
    object.count = 12;
    object.ratio = 0.75;
    load();
    EXPECT_EQ(changed(object), "count=12");
    EXPECT_EQ(logged(), 0);
}

TEST_F(StoredPreferences, whatIsNoValueIsRefusedWithALine)
{
    const ExpectedLog expected("in the settings is no value for");
    object.flag = false;
    object.count = 12;
    object.mode = text("Leave");
    object.anchor = Object::Center;
    for (const char *key : {"flag", "count", "ratio", "mode", "anchor"})
        store(key, "Rubbish");
    load();
    EXPECT_EQ(changed(object), "mode=Leave anchor=0") << "they have no default to go back to";
    EXPECT_EQ(logged(), 5);
    store("anchor", "Cursor");
    store("flag", "false");
    load();
    EXPECT_EQ(changed(object), "flag=false mode=Leave");
}

TEST_F(StoredPreferences, aReaderThatAsksForItConverts)
{
    for (const char *key : {"flag", "count", "anchor"})
        store(key, "Rubbish");
    OssStoredPreferences::load(&object, Group, OssStoredPreferences::Unfit::Converted);
    EXPECT_EQ(changed(object), "count=0 anchor=0");
    EXPECT_EQ(logged(), 0);
}

TEST(ApplicationPreferencesTest, aStoredScaleThatNobodyCanUseIsNone)
{
    const QString key = text("Application/interfaceScale");
    const std::pair<const char *, int> cases[] = {
        {"150 %", 150}, {"100 %", 100}, {"300 %", 300}, {"99 %", 100},
        {"301 %", 100}, {"large", 100}, {"", 100},
    };
    for (const auto &[stored, percent] : cases) {
        OssSettings().setValue(key, text(stored));
        EXPECT_EQ(ApplicationPreferences::storedInterfaceScale(), percent) << stored;
    }
    OssSettings().remove(key);
    EXPECT_EQ(ApplicationPreferences::storedInterfaceScale(), 100);
}

TEST(ApplicationPreferencesTest, onlyWhatIsOfferedIsTakenAndEachHasItsName)
{
    auto *preferences = ApplicationPreferences::instance();
    QSignalSpy told(preferences, &ApplicationPreferences::autosaveIntervalChanged);
    EXPECT_EQ(preferences->autosaveSeconds(), 120);
    const std::tuple<const char *, int, int> intervals[] = {
        {"never", 120, 0},       {"Off", 0, 1},       {"Off", 0, 0},
        {"30 minutes", 1800, 1}, {"1 minute", 60, 1}, {"5 minutes", 300, 1},
    };
    for (const auto &[interval, seconds, changes] : intervals) {
        told.clear();
        preferences->setAutosaveInterval(text(interval));
        EXPECT_EQ(preferences->autosaveSeconds(), seconds) << interval;
        EXPECT_EQ(told.size(), changes) << interval;
    }
    preferences->resetAutosaveInterval();
    EXPECT_EQ(preferences->autosaveSeconds(), 120);
    preferences->setInterfaceScale(text("7 %"));
    EXPECT_NE(preferences->interfaceScale(), text("7 %"));
    preferences->setInterfaceScale(text("150 %"));
    EXPECT_EQ(preferences->interfaceScale(), text("150 %"));
    preferences->resetInterfaceScale();
    const std::pair<const char *, const char *> names[] = {
        {"reopenLastProject", "Open Last Project"},
        {"interfaceScale", "Size of Texts and Icons"},
        {"nodesGlide", "Nodes Glide When Arranged"},
        {"autosaveInterval", "Copy Unsaved Work Every"},
        {"someOtherThing", "Some Other Thing"},
    };
    for (const auto &[key, name] : names)
        EXPECT_EQ(preferences->prettyPropertyName(text(key)), text(name));
}
