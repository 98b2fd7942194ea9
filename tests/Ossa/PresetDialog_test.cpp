#include "Ossa/Export/PresetDialog.h"

#include "Ossa/Export/ExportPresetButton.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Export/OssExportPresets.h"
#include "support/DialogAnswers.h"
#include "support/ModelFixture.h"
#include "support/PassTime.h"
#include "support/Text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <algorithm>

namespace {

/// How a user makes presets of their own.
class PresetDialogTest : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        QDir(OssExportPresets::ownFolder()).removeRecursively();
        add("Shaders/Standard Surface", "Skin");
        m_options.folder = text("/textures");
        EXPECT_TRUE(OssExportPresets::find(text("Game Engine, ORM"), &m_preset));
        m_preset.name = text("Studio");
    }

    void TearDown() override
    {
        m_dialog.reset();
        QDir(OssExportPresets::ownFolder()).removeRecursively();
        ModelFixture::TearDown();
    }

    void open(const QString &ownName = QString())
    {
        m_dialog = std::make_unique<PresetDialog>(m_preset, ownName, m_options);
        m_dialog->show();
        settle();
    }

    static void settle() { passTime(250); }

    template <class Widget>
    Widget *find(const char *name)
    {
        auto *found = m_dialog->findChild<Widget *>(text(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    void press(const char *label)
    {
        const auto all = m_dialog->findChildren<QPushButton *>();
        for (QPushButton *one : all) {
            if (one->text() == text(label))
                one->click();
        }
        settle();
    }

    bool canSave()
    {
        return m_dialog->findChild<QDialogButtonBox *>()
            ->button(QDialogButtonBox::Save)
            ->isEnabled();
    }

    QString fault() { return find<QLabel>("PresetFault")->text(); }

    QStringList preview()
    {
        return find<QPlainTextEdit>("PresetPreview")->toPlainText().split(QLatin1Char('\n'));
    }

    static OssExportPreset saved(const char *name)
    {
        OssExportPreset preset;
        const OssResult found = OssExportPresets::find(text(name), &preset);
        EXPECT_TRUE(found) << qPrintable(found.error());
        return preset;
    }

    OssExportPreset m_preset;
    OssExportOptions m_options;
    std::unique_ptr<PresetDialog> m_dialog;
};

TEST_F(PresetDialogTest, aFileIsMadeSeenAndWrittenAsItWasChosen)
{
    open();
    const int before = find<QListWidget>("PresetFiles")->count();
    press("Add");
    ASSERT_EQ(find<QListWidget>("PresetFiles")->count(), before + 1);
    find<QLineEdit>("FileName")->setText(text("masks/$object_packed"));
    find<QComboBox>("Format")->setCurrentText(text("OpenEXR"));
    find<QComboBox>("Depth")->setCurrentText(text("32 bit float"));
    find<QComboBox>("Compression")->setCurrentText(text("zip"));
    find<QComboBox>("Size")->setCurrentText(text("512"));
    find<QSpinBox>("Padding")->setValue(-1);
    find<QComboBox>("Normal")->setCurrentIndex(1);
    find<QComboBox>("FromR")->setCurrentText(text("Roughness"));
    find<QCheckBox>("InverseR")->setChecked(true);
    find<QComboBox>("FromG")->setCurrentText(text("Base Color"));
    find<QComboBox>("ComponentG")->setCurrentText(text("Luminance"));
    find<QComboBox>("FromB")->setCurrentIndex(1); // constant
    find<QDoubleSpinBox>("ValueB")->setValue(0.25);
    settle();
    EXPECT_EQ(fault(), QString());
    ASSERT_EQ(preview().size(), before + 1);
    EXPECT_TRUE(preview().last().startsWith(text("masks/Object_packed.exr")))
        << qPrintable(preview().last());
    press("Save");
    EXPECT_FALSE(m_dialog->isVisible());

    const OssExportPreset::File file = saved("Studio").files.last();
    EXPECT_EQ(file.name, text("masks/$object_packed"));
    EXPECT_EQ(file.format, text("exr"));
    EXPECT_EQ(file.form.depth, OssEvDepth::Float);
    EXPECT_EQ(file.form.compression, "zip");
    EXPECT_EQ(file.resolution, 512);
    EXPECT_EQ(file.padding, int(OssExportOptions::EndlessPadding));
    EXPECT_TRUE(file.flipsNormals);
    EXPECT_EQ(file.channels[0].from, text("Roughness"));
    EXPECT_TRUE(file.channels[0].inverts);
    EXPECT_EQ(file.channels[1].component, text("Luminance"));
    EXPECT_TRUE(file.channels[2].from.isEmpty());
    EXPECT_EQ(file.channels[2].value, 0.25);
    EXPECT_FALSE(file.channels[3].isUsed);
    for (int i = 0; i < before; ++i)
        EXPECT_EQ(saved("Studio").files.at(i), m_preset.files.at(i)) << "not touched: " << i;
}

TEST_F(PresetDialogTest, whatCannotBeWrittenSaysWhy)
{
    open();
    find<QLineEdit>("FileName")->setText(text("$objekt"));
    settle();
    EXPECT_TRUE(fault().contains(text("\"$objekt\" is no token"))) << qPrintable(fault());
    EXPECT_FALSE(canSave());
    find<QLineEdit>("FileName")->setText(text("$object"));
    find<QComboBox>("FromG")->setCurrentIndex(0);
    settle();
    EXPECT_TRUE(fault().contains(text("needs R, or R, G and B"))) << qPrintable(fault());
    find<QComboBox>("FromG")->setCurrentIndex(1);
    settle();
    EXPECT_TRUE(canSave()) << qPrintable(fault());
    press("Copy");
    EXPECT_TRUE(fault().contains(text("two files are called \"$object"))) << qPrintable(fault());
    EXPECT_FALSE(canSave());
    find<QLineEdit>("FileName")->setText(text("$object[.$udim]"));
    settle();
    EXPECT_FALSE(canSave()) << "where there is one patch, they have one name still";
    find<QLineEdit>("PresetName")->clear();
    settle();
    EXPECT_TRUE(fault().contains(text("no name")));
    EXPECT_FALSE(canSave());
    while (find<QListWidget>("PresetFiles")->count() > 0)
        press("Remove");
    find<QLineEdit>("PresetName")->setText(text("Studio"));
    settle();
    EXPECT_TRUE(fault().contains(text("no files")));
    m_dialog->reject();
    OssExportPreset preset;
    EXPECT_FALSE(OssExportPresets::find(text("Studio"), &preset)) << "nothing was saved";
}

TEST_F(PresetDialogTest, channelsAreThoseOfShadersAndThoseThatThePresetHasAlready)
{
    m_preset.files[0].channels[0].from = text("Fuzz");
    open();
    auto *from = find<QComboBox>("FromR");
    EXPECT_EQ(from->currentText(), text("Fuzz"));
    EXPECT_GE(from->findText(text("Clear Coat Roughness")), 0);
    QTest::keyClicks(from, text("Base C"));
    settle();
    EXPECT_EQ(from->currentText(), text("Base Color")) << "typing chooses, and makes no names";
    press("Save");
    EXPECT_EQ(saved("Studio").files[0].channels[0].from, text("Base Color"));
}

TEST_F(PresetDialogTest, ownOnesAreRenamedAndKeepApart)
{
    ASSERT_TRUE(OssExportPresets::save(m_preset));
    OssExportPreset other = m_preset;
    other.name = text("Other");
    ASSERT_TRUE(OssExportPresets::save(other));
    open(text("Studio"));
    find<QLineEdit>("PresetName")->setText(text("other"));
    settle();
    EXPECT_TRUE(fault().contains(text("You have a preset \"other\" already")));
    EXPECT_FALSE(canSave());
    find<QLineEdit>("PresetName")->setText(text("Studio 2"));
    press("Save");
    EXPECT_EQ(saved("Studio 2").files, m_preset.files);
    OssExportPreset gone;
    EXPECT_FALSE(OssExportPresets::find(text("Studio"), &gone));
    EXPECT_EQ(QDir(OssExportPresets::ownFolder()).entryList(QDir::Files).size(), 2);
}

TEST_F(PresetDialogTest, theMenuCopiesShippedOnesEditsAndRemovesOwnOnes)
{
    ExportPresetButton button;
    QStringList chosen;
    QObject::connect(&button, &ExportPresetButton::presetsChanged,
                     [&chosen](const QString &name) { chosen.append(name); });
    const auto entry = [&button](const char *label) {
        Q_EMIT button.menu()->aboutToShow();
        const auto actions = button.menu()->actions();
        const auto found = std::find_if(actions.cbegin(), actions.cend(), [label](const auto *one) {
            return one->text() == text(label);
        });
        return *found;
    };
    OssApplication::setPopupsAllowed(true);
    button.setPreset(text("Game Engine, ORM"));
    EXPECT_FALSE(entry("Edit...")->isEnabled());
    EXPECT_FALSE(entry("Remove")->isEnabled());
    whenOpen<PresetDialog>([](PresetDialog *dialog) { dialog->accept(); });
    entry("Copy as My Own...")->trigger();
    EXPECT_EQ(chosen, QStringList{text("My Game Engine, ORM")});
    button.setPreset(chosen.last());
    whenOpen<PresetDialog>([](PresetDialog *dialog) {
        dialog->findChild<QLineEdit *>(text("PresetName"))->setText(text("Mine"));
        dialog->accept();
    });
    entry("Edit...")->trigger();
    EXPECT_EQ(chosen.last(), text("Mine"));
    button.setPreset(text("Mine"));
    answerWith(QMessageBox::Yes);
    entry("Remove")->trigger();
    EXPECT_TRUE(QDir(OssExportPresets::ownFolder()).isEmpty());
}

} // namespace
