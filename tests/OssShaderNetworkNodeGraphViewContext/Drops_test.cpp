#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Nodes/OssNodeArchive.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "PluginUnderTest.h"
#include "support/OssaFiles.h"

#include <QDir>
#include <QSignalSpy>

namespace {

/// Files that are dragged from a file manager onto the graph.
class Drops : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        OssApplication::setPopupsAllowed(false);
        m_group = addGroup("Dirt");
        for (const char *name : {"dirt.opc", "more.OPC"})
            ASSERT_TRUE(
                OssNodeArchive::write(m_group, OssNodeArchive::Kind::CustomProcedural, file(name)));
        auto *material = qobject_cast<OssSnGroupNode *>(add("_System/Material", "Rust"));
        ASSERT_TRUE(
            OssNodeArchive::write(material, OssNodeArchive::Kind::Material, file("rust.oma")));
        for (const char *name : {"broken.opc", "notes.txt"})
            ASSERT_NO_FATAL_FAILURE(writeFile(file(name), "no archive"));
        ASSERT_TRUE(
            OssShaderNetworkIO::saveNodesToXmlFile({add("Filter/Blur", "Soft")}, file("soft.ong")));
        ASSERT_TRUE(QDir().mkdir(file("pictures")));
    }

    static constexpr QPoint Place{200, 150};

    void drop(const std::vector<const char *> &names)
    {
        QMimeData mime;
        QList<QUrl> urls;
        for (const char *name : names)
            urls.append(QUrl::fromLocalFile(file(name)));
        mime.setUrls(urls);
        dropMime(mime);
    }

    /// What is refused is never let go there.
    void dropMime(const QMimeData &mime, Qt::KeyboardModifiers modifiers = {})
    {
        const Dragged dragged{m_view->viewport(), &mime, Place, modifiers};
        const QSignalSpy said(OssStatusManager::instance(), &OssStatusManager::messageShown);
        const bool accepted = dragged.enter();
        m_said = said.isEmpty() ? QString() : said.last().first().toString();
        if (accepted) {
            EXPECT_FALSE(m_view->hasGesture());
            dragged.move();
        }
        m_ghost = m_view->viewport()->grab().toImage();
        m_taken = accepted && dragged.drop();
    }

    /// None lies on another.
    static void expectApart(const QList<OssSnBaseNode *> &nodes)
    {
        for (int i = 0; i < nodes.size(); ++i) {
            for (int j = 0; j < i; ++j)
                EXPECT_FALSE(rectOf(nodes.at(i)).intersects(rectOf(nodes.at(j)))) << i << " " << j;
        }
    }

    /// Of the image attribute of a node.
    static int imageCount(const OssSnBaseNode *node, const char *attribute)
    {
        return OssImageList::fromVariant(node->attribute(text(attribute))).ids().size();
    }

    OssSnGroupNode *m_group = nullptr;
    bool m_taken = false; ///< whether the graph took the drop
    QImage m_ghost;       ///< the graph while the files are over it
    QString m_said;       ///< in the status bar, then
};

TEST_F(Drops, archivesBecomeNodesWhereTheyFallInOneStep)
{
    const struct
    {
        std::vector<const char *> names;
        int nodes;
        const char *title;
        const char *said;
    } cases[] = {
        {{"dirt.opc"}, 1, "Import custom procedural", "1 custom procedural becomes a node"},
        {{"more.OPC"}, 1, "Import custom procedural", "1 custom procedural becomes a node"},
        {{"dirt.opc", "more.OPC", "dirt.opc"},
         3,
         "Import custom procedural",
         "3 custom procedurals become nodes"},
        {{"rust.oma"}, 1, "Import material", "1 material becomes a node"},
        {{"soft.ong"}, 1, "Import nodes", "1 node file becomes nodes"},
        {{"soft.ong", "rust.oma", "notes.txt"},
         2,
         "Drop",
         "1 material and 1 node file become nodes"},
    };

    for (const auto &c : cases) {
        begin();
        const int count = m_network->nodes().size();
        const QImage empty = m_view->viewport()->grab().toImage();
        drop(c.names);
        EXPECT_NE(m_ghost, empty) << "where they would come to stand";
        EXPECT_TRUE(m_taken);
        EXPECT_EQ(m_said, text("Drop: ") + text(c.said));
        EXPECT_EQ(m_network->nodes().size(), count + c.nodes) << c.names.front();
        const QList<OssSnBaseNode *> made = m_network->selectedNodes();
        ASSERT_EQ(made.size(), c.nodes);
        QRectF all;
        for (const OssSnBaseNode *node : made)
            all |= rectOf(node);
        EXPECT_EQ(all.topLeft(), m_view->mapToScene(Place));
        EXPECT_LT(all.height(), 200.0) << "side by side";
        expectApart(made);
        expectStepBack(c.title);
    }
}

