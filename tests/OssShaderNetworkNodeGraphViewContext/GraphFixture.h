#pragma once

#include "DocumentInvariants.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QTemporaryDir>

#include <memory>

/// A project whose network is shown by the node graph. Tests that have no user say so to
/// OssApplication; the next one has one again.
class GraphFixture : public ModelFixture
{
protected:
    void SetUp() override
    {
        m_popupsBefore = OssApplication::popupsAllowed();
        m_manager = OssSnNodeGraphViewContextManager::instance();
        ModelFixture::SetUp();
        m_view = m_manager->currentView();
        ASSERT_NE(m_view, nullptr);
        m_view->window()->resize(900, 600);
        m_invariants = std::make_unique<DocumentInvariants>();
    }

    void TearDown() override
    {
        OssApplication::setPopupsAllowed(m_popupsBefore);
        expectWhole();
        m_invariants.reset();
        ModelFixture::TearDown();
    }

    // --- nodes

    static OssNgNode *itemOf(const OssSnBaseNode *node)
    {
        return OssSnNodeGraphViewContextManager::guiNodeOf(node);
    }

    static OssNgBackdropNode *backdropOf(const OssSnBaseNode *node)
    {
        return qobject_cast<OssNgBackdropNode *>(itemOf(node));
    }

    /// Of its item, in the graph.
    static QRectF rectOf(const OssSnBaseNode *node) { return itemOf(node)->sceneBoundingRect(); }

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

    /// A backdrop behind that part of the graph.
    OssSnBaseNode *addArea(const QRectF &rect, const char *name = "")
    {
        OssSnBaseNode *node = addAt("Misc/Backdrop", rect.topLeft(), name);
        contextOf(node)->setNodeSize(rect.size());
        return node;
    }

    OssSnGroupNode *addGroup(const char *name = "")
    {
        return qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}, name));
    }

    static OssSnBaseNode *addInside(const OssSnGroupNode *group, const char *key,
                                    const char *name = "")
    {
        return group->groupNetwork()->createNode(text(key), text(name));
    }

    // --- files and projects

    /// In a folder that goes with the test.
    QString file(const char *name) const { return m_folder.filePath(text(name)); }

    /// The network that stands in place of the one that was.
    void take(OssProject *project)
    {
        m_project = project;
        m_network = project->shadingGroups().first()->network();
    }

    void replaceProject() { take(OssProjectManager::instance()->newProject(text("Next"))); }

    /// Saves the project under the name that it has and opens what was saved.
    void reopen()
    {
        const QString path = file("Test.ossa");
        OssProjectManager *projects = OssProjectManager::instance();
        ASSERT_TRUE(projects->saveProjectAs(path));
        ASSERT_TRUE(projects->openProject(path));
        take(projects->currentProject());
        m_view = m_manager->currentView();
    }

    // --- steps

    static void undo() { OssUndoManager::instance()->undo(); }

    static void undoAll()
    {
        while (OssUndoManager::instance()->canUndo())
            undo();
    }

    static QString undoText() { return OssUndoManager::instance()->undoText(); }

    /// Forgets the steps so far, and keeps how the document is.
    void begin()
    {
        OssUndoManager::instance()->clear();
        m_begun = m_project->stateHash();
    }

    /// Neither a step nor another document since it began.
    void expectNothingDone(const char *what = "") const
    {
        EXPECT_EQ(undoCount(), 0) << what << " made " << qPrintable(undoText());
        EXPECT_EQ(m_project->stateHash(), m_begun) << what;
    }

    /// The only one since it began.
    static void expectStep(const char *title)
    {
        EXPECT_EQ(undoCount(), 1) << title;
        EXPECT_STREQ(qPrintable(undoText()), title);
    }

    /// And it leads back to there; it is forgotten.
    void expectStepBack(const char *title)
    {
        expectStep(title);
        undo();
        EXPECT_EQ(m_project->stateHash(), m_begun) << title;
        OssUndoManager::instance()->clear();
    }

    static void expectLogged(const char *part) { EXPECT_TRUE(logHas(text(part))) << part; }

    /// Whatever was done, the document and what shows it hold together.
    void expectWhole()
    {
        const QStringList broken = m_invariants->broken();
        EXPECT_TRUE(broken.isEmpty()) << qPrintable(broken.join(QLatin1Char('\n')));
    }

    std::unique_ptr<DocumentInvariants> m_invariants;
    OssSnNodeGraphViewContextManager *m_manager = nullptr;
    OssShaderNetworkView *m_view = nullptr;

private:
    QTemporaryDir m_folder;
    QByteArray m_begun;
    bool m_popupsBefore = true;
};
