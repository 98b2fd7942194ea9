#include "GraphFixture.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Dialogs/OssNodeInfoDialog.h"
#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"
#include "OssInterface/Dialogs/OssNodeSearch.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

namespace {

class CreationTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
    }

    void TearDown() override
    {
        OssApplication::setPopupsAllowed(m_popups);
        GraphFixture::TearDown();
    }

    OssSnBaseNode *create(const char *key)
    {
        QAction action;
        action.setData(QString::fromLatin1(key));
        m_view->createNodeFromAction(&action);
        return m_network->selectedNodes().value(0);
    }

    void selectOnly(OssSnBaseNode *node)
    {
        m_view->scene()->clearSelection();
        node->setSelected(true);
    }

    /// A command of the graph on keys that texts and lists use too.
    int bindCommand(QAction *command)
    {
        command->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Down),
                               QKeySequence(Qt::Key_Tab), QKeySequence(Qt::CTRL + Qt::Key_Return)});
        command->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        m_view->addAction(command);
        m_view->window()->show();
        QApplication::setActiveWindow(m_view->window());
        m_view->setFocus();
        QSignalSpy triggered(command, &QAction::triggered);
        QTest::keyClick(m_view, Qt::Key_Down);
        return triggered.count();
    }

    bool m_popups = true;
};

TEST_F(CreationTest, newNodesAreWiredToTheSelectionInItsOrder)
{
    OssSnBaseNode *upper = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *lower = addAt("Procedural/Color", {0, 300});
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {0, 600});
    m_view->scene()->clearSelection();
    for (OssSnBaseNode *node : {lower, note, upper})
        node->setSelected(true);
    OssUndoManager::instance()->clear();
    OssSnBaseNode *merge = create("Layer/Merge");
    ASSERT_NE(merge, nullptr);
    EXPECT_EQ(merge->inputNode(QStringLiteral("Base")), upper);
    EXPECT_EQ(merge->inputNode(QStringLiteral("Over")), lower);
    EXPECT_TRUE(logHas(QStringLiteral("has no output, skipping autoconnecting to it")));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Create Node : Merge"));
    for (OssSnBaseNode *node : {upper, lower})
        node->setSelected(true);
    OssSnBaseNode *blur = create("Filter/Blur");
    EXPECT_NE(blur->inputNode(QStringLiteral("Input")), nullptr);
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(upper->outgoingConnections().isEmpty());
}

TEST_F(CreationTest, aBackdropWrapsTheSelectionAndBearsItsName)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {100, 100});
    selectOnly(blur);
    OssSnBaseNode *area = create("Misc/Backdrop");
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(area));
    ASSERT_NE(backdrop, nullptr);
    EXPECT_EQ(backdrop->titleText(), area->name());
    EXPECT_TRUE(backdrop->sceneBoundingRect().contains(itemOf(blur)->sceneBoundingRect()));
    EXPECT_EQ(backdrop->childrenList().size(), 1);
}

TEST_F(CreationTest, paintAndBakePointsGetImagesThatAreSaved)
{
    m_view->createPaintableNode(QPoint(40, 60));
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Add Paint Node"));
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    selectOnly(color);
    auto *bake = qobject_cast<OssSnBakePointNode *>(create("Misc/Bake Point"));
    ASSERT_NE(bake, nullptr);
    ASSERT_NE(bake->imageSet(), nullptr);
    EXPECT_EQ(bake->inputNode(QStringLiteral("Input")), color);
    const QByteArray hash = m_project->stateHash();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Test.ossa"));
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(path));
    ASSERT_TRUE(projects->openProject(path));
    m_project = projects->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    m_view = m_manager->currentView();
    EXPECT_EQ(m_project->stateHash(), hash);
    bake = qobject_cast<OssSnBakePointNode *>(m_network->node(QStringLiteral("Bake Point")));
    ASSERT_NE(bake, nullptr);
    EXPECT_NE(bake->imageSet(), nullptr);
}