TEST_F(Drops, ofWhichOneCannotBeReadChangeNothingAndSayWhich)
{
    begin();
    drop({"dirt.opc", "broken.opc"});
    expectLogged("broken.opc");
    expectNothingDone();
}

TEST_F(Drops, ofWhichOneKindCannotBeReadBringTheRest)
{
    begin();
    drop({"broken.opc", "rust.oma"});
    expectLogged("broken.opc");
    EXPECT_EQ(m_network->selectedNodes().size(), 1);
    expectStepBack("Import material");
}

TEST_F(Drops, whatNobodyCanReadIsRefusedAsSoonAsItComes)
{
    ASSERT_NO_FATAL_FAILURE(writeFile(file("empty.png"), ""));
    ASSERT_TRUE(QDir().mkdir(file("Next.ossa")));
    ASSERT_NO_FATAL_FAILURE(writeFile(file("Next.ossa/project.xml"), "<x/>"));
    openPicture(file("Next.ossa/a.png"));
    undoAll();
    begin();
    const QRect around(Place - QPoint(10, 10), QSize(60, 20));
    drop({});
    const QImage empty = m_ghost.copy(around);
    for (const std::vector<const char *> &names : std::vector<std::vector<const char *>>{
             {}, {"notes.txt"}, {"none.ong"}, {"none.png"}, {"empty.png"}, {"Next.ossa"}}) {
        drop(names);
        EXPECT_FALSE(m_taken) << (names.empty() ? "" : names.front());
        EXPECT_EQ(m_ghost.copy(around), empty);
        EXPECT_EQ(m_said, text("Nothing of this can become a node"));
    }
    QMimeData other;
    other.setText(text("<p>ossaNodes</p>"));
    dropMime(other);
    EXPECT_FALSE(m_taken);
    fillMime(&other, {});
    dropMime(other);
    EXPECT_FALSE(m_taken) << "images that the project does not have";
    drop({"dirt.opc"});
    EXPECT_NE(m_ghost.copy(around), empty);
    expectStepBack("Import custom procedural");
}

TEST_F(Drops, aMixedDropBringsEverythingInOneStepAndEndsWhatWasInHand)
{
    openPicture(file("a.png"));
    openPicture(file("b.png"));
    OssSnBaseNode *moved = addAt("Filter/Blur", m_view->mapToScene(Place), "Sharp");
    select({moved});
    QMimeData mime;
    mime.setText(QString::fromUtf8(OssShaderNetworkIO::nodesToText({moved})));
    QList<QUrl> urls;
    for (const char *name : {"a.png", "dirt.opc", "soft.ong", "b.png", "rust.oma", "notes.txt"})
        urls.append(QUrl::fromLocalFile(file(name)));
    mime.setUrls(urls);
    moved->network()->removeNodes({moved});
    begin();
    const QPoint corner(30, 30);
    QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, corner);
    EXPECT_TRUE(m_view->hasGesture());
    dropMime(mime);
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, corner);
    EXPECT_EQ(m_said, text("Drop: 2 images, 1 material, 1 custom procedural, 1 node file and the "
                           "text become nodes"));
    const QList<OssSnBaseNode *> made = m_network->selectedNodes();
    EXPECT_EQ(made.size(), 6);
    EXPECT_EQ(OssImageManager::instance()->images().size(), 2);
    expectApart(made);
    expectStepBack("Drop");
}

