#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Dialogs/OssNodeInfoDialog.h"
#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"
#include "OssInterface/Dialogs/OssNodeSearch.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QtTest>

namespace {

class CreationTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        OssApplication::setPopupsAllowed(false);
        contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
    }

    OssSnBaseNode *create(const char *key)
    {
        QAction action;
        action.setData(text(key));
        m_view->createNodeFromAction(&action);
        return m_network->selectedNodes().value(0);
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
};

TEST_F(CreationTest, newNodesAreWiredToTheSelectionInItsOrder)
{
    OssSnBaseNode *upper = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *lower = addAt("Procedural/Color", {0, 300});
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {0, 600});
    select({});
    for (OssSnBaseNode *node : {lower, note, upper})
        node->setSelected(true);
    OssUndoManager::instance()->clear();
    OssSnBaseNode *merge = create("Layer/Merge");
    ASSERT_NE(merge, nullptr);
    EXPECT_EQ(merge->inputNode(text("Base")), upper);
    EXPECT_EQ(merge->inputNode(text("Over")), lower);
    expectLogged("has no output, skipping autoconnecting to it");
    expectStep("Create Node : Merge");
    for (OssSnBaseNode *node : {upper, lower})
        node->setSelected(true);
    OssSnBaseNode *blur = create("Filter/Blur");
    EXPECT_NE(blur->inputNode(text("Input")), nullptr);
    undo();
    undo();
    EXPECT_TRUE(upper->outgoingConnections().isEmpty());
}

TEST_F(CreationTest, aBackdropWrapsTheSelectionAndBearsItsName)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {100, 100});
    select({blur});
    OssSnBaseNode *area = create("Misc/Backdrop");
    auto *backdrop = backdropOf(area);
    ASSERT_NE(backdrop, nullptr);
    EXPECT_EQ(backdrop->titleText(), area->name());
    EXPECT_TRUE(backdrop->sceneBoundingRect().contains(rectOf(blur)));
    EXPECT_EQ(backdrop->childrenList().size(), 1);
}

TEST_F(CreationTest, paintAndBakePointsGetImagesThatAreSaved)
{
    m_view->createPaintableNode(QPoint(40, 60));
    EXPECT_EQ(undoText(), text("Add Paint Node"));
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    select({color});
    auto *bake = qobject_cast<OssSnBakePointNode *>(create("Misc/Bake Point"));
    ASSERT_NE(bake, nullptr);
    ASSERT_NE(bake->imageSet(), nullptr);
    EXPECT_EQ(bake->inputNode(text("Input")), color);
    const QByteArray hash = m_project->stateHash();
    reopen();
    EXPECT_EQ(m_project->stateHash(), hash);
    bake = qobject_cast<OssSnBakePointNode *>(m_network->node(text("Bake Point")));
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
    color->setName(text("Other"));
    contextOf(color)->setNodePosition({-500, 0});
    ASSERT_TRUE(wire(color, bake)); // without the dot: the same picture
    EXPECT_TRUE(bake->isBakedResultUpToDate());
    color->setAttribute(text("Color"), QVariant::fromValue(OssColor(1, 0, 0, 1)));
    EXPECT_FALSE(bake->isBakedResultUpToDate());
    bake->setAttribute(text("geoChannel"), text("Dirt"));
    EXPECT_EQ(itemOf(bake)->text(), bake->name());
    bake->setAttribute(text("syncGeoChannel"), true);
    EXPECT_EQ(itemOf(bake)->text(), bake->name() + text(" (Dirt)"));
    bake->setName(text("Kept"));
    EXPECT_EQ(itemOf(bake)->text(), text("Kept (Dirt)"));
}

