#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString Radius = QStringLiteral("Radius");

/// What the blur was before: another default, another order of choices, things that went since.
const char *const OldBlur = R"(<?xml version="1.0"?>
<!-- as it was -->
<NodeType PathKey="Filter/Blur" Kernel="blur" Date="2025-03-01">
    <Description>Softens.</Description>
    <Inputs>
        <Input Name="Input" Kind="Color" Preferred="true"/>
        <Input Name="Mask" Kind="Scalar"/>
    </Inputs>
    <Outputs><Output Name="Output" Kind="Color"/><Output Name="Edge" Kind="Scalar"/></Outputs>
    <Attributes>
        <Attribute Name="Radius" Type="real" Default="3"/>
        <Attribute Name="Quality" Type="choice" Choices="Gaussian,Tent,Box" Default="Gaussian"/>
        <Attribute Name="Passes" Type="integer" Default="2"/>
    </Attributes>
</NodeType>)";

class Versions : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_networks = OssShaderNetworkManager::instance();
        m_blur = addOld(OldBlur);
        m_color = add("Procedural/Color");
        m_mask = add("Procedural/Scalar");
        m_invert = add("Adjust/Invert");
        m_levels = add("Adjust/Levels");
        ASSERT_TRUE(wire(m_color, m_blur));
        ASSERT_TRUE(wire(m_mask, m_blur, "Mask"));
        ASSERT_TRUE(wire(m_blur, m_invert));
        ASSERT_TRUE(
            m_levels->setInputNode(QStringLiteral("Input"), m_blur, QStringLiteral("Edge")));
        m_blur->setAttribute(QStringLiteral("Quality"), QStringLiteral("Box"));
        m_blur->setAttribute(QStringLiteral("Passes"), 5);
        OssUndoManager::instance()->clear();
        m_start = m_project->stateHash();
    }

    OssSnBaseNode *addOld(const char *description, OssShaderNetwork *network = nullptr)
    {
        OssResult result;
        const auto type = OssSnNodeType::read(description, QStringLiteral("old"), &result);
        EXPECT_TRUE(result) << qPrintable(result.error());
        return (network ? network : m_network)->addNode(OssSnNodeFactory::make(type), true);
    }

    bool isSame(const OssSnBaseNode *node) const
    {
        return node->versionHashPresent()
               == m_networks->hashStringForVersionUUID(node->versionUUID());
    }

    void reopen()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("Old.ossa"));
        ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
        const QList<QByteArray> saved = stateLines();
        const OssResult opened = OssProjectManager::instance()->openProject(path);
        ASSERT_TRUE(opened) << qPrintable(opened.error());
        m_project = OssProjectManager::instance()->currentProject();
        m_network = m_project->shadingGroups().first()->network();
        m_blur = m_network->node(QStringLiteral("Blur"));
        expectSame(stateLines(), saved);
    }

    OssShaderNetworkManager *m_networks = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_mask = nullptr;
    OssSnBaseNode *m_invert = nullptr;
    OssSnBaseNode *m_levels = nullptr;
    QByteArray m_start;
};

TEST_F(Versions, freshNodesOfEveryTypeAreWhatIsInstalled)
{
    const QStringList keys = m_networks->nodePathKeys();
    m_network->removeNodes({m_network->viewerNode()}); // there may be one
    for (const QString &key : keys) {
        const OssSnBaseNode *node = m_network->createNode(key);
        ASSERT_NE(node, nullptr) << qPrintable(key);
        EXPECT_TRUE(isSame(node)) << qPrintable(key);
        EXPECT_EQ(node->versionHashCreated(), node->versionHashPresent()) << qPrintable(key);
        EXPECT_EQ(node->versionDate(), m_networks->versionDatePresent(node->versionUUID()));
    }
    EXPECT_EQ(m_networks->hashStringForVersionUUID(QStringLiteral("OSS_None")), QString());
    EXPECT_TRUE(
        OssSnBaseNode::versionDateLT(QStringLiteral("2025-12-31"), QStringLiteral("2026-01-01")));
    EXPECT_FALSE(
        OssSnBaseNode::versionDateLT(QStringLiteral("2026-01-01"), QStringLiteral("2026-01-01")));
    EXPECT_TRUE(OssSnBaseNode::versionDateLT(QString(), QStringLiteral("2026-01-01")));
}

