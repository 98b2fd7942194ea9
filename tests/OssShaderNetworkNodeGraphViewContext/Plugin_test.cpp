#include "GraphFixture.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "PluginUnderTest.h"

#include <QAction>
#include <QDropEvent>
#include <QFile>
#include <QJsonObject>
#include <QMimeData>
#include <QPluginLoader>

namespace {

QString pluginFile()
{
    return qEnvironmentVariable("OSSA_BUILD")
           + QStringLiteral("/plugins/OssShaderNetworkNodeGraphViewContext.so");
}

void addType(const char *key, const char *menuPath)
{
    OssResult result;
    OssShaderNetworkManager::instance()->registerNodeType(OssSnNodeType::read(
        QByteArray("<NodeType PathKey=\"") + key + "\" MenuPath=\"" + menuPath + "\"/>",
        QStringLiteral("t"), &result));
}

TEST(PluginFile, metadataNameInterfaceAndClassAndNothingElse)
{
    const QPluginLoader loader(pluginFile());
    const QJsonObject metadata = loader.metaData();
    EXPECT_EQ(metadata.value(QStringLiteral("IID")).toString(),
              QStringLiteral("com.halvern.ossa.pluginterface/1.0"));
    EXPECT_EQ(metadata.value(QStringLiteral("className")).toString(),
              QStringLiteral("OssShaderNetworkNodeGraphViewContextPlugin"));
    EXPECT_TRUE(metadata.value(QStringLiteral("MetaData")).toObject().isEmpty());

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
    static OssShaderNetworkNodeGraphViewContextPlugin *plugin() { return pluginUnderTest(); }

    static QAction *action(const char *path)
    {
        return OssActionTreeManager::instance()->findAction(QString::fromLatin1(path));
    }
};

TEST_F(PluginTest, everyOfferedTypeHasOneCreationAction)
{
    OssShaderNetworkNodeGraphViewContextPlugin *object = plugin();
    addType("Test/Hidden", "_Hidden/Foo");
    addType("Test/Bare", "Bare");
    addType("Test/Slashes", "Filter//Soft/");
    addType("Test/A", "Test/Same");
    addType("Test/B", "Test/Same");
    EXPECT_EQ(action("/Ossa/NodeGraph/Create/_Hidden/Foo"), nullptr);
    ASSERT_NE(action("/Ossa/NodeGraph/Create/Bare"), nullptr);
    EXPECT_EQ(action("/Ossa/NodeGraph/Create/Filter/Soft")->data().toString(),
              QStringLiteral("Test/Slashes"));
    EXPECT_EQ(action("/Ossa/NodeGraph/Create/Test/Same")->data().toString(),
              QStringLiteral("Test/A"));
    const int count = OssActionTreeManager::instance()->entries().size();
    QMetaObject::invokeMethod(object, "createNodeCreationActions");
    EXPECT_EQ(OssActionTreeManager::instance()->entries().size(), count);
}

TEST_F(PluginTest, creationActionsMakeASelectedNodeInOneStep)
{
    plugin();
    contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
    OssUndoManager::instance()->clear();
    action("/Ossa/NodeGraph/Create/Filter/Blur")->trigger();
    ASSERT_EQ(undoCount(), 1);
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected.first()->pathKey(), QStringLiteral("Filter/Blur"));
    EXPECT_EQ(itemOf(selected.first())->pos(), m_view->mapToScene(m_view->creationPoint()));
    // The focus is elsewhere, which is told.
    EXPECT_TRUE(logHas(QStringLiteral("fallback onto current nodegraph view")));
    QMetaObject::invokeMethod(plugin(), "createNodeFromAction");
    EXPECT_TRUE(logHas(QStringLiteral("Action is NULL")));
}

TEST_F(PluginTest, droppedNodeTypesAreMadeAsFromTheMenu)
{
    const ExpectedLog expected("fallback onto current nodegraph view 0x");
    plugin();
    OssNodeTypeListModel types;
    types.setSearchText(QStringLiteral("blur"));
    const std::unique_ptr<QMimeData> mime(types.mimeData({types.index(0)}));
    OssUndoManager::instance()->clear();
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({50, 50}, Qt::CopyAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view->viewport(), &drop);
    EXPECT_NE(m_network->node(QStringLiteral("Blur")), nullptr);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Create Node : Blur"));
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(PluginTest, actionsReachTheView)
{
    const ExpectedLog expected("fallback onto current nodegraph view 0x");
    plugin();
    addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *far = addAt("Filter/Blur", {5000, 5000});
    far->setSelected(true);
    action("/Ossa/NodeGraph/Frame Nodes")->trigger();
    const qreal all = m_view->transform().m11();
    action("/Ossa/NodeGraph/Focus Selection")->trigger();
    EXPECT_GT(m_view->transform().m11(), all);
    const qreal before = m_view->transform().m11();
    action("/Ossa/NodeGraph/Zoom Out")->trigger();
    EXPECT_LT(m_view->transform().m11(), before);
    action("/Ossa/NodeGraph/Toggle Edge Sever Mode")->trigger();
    EXPECT_EQ(m_view->cursorTrackingMode(), 1);
    action("/Ossa/NodeGraph/Toggle Edge Sever Mode")->trigger();
    EXPECT_EQ(m_view->cursorTrackingMode(), 0);
    int pickUps = 0;
    const auto entries = OssActionTreeManager::instance()->entries();
    for (const OssActionTreeManager::Entry &entry : entries)
        pickUps += entry.path == QLatin1String("/Ossa/NodeGraph/Pick Up Edge Under Mouse") ? 1 : 0;
    EXPECT_EQ(pickUps, 2);
}

TEST_F(PluginTest, withoutAViewACommandIsALineAndNoEffect)
{
    const ExpectedLog expected("fallback onto current nodegraph view (nil)");
    plugin();
    QTabWidget *widget = m_manager->nodeGraphWidget();
    QWidget other;
    widget->addTab(&other, QStringLiteral("other"));
    widget->setCurrentWidget(&other);
    action("/Ossa/NodeGraph/Frame Nodes")->trigger();
    EXPECT_TRUE(logHas(QStringLiteral("ShaderNetworkView is NULL")));
    widget->removeTab(1);
}

} // namespace
