#include "GraphFixture.h"
#include "Manager/OssSnNodeGraphViewContextLoader.h"
#include "OssCore/Program/OssClassFactoryManager.h"
#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssSnUINodeGraphViewContext.h"

namespace {

/// Contexts as descriptions of types make them.
class LoaderTest : public GraphFixture
{
protected:
    OssSnNodeGraphViewContext *load(const char *xml)
    {
        OssSnNodeGraphViewContextLoader loader;
        const QList<OssSnBaseContext *> list = loader.load(text(xml), m_node);
        EXPECT_EQ(list.size(), 1);
        m_context.reset(qobject_cast<OssSnNodeGraphViewContext *>(list.first()));
        return m_context.get();
    }

    void SetUp() override
    {
        GraphFixture::SetUp();
        m_node = add("Filter/Blur");
    }

    void TearDown() override
    {
        m_context.reset();
        GraphFixture::TearDown();
    }

    OssSnBaseNode *m_node = nullptr;
    std::unique_ptr<OssSnNodeGraphViewContext> m_context;
};

TEST_F(LoaderTest, looksAreReadFromTheDescription)
{
    OssSnNodeGraphViewContext *context = load(
        "<D><Skip><Contexts/></Skip><Contexts><Context Type=\"Other\" ShapeType=\"9\"/>"
        "<Context Type=\"NodeGraphView\" ShapeType=\"7\" NodeColorTop=\"1,0,0,1\" "
        "NodeColorBottom=\"0,1,0,1\" Pixmap=\"a.png\" PixmapOffset=\"4,-2\">"
        "<Inputs><Input Name=\"In\" Tags=\"a,,b\"><Pos OriginOffset=\"3\">1,2</Pos>"
        "<Pos>5,x</Pos></Input><Input Tags=\"c\"/></Inputs>"
        "<Outputs><Output Name=\"Out\"><Pos>1,2,3</Pos></Output></Outputs>"
        "</Context></Contexts></D>");
    EXPECT_EQ(context->shapeType(), 7);
    EXPECT_EQ(context->nodeColorTop(), text("1,0,0,1"));
    EXPECT_EQ(context->nodeColorBottom(), text("0,1,0,1"));
    EXPECT_EQ(context->pixmapPath(), text("a.png"));
    EXPECT_EQ(context->pixmapOffset(), QPoint(4, -2));
    EXPECT_TRUE(context->hasInputTag(text("In"), text("a")));
    EXPECT_TRUE(context->hasInputTag(text("In"), QString()));
    EXPECT_TRUE(context->hasInputTag(text("In"), text("b")));
    EXPECT_EQ(context->inputNodeInitialPos().value(text("In")),
              qMakePair(QPoint(0, 0), QPoint(5, 0)));
    EXPECT_TRUE(context->outputNodeInitialPos().isEmpty());
}

TEST_F(LoaderTest, whatIsIncompleteOrUnknownIsPassedOver)
{
    OssSnNodeGraphViewContext *context = load(
        "<D><Contexts><Context Type=\"NodeGraphView\" PixmapOffset=\"4\"><Other><Pos>9,9</Pos>"
        "</Other><Inputs><Output Name=\"No\"><Pos>9,9</Pos></Output><Input Name=\"In\"><Mark>8,8"
        "</Mark><Pos OriginOffset=\"2\">3,4</Pos><Mark>8,8</Mark></Input></Inputs><Outputs>"
        "<Output Name=\"Out\" Tags=\"t\"><Pos>5,6</Pos></Output></Outputs></Context></Contexts>"
        "</D>");
    EXPECT_EQ(context->pixmapOffset(), QPoint());
    ASSERT_EQ(context->inputNodeInitialPos().size(), 1);
    EXPECT_EQ(context->inputNodeInitialPos().value(text("In")),
              qMakePair(QPoint(2, 0), QPoint(3, 4)));
    ASSERT_EQ(context->outputNodeInitialPos().size(), 1);
    EXPECT_EQ(context->outputNodeInitialPos().value(text("Out")),
              qMakePair(QPoint(0, 0), QPoint(5, 6)));
    EXPECT_FALSE(context->hasInputTag(text("Out"), text("t")));
}

TEST_F(LoaderTest, classesAreChosenAndLaterOnesReplaceEarlierOnes)
{
    EXPECT_EQ(load("<D/>")->metaObject()->className(), QByteArray("OssSnNodeGraphViewContext"));
    OssSnNodeGraphViewContext *context = load(
        "<D><Contexts><Context Type=\"UINodeGraphView\" ShapeType=\"3\"/></Contexts></D>");
    EXPECT_EQ(context->metaObject()->className(), QByteArray("OssSnNodeGraphViewContext"));
    EXPECT_EQ(context->shapeType(), 3);
    context = load("<D><Contexts><Context Type=\"NodeGraphView\" ShapeType=\"3\" "
                   "Class=\"OssSnGroupNodeGraphViewContext\"/>"
                   "<Context Type=\"UINodeGraphView\" GuiNodeClass=\"Dot\"/></Contexts></D>");
    auto *ui = qobject_cast<OssSnUINodeGraphViewContext *>(context);
    ASSERT_NE(ui, nullptr);
    EXPECT_EQ(ui->shapeType(), 0);
    EXPECT_NE(qobject_cast<OssNgDotNode *>(ui->guiNode()), nullptr);
    EXPECT_EQ(load("<D><Contexts><Context Type=\"NodeGraphView\" Class=\"Nonsense\" "
                   "ShapeType=\"3\"><Inputs><Input Name=\"a\" Tags=\"b\"><Pos>1,2</Pos></Input>"
                   "</Inputs></Context></Contexts></D>"),
              nullptr);
    EXPECT_NE(load("<D><Contexts><Context Type=\"NodeGraphView\" ShapeType=\"5\"><In"), nullptr);
}

TEST_F(LoaderTest, factoriesAnswerToTheirNames)
{
    OssClassFactoryManager *factories = OssClassFactoryManager::instance();
    for (const char *name :
         {"OssSnNodeGraphViewContext", "OssSnBakePointNodeGraphViewContext",
          "OssSnGeoChannelNodeGraphViewContext", "OssSnBaseTeleportNodeGraphViewContext",
          "OssSnGroupNodeGraphViewContext", "OssSnUINodeGraphViewContext"}) {
        const QPointer<QObject> made = factories->create(text(name), m_node);
        ASSERT_TRUE(made) << name;
        EXPECT_EQ(made->metaObject()->className(), QByteArray(name));
        EXPECT_EQ(made->parent(), m_node);
        delete made;
    }
    EXPECT_TRUE(factories->create(text("Nonsense"), m_node).isNull());
}

} // namespace
