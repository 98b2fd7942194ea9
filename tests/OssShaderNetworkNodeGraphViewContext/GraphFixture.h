#pragma once

#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "support/ModelFixture.h"

/// A project whose network is shown by the node graph.
class GraphFixture : public ModelFixture
{
protected:
    void SetUp() override
    {
        m_manager = OssSnNodeGraphViewContextManager::instance();
        ModelFixture::SetUp();
        m_view = m_manager->currentView();
        ASSERT_NE(m_view, nullptr);
        m_view->window()->resize(900, 600);
    }

    void TearDown() override
    {
        expectItemsMatchModel();
        ModelFixture::TearDown();
    }

    static OssNgNode *itemOf(const OssSnBaseNode *node)
    {
        return OssSnNodeGraphViewContextManager::guiNodeOf(node);
    }

    static OssSnNodeGraphViewContext *contextOf(const OssSnBaseNode *node)
    {
        return OssSnNodeGraphViewContextManager::contextOf(node);
    }

    /// These and no others, groups included.
    void select(const QList<OssSnBaseNode *> &nodes)
    {
        const QList<OssSnBaseNode *> all = m_network->getAllNodes();
        for (OssSnBaseNode *node : all)
            node->setSelected(nodes.contains(node));
    }

    OssSnBaseNode *addAt(const char *key, const QPointF &position, const char *name = "")
    {
        OssSnBaseNode *node = add(key, name);
        contextOf(node)->setNodePosition(position);
        return node;
    }

    /// Every node has its item in its network's scene, every wire of the model exactly one edge
    /// between the right items, nothing else is there, and both sides agree on the selection.
    void expectItemsMatchModel()
    {
        QList<OssShaderNetwork *> open{m_project->shadingGroups().first()->network()};
        while (!open.isEmpty()) {
            OssShaderNetwork *network = open.takeFirst();
            QGraphicsScene *scene = m_manager->sceneForNetwork(network);
            int wires = 0;
            const QList<OssSnBaseNode *> nodes = network->nodes();
            for (OssSnBaseNode *node : nodes) {
                const OssNgNode *item = itemOf(node);
                ASSERT_NE(item, nullptr) << qPrintable(node->path());
                EXPECT_EQ(item->scene(), scene) << qPrintable(node->path());
                EXPECT_EQ(item->isSelected(), node->selected()) << qPrintable(node->path());
                EXPECT_EQ(item->inputPortNames(), node->inputNames());
                EXPECT_EQ(item->outputPortNames(), node->outputPointNames());
                for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
                    const OssNgEdge *edge = item->input(port.name);
                    ASSERT_EQ(edge != nullptr, port.source != nullptr)
                        << qPrintable(node->path()) << " " << qPrintable(port.name);
                    if (!edge)
                        continue;
                    ++wires;
                    EXPECT_EQ(edge->source(), itemOf(port.source));
                    EXPECT_EQ(edge->sourceOutput(), port.sourceOutput);
                }
                if (auto *group = qobject_cast<OssSnGroupNode *>(node))
                    open.append(group->groupNetwork());
            }
            int items = 0;
            int edges = 0;
            const QList<QGraphicsItem *> all = scene->items();
            for (QGraphicsItem *item : all) {
                items += dynamic_cast<OssNgNode *>(item) ? 1 : 0;
                edges += dynamic_cast<OssNgEdge *>(item) ? 1 : 0;
            }
            EXPECT_EQ(items, nodes.size());
            EXPECT_EQ(edges, wires);
        }
    }

    OssSnNodeGraphViewContextManager *m_manager = nullptr;
    OssShaderNetworkView *m_view = nullptr;
};
