#include "GraphFixture.h"

namespace {

/// Two blurs into a merge that feeds two others: ports enough to give a group another size than it
/// is made with.
class Grouping : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        for (int i = 0; i < 5; ++i)
            m_nodes.append(addAt(i == 2 ? "Layer/Merge" : "Filter/Blur",
                                 QPointF(250.0 * i + 0.3, 37.0 * (i % 3))));
        ASSERT_TRUE(wire(m_nodes[0], m_nodes[2], "Base"));
        ASSERT_TRUE(wire(m_nodes[1], m_nodes[2], "Over"));
        ASSERT_TRUE(wire(m_nodes[2], m_nodes[3]));
        ASSERT_TRUE(wire(m_nodes[2], m_nodes[4]));
        m_start = stateLines();
        OssUndoManager::instance()->clear();
    }

    OssSnGroupNode *group(const QList<OssSnBaseNode *> &nodes)
    {
        OssSnGroupNode *made = nodes.first()->network()->groupNodes(nodes);
        EXPECT_NE(made, nullptr);
        expectWhole();
        return made;
    }

    void expectTheStart(const char *when) const
    {
        SCOPED_TRACE(when);
        expectSame(stateLines(), m_start);
    }

    static void ungroup(OssSnGroupNode *group) { group->network()->ungroup(group); }

    QList<OssSnBaseNode *> m_nodes;
    QList<QByteArray> m_start;
};

TEST_F(Grouping, groupedAndTakenApartTheDocumentIsTheSame)
{
    const QList<QList<int>> cases = {{2}, {0, 2}, {1, 2, 3}, {0, 1, 2, 3, 4}, {3, 4}};
    for (const QList<int> &members : cases) {
        QList<OssSnBaseNode *> nodes;
        for (const int member : members)
            nodes.append(m_nodes[member]);
        ungroup(group(nodes));
        expectTheStart("flat");
    }

    // One in the other, taken apart from inside and from outside.
    for (const bool innerFirst : {true, false}) {
        OssSnGroupNode *inner = group({m_nodes[2]});
        OssSnGroupNode *outer = group({m_nodes[1], inner});
        ungroup(innerFirst ? inner : outer);
        ungroup(innerFirst ? outer : inner);
        expectTheStart(innerFirst ? "made from inside, inner first"
                                  : "made from inside, outer first");
        OssSnGroupNode *around = group({m_nodes[1], m_nodes[2]});
        OssSnGroupNode *within = group({m_nodes[2]});
        ungroup(innerFirst ? within : around);
        ungroup(innerFirst ? around : within);
        expectTheStart(innerFirst ? "made from outside, inner first"
                                  : "made from outside, outer first");
    }
    OssUndoManager::instance()->setIndex(0);
    expectTheStart("undone");
}

TEST_F(Grouping, whatComesOutOfAGroupThatWasMovedWentWithIt)
{
    OssSnGroupNode *made = group({m_nodes[1], m_nodes[2]});
    contextOf(made)->setNodePositionUndo(contextOf(made)->nodePosition() + QPointF(0.25, 400.0));
    contextOf(m_nodes[1])->setNodePositionUndo(QPointF(-90.0, 12.0)); // inside, by hand
    const QPointF second = contextOf(m_nodes[2])->nodePosition();
    ungroup(made);
    EXPECT_EQ(contextOf(m_nodes[1])->nodePosition(), QPointF(-89.75, 412.0));
    EXPECT_EQ(contextOf(m_nodes[2])->nodePosition(), second + QPointF(0.25, 400.0));
}

