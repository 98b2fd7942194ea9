#pragma once

#include "OssCore/OssDebug.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssShaderNetworkManager.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"
#include "OssCoreModules/Project/OssGeoEntity.h"
#include "OssCoreModules/Project/OssProject.h"
#include "OssCoreModules/Project/OssProjectManager.h"
#include "OssCoreModules/Project/OssShadingGroup.h"

#include <gtest/gtest.h>

/// A new project with an empty network but for its viewer, and the application's node types.
class ModelFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
        if (networks->nodePathKeys().isEmpty())
            networks->loadNodeTypes(qEnvironmentVariable("OSSA_ROOT")
                                    + QStringLiteral("/host/NodeTypes"));
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

    static bool logHas(const QString &part)
    {
        const auto lines = OssDebugLog::instance()->lines();
        for (const OssDebugLog::Line &line : lines) {
            if (line.text.contains(part))
                return true;
        }
        return false;
    }

    /// Undoes everything and redoes it; the document must be what it was at both ends.
    void expectUndoIsExact(const QByteArray &start)
    {
        OssUndoManager *undo = OssUndoManager::instance();
        const QByteArray end = m_project->stateHash();
        while (undo->canUndo())
            undo->undo();
        EXPECT_EQ(m_project->stateHash(), start);
        while (undo->canRedo())
            undo->redo();
        EXPECT_EQ(m_project->stateHash(), end);
    }

    OssProject *m_project = nullptr;
    OssShaderNetwork *m_network = nullptr;
};
