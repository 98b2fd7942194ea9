#include "GraphFixture.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include <QTest>

#include <cmath>

namespace {

/// What is done by hand is undone and redone to the letter.
class ExactUndo : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_color = addAt("Procedural/Color", {0, 0}, "Color");
        m_blur = addAt("Filter/Blur", {300, 0}, "Blur");
        wire(m_color, m_blur);
        m_view->window()->show(); // or the view has no size of its own
        m_view->frameNodes();
        if (m_view->isSnapToGridOn())
            m_view->toggleSnapToGrid();
        m_view->onShakeToExtractEnabledChanged(true);
        m_view->onShakeToExtractShakesChanged(4);
        m_view->onShakeToExtractTimeChanged(5000);
        m_view->setCursorTrackingMode(0);
        start();
    }

    void start()
    {
        OssUndoManager::instance()->clear();
        m_start = m_project->stateHash();
    }

    QPoint at(const OssSnBaseNode *node) const
    {
        const OssNgNode *item = itemOf(node);
        return m_view->mapFromScene(item->mapToScene(item->boundingRect().center()));
    }

    void dragBy(const OssSnBaseNode *node, const QVector<QPoint> &moves) const
    {
        QWidget *viewport = m_view->viewport();
        const QPoint from = at(node);
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        for (const QPoint &move : moves) {
            QMouseEvent event(QEvent::MouseMove, QPointF(from + move),
                              viewport->mapToGlobal(from + move), Qt::NoButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(viewport, &event);
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, from + moves.last());
    }

    /// One step from the start to here and back.
    void expectOneStep()
    {
        EXPECT_EQ(undoCount(), 1);
        expectUndoIsExact(m_start);
        expectWhole();
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    QByteArray m_start;
};

TEST_F(ExactUndo, placesAreExactToTheirLastDigit)
{
    OssSnNodeGraphViewContext *context = contextOf(m_color);
    const QPointF far(100000.0, 0.0);
    const qreal next = std::nextafter(far.x(), far.x() + 1.0);
    context->setNodePosition(far);
    start();
    context->setNodePositionUndo(QPointF(next, 0.0));
    EXPECT_TRUE(itemOf(m_color)->isAt(QPointF(next, 0.0)));
    expectOneStep();

    start();
    {
        const OssUndoManager::AutoMacro there(QStringLiteral("There and nearly back"));
        context->setNodePositionUndo(QPointF(5.0, 5.0));
        context->setNodePositionUndo(QPointF(next, 0.0));
    }
    expectOneStep();
}

TEST_F(ExactUndo, aBackdropStandsAroundTheSelectionOrAtThePointer)
{
    select({m_color, m_blur});
    OssSnBaseNode *area = m_view->createNodeAt(QStringLiteral("Misc/Backdrop"), QPoint(10, 10));
    ASSERT_NE(area, nullptr);
    const QRectF around = itemOf(area)->sceneBoundingRect();
    EXPECT_TRUE(around.contains(itemOf(m_color)->sceneBoundingRect()));
    expectOneStep();
    OssNgNode *again = itemOf(m_network->node(QStringLiteral("Backdrop")));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->sceneBoundingRect(), around);

    start();
    m_view->scene()->clearSelection();
    const QPoint place = at(m_blur);
    area = m_view->createNodeAt(QStringLiteral("Misc/Backdrop"), place);
    EXPECT_EQ(itemOf(area)->scenePos().toPoint(), m_view->mapToScene(place).toPoint());
    expectOneStep();
}

TEST_F(ExactUndo, aShakeIsOneStepAndTheNodeStaysInTheHand)
{
    const OssSnBaseNode *levels = addAt("Adjust/Levels", {600, 0}, "Levels");
    wire(m_blur, m_network->node(QStringLiteral("Levels")));
    start();
    select({m_blur});
    QVector<QPoint> moves;
    for (int i = 0; i < 12; ++i) {
        for (int step = 1; step <= 4; ++step)
            moves.append(QPoint(i % 2 ? 60 - 15 * step : 15 * step, 0));
    }
    dragBy(m_blur, moves);
    EXPECT_EQ(m_blur->inputNodes().first(), nullptr);
    EXPECT_EQ(levels->inputNodes().first(), m_color);
    expectOneStep();
    while (OssUndoManager::instance()->canUndo())
        undo();
    start();
    moves.append({90, 120});
    dragBy(m_blur, moves);
    EXPECT_EQ(levels->inputNodes().first(), m_color);
    expectOneStep(); // wherever it is let go
}

TEST_F(ExactUndo, aMoveIsAStepOrLeavesEverythingWhereItWas)
{
    OssSnBaseNode *area = addAt("Misc/Backdrop", {-60, -60}, "Area");
    contextOf(area)->setNodeSize({600, 300});
    qobject_cast<OssNgBackdropNode *>(itemOf(area))->refreshChildrenList();
    start();
    m_view->resetTransform();
    m_view->scale(8, 8);
    for (OssSnBaseNode *node : {m_blur, area}) {
        m_view->centerOn(itemOf(node)->mapToScene(itemOf(node)->boundingRect().center()));
        dragBy(node, {{10, 4}, {24, 12}});
        EXPECT_EQ(undoCount(), 0);
        EXPECT_EQ(m_project->stateHash(), m_start) << qPrintable(node->name());
    }
    dragBy(m_blur, {{10, 4}, {40, 0}});
    expectOneStep();
}

TEST_F(ExactUndo, whatStandsWhereLayoutPutsItIsNoStep)
{
    OssSnBaseNode *area = addAt("Misc/Backdrop", {-60, -60}, "Area");
    contextOf(area)->setNodeSize({900, 300});
    qobject_cast<OssNgBackdropNode *>(itemOf(area))->refreshChildrenList();
    start();
    m_manager->beautifyNodesLayout(m_network);
    expectOneStep();
    start();
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(m_project->stateHash(), m_start);
}

} // namespace
