#include "Ossa/Export/ExportPanel.h"

#include "Ossa/Export/ExportFilesModel.h"
#include "Ossa/Export/ExportProgress.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Export/OssExportPresets.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/PassTime.h"
#include "support/Text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

namespace {

/// The palette by which an artist delivers textures.
class ExportPanelTest : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssSettings().remove(text("Export"));
        m_shader = add("Shaders/Standard Surface", "Skin");
        m_panel = std::make_unique<ExportPanel>();
        m_panel->show();
        folder().setText(m_folder.path());
        m_panel->findChildren<QComboBox *>().at(1)->setCurrentIndex(0); // 256
        settle();
    }

    void TearDown() override
    {
        m_panel.reset();
        OssSettings().remove(text("Export"));
        ModelFixture::TearDown();
    }

    static void settle() { passTime(350); }

    QComboBox &presets() { return *m_panel->findChildren<QComboBox *>().first(); }

    QLineEdit &folder() { return *m_panel->findChildren<QLineEdit *>().first(); }

    QLineEdit &line(const QString &placeholder)
    {
        const auto all = m_panel->findChildren<QLineEdit *>();
        for (QLineEdit *edit : all) {
            if (edit->placeholderText().startsWith(placeholder))
                return *edit;
        }
        return *all.first();
    }

    QListWidget &list(const char *name)
    {
        const auto all = m_panel->findChildren<QListWidget *>();
        for (QListWidget *one : all) {
            if (one->accessibleName() == text(name))
                return *one;
        }
        return *all.first();
    }

    QComboBox &size()
    {
        const auto all = m_panel->findChildren<QComboBox *>();
        for (QComboBox *one : all) {
            if (one->findData(4096) >= 0)
                return *one;
        }
        return *all.first();
    }

    QPushButton &button()
    {
        const auto all = m_panel->findChildren<QPushButton *>();
        for (QPushButton *one : all) {
            if (one->text().startsWith(text("Export")))
                return *one;
        }
        return *all.first();
    }

    int count() { return m_panel->findChild<QTableView *>()->model()->rowCount(); }

    QStringList states()
    {
        QStringList found;
        const QAbstractItemModel *model = m_panel->findChild<QTableView *>()->model();
        for (int row = 0; row < model->rowCount(); ++row)
            found.append(model->index(row, ExportFilesModel::State).data().toString());
        return found;
    }

    bool shows(const QString &words)
    {
        const auto labels = m_panel->findChildren<QLabel *>();
        return std::any_of(labels.cbegin(), labels.cend(), [&words](const QLabel *label) {
            return label->isVisible() && label->text().contains(words);
        });
    }

    QTemporaryDir m_folder;
    OssSnBaseNode *m_shader = nullptr;
    std::unique_ptr<ExportPanel> m_panel;
};

TEST_F(ExportPanelTest, eachProjectHasItsOwnSizePatchesAndMarks)
{
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(m_folder.filePath(text("one.ossa"))));
    m_panel = std::make_unique<ExportPanel>();
    m_panel->show();
    folder().setText(m_folder.filePath(text("textures")));
    size().setCurrentIndex(size().findData(256));
    line(text("All")).setText(text("1001"));
    settle();
    list("Channels").item(0)->setCheckState(Qt::Unchecked);
    settle();
    button().click();
    EXPECT_TRUE(QTest::qWaitFor([] { return !OssExportManager::instance()->isRunning(); }, 30000));
    m_project = OssProjectManager::instance()->newProject(text("Other"));
    m_project->setNewResolution(1024);
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(m_folder.filePath(text("two.ossa"))));
    ASSERT_TRUE(OssProjectManager::instance()->openProject(m_folder.filePath(text("two.ossa"))));
    EXPECT_EQ(size().currentData().toInt(), 1024) << "of its new images";
    EXPECT_TRUE(line(text("All")).text().isEmpty());
    ASSERT_TRUE(OssProjectManager::instance()->openProject(m_folder.filePath(text("one.ossa"))));
    EXPECT_EQ(size().currentData().toInt(), 256) << "as it was exported last";
    settle();
    EXPECT_EQ(count(), 10) << "all channels";
    m_project = OssProjectManager::instance()->currentProject();
    m_network = m_project->shadingGroups().first()->network();
}

TEST_F(ExportPanelTest, showsWhatWillBeWrittenAndWhyNothingCan)
{
    EXPECT_EQ(presets().currentText(), text("One File per Channel"));
    EXPECT_EQ(count(), 10);
    EXPECT_EQ(button().text(), text("Export 10 Files"));
    list("Channels").item(0)->setCheckState(Qt::Unchecked);
    settle();
    EXPECT_EQ(count(), 9);
    presets().setCurrentIndex(presets().findText(text("Game Engine, ORM")));
    settle();
    EXPECT_EQ(count(), 5);
    EXPECT_FALSE(list("Channels").isVisible()) << "the preset says which";
    line(text("All")).setText(text("1001-"));
    settle();
    EXPECT_TRUE(shows(text("Patches are written like")));
    EXPECT_FALSE(button().isEnabled());
    line(text("All")).clear();
    add("Shaders/Standard Surface", "Bone");
    settle();
    EXPECT_EQ(list("Materials").count(), 2) << "follows the document";
    EXPECT_EQ(count(), 10);
    for (int i = 0; i < 2; ++i)
        list("Materials").item(i)->setCheckState(Qt::Unchecked);
    settle();
    EXPECT_TRUE(shows(text("Mark a material")));
    OssProjectManager::instance()->closeProject();
    settle();
    EXPECT_TRUE(shows(text("Open a project first")));
    EXPECT_FALSE(button().isEnabled());
}

TEST_F(ExportPanelTest, writesWatchesAndRemembers)
{
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(m_folder.filePath(text("one.ossa"))));
    QTest::mouseClick(&button(), Qt::LeftButton);
    EXPECT_FALSE(button().isEnabled()) << "one at a time";
    EXPECT_TRUE(m_panel->findChild<ExportProgress *>()->isVisible());
    OssExportManager *exports = OssExportManager::instance();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !exports->isRunning(); }, 30000));
    EXPECT_EQ(states(), QStringList(QVector<QString>(10, text("written")).toList()));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files).size(), 10);
    EXPECT_FALSE(m_panel->findChild<ExportProgress *>()->isVisible());

    const auto boxes = m_panel->findChildren<QCheckBox *>();
    QCheckBox *watch = *std::find_if(boxes.cbegin(), boxes.cend(), [](const QCheckBox *box) {
        return box->text() == text("Watch");
    });
    watch->click();
    EXPECT_TRUE(exports->isWatching());
    m_shader->setAttribute(text("Roughness"), 0.125);
    EXPECT_TRUE(QTest::qWaitFor([&] { return states().count(text("unchanged")) == 9; }, 30000));
    EXPECT_EQ(states().count(text("written")), 1);
    watch->click();
    EXPECT_FALSE(exports->isWatching());

    ExportPanel again;
    EXPECT_EQ(again.findChildren<QComboBox *>().at(1)->currentText(), text("256"));
}

TEST_F(ExportPanelTest, aFolderInTheWayIsToldWhereItIsSeen)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(text("Object_Metallic.png")));
    const ExpectedLog expected("Object_Metallic.png");
    QTest::mouseClick(&button(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !OssExportManager::instance()->isRunning(); }, 30000));
    EXPECT_EQ(states().count(text("failed")), 1);
    EXPECT_EQ(states().count(text("written")), 9);
    EXPECT_TRUE(shows(text("Object_Metallic.png")));
}

} // namespace
