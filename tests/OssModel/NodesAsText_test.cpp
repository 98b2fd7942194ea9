#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "support/ModelFixture.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

namespace {

const QString Out = QStringLiteral("Output");

class NodesAsText : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_color = add("Procedural/Color");
        m_blur = add("Filter/Blur");
        m_merge = add("Layer/Merge");
        ASSERT_TRUE(wire(m_color, m_blur));
        ASSERT_TRUE(wire(m_blur, m_merge, "Base"));
        OssUndoManager::instance()->clear();
    }

    OssResult paste(const QByteArray &text)
    {
        return OssShaderNetworkIO::nodesFromText(m_network, text, QStringLiteral("test.ong"),
                                                 &m_inserted);
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_merge = nullptr;
    QList<OssSnBaseNode *> m_inserted;
};

TEST_F(NodesAsText, copiesKeepTheirWiresAndValuesButNotThoseToOthers)
{
    m_blur->setAttribute(QStringLiteral("Radius"), 7.5);
    m_blur->toggleBypass();
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    const QList<OssSnBaseNode *> copies = OssShaderNetworkIO::duplicateNodes(
        m_network, {m_blur, m_merge, m_network->viewerNode()}, true);
    ASSERT_EQ(copies.size(), 2);
    EXPECT_EQ(copies.first()->name(), QStringLiteral("Blur 2"));
    EXPECT_EQ(copies.first()->attribute(QStringLiteral("Radius")).toDouble(),
              m_blur->attribute(QStringLiteral("Radius")).toDouble());
    EXPECT_TRUE(copies.first()->isBypassed());
    EXPECT_EQ(copies.at(1)->inputNode(QStringLiteral("Base")), copies.first());
    EXPECT_EQ(copies.first()->inputNode(QStringLiteral("Input")), nullptr);
    EXPECT_NE(copies.first()->uuidString(), m_blur->uuidString());
    EXPECT_EQ(m_network->selectedNodes(), copies);
    EXPECT_EQ(undoCount(), 1);
    const QByteArray after = m_project->stateHash();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(m_project->stateHash(), after);
}

TEST_F(NodesAsText, theClipboardIsTextThatSurvivesAMail)
{
    OssShaderNetworkIO::copyNodesToClipboard({m_color, m_blur}, QStringLiteral("for you"));
    ASSERT_FALSE(
        OssShaderNetworkIO::nodesTextOf(QGuiApplication::clipboard()->mimeData()).isEmpty());
    const QString text = QGuiApplication::clipboard()->text();
    QGuiApplication::clipboard()->setText(QStringLiteral("\n  ") + text + QStringLiteral("\n"));
    EXPECT_EQ(OssShaderNetworkIO::pasteNodesFromClipboard(m_network, false).size(), 2);
    QGuiApplication::clipboard()->setText(QStringLiteral("hello"));
    EXPECT_TRUE(OssShaderNetworkIO::pasteNodesFromClipboard(m_network, false).isEmpty());
    EXPECT_TRUE(logHas(QStringLiteral("holds no nodes")));
}