TEST_F(Versions, nodesStayWhatTheyWereMadeFromThroughFilesAndCopies)
{
    reopen();
    ASSERT_NE(m_blur, nullptr);
    EXPECT_FALSE(isSame(m_blur));
    EXPECT_EQ(m_blur->versionHashCreated(), m_blur->versionHashPresent());
    EXPECT_EQ(m_blur->versionDate(), QStringLiteral("2025-03-01"));
    // A value that was never touched is still the old default, whatever the new one is.
    EXPECT_EQ(m_blur->attribute(Radius).toDouble(), 3.0);
    EXPECT_TRUE(m_blur->hasInput(QStringLiteral("Mask")));

    const auto copies = OssShaderNetworkIO::duplicateNodes(m_network, {m_blur}, true);
    EXPECT_EQ(copies.first()->versionHashPresent(), m_blur->versionHashPresent());
    EXPECT_TRUE(isSame(add("Filter/Blur"))); // new ones are new, beside the old
    reopen();
    EXPECT_EQ(m_network->node(QStringLiteral("Blur 2"))->attribute(Radius).toDouble(), 3.0);
    EXPECT_EQ(m_network->node(QStringLiteral("Blur 3"))->attribute(Radius).toDouble(), 8.0);
}

TEST_F(Versions, upgradeKeepsValuesAndWiresByNameAndTellsWhatItCannotKeep)
{
    const ExpectedLog expected[] = {ExpectedLog("the input \"Mask\", which is gone"),
                                    ExpectedLog("the output \"Edge\", which is gone")};
    const QString uuid = m_blur->uuidString();
    QStringList lost;
    ASSERT_TRUE(m_networks->upgradeNode(m_blur, &lost));
    EXPECT_TRUE(isSame(m_blur));
    EXPECT_EQ(m_blur->versionHashCreated(), m_blur->versionHashPresent());
    EXPECT_EQ(m_blur->versionDate(), QStringLiteral("2026-11-21"));
    EXPECT_EQ(m_blur->uuidString(), uuid);
    EXPECT_EQ(m_blur->attribute(Radius).toDouble(), 3.0);
    EXPECT_EQ(m_blur->attribute(QStringLiteral("Quality")).toString(), QStringLiteral("Box"));
    EXPECT_EQ(m_blur->inputNames(), QStringList({QStringLiteral("Input"), Radius}));
    EXPECT_EQ(m_blur->inputNode(QStringLiteral("Input")), m_color);
    EXPECT_EQ(m_invert->inputNode(QStringLiteral("Input")), m_blur);
    EXPECT_EQ(m_levels->inputNode(QStringLiteral("Input")), nullptr);
    ASSERT_EQ(lost.size(), 3);
    EXPECT_TRUE(lost.at(0).contains(QStringLiteral("Mask")));
    EXPECT_TRUE(lost.at(1).contains(QStringLiteral("Edge")));
    EXPECT_TRUE(lost.at(2).contains(QStringLiteral("Passes")));
    EXPECT_TRUE(logHas(lost.at(2)));
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(m_start);
    EXPECT_TRUE(m_networks->upgradeNode(m_blur, &lost)); // nothing left to do: no step
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(Versions, choiceThatIsGoneIsLostAndTold)
{
    const ExpectedLog expected[] = {ExpectedLog("which is gone"),
                                    ExpectedLog("has no place any more")};
    m_blur->setAttribute(QStringLiteral("Quality"), QStringLiteral("Tent"));
    QStringList lost;
    ASSERT_TRUE(m_networks->upgradeNode(m_blur, &lost));
    EXPECT_EQ(m_blur->attribute(QStringLiteral("Quality")).toString(), QStringLiteral("Gaussian"));
    EXPECT_TRUE(lost.filter(QStringLiteral("Tent")).size() == 1);
}

TEST_F(Versions, importsUpgradeWhatIsOlderAndNothingElse)
{
    const ExpectedLog expected[] = {ExpectedLog("which is gone"),
                                    ExpectedLog("has no place any more")};
    OssSnBaseNode *newer = addOld(
        QByteArray(OldBlur).replace("2025-03-01", "2031-01-01").constData());
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *inside = addOld(OldBlur, group->groupNetwork());
    OssSnBaseNode *custom = addOld(OldBlur);
    OssSnBaseNode::InputPort port;
    port.name = QStringLiteral("Own");
    custom->addInput(port);
    EXPECT_NE(custom->versionHashPresent(), custom->versionHashCreated());
    OssUndoManager::instance()->clear();
    m_networks->upgradeNetworks({m_blur, newer, group, custom});
    EXPECT_TRUE(isSame(m_blur));
    EXPECT_TRUE(isSame(inside));
    EXPECT_FALSE(isSame(newer));
    EXPECT_FALSE(isSame(custom));
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(Versions, conversionKeepsNamePlaceValuesWiresAndKnobs)
{
    const ExpectedLog expected[] = {ExpectedLog("has no place any more"),
                                    ExpectedLog("/Viewer cannot be converted"),
                                    ExpectedLog("/Group/Blur cannot be converted")};
    OssSnGroupNode *group = m_network->groupNodes({m_blur});
    const QString knob = group->createKnob(m_blur, Radius);
    OssShaderNetwork *inside = group->groupNetwork();
    OssUndoManager::instance()->clear();
    const QByteArray start = m_project->stateHash();
    QStringList lost;
    OssSnBaseNode *sharpen = m_networks->convertNodeToKeyPath(
        m_blur, QStringLiteral("Filter/Sharpen"), &lost);
    ASSERT_NE(sharpen, nullptr);
    EXPECT_EQ(sharpen->name(), QStringLiteral("Blur"));
    EXPECT_EQ(sharpen->pathKey(), QStringLiteral("Filter/Sharpen"));
    EXPECT_EQ(m_blur->network(), nullptr);
    EXPECT_EQ(sharpen->attribute(Radius).toDouble(), 3.0);
    EXPECT_NE(sharpen->inputNode(QStringLiteral("Input")), nullptr);
    EXPECT_FALSE(sharpen->outputNodes().isEmpty());
    group->setAttribute(knob, 4.0);
    EXPECT_EQ(sharpen->attribute(Radius).toDouble(), 4.0);
    EXPECT_GE(lost.size(), 2); // passes and quality have no place
    EXPECT_EQ(undoCount(), 2);
    expectUndoIsExact(start);

    EXPECT_EQ(
        m_networks->convertNodeToKeyPath(m_network->viewerNode(), QStringLiteral("Filter/Blur")),
        nullptr);
    EXPECT_EQ(m_networks->convertNodeToKeyPath(inside->node(QStringLiteral("Blur")),
                                               QStringLiteral("None")),
              nullptr);
}

TEST_F(Versions, descriptionOfATypeThatIsNotInstalledIsKept)
{
    const ExpectedLog expected[] = {ExpectedLog("has the unknown type 'Elsewhere/Blur'"),
                                    ExpectedLog("its type is not installed here")};
    QByteArray text = OssShaderNetworkIO::nodesToText({m_blur});
    text.replace("Filter/Blur", "Elsewhere/Blur");
    QList<OssSnBaseNode *> inserted;
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, text, QStringLiteral("t"), &inserted));
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_TRUE(inserted.first()->isPlaceholder());
    const QByteArray again = OssShaderNetworkIO::nodesToText(inserted);
    EXPECT_TRUE(again.contains("Name=\"Passes\"")) << again.constData();
    EXPECT_FALSE(m_networks->upgradeNode(inserted.first()));
    // A description that cannot be read gives the installed type.
    OssDebugLog::instance()->clear();
    text.replace("Elsewhere/Blur", "Filter/Blur").replace("Type=\"integer\"", "Type=\"nothing\"");
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, text, QStringLiteral("t"), &inserted));
    EXPECT_TRUE(isSame(inserted.first()));
    EXPECT_TRUE(logHas(QStringLiteral("cannot be used")));
}

