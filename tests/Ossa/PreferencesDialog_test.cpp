#include "Ossa/Dialogs/PreferencesDialog.h"

#include "OssCore/Program/OssPreferenceManager.h"
#include "PreferencesTestObject.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace {

class Preferences : public testing::Test
{
protected:
    Preferences()
    {
        for (const char *key : {"flag", "count", "ratio", "note", "mode", "anchor"})
            OssPreferenceManager::instance()->registerPreference(QStringLiteral("Tests"),
                                                                 QStringLiteral("General"), &object,
                                                                 QString::fromLatin1(key));
        dialog = std::make_unique<PreferencesDialog>();
        dialog->show();
    }

    template <class Widget>
    Widget *editor(const char *key)
    {
        auto *widget = dialog->findChild<Widget *>(QString::fromLatin1(key));
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

    void type(QWidget *field, const char *text)
    {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, QString::fromLatin1(text));
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

    PreferencesTestObject object;
    std::unique_ptr<PreferencesDialog> dialog;
};

} // namespace

TEST_F(Preferences, editorsShowTheValues)
{
    EXPECT_TRUE(editor<QCheckBox>("flag")->isChecked());
    EXPECT_EQ(editor<QCheckBox>("flag")->toolTip(), QStringLiteral("What the flag does"));
    EXPECT_EQ(editor<QSpinBox>("count")->value(), 4);
    EXPECT_EQ(editor<QLineEdit>("note")->text(), QStringLiteral("text"));
    EXPECT_EQ(editor<QComboBox>("mode")->count(), 3);
    EXPECT_EQ(editor<QComboBox>("anchor")->currentText(), QStringLiteral("Cursor"));
}

TEST_F(Preferences, okAppliesEverythingAndSavesOnce)
{
    changeEverything();
    press(QDialogButtonBox::Ok);
    EXPECT_FALSE(object.flag);
    EXPECT_EQ(object.count, 12);
    EXPECT_DOUBLE_EQ(object.ratio, 0.75);
    EXPECT_EQ(object.note, QStringLiteral("other"));
    EXPECT_EQ(object.mode, QStringLiteral("Leave"));
    EXPECT_EQ(object.anchor, PreferencesTestObject::Center);
    EXPECT_EQ(object.saves, 1);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(Preferences, cancelRestoresEverythingAndSavesNothing)
{
    changeEverything();
    EXPECT_EQ(object.count, 12); // at once, while the dialog is open
    press(QDialogButtonBox::Cancel);
    EXPECT_TRUE(object.flag);
    EXPECT_EQ(object.count, 4);
    EXPECT_DOUBLE_EQ(object.ratio, 0.5);
    EXPECT_EQ(object.note, QStringLiteral("text"));
    EXPECT_EQ(object.mode, QStringLiteral("Prompt"));
    EXPECT_EQ(object.anchor, PreferencesTestObject::Cursor);
    EXPECT_EQ(object.saves, 0);
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
    dialog.reset();
    object.anchor = PreferencesTestObject::Anchor(7);
    dialog = std::make_unique<PreferencesDialog>();
    EXPECT_EQ(editor<QComboBox>("anchor")->currentIndex(), -1);
    dialog->accept();
    EXPECT_EQ(int(object.anchor), 7);
}

TEST_F(Preferences, resetShowsAndAppliesTheDefaultsOfThePage)
{
    changeEverything();
    auto *pages = dialog->findChild<QListWidget *>();
    pages->setCurrentItem(pages->findItems(QStringLiteral("Tests"), Qt::MatchExactly).first());
    press(QDialogButtonBox::RestoreDefaults);
    EXPECT_TRUE(object.flag);
    EXPECT_TRUE(editor<QCheckBox>("flag")->isChecked());
    EXPECT_EQ(editor<QSpinBox>("count")->value(), 4);
    press(QDialogButtonBox::Cancel);
}

TEST_F(Preferences, ofOneGroupStandTogether)
{
    QWidget *const group = editor<QCheckBox>("flag")->parentWidget();
    for (const char *key : {"count", "ratio", "note", "mode", "anchor"})
        EXPECT_EQ(editor<QWidget>(key)->parentWidget(), group) << key;
}