TEST_F(Grouping, aGroupThatWasSavedAndOpenedGivesItsNodesTheirPlacesBack)
{
    const QString first = m_nodes[1]->name();
    const QString second = m_nodes[2]->name();
    const QPointF places[] = {contextOf(m_nodes[1])->nodePosition(),
                              contextOf(m_nodes[2])->nodePosition()};
    OssSnGroupNode *made = group({m_nodes[1], m_nodes[2]});
    contextOf(made)->setNodePositionUndo(contextOf(made)->nodePosition() + QPointF(0.0, 64.0));
    const QString name = made->name();
    reopen();
    ungroup(qobject_cast<OssSnGroupNode *>(m_network->node(name)));
    EXPECT_EQ(contextOf(m_network->node(first))->nodePosition(), places[0] + QPointF(0.0, 64.0));
    EXPECT_EQ(contextOf(m_network->node(second))->nodePosition(), places[1] + QPointF(0.0, 64.0));
}

TEST_F(Grouping, portsThatWerePlacedByHandStayWhereTheyAre)
{
    OssSnGroupNode *made = group({m_nodes[2]});
    const QList<OssSnBaseNode *> inputs = made->inputNodesInside();
    const QList<OssSnBaseNode *> outputs = made->outputNodesInside();
    ASSERT_EQ(inputs.size(), 2);
    ASSERT_EQ(outputs.size(), 1);
    const QPointF left(-777.0, 333.0);
    const QPointF right(1234.0, -55.0);
    contextOf(inputs[0])->setNodePositionUndo(left);
    contextOf(outputs[0])->setNodePositionUndo(right);
    const QString input = inputs[0]->name();
    const QString output = outputs[0]->name();
    const QPointF untouched = contextOf(inputs[1])->nodePosition();
    OssSnBaseNode *port = made->createInput(text("Fresh"), OssSnDataKind::Color);
    made->createOutput(text("Late"), OssSnDataKind::Color);
    EXPECT_EQ(contextOf(inputs[0])->nodePosition(), left);
    EXPECT_EQ(contextOf(outputs[0])->nodePosition(), right);
    EXPECT_EQ(contextOf(inputs[1])->nodePosition().x(), untouched.x());
    EXPECT_NE(contextOf(port)->nodePosition(), QPointF()) << "a new one is given a place";
    expectWhole();

    // One that is opened again knows no more where it put them, but that they have places.
    reopen();
    made = qobject_cast<OssSnGroupNode *>(m_network->node(text("Group")));
    ASSERT_NE(made, nullptr);
    made->createInput(text("Later"), OssSnDataKind::Color);
    EXPECT_EQ(contextOf(made->groupNetwork()->node(input))->nodePosition(), left);
    EXPECT_EQ(contextOf(made->groupNetwork()->node(output))->nodePosition(), right);
}

TEST_F(Grouping, portsAreInTheOrderOfTheirNodesWhoeverMovesThem)
{
    OssSnGroupNode *made = group({m_nodes[2]});
    OssShaderNetwork *inside = made->groupNetwork();
    const QStringList before = made->inputNames();
    const QStringList turned{before[1], before[0]};
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();

    // By a script, which moves one node after the other.
    contextOf(inside->node(before[0]))->setNodePositionUndo(QPointF(-400.0, 900.0));
    EXPECT_EQ(made->inputNames(), turned);
    undo();
    EXPECT_EQ(made->inputNames(), before);
    EXPECT_EQ(m_project->stateHash(), start);

    // By the layout, which puts what feeds the first input of a node on top.
    OssSnBaseNode *merge = m_nodes[2];
    contextOf(inside->node(before[0]))->setNodePositionUndo(QPointF(-400.0, 900.0));
    OssUndoManager::instance()->clear();
    m_manager->beautifyNodesLayout(inside, QList<OssSnBaseNode *>{merge});
    QStringList byHeight = made->inputNames();
    const auto isAbove = [&](const QString &a, const QString &b) {
        return contextOf(inside->node(a))->nodePosition().y()
               < contextOf(inside->node(b))->nodePosition().y();
    };
    std::stable_sort(byHeight.begin(), byHeight.end(), isAbove);
    EXPECT_EQ(made->inputNames(), byHeight);
    EXPECT_EQ(made->inputNames(), before) << "the base is walked first";
}

} // namespace