TEST_F(Versions, groupsKeepTheirPortsAndOtherKindsOfNodesAreNotUpgradedTo)
{
    const char *const oldGroup = R"(<NodeType PathKey="Misc/Group" Class="OssSnGroupNode"
        Date="2024-01-01"><Tags><Tag>_group</Tag><Tag>_old</Tag></Tags></NodeType>)";
    auto *group = qobject_cast<OssSnGroupNode *>(addOld(oldGroup));
    ASSERT_NE(group, nullptr);
    ASSERT_TRUE(wire(
        m_color, group->createInput(QStringLiteral("In"), OssSnDataKind::Color) ? group : nullptr,
        "In"));
    group->createOutput(QStringLiteral("Out"), OssSnDataKind::Color);
    QStringList lost;
    ASSERT_TRUE(m_networks->upgradeNode(group, &lost));
    EXPECT_TRUE(isSame(group));
    EXPECT_EQ(group->inputNode(QStringLiteral("In")), m_color);
    EXPECT_TRUE(group->hasOutputPoint(QStringLiteral("Out")));
    EXPECT_TRUE(lost.isEmpty());

    const ExpectedLog expected[] = {ExpectedLog("another kind of node now"),
                                    ExpectedLog("do not come along"),
                                    ExpectedLog("Node is NULL", ExpectedLog::Possible)};
    OssSnBaseNode *plain = addOld(
        R"(<NodeType PathKey="Misc/Group" Class="OssSnBaseNode" Date="2023-01-01"/>)");
    EXPECT_FALSE(m_networks->upgradeNode(plain, &lost));
    EXPECT_EQ(lost.size(), 1);
    OssSnBaseNode *inner = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
    group->createKnob(inner, inner->userAttributeNames().first());
    const QString knob = group->userAttributeNames().last();
    const OssSnBaseNode *converted = m_networks->convertNodeToKeyPath(
        group, QStringLiteral("Misc/Dot"), &lost);
    ASSERT_NE(converted, nullptr);
    EXPECT_FALSE(converted->exists(knob)) << "no file could give it back";
    EXPECT_TRUE(lost.filter(QStringLiteral("do not come along")).size() == 1);
    EXPECT_FALSE(m_networks->upgradeNode(nullptr, &lost));
    EXPECT_EQ(m_networks->convertNodeToKeyPath(nullptr, QStringLiteral("Filter/Blur")), nullptr);
    m_networks->upgradeNetworks({nullptr});
    m_networks->createDelayedKnobs({nullptr});
}