TEST_F(CreationTest, aBakedResultIsOutOfDateWhenWhatItShowsHasChanged)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *dot = addAt("Misc/Dot", {200, 0});
    auto *bake = qobject_cast<OssSnBakePointNode *>(addAt("Misc/Bake Point", {400, 0}));
    wire(color, dot);
    wire(dot, bake);
    EXPECT_FALSE(bake->hasBakedResult());
    bake->setBakedKey(OssSnResultKey::of(dot, dot->prefferedOutputPoint()));
    EXPECT_TRUE(bake->isBakedResultUpToDate());
    EXPECT_TRUE(itemOf(bake)->hasMark(OssNgNode::Baked));
    color->setName(QStringLiteral("Other"));
    contextOf(color)->setNodePosition({-500, 0});
    ASSERT_TRUE(wire(color, bake)); // without the dot: the same picture
    EXPECT_TRUE(bake->isBakedResultUpToDate());
    color->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(1, 0, 0, 1)));
    EXPECT_FALSE(bake->isBakedResultUpToDate());
    bake->setAttribute(QStringLiteral("geoChannel"), QStringLiteral("Dirt"));
    EXPECT_EQ(itemOf(bake)->text(), bake->name());
    bake->setAttribute(QStringLiteral("syncGeoChannel"), true);
    EXPECT_EQ(itemOf(bake)->text(), bake->name() + QStringLiteral(" (Dirt)"));
    bake->setName(QStringLiteral("Kept"));
    EXPECT_EQ(itemOf(bake)->text(), QStringLiteral("Kept (Dirt)"));
}

