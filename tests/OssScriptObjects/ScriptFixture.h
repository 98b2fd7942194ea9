#pragma once

#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <functional>

inline OssScriptManager *scripts()
{
    return OssScriptManager::instance();
}

/// A project and the script objects around it. A test ends without an error that it did not expect.
class ScriptFixture : public ModelFixture
{
protected:
    using Type = OssScriptException::Type;

    void SetUp() override
    {
        ModelFixture::SetUp();
        m_graph = OssScriptObject<Ossa::NodeGraph>(m_network);
        m_api = m_application->project();
        ASSERT_TRUE(m_graph && m_api);
        scripts()->clearError();
    }

    void TearDown() override
    {
        EXPECT_FALSE(scripts()->hasError()) << qPrintable(scripts()->lastError().message);
        ModelFixture::TearDown();
    }

    /// That the call before told this, in these words.
    static void expectReported(Type type, const char *message)
    {
        ExpectedLog::takePast(text(message));
        EXPECT_TRUE(scripts()->hasError()) << message;
        EXPECT_EQ(scripts()->lastError().type, type) << message;
        EXPECT_TRUE(scripts()->lastError().message.contains(text(message)))
            << message << ": " << qPrintable(scripts()->lastError().message);
        scripts()->clearError();
    }

    struct Refusal
    {
        std::function<void()> call;
        Type type;
        const char *message;
    };

    /// Each is told and leaves the document as it was.
    void expectRefused(std::initializer_list<Refusal> refusals) const
    {
        const OssScriptManager::Run quiet;
        for (const Refusal &refusal : refusals) {
            const QByteArray before = m_project->stateHash();
            refusal.call();
            expectReported(refusal.type, refusal.message);
            EXPECT_EQ(m_project->stateHash(), before) << refusal.message;
        }
    }

    static Ossa::Node *script(OssSnBaseNode *node) { return OssScriptObject<Ossa::Node>(node); }

    QString file(const char *name) const { return m_folder.filePath(text(name)); }

    Ossa::Application *const m_application = OssScriptObject<Ossa::Application>(qApp);
    Ossa::Project *m_api = nullptr;
    Ossa::NodeGraph *m_graph = nullptr;
    QTemporaryDir m_folder;
};