TEST_F(Versions, aConversionTellsOfWiresThatFindNoInput)
{
    const ExpectedLog expected("has no place");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(m_color, merge, "Over"));
    ASSERT_TRUE(wire(m_mask, merge, "Base"));
    OssUndoManager::instance()->clear();
    const QByteArray start = m_project->stateHash();
    QStringList lost;
    OssSnBaseNode *dot = m_networks->convertNodeToKeyPath(merge, QStringLiteral("Misc/Dot"), &lost);
    ASSERT_NE(dot, nullptr);
    EXPECT_EQ(dot->inputNode(QStringLiteral("Input")), m_mask) << "the main one comes first";
    EXPECT_EQ(lost.size(), 1) << qPrintable(dot->dumpNodeInfo());
    expectUndoIsExact(start);
}

TEST_F(Versions, whatWasSetByHandIsSaved)
{
    OssSnBaseNode *node = add("Filter/Sharpen");
    node->setVersionUUID(QStringLiteral("OSS_Mine"), QStringLiteral("0123"));
    const QString name = node->name();
    reopen();
    EXPECT_EQ(m_network->node(name)->versionUUID(), QStringLiteral("OSS_Mine"));
    EXPECT_EQ(m_network->node(name)->versionHashCreated(), QStringLiteral("0123"));
    const ExpectedLog expected("names the unknown class 'Nonsense'");
    const OssSnBaseNode *odd = addOld(R"(<NodeType PathKey="Odd/One" Class="Nonsense"/>)");
    EXPECT_EQ(odd->metaObject(), &OssSnBaseNode::staticMetaObject);
}

TEST_F(Versions, filesDoNotRedefineTheApplicationsOwnTypes)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *port = group->createInput(QStringLiteral("Port"), OssSnDataKind::Scalar);
    QByteArray text = OssShaderNetworkIO::nodesToText({port});
    text.replace("<collection", "<nodeType key=\"_System/Group Input\"><NodeType "
                                "PathKey=\"_System/Group Input\"/></nodeType><collection");
    QList<OssSnBaseNode *> inserted;
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(group->groupNetwork(), text, {}, &inserted));
    ASSERT_EQ(inserted.size(), 1);
    EXPECT_TRUE(inserted.first()->hasTag(QStringLiteral("_input")));
}

} // namespace
