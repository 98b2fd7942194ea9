// A project's colors by hand: dialogs, what is told, and what is shown of them.

#include "Ossa/Commands/ColorCommands.h"
#include "Ossa/Dialogs/NewProjectDialog.h"
#include "Ossa/Dialogs/ProjectSettingsDialog.h"
#include "Ossa/Palettes/ProblemsPanel.h"
#include "Ossa/Viewer/ViewerPanel.h"
#include "Ossa/Viewer/ViewerPixels.h"
#include "Ossa/Window/NotificationBar.h"
#include "Ossa/WindowFixture.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "support/DialogAnswers.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QImage>
#include <QPushButton>
#include <QTreeWidget>

namespace {

const QByteArray Config = R"(ocio_profile_version: 2
roles: {scene_linear: Wide, aces_interchange: Exchange}
file_rules:
  - !<Rule> {name: Default, colorspace: Wide}
displays:
  Monitor:
    - !<View> {name: Plain, colorspace: Wide}
    - !<View> {name: Half, colorspace: Half}
  Projector:
    - !<View> {name: Plain, colorspace: Wide}
colorspaces:
  - !<ColorSpace>
    name: Wide
  - !<ColorSpace>
    name: Half
    from_scene_reference: !<MatrixTransform> {matrix: [0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Exchange
    to_scene_reference: !<BuiltinTransform> {style: ACEScg_to_ACES2065-1, direction: inverse}
)";

class Colors : public WindowFixture
{
protected:
    void SetUp() override
    {
        open();
        ASSERT_NE(projects()->newProject(text("Colors")), nullptr);
        m_config = path("own.ocio");
        QFile file(m_config);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(Config);
    }

    static OssProject *project() { return OssProjectManager::instance()->currentProject(); }

    static OssSnBaseNode *add(const char *type)
    {
        return project()->shadingGroups().first()->network()->createNode(text(type), {});
    }

    /// Waits for the dialog of the class, acts on it, and goes on until it is closed.
    template <class Dialog>
    static void inDialog(const char *path, const std::function<void(Dialog *)> &act)
    {
        const DialogAnswers user;
        bool isDone = false;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&] {
            auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            if (dialog && !std::exchange(isDone, true))
                act(dialog);
        });
        look.start(5);
        command(path)->trigger();
        EXPECT_TRUE(isDone);
    }

    static QPushButton *okOf(QDialog *dialog)
    {
        return dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    }

    /// The list that has this entry; chooses it as a user does.
    static void choose(QWidget *parent, const char *entry)
    {
        const auto lists = parent->findChildren<QComboBox *>();
        for (QComboBox *list : lists) {
            const int index = list->findText(text(entry));
            if (index < 0)
                continue;
            list->setCurrentIndex(index);
            Q_EMIT list->activated(index);
            return;
        }
        ADD_FAILURE() << "no list has " << entry;
    }

    static QStringList entries(const QWidget *parent, const char *entry)
    {
        QStringList found;
        const auto lists = parent->findChildren<QComboBox *>();
        for (const QComboBox *list : lists) {
            if (list->findText(text(entry)) < 0)
                continue;
            for (int i = 0; i < list->count(); ++i)
                found.append(list->itemText(i));
        }
        return found;
    }

    QString m_config;
};