TEST_F(NodesAsText, aGroupComesBackWholeFromItsFileAndPortsFollowTheirNodes)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Dirt"));
    OssSnBaseNode *in = group->createInput(QStringLiteral("Below"), OssSnDataKind::Scalar);
    OssSnBaseNode *out = group->createOutput(QStringLiteral("Result"), OssSnDataKind::Color);
    OssSnBaseNode *blur = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
    wire(in, blur);
    wire(blur, out);
    wire(m_color, group, "Below");
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("dirt.ong"));
    ASSERT_TRUE(group->exportAsGizmo(path));
    EXPECT_TRUE(group->exportAsGizmo({})) << "the user thought better of it";
    ASSERT_TRUE(OssShaderNetworkIO::loadNodesFromXmlFile(m_network, path, &m_inserted));
    ASSERT_EQ(m_inserted.size(), 1);
    auto *copy = qobject_cast<OssSnGroupNode *>(m_inserted.first());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->inputPorts().first().kind, OssSnDataKind::Scalar);
    EXPECT_EQ(copy->outputNodesInside().first()->inputNode(QStringLiteral("Input"))->name(),
              blur->name());

    // Ports pasted into a group are ports of it; elsewhere there is nothing for them to stand for.
    const QByteArray port = OssShaderNetworkIO::nodesToText({in});
    QList<OssSnBaseNode *> inserted;
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(copy->groupNetwork(), port, {}, &inserted));
    EXPECT_EQ(copy->inputNames(),
              QStringList({QStringLiteral("Below"), QStringLiteral("Below 2")}));
    ASSERT_TRUE(paste(port));
    EXPECT_TRUE(m_inserted.isEmpty());

    OssUndoManager::instance()->clear();
    in->setName(QStringLiteral("Under"));
    EXPECT_EQ(group->inputNode(QStringLiteral("Under")), m_color);
    EXPECT_TRUE(group->renameInput(QStringLiteral("Under"), QStringLiteral("Ground")));
    EXPECT_EQ(in->name(), QStringLiteral("Ground"));
    group->groupNetwork()->removeNodes({in});
    EXPECT_TRUE(group->inputNames().isEmpty());
    while (OssUndoManager::instance()->canUndo())
        OssUndoManager::instance()->undo();
    EXPECT_EQ(group->inputNode(QStringLiteral("Below")), m_color);
    EXPECT_EQ(blur->inputNode(QStringLiteral("Input")), in);
}

TEST_F(NodesAsText, whatIsDamagedOrHostileIsRefusedAndNothingChanges)
{
    const ExpectedLog expected("description of 'Filter/Blur' cannot be used");
    const QByteArray before = m_project->stateHash();
    const QByteArray good = OssShaderNetworkIO::nodesToText({m_color, m_blur});
    const QByteArray viewer = QByteArray(good).replace("Procedural/Color", "_System/Viewer");

    const struct
    {
        QByteArray text;
        const char *reason;
    } cases[] = {
        {"", "test.ong"},
        {good.left(good.size() / 2), "test.ong"},
        {QByteArray(good).replace("major=\"1\"", "major=\"9\""), "format"},
        {QByteArray(good).replace("Blur", "Color"), "twice"},
        {"<?xml version=\"1.0\"?><!DOCTYPE x [<!ENTITY a \"b\">]><ossaNodes major=\"1\"/>",
         "test.ong"},
        {"<ossaNodes major=\"1\"></ossaNodes>", "no nodes"},
        {"<ossaProject/>", "test.ong"},
    };

    for (const auto &test : cases) {
        const OssResult result = paste(test.text);
        EXPECT_FALSE(result) << test.text.left(60).constData();
        EXPECT_TRUE(result.error().contains(QLatin1String(test.reason)))
            << qPrintable(result.error());
        EXPECT_TRUE(m_inserted.isEmpty());
    }
    EXPECT_TRUE(paste(viewer));
    EXPECT_EQ(m_inserted.size(), 1); // the blur alone: viewers are not brought in
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(NodesAsText, containersComeAlongWithWhatTheyHoldAndRingsOfThemAreRefused)
{
    OssSnBaseNode *outer = add("Misc/Backdrop", "Outer");
    OssSnBaseNode *inner = add("Misc/Backdrop", "Inner");
    OssSnBaseNode *blur = add("Filter/Blur");
    inner->setContainer(outer);
    blur->setContainer(inner);
    const QByteArray text = OssShaderNetworkIO::nodesToText({outer, inner, blur});
    QList<OssSnBaseNode *> copies;
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, text, {}, &copies));
    ASSERT_EQ(copies.size(), 3);
    EXPECT_EQ(copies.at(2)->container(), copies.at(1));
    EXPECT_EQ(copies.at(1)->container(), copies.at(0));
    const QByteArray alone = OssShaderNetworkIO::nodesToText({blur});
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, alone, {}, &copies));
    EXPECT_EQ(copies.first()->container(), nullptr);
    QByteArray ring = text;
    ring.replace("name=\"Outer\"", "name=\"Outer\" container=\"Inner\"");
    ASSERT_NE(ring, text);
    const ExpectedLog expected("cannot lie in");
    ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(m_network, ring, {}, &copies));
    EXPECT_TRUE(!copies.at(0)->container() || !copies.at(1)->container());
}

