// Meshes by hand: dialogs, the menu's commands, a drop on the window, and what is told.

#include "Ossa/Commands/MeshCommands.h"

#include "Ossa/Dialogs/MeshDialog.h"
#include "Ossa/Dialogs/MissingFilesDialog.h"
#include "Ossa/Dialogs/NewProjectDialog.h"
#include "Ossa/Palettes/ProblemsPanel.h"
#include "Ossa/WindowFixture.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProjectMeshes.h"
#include "support/DialogAnswers.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTreeWidget>
#include <QUrl>

#include <string>

namespace {

class Meshes : public WindowFixture
{
protected:
    void SetUp() override { open(); }

    static QByteArray obj(bool hasUvs, int parts = 1)
    {
        QByteArray content;
        for (int i = 0; i < parts; ++i) {
            const QByteArray n[3] = {QByteArray::number(3 * i + 1), QByteArray::number(3 * i + 2),
                                     QByteArray::number(3 * i + 3)};
            content += "o Part" + QByteArray::number(i) + "\nv 0 0 " + n[0] + "\nv 1 0 " + n[0]
                       + "\nv 0 1 " + n[0] + "\n";
            const QByteArray u = QByteArray::number(i);
            if (hasUvs)
                content += "vt " + u + ".1 0.1\nvt " + u + ".9 0.1\nvt " + u + ".1 0.9\nf " + n[0]
                           + "/" + n[0] + " " + n[1] + "/" + n[1] + " " + n[2] + "/" + n[2] + "\n";
            else
                content += "f " + n[0] + " " + n[1] + " " + n[2] + "\n";
        }
        return content;
    }

    /// A button of the window that says so.
    void press(const char *words) const
    {
        const auto buttons = window->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (button->text() == text(words))
                button->click();
        }
    }

    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path(name);
    }

    /// Waits for the dialog of the class, acts on it, and goes on until `goesOn` is over.
    template <class Dialog>
    static void inDialog(const std::function<void(Dialog *)> &act,
                         const std::function<void()> &command)
    {
        bool isDone = false;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&] {
            auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            if (!dialog || isDone)
                return;
            isDone = true;
            act(dialog);
        });
        look.start(5);
        command();
        EXPECT_TRUE(isDone);
    }

    static QPushButton *okOf(QDialog *dialog)
    {
        return dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    }

    static void acceptOnceRead(QDialog *dialog)
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return okOf(dialog)->isEnabled(); }));
        okOf(dialog)->click();
    }

    MeshCommands *commands() const { return window->findChild<MeshCommands *>(); }

    static QList<OssGeoEntity *> objects()
    {
        return OssProjectManager::instance()->currentProject()->entities();
    }

    static QString textOf(const QDialog *dialog)
    {
        QString all;
        const auto labels = dialog->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            all += label->text() + QLatin1Char('\n');
        return all;
    }
};