TEST_F(CreationTest, multiChannelMergesCarryAllStreams)
{
    auto *first = qobject_cast<OssSnMultiChannelGroupNode *>(
        addAt("_System/MultiChannelBottomTransparency", {0, 0}));
    ASSERT_NE(first, nullptr);
    ASSERT_TRUE(first->shaderModel());
    EXPECT_EQ(itemOf(first)->category(), text("MultiChannelBottomTransparency"));
    OssSnBaseNode *second = addAt("_System/Material", {0, 400});
    select({first});
    second->setSelected(true);
    auto *merge = qobject_cast<OssSnMultiChannelMergeNode *>(create("Layer/Merge"));
    ASSERT_NE(merge, nullptr);
    EXPECT_EQ(undoText(), text("Create Multi-Channel Merge"));
    EXPECT_EQ(merge->inputNode(text("Roughness Base")), first);
    EXPECT_EQ(merge->inputNode(text("Roughness Over")), second);
    EXPECT_EQ(merge->inputNode(text("Mask")), nullptr);
    select({merge});
    m_view->swapInputs();
    EXPECT_EQ(merge->inputNode(text("Normal Base")), second);
    EXPECT_EQ(undoText(), text("Batch Swap Inputs"));

    // Each stream goes on by itself where the merge is off or taken out.
    const QString roughness = text("Roughness");
    OssSnBaseNode *dot = addAt("Misc/Dot", {900, 0});
    dot->setInputNode(text("Input"), merge, roughness);
    merge->toggleDisable();
    EXPECT_EQ(OssSnProducer::of(merge, roughness).outputPoint,
              OssSnProducer::of(second, roughness).outputPoint);
    EXPECT_FALSE(itemOf(merge)->input(text("Roughness Base"))->hasMark(OssNgEdge::Bypassed));
    m_network->extractNodes({merge}, true);
    EXPECT_EQ(dot->inputNode(text("Input")), second);
    EXPECT_EQ(dot->inputOutputPoint(text("Input")), roughness);
    undo();
    undo();
    merge->removeInput(text("Roughness Over"));
    EXPECT_EQ(itemOf(merge)->category(), text("MultiChannelInvalid"));
    undo();
    EXPECT_EQ(itemOf(merge)->category(), text("MultiChannelMerge"));
}

TEST_F(CreationTest, teleportsShowWhetherTheyAreHeard)
{
    OssSnBaseNode *out = addAt("Teleport Broadcast/Broadcast", {0, 0});
    OssSnBaseNode *in = addAt("Teleport Receiver/Receiver", {400, 0});
    const auto heard = [](const OssSnBaseNode *node) {
        return qobject_cast<OssNgExtendedNode *>(itemOf(node))->isIconVisible(1);
    };
    EXPECT_EQ(itemOf(out)->text(), text("Broadcast"));
    for (OssSnBaseNode *node : {out, in})
        node->setAttribute(text("channel"), text("dust"));
    EXPECT_TRUE(heard(out) && heard(in));
    EXPECT_EQ(itemOf(in)->text(), text("Receiver (dust)"));
    m_network->removeNodes({out});
    EXPECT_FALSE(heard(in));
    undo();
    EXPECT_TRUE(heard(in));
    OssGeoEntity *entity = m_network->geoEntity();
    ASSERT_NE(entity, nullptr);
    OssSnBaseNode *channel = addAt("Misc/Geo-Channel", {0, 400});
    channel->setAttribute(text("geoChannel"), text("Dirt"));
    OssGeoImageSet *dirt = entity->addGeoImageSet(text("Dirt"));
    const auto valid = [&] {
        return qobject_cast<OssNgExtendedNode *>(itemOf(channel))->isIconVisible(0);
    };
    EXPECT_FALSE(valid());
    OssImageSet images(text("Dirt"));
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
        EXPECT_EQ(made->pathKey(), text(c.made));
        EXPECT_EQ(undoText(), text(c.title));
    }
    EXPECT_EQ(undoCount(), 3);
    const ExpectedLog possible("No/Such", ExpectedLog::Possible);
    const int nodes = m_network->nodes().size();
    EXPECT_EQ(m_view->createNodeAt(text("No/Such"), {5, 5}), nullptr);
    EXPECT_EQ(m_network->nodes().size(), nodes);
    EXPECT_EQ(undoCount(), 3);
}

// --- finding