TEST_F(CreationTest, multiChannelMergesCarryAllStreams)
{
    auto *first = qobject_cast<OssSnMultiChannelGroupNode *>(
        addAt("_System/MultiChannelBottomTransparency", {0, 0}));
    ASSERT_NE(first, nullptr);
    ASSERT_TRUE(first->shaderModel());
    EXPECT_EQ(itemOf(first)->category(), QStringLiteral("MultiChannelBottomTransparency"));
    OssSnBaseNode *second = addAt("_System/Material", {0, 400});
    selectOnly(first);
    second->setSelected(true);
    auto *merge = qobject_cast<OssSnMultiChannelMergeNode *>(create("Layer/Merge"));
    ASSERT_NE(merge, nullptr);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Create Multi-Channel Merge"));
    EXPECT_EQ(merge->inputNode(QStringLiteral("Roughness Base")), first);
    EXPECT_EQ(merge->inputNode(QStringLiteral("Roughness Over")), second);
    EXPECT_EQ(merge->inputNode(QStringLiteral("Mask")), nullptr);
    selectOnly(merge);
    m_view->swapInputs();
    EXPECT_EQ(merge->inputNode(QStringLiteral("Normal Base")), second);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Batch Swap Inputs"));

    // Each stream goes on by itself where the merge is off or taken out.
    const QString roughness = QStringLiteral("Roughness");
    OssSnBaseNode *dot = addAt("Misc/Dot", {900, 0});
    dot->setInputNode(QStringLiteral("Input"), merge, roughness);
    merge->toggleDisable();
    EXPECT_EQ(OssSnProducer::of(merge, roughness).outputPoint,
              OssSnProducer::of(second, roughness).outputPoint);
    EXPECT_FALSE(
        itemOf(merge)->input(QStringLiteral("Roughness Base"))->hasMark(OssNgEdge::Bypassed));
    m_network->extractNodes({merge}, true);
    EXPECT_EQ(dot->inputNode(QStringLiteral("Input")), second);
    EXPECT_EQ(dot->inputOutputPoint(QStringLiteral("Input")), roughness);
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    merge->removeInput(QStringLiteral("Roughness Over"));
    EXPECT_EQ(itemOf(merge)->category(), QStringLiteral("MultiChannelInvalid"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(itemOf(merge)->category(), QStringLiteral("MultiChannelMerge"));
}

TEST_F(CreationTest, teleportsShowWhetherTheyAreHeard)
{
    OssSnBaseNode *out = addAt("Teleport Broadcast/Broadcast", {0, 0});
    OssSnBaseNode *in = addAt("Teleport Receiver/Receiver", {400, 0});
    const auto heard = [](const OssSnBaseNode *node) {
        return qobject_cast<OssNgExtendedNode *>(itemOf(node))->isIconVisible(1);
    };
    EXPECT_EQ(itemOf(out)->text(), QStringLiteral("Broadcast"));
    for (OssSnBaseNode *node : {out, in})
        node->setAttribute(QStringLiteral("channel"), QStringLiteral("dust"));
    EXPECT_TRUE(heard(out) && heard(in));
    EXPECT_EQ(itemOf(in)->text(), QStringLiteral("Receiver (dust)"));
    m_network->removeNodes({out});
    EXPECT_FALSE(heard(in));
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(heard(in));
    OssGeoEntity *entity = m_network->geoEntity();
    ASSERT_NE(entity, nullptr);
    OssSnBaseNode *channel = addAt("Misc/Geo-Channel", {0, 400});
    channel->setAttribute(QStringLiteral("geoChannel"), QStringLiteral("Dirt"));
    OssGeoImageSet *dirt = entity->addGeoImageSet(QStringLiteral("Dirt"));
    const auto valid = [&] {
        return qobject_cast<OssNgExtendedNode *>(itemOf(channel))->isIconVisible(0);
    };
    EXPECT_FALSE(valid());
    OssImageSet images(QStringLiteral("Dirt"));
    dirt->setImageSet(&images);
    EXPECT_TRUE(valid());
    dirt->setImageSet(nullptr);
}

TEST_F(CreationTest, paintAndBakeCommandsAreThoseOfTheMenuEntries)
{
    const QSignalSpy added(m_view, &OssShaderNetworkView::nodeAdded);
    OssUndoManager::instance()->clear();

    const struct
    {
        const char *key;
        const char *made;
        const char *title;
    } cases[] = {{"Misc/Channel Input", "Channel Input/Paint", "Add Paint Node"},
                 {"Misc/Bake Point", "Misc/Bake Point", "Add Bake Point Node"},
                 {"Filter/Blur", "Filter/Blur", "Create Node : Blur"}};

    for (const auto &c : cases) {
        const OssSnBaseNode *made = create(c.key);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->pathKey(), QString::fromLatin1(c.made));
        EXPECT_EQ(OssUndoManager::instance()->undoText(), QString::fromLatin1(c.title));
    }
    EXPECT_EQ(undoCount(), 3);
    const ExpectedLog possible("No/Such", ExpectedLog::Possible);
    const int nodes = m_network->nodes().size();
    EXPECT_EQ(m_view->createNodeAt(QStringLiteral("No/Such"), {5, 5}), nullptr);
    EXPECT_EQ(m_network->nodes().size(), nodes);
    EXPECT_EQ(undoCount(), 3);
}

// --- finding
// --- finding

TEST_F(CreationTest, quickCreateRemembersWhatWasUsedLast)
{
    OssSettings settings;
    settings.remove(QStringLiteral("Node Graph/LastUsedNodePaths"));
    OssApplication::setPopupsAllowed(true);
    QAction command;
    ASSERT_EQ(bindCommand(&command), 1);
    const QSignalSpy triggered(&command, &QAction::triggered);
    for (const char *typed : {"gauss", "brick", "gauss"}) {
        QTimer::singleShot(0, [typed] {
            QWidget *dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            auto *field = dialog->findChild<QLineEdit *>();
            QTest::keyClicks(field, QString::fromLatin1(typed));
            QTest::keyClick(field, Qt::Key_Return);
            dialog->close();
        });
        m_view->quickCreate();
    }
    EXPECT_EQ(triggered.count(), 0) << "keys of a popup are its own";
    EXPECT_NE(m_network->node(QStringLiteral("Blur 2")), nullptr);
    EXPECT_EQ(
        settings.value(QStringLiteral("Node Graph/LastUsedNodePaths")).toStringList(),
        QStringList({QStringLiteral("Filter/Blur"), QStringLiteral("Procedural/Pattern/Brick")}));
    OssNodeQuickFindDialog dialog({QStringLiteral("Filter/Blur")}, {}, 5, {}, {800, 600});
    auto *field = dialog.findChild<QLineEdit *>();
    QTest::keyClick(field, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(dialog.favourites(), QStringList{QStringLiteral("Filter/Blur")});
    EXPECT_TRUE(dialog.chosenPathKey().isEmpty());
    settings.remove(QStringLiteral("Node Graph/LastUsedNodePaths"));
    settings.remove(QStringLiteral("Node Graph/FavouriteNodePaths"));
}

TEST_F(CreationTest, aFoundNodeIsShownWhereverItStands)
{
    const ExpectedLog expected("Found 3 nodes in the network");
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0}, "Softener");
    ASSERT_NE(m_network->groupNodes({blur}), nullptr);
    OssApplication::setPopupsAllowed(true);
    QTimer::singleShot(0, [] {
        QWidget *dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        auto *field = dialog->findChild<QLineEdit *>();
        QTest::keyClicks(field, QStringLiteral("soft"));
        QTest::keyClick(field, Qt::Key_Return);
    });
    m_view->searchNodesAction();
    EXPECT_EQ(m_manager->currentView()->network(), blur->network());
    EXPECT_TRUE(blur->selected());
}