TEST_F(NodesAsText, loopsInAFileAreCut)
{
    OssSnBaseNode *second = add("Filter/Blur");
    wire(m_blur, second);
    QByteArray text = OssShaderNetworkIO::nodesToText({m_blur, second});
    text.replace("node=\"Color\"", "node=\"" + second->name().toUtf8() + "\"");
    ASSERT_TRUE(paste(text));
    ASSERT_EQ(m_inserted.size(), 2);
    int wires = 0;
    for (const OssSnBaseNode *node : qAsConst(m_inserted))
        wires += node->inputNode(QStringLiteral("Input")) ? 1 : 0;
    EXPECT_EQ(wires, 1);
}

// --- grouping

class Grouping : public NodesAsText
{
protected:
    OssSnGroupNode *group(const QList<OssSnBaseNode *> &nodes)
    {
        return m_network->groupNodes(nodes);
    }
};

TEST_F(Grouping, groupAndUngroupGiveTheIdenticalDocument)
{
    OssSnBaseNode *mask = add("Procedural/Scalar");
    OssSnBaseNode *levels = add("Adjust/Levels");
    ASSERT_TRUE(wire(mask, m_merge, "Mask"));
    ASSERT_TRUE(wire(m_merge, levels));
    ASSERT_TRUE(wire(m_blur, levels, "Input"));
    ASSERT_TRUE(wire(m_blur, m_merge, "Over"));
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    OssSnGroupNode *made = group({m_blur, m_merge, m_network->viewerNode()});
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(made->inputNames().size(), 2);
    EXPECT_EQ(made->outputPointNames().size(), 1);
    EXPECT_EQ(levels->inputNode(QStringLiteral("Input")), made);
    EXPECT_EQ(m_blur->network(), made->groupNetwork());
    EXPECT_NE(m_network->viewerNode(), nullptr);
    const QByteArray grouped = m_project->stateHash();
    EXPECT_EQ(m_network->ungroup(made).size(), 2);
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), 2);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), grouped);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    OssUndoManager::instance()->redo();
    OssUndoManager::instance()->redo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Grouping, aStreamThatEntersForSeveralNodesHasOnePortAndPassesThroughWhenUngrouped)
{
    OssSnBaseNode *levels = add("Adjust/Levels");
    ASSERT_TRUE(wire(m_color, levels));
    OssSnGroupNode *made = group({m_blur, levels});
    ASSERT_EQ(made->inputNames().size(), 1);
    // An output that only passes an input on.
    OssSnBaseNode *through = made->createOutput(QStringLiteral("Through"), OssSnDataKind::Color);
    OssSnBaseNode *in = made->inputNodesInside().first();
    ASSERT_TRUE(wire(in, through));
    OssSnBaseNode *after = add("Filter/Blur", "After");
    ASSERT_TRUE(after->setInputNode(QStringLiteral("Input"), made, QStringLiteral("Through")));
    m_network->ungroup(made);
    EXPECT_EQ(after->inputNode(QStringLiteral("Input")), m_color);
    EXPECT_EQ(levels->inputNode(QStringLiteral("Input")), m_color);
    EXPECT_EQ(m_merge->inputNode(QStringLiteral("Base")), m_blur);
    EXPECT_EQ(group({}), nullptr);
    EXPECT_EQ(group({m_network->viewerNode()}), nullptr);
}

} // namespace
