#include "Ossa/Pictures/GraphPicture.h"

#include "OssNodeGraph/Items/OssNgExtendedNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QGraphicsScene>
#include <QImage>
#include <QTemporaryDir>

namespace {

/// A scene with up to two nodes.
class GraphPictures : public testing::Test
{
protected:
    ~GraphPictures() override { OssNgSceneIndex::releaseItems(&scene); }

    OssNgExtendedNode *add(OssNgExtendedNode *node, const QPointF &position)
    {
        node->setText(text("Brick"));
        node->setPosition(position);
        scene.addItem(node);
        return node;
    }

    QString file(const char *name) const { return folder.filePath(text(name)); }

    OssResult write(const char *name)
    {
        return GraphPicture::write(&scene, text("Wall"), file(name));
    }

    QTemporaryDir folder;
    OssNgExtendedNode first;
    OssNgExtendedNode second;
    QGraphicsScene scene;
};

TEST_F(GraphPictures, areAsLargeAsTheGraphWithinLimits)
{
    const QSizeF node = add(&first, {0, 0})->sceneBoundingRect().size();
    ASSERT_TRUE(write("small.png"));
    EXPECT_NEAR(QImage(file("small.png")).width(), 2.0 * (node.width() + 120.0), 3.0)
        << "twice as large";
    add(&second, {3000, 0});
    ASSERT_TRUE(write("wide.png"));
    EXPECT_NEAR(QImage(file("wide.png")).width(), 3000.0 + node.width() + 120.0, 3.0);
    second.setPosition({0, 40000});
    ASSERT_TRUE(write("tall.PNG"));
    EXPECT_EQ(QImage(file("tall.PNG")).height(), 12000);
    second.setPosition({3000, 0});
    ASSERT_TRUE(write("wide.svg"));
    QFile svg(file("wide.svg"));
    ASSERT_TRUE(svg.open(QIODevice::ReadOnly));
    const QByteArray text = svg.readAll();
    EXPECT_TRUE(text.contains("<title>Wall</title>"));
    EXPECT_TRUE(text.contains("<svg"));
}

TEST_F(GraphPictures, thatCannotBeWrittenSayWhyAndLeaveNoFile)
{
    OssResult empty = write("none.png");
    EXPECT_TRUE(empty.error().contains(text("nothing"))) << qPrintable(empty.error());
    EXPECT_TRUE(empty.error().contains(text("none.png")));
    add(&first, {0, 0});
    OssResult format = write("graph.jpg");
    EXPECT_TRUE(format.error().contains(text(".svg"))) << qPrintable(format.error());
    EXPECT_FALSE(write("nowhere/graph.png"));
    EXPECT_FALSE(QFile::exists(file("none.png")) || QFile::exists(file("graph.jpg")));
    first.setVisible(false);
    EXPECT_FALSE(write("hidden.png"));
}

} // namespace
