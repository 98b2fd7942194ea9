#include "GraphFixture.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssNodeArchive.h"

#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/// Files that are dragged from a file manager onto the graph.
class Drops : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        m_group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Dirt"));
        for (const char *name : {"dirt.opc", "more.OPC"})
            ASSERT_TRUE(
                OssNodeArchive::write(m_group, OssNodeArchive::Kind::CustomProcedural, file(name)));
        auto *material = qobject_cast<OssSnGroupNode *>(add("_System/Material", "Rust"));
        ASSERT_TRUE(
            OssNodeArchive::write(material, OssNodeArchive::Kind::Material, file("rust.oma")));
        for (const char *name : {"broken.opc", "notes.txt"}) {
            QFile broken(file(name));
            ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
            broken.write("no archive");
        }
        OssUndoManager::instance()->clear();
    }

    void TearDown() override
    {
        OssApplication::setPopupsAllowed(m_popups);
        GraphFixture::TearDown();
    }

    QString file(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    static constexpr QPoint Place{200, 150};

    void drop(const std::vector<const char *> &names)
    {
        QMimeData mime;
        QList<QUrl> urls;
        for (const char *name : names)
            urls.append(QUrl::fromLocalFile(file(name)));
        mime.setUrls(urls);
        QDragEnterEvent enter(Place, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDragMoveEvent move(Place, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &move);
        m_ghost = m_view->viewport()->grab().toImage();
        QDropEvent event(Place, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(m_view->viewport(), &event);
        m_taken = event.isAccepted();
    }

    QTemporaryDir m_folder;
    OssSnGroupNode *m_group = nullptr;
    bool m_taken = false; ///< whether the graph took the drop
    QImage m_ghost;       ///< the graph while the files are over it
    bool m_popups = true;
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
        const QByteArray before = m_project->stateHash();
        const int count = m_network->nodes().size();
        const QImage empty = m_view->viewport()->grab().toImage();
        drop(c.names);
        EXPECT_NE(m_ghost, empty) << "where they would come to stand";
        EXPECT_TRUE(m_taken);
        EXPECT_EQ(m_network->nodes().size(), count + c.nodes) << c.names.front();
        EXPECT_EQ(undoCount(), 1);
        EXPECT_EQ(OssUndoManager::instance()->undoText().toStdString(), c.title);
        const QList<OssSnBaseNode *> made = m_network->selectedNodes();
        ASSERT_EQ(made.size(), c.nodes);
        const QPointF place = m_view->mapToScene(Place);
        EXPECT_LT(QLineF(itemOf(made.first())->sceneBoundingRect().center(), place).length(),
                  300.0);
        OssUndoManager::instance()->undo();
        EXPECT_EQ(m_project->stateHash(), before);
    }
}

TEST_F(Drops, ofWhichOneCannotBeReadChangeNothingAndSayWhich)
{
    const QByteArray before = m_project->stateHash();
    drop({"dirt.opc", "broken.opc"});
    EXPECT_TRUE(logHas(QStringLiteral("broken.opc")));
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(Drops, whatNobodyCanReadChangesNothing)
{
    const QByteArray before = m_project->stateHash();
    drop({});
    const QRect around(Place.x() - 10, Place.y() - 10, 60, 20);
    const QImage empty = m_view->viewport()->grab(around).toImage();
    drop({"notes.txt"});
    EXPECT_NE(m_ghost.copy(around), empty);
    EXPECT_EQ(m_view->viewport()->grab(around).toImage(), empty) << "the ghost is gone";
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(Drops, aPictureGoesToEveryPlaceOfItsNodeAndNowhereWithoutOne)
{
    const ExpectedLog unknown("No/Such", ExpectedLog::Possible);
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(file("a.png")));
    OssImage *image = OssImageManager::instance()->open(file("a.png"), 0, {}).first().image;
    const int count = m_network->nodes().size();
    const QSignalSpy told(m_view, &OssShaderNetworkView::nodeAdded);
    m_view->createNodeFromDropImage(image, QStringLiteral("No/Such"), {300, 300});
    EXPECT_EQ(told.count(), 0);
    EXPECT_EQ(m_network->nodes().size(), count);
    m_view->createNodeFromDropImage(image, QStringLiteral("Environment/Tri Planar Projection"),
                                    {3000, 3000});
    ASSERT_EQ(m_network->nodes().size(), count + 1);
    const OssSnBaseNode *node = m_network->nodes().last();
    EXPECT_EQ(itemOf(node)->pos(), QPointF(3000, 3000));
    for (const char *name : {"frontImage", "topImage", "rightImage"})
        EXPECT_EQ(
            OssImageList::fromVariant(node->attribute(QString::fromLatin1(name))).ids().size(), 1)
            << name;
}

TEST_F(Drops, imagesOfTheListBecomeTiledOnesOrWithShiftProjections)
{
    QList<OssImage *> images;
    for (const char *name : {"a.png", "b.png"}) {
        QImage picture(4, 4, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        ASSERT_TRUE(picture.save(file(name)));
        images.append(OssImageManager::instance()->open(file(name), 0, {}).first().image);
    }
    QStringList ids;
    for (const OssImage *image : images)
        ids.append(image->uniqueId().toString());
    QMimeData mime;
    mime.setData(OssImage::MimeType, ids.join(QLatin1Char(',')).toUtf8());
    m_view->window()->show();
    QWindow *window = m_view->window()->windowHandle();
    for (const bool shift : {false, true}) {
        const QString key = shift ? QStringLiteral("Environment/Tri Planar Projection")
                                  : QStringLiteral("Procedural/Pattern/Tiled");
        const Qt::KeyboardModifiers modifiers = shift ? Qt::ShiftModifier : Qt::NoModifier;
        OssUndoManager::instance()->clear();
        if (shift)
            QTest::keyPress(window, Qt::Key_Shift, modifiers);
        QDragEnterEvent enter(Place, Qt::CopyAction, &mime, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(m_view->viewport(), &enter);
        QDragMoveEvent move(Place, Qt::CopyAction, &mime, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(m_view->viewport(), &move);
        QDropEvent event(Place, Qt::CopyAction, &mime, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(m_view->viewport(), &event);
        if (shift)
            QTest::keyRelease(window, Qt::Key_Shift);
        const QList<OssSnBaseNode *> made = m_network->selectedNodes();
        ASSERT_EQ(made.size(), 2) << shift;
        for (const OssSnBaseNode *node : made)
            EXPECT_EQ(node->pathKey(), key);
        EXPECT_EQ(undoCount(), 1);
    }
}

} // namespace