TEST_F(Drops, manyImagesStandApartAndNearInAGroupToo)
{
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(contextOf(m_group));
    context->showGroupNodeTab();
    m_view = m_manager->currentView();
    ASSERT_EQ(m_view->network(), m_group->groupNetwork());
    QList<OssImage *> images;
    for (int i = 0; i < 12; ++i)
        images.append(openPicture(file(qPrintable(QString::number(i) + text(".png")))));
    QMimeData mime;
    fillMime(&mime, images);
    begin();
    QCursor::setPos(m_view->viewport()->mapToGlobal({5, 5}));
    dropMime(mime);
    const QList<OssSnBaseNode *> made = m_group->groupNetwork()->selectedNodes();
    ASSERT_EQ(made.size(), 12);
    EXPECT_EQ(rectOf(made.first()).topLeft(), m_view->mapToScene(Place));
    expectApart(made);
    expectStepBack("Drag and drop : creating 12 nodes of type 'Procedural/Pattern/Tiled'");
}

TEST_F(Drops, textIsTakenAndStaysWhereItCameFrom)
{
    QMimeData mime;
    mime.setText(QString::fromUtf8(OssShaderNetworkIO::nodesToText({m_group})));
    begin();
    Dragged{m_view->viewport(), &mime, Place}.enter();
    constexpr Qt::DropActions Both = Qt::CopyAction | Qt::MoveAction;
    QDragMoveEvent move(Place, Both, &mime, Qt::LeftButton, Qt::ShiftModifier);
    QDropEvent event(Place, Both, &mime, Qt::LeftButton, Qt::ShiftModifier);
    for (QDropEvent *each : {static_cast<QDropEvent *>(&move), &event}) {
        EXPECT_EQ(each->proposedAction(), Qt::MoveAction);
        QApplication::sendEvent(m_view->viewport(), each);
        EXPECT_EQ(each->dropAction(), Qt::CopyAction) << each->type();
    }
    EXPECT_EQ(m_network->selectedNodes().size(), 1);
    expectStepBack("Drop Nodes");
    mime.setText(text("<ossaNodes major=\"1\"><object"));
    dropMime(mime);
    expectLogged("the dropped text");
    expectNothingDone();
}

TEST_F(Drops, aPictureGoesToEveryPlaceOfItsNodeAndNowhereWithoutOne)
{
    const ExpectedLog unknown("No/Such", ExpectedLog::Possible);
    OssImage *image = openPicture(file("a.png"));
    const int count = m_network->nodes().size();
    const QSignalSpy told(m_view, &OssShaderNetworkView::nodeAdded);
    m_view->createNodeFromDropImage(image, text("No/Such"), {300, 300});
    EXPECT_EQ(told.count(), 0);
    EXPECT_EQ(m_network->nodes().size(), count);
    m_view->createNodeFromDropImage(image, text("Environment/Tri Planar Projection"), {3000, 3000});
    ASSERT_EQ(m_network->nodes().size(), count + 1);
    const OssSnBaseNode *node = m_network->nodes().last();
    EXPECT_EQ(itemOf(node)->pos(), QPointF(3000, 3000));
    for (const char *name : {"frontImage", "topImage", "rightImage"})
        EXPECT_EQ(imageCount(node, name), 1) << name;
}

