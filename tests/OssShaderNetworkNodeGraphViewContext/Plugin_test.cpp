#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "PluginUnderTest.h"

#include <QAction>
#include <QFile>
#include <QJsonObject>
#include <QPluginLoader>

namespace {

QString pluginFile()
{
    return qEnvironmentVariable("OSSA_BUILD")
           + text("/plugins/OssShaderNetworkNodeGraphViewContext.so");
}

void addType(const char *key, const char *menuPath)
{
    OssResult result;
    OssShaderNetworkManager::instance()->registerNodeType(OssSnNodeType::read(
        QByteArray("<NodeType PathKey=\"") + key + "\" MenuPath=\"" + menuPath + "\"/>", text("t"),
        &result));
}

TEST(PluginFile, metadataNameInterfaceAndClassAndNothingElse)
{
    const QPluginLoader loader(pluginFile());
    const QJsonObject metadata = loader.metaData();
    EXPECT_EQ(metadata.value(text("IID")).toString(), text("com.halvern.ossa.pluginterface/1.0"));
    EXPECT_EQ(metadata.value(text("className")).toString(),
              text("OssShaderNetworkNodeGraphViewContextPlugin"));
    EXPECT_TRUE(metadata.value(text("MetaData")).toObject().isEmpty());

    QFile file(pluginFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const int magic = bytes.indexOf("QTMETADATA !");
    ASSERT_GE(magic, 0);
    // Format 0, Qt 5.15, built as release.
    EXPECT_EQ(bytes.mid(magic + 12, 4), QByteArray("\x00\x05\x0f\x00", 4));
}

class PluginTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        ASSERT_TRUE(pluginUnderTest());
    }
};

TEST_F(PluginTest, everyOfferedTypeHasOneCreationAction)
{
    addType("Test/Hidden", "_Hidden/Foo");
    addType("Test/Bare", "Bare");
    addType("Test/Slashes", "Filter//Soft/");
    addType("Test/A", "Test/Same");
    addType("Test/B", "Test/Same");
    EXPECT_EQ(graphAction("Create/_Hidden/Foo"), nullptr);
    ASSERT_NE(graphAction("Create/Bare"), nullptr);
    EXPECT_EQ(graphAction("Create/Filter/Soft")->data().toString(), text("Test/Slashes"));
    EXPECT_EQ(graphAction("Create/Test/Same")->data().toString(), text("Test/A"));
    const int count = OssActionTreeManager::instance()->entries().size();
    QMetaObject::invokeMethod(pluginUnderTest(), "createNodeCreationActions");
    EXPECT_EQ(OssActionTreeManager::instance()->entries().size(), count);
}

TEST_F(PluginTest, creationActionsMakeASelectedNodeInOneStep)
{
    contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
    OssUndoManager::instance()->clear();
    graphAction("Create/Filter/Blur")->trigger();
    ASSERT_EQ(undoCount(), 1);
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected.first()->pathKey(), text("Filter/Blur"));
    EXPECT_EQ(itemOf(selected.first())->pos(), m_view->mapToScene(m_view->creationPoint()));
    // The focus is elsewhere, which is told.
    expectLogged("fallback onto current nodegraph view");
    QMetaObject::invokeMethod(pluginUnderTest(), "createNodeFromAction");
    expectLogged("Action is NULL");
}

TEST_F(PluginTest, droppedNodeTypesAreMadeAsFromTheMenu)
{
    const ExpectedLog expected("fallback onto current nodegraph view 0x");
    OssNodeTypeListModel types;
    types.setSearchText(text("blur"));
    const std::unique_ptr<QMimeData> mime(types.mimeData({types.index(0)}));
    OssUndoManager::instance()->clear();
    const Dragged dragged{m_view->viewport(), mime.get(), {50, 50}};
    EXPECT_TRUE(dragged.enter());
    EXPECT_TRUE(dragged.drop());
    const OssSnBaseNode *blur = m_network->node(text("Blur"));
    ASSERT_NE(blur, nullptr);
    EXPECT_EQ(rectOf(blur).topLeft(), m_view->mapToScene(dragged.place));
    expectStep("Create Node : Blur");
}

TEST_F(PluginTest, actionsReachTheView)
{
    const ExpectedLog expected("fallback onto current nodegraph view 0x");
    addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *far = addAt("Filter/Blur", {5000, 5000});
    far->setSelected(true);
    graphAction("Frame Nodes")->trigger();
    const qreal all = m_view->transform().m11();
    graphAction("Focus Selection")->trigger();
    EXPECT_GT(m_view->transform().m11(), all);
    const qreal before = m_view->transform().m11();
    graphAction("Zoom Out")->trigger();
    EXPECT_LT(m_view->transform().m11(), before);
    for (const int mode : {1, 0}) {
        graphAction("Toggle Edge Sever Mode")->trigger();
        EXPECT_EQ(m_view->cursorTrackingMode(), mode);
    }
    int pickUps = 0;
    const auto entries = OssActionTreeManager::instance()->entries();
    for (const OssActionTreeManager::Entry &entry : entries)
        pickUps += entry.path == QLatin1String("/Ossa/NodeGraph/Pick Up Edge Under Mouse");
    EXPECT_EQ(pickUps, 2);
}

} // namespace
