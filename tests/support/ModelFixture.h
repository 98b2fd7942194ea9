#pragma once

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QBuffer>

/// The application's node types, read once in a program: without them no project is whole.
inline void needNodeTypes()
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    if (networks->nodePathKeys().isEmpty())
        networks->loadNodeTypes(OssResourceInfo::instance()->nodeTypePath());
    ASSERT_FALSE(networks->nodePathKeys().isEmpty())
        << qPrintable(OssResourceInfo::instance()->nodeTypePath());
}

/// A new project with an empty network but for its viewer, and the application's node types.
class ModelFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(needNodeTypes());
        m_project = OssProjectManager::instance()->newProject(QStringLiteral("Test"));
        m_network = m_project->shadingGroups().first()->network();
        OssDebugLog::instance()->clear();
    }

    void TearDown() override { OssProjectManager::instance()->closeProject(); }

    OssSnBaseNode *add(const char *key, const char *name = "")
    {
        return m_network->createNode(QString::fromUtf8(key), QString::fromUtf8(name));
    }

    static bool wire(OssSnBaseNode *source, OssSnBaseNode *target, const char *input = "Input")
    {
        return target->setInputNode(QString::fromUtf8(input), source,
                                    source->prefferedOutputPoint());
    }

    static int undoCount() { return OssUndoManager::instance()->count(); }

    /// Whether a line of the log has this in it; what a test looks for is expected.
    static bool logHas(const QString &part)
    {
        ExpectedLog::takePast(part);
        const auto lines = OssDebugLog::instance()->lines();
        for (const OssDebugLog::Line &line : lines) {
            if (line.text.contains(part))
                return true;
        }
        return false;
    }

    /// What stateHash() is made of, to see where two states differ.
    QList<QByteArray> stateLines() const
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        OssSerializer serializer(&buffer);
        serializer.setCanonical(true);
        m_project->save(serializer, m_project->name(), {});
        return buffer.data().split('\n');
    }

    static void expectSame(const QList<QByteArray> &now, const QList<QByteArray> &before)
    {
        for (int i = 0; i < std::min(now.size(), before.size()); ++i)
            ASSERT_EQ(now.at(i).toStdString(), before.at(i).toStdString()) << "line " << i;
        EXPECT_EQ(now.size(), before.size());
    }

    /// Undoes everything and redoes it; the document must be what it was at both ends.
    void expectUndoIsExact(const QByteArray &start)
    {
        OssUndoManager *undo = OssUndoManager::instance();
        const QByteArray end = m_project->stateHash();
        const QList<QByteArray> lines = stateLines();
        const int index = undo->index(); // beyond it lie steps that were undone
        while (undo->canUndo())
            undo->undo();
        EXPECT_EQ(m_project->stateHash(), start);
        while (undo->index() < index)
            undo->redo();
        expectSame(stateLines(), lines);
        EXPECT_EQ(m_project->stateHash(), end);
    }

    OssProject *m_project = nullptr;
    OssShaderNetwork *m_network = nullptr;
};
