#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Nodes/OssNodeArchive.h"
#include "support/OssaFiles.h"

#include <QDir>

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

    void dropMime(const QMimeData &mime, Qt::KeyboardModifiers modifiers = {})
    {
        const Dragged dragged{m_view->viewport(), &mime, Place, modifiers};
        EXPECT_TRUE(dragged.enter());
        dragged.move();
        m_ghost = m_view->viewport()->grab().toImage();
        m_taken = dragged.drop();
    }

    /// Of the image attribute of a node.
    static int imageCount(const OssSnBaseNode *node, const char *attribute)
    {
        return OssImageList::fromVariant(node->attribute(text(attribute))).ids().size();
    }

    OssSnGroupNode *m_group = nullptr;
    bool m_taken = false; ///< whether the graph took the drop
    QImage m_ghost;       ///< the graph while the files are over it
};

TEST_F(Drops, archivesBecomeNodesWhereTheyFallInOneStep)
{
    const struct
    {
        std::vector<const char *> names;
        int nodes;
        const char *title;
    } cases[] = {
        {{"dirt.opc"}, 1, "Import custom procedural"},
        {{"more.OPC"}, 1, "Import custom procedural"},
        {{"dirt.opc", "more.OPC"}, 2, "Import custom procedural"},
        {{"rust.oma"}, 1, "Import material"},
    };

    for (const auto &c : cases) {
        begin();
        const int count = m_network->nodes().size();
        const QImage empty = m_view->viewport()->grab().toImage();
        drop(c.names);
        EXPECT_NE(m_ghost, empty) << "where they would come to stand";
        EXPECT_TRUE(m_taken);
        EXPECT_EQ(m_network->nodes().size(), count + c.nodes) << c.names.front();
        const QList<OssSnBaseNode *> made = m_network->selectedNodes();
        ASSERT_EQ(made.size(), c.nodes);
        const QPointF place = m_view->mapToScene(Place);
        EXPECT_LT(QLineF(rectOf(made.first()).center(), place).length(), 300.0);
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

TEST_F(Drops, whatNobodyCanReadChangesNothing)
{
    begin();
    drop({});
    const QRect around(Place.x() - 10, Place.y() - 10, 60, 20);
    const QImage empty = m_view->viewport()->grab(around).toImage();
    drop({"notes.txt"});
    EXPECT_NE(m_ghost.copy(around), empty);
    EXPECT_EQ(m_view->viewport()->grab(around).toImage(), empty) << "the ghost is gone";
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
        EXPECT_FALSE(rectOf(made.first()).intersects(rectOf(made.last())));
        const std::string title = "Drag and drop : creating 2 nodes of type '";
        expectStepBack((title + key + "'").c_str());
    }
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

} // namespace