TEST_F(CreationTest, nodesAreFoundByNameTypeValueAndState)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0}, "Softener");
    OssSnBaseNode *levels = addAt("Adjust/Levels", {300, 0});
    wire(blur, levels);
    blur->toggleDisable();
    const auto why = [](const OssSnBaseNode *node, const char *text) {
        return OssNodeSearch::whyFound(node, QString::fromLatin1(text), nullptr);
    };
    EXPECT_FALSE(why(blur, "soft").isEmpty());
    EXPECT_FALSE(why(blur, "filter/bl").isEmpty());
    EXPECT_FALSE(why(blur, "disabled").isEmpty());
    EXPECT_FALSE(why(blur, "soft disabled").isEmpty());
    EXPECT_TRUE(why(levels, "disabled").isEmpty());
    EXPECT_TRUE(why(blur, "soft unconnected").isEmpty());
    EXPECT_TRUE(why(blur, "radius=99999").isEmpty());
    const QString info = OssNodeInfoDialog::text({levels});
    EXPECT_TRUE(info.contains(QStringLiteral("Adjust/Levels")));
    EXPECT_TRUE(info.contains(QStringLiteral("/Softener . Output")));
    const OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise");
    EXPECT_FALSE(OssNodeInfoDialog::text({m_network->node(noise->name())})
                     .contains(QStringLiteral("Kind: 0")))
        << "a choice is told by its name";
}

// --- drops and texts in place