TEST_F(Colors, projectSettingsConvertColorsWhenTheyAreAskedTo)
{
    OssSnBaseNode *node = add("Procedural/Color");
    node->setAttribute(text("Color"), text("0.8,0.1,0.1,1"));
    const auto red = [node] {
        return node->attribute(text("Color")).value<OssColor>().red();
    };
    const QColor seen = OssDisplayColor::ofLinear(node->attribute(text("Color")).value<OssColor>());
    const int steps = OssUndoManager::instance()->count();
    inDialog<ProjectSettingsDialog>("Edit/Project Settings...", [](ProjectSettingsDialog *dialog) {
        auto *converts = dialog->findChild<QCheckBox *>();
        EXPECT_FALSE(converts->isVisible()) << "nothing is another yet";
        choose(dialog, "ACEScg");
        EXPECT_TRUE(converts->isVisible());
        EXPECT_EQ(converts->text(), text("Convert 1 color of a node, so that it looks the same"));
        EXPECT_TRUE(converts->isChecked());
        okOf(dialog)->click();
    });
    EXPECT_EQ(project()->workingSpace(), text("ACEScg"));
    EXPECT_NEAR(red(), 0.5292, 1e-3);
    EXPECT_EQ(OssDisplayColor::ofLinear(node->attribute(text("Color")).value<OssColor>()).name(),
              seen.name());
    EXPECT_EQ(OssUndoManager::instance()->count(), steps + 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(project()->workingSpace(), QString());
    EXPECT_EQ(red(), 0.8);
    inDialog<ProjectSettingsDialog>("Edit/Project Settings...", [](ProjectSettingsDialog *dialog) {
        choose(dialog, "ACEScg");
        dialog->findChild<QCheckBox *>()->setChecked(false);
        okOf(dialog)->click();
    });
    EXPECT_EQ(red(), 0.8);
}

TEST_F(Colors, projectSettingsHoldTheRulesForFiles)
{
    inDialog<ProjectSettingsDialog>("Edit/Project Settings...", [](ProjectSettingsDialog *dialog) {
        auto *rules = dialog->findChild<QTreeWidget *>();
        EXPECT_EQ(rules->topLevelItem(0)->text(0), text("*_normal*"));
        rules->clear();
        okOf(dialog)->click();
    });
    EXPECT_EQ(project()->fileRules(), QStringList());
    EXPECT_TRUE(OssProjectManager::instance()->isModified());
}

TEST_F(Colors, aNewProjectIsReckonedInTheSpaceThatIsChosen)
{
    inDialog<NewProjectDialog>("File/New Project...", [](NewProjectDialog *dialog) {
        choose(dialog, "ACEScg");
        okOf(dialog)->click();
    });
    EXPECT_EQ(project()->workingSpace(), text("ACEScg"));
    EXPECT_EQ(project()->fileRules(), OssColorSettings::usualFileRules());
    EXPECT_EQ(OssColorManagement::spaces()->working(), "ACEScg");
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
}

TEST_F(Colors, whatStandsInForAConfigurationIsToldAndMarked)
{
    const ExpectedLog expected("there is no such file. The built-in color spaces stand in");
    project()->setColorConfig(m_config);
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("A.ossa")));
    const auto *told = window->findChild<NotificationBar *>();
    EXPECT_EQ(told->text(), QString());
    const ProblemsPanel problems;
    ASSERT_TRUE(QFile::rename(m_config, path("gone.ocio")));
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path("A.ossa")));
    const QString problem = OssColorManagement::instance()->problem();
    EXPECT_TRUE(problem.contains(m_config)) << qPrintable(problem);
    EXPECT_EQ(told->text(), problem);
    const auto *list = problems.findChild<QTreeWidget *>();
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_EQ(list->topLevelItem(0)->text(1), problem);
    ASSERT_TRUE(QFile::rename(path("gone.ocio"), m_config));
    // Looking is enough: the project keeps its choice.
    inDialog<ProjectSettingsDialog>("Edit/Project Settings...",
                                    [](ProjectSettingsDialog *dialog) { okOf(dialog)->click(); });
    EXPECT_EQ(OssColorManagement::instance()->problem(), QString());
    EXPECT_EQ(OssColorManagement::spaces()->working(), "Wide");
    EXPECT_EQ(list->topLevelItemCount(), 0);
}

TEST_F(Colors, theViewerOffersDisplaysAndViewsOfTheConfiguration)
{
    const ViewerPanel viewer;
    EXPECT_EQ(entries(&viewer, "Raw"), texts({"sRGB", "Raw"}));
    project()->setColorConfig(m_config);
    EXPECT_EQ(entries(&viewer, "Raw"),
              texts({"Monitor: Plain", "Monitor: Half", "Projector", "Raw"}));
    const OssEvTile tile(4, OssEvTile::Format::Half, {0.5F, 0.5F, 0.5F, 1.0F});
    ViewerLook look;
    EXPECT_EQ(qRed(ViewerPixels::picture(tile, look).pixel(1, 1)), 128);
    look.screen = {"Monitor", "Half"};
    EXPECT_EQ(qRed(ViewerPixels::picture(tile, look).pixel(1, 1)), 64);
    project()->setColorConfig({});
    EXPECT_EQ(entries(&viewer, "Raw"), texts({"sRGB", "Raw"}));
}

TEST_F(Colors, imageNodesTellWhatAutomaticComesTo)
{
    QImage picture(4, 4, QImage::Format_RGB888);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(path("wall.png")) && picture.save(path("wall_normal.png")));
    OssSnBaseNode *node = add("Misc/Image");
    const OssNodePropertyPanel panel(node, {}, nullptr);
    EXPECT_EQ(entries(&panel, "Data"), texts({"Automatic", "Color", "Data"}));
    node->setAttribute(text("File"), path("wall.png"));
    EXPECT_EQ(entries(&panel, "Data").first(), text("Automatic (sRGB)"));
    node->setAttribute(text("File"), path("wall_normal.png"));
    EXPECT_EQ(entries(&panel, "Data").first(), text("Automatic (Data)"));
    project()->setFileRules({text("*_normal*=ACEScg")});
    EXPECT_EQ(entries(&panel, "Data").first(), text("Automatic (ACEScg)"));
    const auto lists = panel.findChildren<QComboBox *>();
    QComboBox *space = *std::find_if(lists.cbegin(), lists.cend(), [](const QComboBox *list) {
        return list->findText(text("Gamma 2.2")) >= 0;
    });
    EXPECT_EQ(space->itemText(0), text("Automatic (ACEScg)"));
    QTest::keyClicks(space, text("Gamma"));
    EXPECT_EQ(node->attribute(text("FileSpace")), text("Gamma 2.2"));
    EXPECT_EQ(entries(&panel, "Data").first(), text("Automatic (Gamma 2.2)"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(space->currentIndex(), 0);
    node->setAttribute(text("FileSpace"), text("From Elsewhere"));
    EXPECT_EQ(space->currentText(), text("From Elsewhere")) << "it is not lost";
}

} // namespace