TEST_F(Meshes, aNewProjectAsksForNameMeshAndSize)
{
    const QString mesh = write("rock.obj", obj(true, 2));
    const DialogAnswers user;
    inDialog<NewProjectDialog>(
        [&](NewProjectDialog *dialog) {
            dialog->setFile(write("first.obj", obj(true, 1)));
            dialog->setFile(mesh); // whose name takes the place of the first one's
            EXPECT_FALSE(okOf(dialog)->isEnabled()) << "while it is being read";
            const auto combos = dialog->findChildren<QComboBox *>();
            for (QComboBox *combo : combos) {
                if (combo->findText(text("4096")) >= 0)
                    combo->setCurrentText(text("4096"));
            }
            ASSERT_TRUE(QTest::qWaitFor([&] { return okOf(dialog)->isEnabled(); }));
            EXPECT_TRUE(textOf(dialog).contains(text("UDIM patches: 1001, 1002.")))
                << qPrintable(textOf(dialog));
            okOf(dialog)->click();
        },
        [] { command("File/New Project...")->trigger(); });
    const OssProject *project = OssProjectManager::instance()->currentProject();
    EXPECT_EQ(project->name(), text("rock"));
    EXPECT_EQ(project->newResolution(), 4096);
    ASSERT_EQ(objects().size(), 1);
    EXPECT_EQ(objects().first()->name(), text("rock"));
    EXPECT_EQ(OssMeshes::instance()->look(objects().first()->source()).state,
              OssMeshes::State::Ready)
        << "it is not read once more";
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

TEST_F(Meshes, whatCannotBeUsedIsToldAndCanBeUnwrapped)
{
    projects()->newProject(text("P"));
    const QString mesh = write("bare.obj", obj(false));
    const DialogAnswers user;
    inDialog<MeshDialog>(
        [&](MeshDialog *dialog) {
            ASSERT_TRUE(QTest::qWaitFor(
                [&] { return textOf(dialog).contains(text("has no texture coordinates")); }));
            EXPECT_TRUE(textOf(dialog).contains(text("unwrap it automatically")));
            EXPECT_FALSE(okOf(dialog)->isEnabled());
            const auto buttons = dialog->findChildren<QPushButton *>();
            for (QPushButton *button : buttons) {
                if (button->text() != text("Unwrap Automatically"))
                    continue;
                button->setFocus();
                QTest::keyClick(button, Qt::Key_Space);
            }
            EXPECT_FALSE(qobject_cast<QPushButton *>(dialog->focusWidget()))
                << "the next key is not for Cancel";
            acceptOnceRead(dialog);
        },
        [&] { commands()->importFile(mesh); });
    ASSERT_EQ(objects().size(), 2);
    EXPECT_TRUE(objects().last()->source().options.unwraps);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), text("Import bare.obj"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(objects().size(), 1);
}

TEST_F(Meshes, aMeshThatIsDroppedOnTheWindowIsImported)
{
    projects()->newProject(text("P"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(write("two.obj", obj(true, 2)))});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, {});
    enter.ignore();
    QApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    const DialogAnswers user;
    inDialog<MeshDialog>([&](MeshDialog *dialog) { acceptOnceRead(dialog); },
                         [&] {
                             QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, {});
                             QApplication::sendEvent(window.get(), &drop);
                             EXPECT_EQ(objects().size(), 1) << "the drop itself is over at once";
                             EXPECT_TRUE(QTest::qWaitFor([] { return objects().size() == 2; }));
                         });
    EXPECT_EQ(objects().last()->name(), text("two"));
}

TEST_F(Meshes, whatIsMissingIsToldListedAndFoundAgain)
{
    OssProject *project = projects()->newProject(text("P"));
    QDir(path("")).mkpath(text("old"));
    QDir(path("")).mkpath(text("moved/deep"));
    const QString mesh = write("old/rock.obj", obj(true));
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(path("old/wall.1001.png")));
    OssGeometrySource source;
    source.shape = mesh;
    objects().first()->setSource(source);
    ASSERT_EQ(OssMeshes::instance()->waitFor(source).state, OssMeshes::State::Ready);
    OssImage *image = project->addImage(path("old/wall.<UDIM>.png"), text("Images"));
    ProblemsPanel panel;
    const auto *list = panel.findChild<QTreeWidget *>();
    EXPECT_EQ(list->topLevelItemCount(), 0);

    const ExpectedLog gone("rock.obj");
    ASSERT_TRUE(QFile::rename(mesh, path("moved/deep/rock.obj")));
    ASSERT_TRUE(QFile::rename(path("old/wall.1001.png"), path("moved/wall.1001.png")));
    OssFileWatch::instance()->settle([] { return true; });
    ASSERT_EQ(OssMeshes::instance()->waitFor(source).state, OssMeshes::State::Kept);
    ASSERT_EQ(list->topLevelItemCount(), 1);
    EXPECT_TRUE(list->topLevelItem(0)->text(1).contains(text("missing")));
    EXPECT_TRUE(window->notificationText().contains(text("rock.obj")));

    const DialogAnswers user;
    inDialog<MissingFilesDialog>(
        [&](MissingFilesDialog *dialog) {
            EXPECT_EQ(dialog->findChild<QTreeWidget *>()->topLevelItemCount(), 2);
            dialog->searchIn(path("moved"));
            EXPECT_EQ(dialog->paths().size(), 2);
            dialog->accept();
        },
        [this] { press("Missing Files..."); });
    EXPECT_EQ(objects().first()->geometry(), path("moved/deep/rock.obj"));
    EXPECT_EQ(image->path(), path("moved/wall.<UDIM>.png"));
    ASSERT_EQ(OssMeshes::instance()->waitFor(objects().first()->source()).state,
              OssMeshes::State::Ready);
    EXPECT_EQ(list->topLevelItemCount(), 0);
    EXPECT_TRUE(OssProjectMeshes::missing(project).isEmpty());
    EXPECT_TRUE(window->notificationText().isEmpty()) << "what is mended is told no more";
    EXPECT_EQ(OssUndoManager::instance()->undoText(), text("Relink Files"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(objects().first()->geometry(), mesh);
    EXPECT_EQ(image->path(), path("old/wall.<UDIM>.png"));
    ASSERT_EQ(OssMeshes::instance()->waitFor(source).state, OssMeshes::State::Kept);
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return window->notificationText().contains(text("rock.obj")); }));
    OssProjectManager::instance()->closeProject();
    EXPECT_TRUE(window->notificationText().isEmpty()) << "of no other project";
}