TEST_F(CreationTest, quickCreateRemembersWhatWasUsedLast)
{
    OssSettings settings;
    settings.remove(text("Node Graph/LastUsedNodePaths"));
    OssApplication::setPopupsAllowed(true);
    QAction command;
    ASSERT_EQ(bindCommand(&command), 1);
    const QSignalSpy triggered(&command, &QAction::triggered);
    for (const char *typed : {"gauss", "brick", "gauss"}) {
        typeInDialog(typed);
        m_view->quickCreate();
    }
    EXPECT_EQ(triggered.count(), 0) << "keys of a popup are its own";
    EXPECT_NE(m_network->node(text("Blur 2")), nullptr);
    EXPECT_EQ(settings.value(text("Node Graph/LastUsedNodePaths")).toStringList(),
              texts({"Filter/Blur", "Procedural/Pattern/Brick"}));
    OssNodeQuickFindDialog dialog({text("Filter/Blur")}, {}, 5, {}, {800, 600});
    auto *field = dialog.findChild<QLineEdit *>();
    QTest::keyClick(field, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(dialog.favourites(), QStringList{text("Filter/Blur")});
    EXPECT_TRUE(dialog.chosenPathKey().isEmpty());
    settings.remove(text("Node Graph/LastUsedNodePaths"));
    settings.remove(text("Node Graph/FavouriteNodePaths"));
}

TEST_F(CreationTest, nodesAreFoundByNameTypeValueAndState)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0}, "Softener");
    OssSnBaseNode *levels = addAt("Adjust/Levels", {300, 0});
    wire(blur, levels);
    blur->toggleDisable();
    const auto why = [](const OssSnBaseNode *node, const char *typed) {
        return OssNodeSearch::whyFound(node, text(typed), nullptr);
    };
    for (const char *typed : {"soft", "filter/bl", "disabled", "soft disabled"})
        EXPECT_FALSE(why(blur, typed).isEmpty()) << typed;
    for (const char *typed : {"soft unconnected", "radius=99999"})
        EXPECT_TRUE(why(blur, typed).isEmpty()) << typed;
    EXPECT_TRUE(why(levels, "disabled").isEmpty());
    const QString info = OssNodeInfoDialog::text({levels});
    EXPECT_TRUE(info.contains(text("Adjust/Levels")));
    EXPECT_TRUE(info.contains(text("/Softener . Output")));
    const OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise");
    EXPECT_FALSE(
        OssNodeInfoDialog::text({m_network->node(noise->name())}).contains(text("Kind: 0")))
        << "a choice is told by its name";
}

// --- texts in place

TEST_F(CreationTest, titlesAndNotesAreEditedWhereTheyStand)
{
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {0, 0});
    m_view->centerOn(itemOf(note));
    OssUndoManager::instance()->clear();
    QAction command;
    ASSERT_EQ(bindCommand(&command), 1);
    const QSignalSpy triggered(&command, &QAction::triggered);
    const QPoint place = m_view->mapFromScene(rectOf(note).center());
    const auto edit = [&](const char *typed, Qt::Key end, Qt::KeyboardModifiers modifiers) {
        QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, place);
        auto *editor = m_view->viewport()->findChild<QPlainTextEdit *>();
        ASSERT_NE(editor, nullptr);
        editor->setFocus();
        QTest::keyClicks(editor, text(typed));
        QTest::keyClick(editor, end, modifiers);
        EXPECT_EQ(note->attribute(text("Label")).toString(), text("Look here"));
        EXPECT_EQ(undoCount(), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    edit("Look here", Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(triggered.count(), 0) << "keys of a text are its own";
    edit("nothing", Qt::Key_Escape, {});
}

TEST_F(CreationTest, aTitleIsEditedInItsBarAndAnEqualTextIsNoStep)
{
    OssSnBaseNode *area = addArea({0, 0, 300, 200}, "Area");
    m_view->window()->show();
    m_view->centerOn(itemOf(area));
    m_view->scaleView(0.2); // texts are still legible
    OssUndoManager::instance()->clear();
    const auto edit = [&](const QPointF &place, const char *title) {
        QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {},
                           m_view->mapFromScene(itemOf(area)->pos() + place));
        auto *editor = m_view->viewport()->findChild<QPlainTextEdit *>();
        if (!editor)
            return false;
        EXPECT_GE(editor->font().pixelSize(), 9);
        EXPECT_LT(editor->height(), 60) << "as high as the bar";
        editor->setPlainText(text(title));
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return true;
    };
    EXPECT_TRUE(edit({100, 12}, "Wall"));
    EXPECT_EQ(area->attribute(text("TitleText")).toString(), text("Wall"));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_TRUE(edit({100, 12}, "Wall"));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_FALSE(edit({100, 120}, "Floor"));
    EXPECT_EQ(area->attribute(text("TitleText")).toString(), text("Wall"));
}

TEST_F(CreationTest, shadersTakeTheStreamsOfWhatWasSelected)
{
    OssSnBaseNode *material = addAt("_System/Material", {0, 0});
    select({material});
    OssSnBaseNode *shader = create("Shaders/Standard Surface");
    ASSERT_NE(shader, nullptr);
    EXPECT_EQ(shader->inputNode(text("Roughness")), material);
    EXPECT_EQ(shader->inputOutputPoint(text("Roughness")), text("Roughness"));
    EXPECT_EQ(shader->inputNode(text("Normal")), material);
}

} // namespace