TEST_F(CreationTest, droppedPicturesBecomeNodesInOneStep)
{
    const QTemporaryDir folder;
    QStringList ids;
    for (const char *name : {"a.png", "b.png"}) {
        const QString path = folder.filePath(QString::fromLatin1(name));
        QImage picture(4, 4, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        ASSERT_TRUE(picture.save(path));
        const auto layers = OssImageManager::instance()->open(path, 0, {});
        ASSERT_EQ(layers.size(), 1);
        ids.append(layers.first().image->uniqueId().toString());
    }
    OssUndoManager::instance()->clear();
    QMimeData mime;
    mime.setData(OssImage::MimeType, ids.join(QLatin1Char(',')).toUtf8());
    QDragEnterEvent enter({100, 100}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({100, 100}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view->viewport(), &drop);
    EXPECT_EQ(
        OssUndoManager::instance()->undoText(),
        QStringLiteral("Drag and drop : creating 2 nodes of type 'Procedural/Pattern/Tiled'"));
    EXPECT_EQ(undoCount(), 1);
    OssSnBaseNode *second = m_network->node(QStringLiteral("Tiled 2"));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(
        OssImageList::fromVariant(second->attribute(QStringLiteral("TileImage"))).ids().size(), 1);
    EXPECT_FALSE(itemOf(second)->sceneBoundingRect().intersects(
        itemOf(m_network->node(QStringLiteral("Tiled")))->sceneBoundingRect()));

    // The same from a file manager, a folder at once; what is new is opened in the same step.
    ASSERT_TRUE(QFile::copy(folder.filePath(QStringLiteral("a.png")),
                            folder.filePath(QStringLiteral("c.png"))));
    const QByteArray before = m_project->stateHash();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(folder.path())});
    QDragEnterEvent enterFiles({50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view->viewport(), &enterFiles);
    ASSERT_TRUE(enterFiles.isAccepted());
    QDropEvent dropFiles({50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view->viewport(), &dropFiles);
    const OssSnBaseNode *fourth = m_network->node(QStringLiteral("Tiled 4"));
    ASSERT_NE(fourth, nullptr);
    EXPECT_EQ(fourth->attribute(QStringLiteral("TileImage")),
              second->attribute(QStringLiteral("TileImage")));
    EXPECT_EQ(m_network->selectedNodes().size(), 3);
    EXPECT_EQ(OssImageManager::instance()->images().size(), 3);
    EXPECT_EQ(undoCount(), 2);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(CreationTest, titlesAndNotesAreEditedWhereTheyStand)
{
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {0, 0});
    m_view->centerOn(itemOf(note));
    OssUndoManager::instance()->clear();
    QAction command;
    ASSERT_EQ(bindCommand(&command), 1);
    const QSignalSpy triggered(&command, &QAction::triggered);
    const QPoint place = m_view->mapFromScene(itemOf(note)->sceneBoundingRect().center());
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, place);
    auto *editor = m_view->viewport()->findChild<QPlainTextEdit *>();
    ASSERT_NE(editor, nullptr);
    editor->setFocus();
    QTest::keyClicks(editor, QStringLiteral("Look here"));
    QTest::keyClick(editor, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(note->attribute(QStringLiteral("Label")).toString(), QStringLiteral("Look here"));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(triggered.count(), 0) << "keys of a text are its own";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, place);
    editor = m_view->viewport()->findChild<QPlainTextEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("nothing"));
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_EQ(note->attribute(QStringLiteral("Label")).toString(), QStringLiteral("Look here"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(CreationTest, aTitleIsEditedInItsBarAndAnEqualTextIsNoStep)
{
    OssSnBaseNode *area = addAt("Misc/Backdrop", {0, 0}, "Area");
    contextOf(area)->setNodeSize({300, 200});
    m_view->window()->show();
    m_view->centerOn(itemOf(area));
    m_view->scaleView(0.2); // texts are still legible
    OssUndoManager::instance()->clear();
    const auto edit = [&](const QPointF &place, const char *text) {
        QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {},
                           m_view->mapFromScene(itemOf(area)->pos() + place));
        auto *editor = m_view->viewport()->findChild<QPlainTextEdit *>();
        if (!editor)
            return false;
        EXPECT_GE(editor->font().pixelSize(), 9);
        EXPECT_LT(editor->height(), 60) << "as high as the bar";
        editor->setPlainText(QString::fromLatin1(text));
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return true;
    };
    EXPECT_TRUE(edit({100, 12}, "Wall"));
    EXPECT_EQ(area->attribute(QStringLiteral("TitleText")).toString(), QStringLiteral("Wall"));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_TRUE(edit({100, 12}, "Wall"));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_FALSE(edit({100, 120}, "Floor"));
    EXPECT_EQ(area->attribute(QStringLiteral("TitleText")).toString(), QStringLiteral("Wall"));
}

TEST_F(CreationTest, shadersTakeTheStreamsOfWhatWasSelected)
{
    OssSnBaseNode *material = addAt("_System/Material", {0, 0});
    selectOnly(material);
    OssSnBaseNode *shader = create("Shaders/Standard Surface");
    ASSERT_NE(shader, nullptr);
    EXPECT_EQ(shader->inputNode(QStringLiteral("Roughness")), material);
    EXPECT_EQ(shader->inputOutputPoint(QStringLiteral("Roughness")), QStringLiteral("Roughness"));
    EXPECT_EQ(shader->inputNode(QStringLiteral("Normal")), material);
}

} // namespace