TEST_F(Drops, imagesOfTheListBecomeTiledOnesOrWithShiftProjections)
{
    QMimeData mime;
    fillMime(&mime, {openPicture(file("a.png")), openPicture(file("b.png"))});
    m_view->window()->show();
    QWindow *window = m_view->window()->windowHandle();
    for (const bool shift : {false, true}) {
        const char *const key = shift ? "Environment/Tri Planar Projection"
                                      : "Procedural/Pattern/Tiled";
        begin();
        if (shift)
            QTest::keyPress(window, Qt::Key_Shift, Qt::ShiftModifier);
        dropMime(mime, shift ? Qt::ShiftModifier : Qt::NoModifier);
        if (shift)
            QTest::keyRelease(window, Qt::Key_Shift);
        const QList<OssSnBaseNode *> made = m_network->selectedNodes();
        ASSERT_EQ(made.size(), 2) << shift;
        for (const OssSnBaseNode *node : made)
            EXPECT_EQ(node->pathKey(), text(key));
        expectApart(made);
        const std::string title = "Drag and drop : creating 2 nodes of type '";
        expectStepBack((title + key + "'").c_str());
    }
    m_view->window()->hide(); // other tests have none that is shown
}

TEST_F(Drops, picturesOfAFolderAreOpenedWhereTheyAreNewAndBecomeNodesInTheSameStep)
{
    openPicture(file("pictures/a.png"));
    openPicture(file("pictures/b.png"));
    ASSERT_TRUE(QFile::copy(file("pictures/a.png"), file("pictures/c.png")));
    begin();
    drop({"pictures"});
    EXPECT_EQ(m_network->selectedNodes().size(), 3);
    const OssSnBaseNode *second = m_network->node(text("Tiled 2"));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(imageCount(second, "TileImage"), 1);
    EXPECT_EQ(OssImageManager::instance()->images().size(), 3);
    expectStepBack("Drop Images");
}

TEST_F(Drops, aTypeGoesIntoTheWireThatIsLitWhereItIsHeld)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {-900, -600});
    OssSnBaseNode *blur = addAt("Filter/Blur", {-100, -500});
    wire(color, blur);
    m_view->centerOn(-500, -550);
    ASSERT_TRUE(pluginUnderTest()); // has the menu's entries
    const ExpectedLog unfocused("Could not get the current active widget", ExpectedLog::Possible);
    const auto lit = [&] {
        return itemOf(blur)->inputs().value(0)->hasMark(OssNgEdge::Inviting);
    };
    const QPointF on = itemOf(blur)->inputs().value(0)->path().pointAtPercent(0.4);
    const auto held = [&](const QMimeData &mime, const QPointF &scenePos) {
        const Dragged dragged{m_view->viewport(), &mime, m_view->fromScene(scenePos).toPoint(), {}};
        EXPECT_TRUE(dragged.enter());
        dragged.move();
        return dragged;
    };
    const auto dataOf = [](const char *keys) {
        auto data = std::make_unique<QMimeData>();
        data->setData(OssNodeTypeListModel::MimeType, keys);
        return data;
    };
    for (const char *keys : {"Procedural/Color", "Misc/Backdrop", "Filter/Blur\nFilter/Blur"}) {
        held(*dataOf(keys), on);
        EXPECT_FALSE(lit()) << keys;
    }
    begin();
    color->setSelected(true);
    const auto data = dataOf("Filter/Blur");
    held(*data, on + QPointF(0, 200));
    EXPECT_FALSE(lit());
    const Dragged dragged = held(*data, on);
    EXPECT_TRUE(lit());
    EXPECT_TRUE(dragged.drop());
    ASSERT_EQ(m_network->selectedNodes().size(), 1);
    OssSnBaseNode *made = m_network->selectedNodes().first();
    EXPECT_EQ(made->inputNodes().value(0), color);
    EXPECT_EQ(blur->inputNodes().value(0), made);
    EXPECT_LT(QLineF(rectOf(made).center(), on).length(), 12.0) << "where it was let go";
    EXPECT_FALSE(lit());
    expectStepBack("Drop");

    m_manager->setIsAutoInsertOn(false);
    held(*data, on);
    EXPECT_FALSE(lit()) << "nothing is put into wires";
    m_manager->resetIsAutoInsertOn();
}

} // namespace
