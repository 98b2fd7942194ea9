#pragma once

#include "DocumentInvariants.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "support/ModelFixture.h"

#include <memory>

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
        m_invariants = std::make_unique<DocumentInvariants>();
    }

    void TearDown() override
    {
        expectWhole();
        m_invariants.reset();
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

    /// Whatever was done, the document and what shows it hold together.
    void expectWhole()
    {
        const QStringList broken = m_invariants->broken();
        EXPECT_TRUE(broken.isEmpty()) << qPrintable(broken.join(QLatin1Char('\n')));
    }

    std::unique_ptr<DocumentInvariants> m_invariants;
    OssSnNodeGraphViewContextManager *m_manager = nullptr;
    OssShaderNetworkView *m_view = nullptr;
};