TEST_F(Meshes, objectsAreShownRenamedAndRemovedFromTheMenu)
{
    projects()->newProject(text("P"));
    const auto action = [](const char *name) {
        return command((std::string("Mesh/") + name).c_str());
    };
    {
        const DialogAnswers user({}, QMessageBox::Ok, text("Shader Ball"));
        action("Add Object...")->trigger();
    }
    ASSERT_EQ(objects().size(), 2);
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    EXPECT_EQ(networks->currentShaderNetwork()->geoEntity(), objects().last());
    {
        const DialogAnswers user({}, QMessageBox::Ok, text("Hero"));
        action("Rename Object...")->trigger();
    }
    EXPECT_EQ(objects().last()->name(), text("Hero"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return action("Show/Object") != nullptr; }));
    action("Show/Object")->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(networks->currentShaderNetwork()->geoEntity(), objects().first());
    for (int i = 0; i < 2; ++i) {
        const DialogAnswers user({}, QMessageBox::Ok, text("Dirt"));
        action("Add Geo-Channel...")->trigger();
        EXPECT_EQ(user.boxes.size(), i) << "it is taken then";
        EXPECT_EQ(objects().first()->geoImageSets().size(), 1);
    }
    action("Show/Hero")->trigger();
    QCoreApplication::processEvents();
    action("Remove Object")->trigger();
    ASSERT_EQ(objects().size(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return action("Show/Hero") == nullptr; }));
    const DialogAnswers user({}, QMessageBox::Ok);
    action("Remove Object")->trigger();
    EXPECT_EQ(objects().size(), 1) << "the last one stays";
}

TEST_F(Meshes, objectsThatAreGoneAreNotAskedBeforeTheirCommandsGo)
{
    OssProject *project = projects()->newProject(text("P"));
    project->createEntity(text("Gone"), {});
    ASSERT_TRUE(QTest::qWaitFor([] { return command("Mesh/Show/Gone") != nullptr; }));
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->clear();
    EXPECT_NE(command("Mesh/Show/Gone"), nullptr);
    projects()->closeProject();
    EXPECT_EQ(command("Mesh/Show/Gone"), nullptr);
}

TEST_F(Meshes, aProjectThatIsClosedBehindADialogIsNotAskedAnyMore)
{
    for (const char *asks :
         {"Mesh/Add Object...", "Mesh/Rename Object...", "Mesh/Add Geo-Channel..."}) {
        projects()->newProject(text("P"));
        inDialog<QInputDialog>(
            [](QInputDialog *dialog) {
                projects()->closeProject();
                dialog->setTextValue(text("Sphere"));
                dialog->accept();
            },
            [asks] { command(asks)->trigger(); });
        EXPECT_EQ(projects()->currentProject(), nullptr) << asks;
    }
}

} // namespace
