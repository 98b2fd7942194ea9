#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString Out = QStringLiteral("Output");

/// The user's folder, watched.
class OwnTypes : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        // Nothing of the folder is there when it begins.
        m_config = OssSettings::folderPath();
        qputenv("OSSA_CONFIG_DIR", m_folder.filePath(QStringLiteral("a/b")).toLocal8Bit());
        OssNodeTypeWatch::instance()->start();
        ASSERT_TRUE(OssNodeTypeWatch::makeFolder());
    }

    void TearDown() override
    {
        ModelFixture::TearDown();
        QDir(OssNodeTypeWatch::folderPath()).removeRecursively();
        OssNodeTypeWatch::instance()->start();
        EXPECT_EQ(OssShaderNetworkManager::instance()->nodeType(Key), nullptr);
        qputenv("OSSA_CONFIG_DIR", m_config.toLocal8Bit());
    }

    static void put(const char *date, const char *kernel = "blur")
    {
        writeFile(OssNodeTypeWatch::folderPath() + QStringLiteral("/mine.xml"),
                  QByteArray("<NodeType PathKey=\"My/Own\" Kernel=\"") + kernel + "\" Date=\""
                      + date
                      + "\"><Inputs><Input Name=\"Input\"/></Inputs>"
                        "<Outputs><Output Name=\"Output\"/></Outputs></NodeType>");
    }

    /// Of the type as it is known; empty: it is not.
    static bool waitForDate(const QString &date)
    {
        return QTest::qWaitFor([&date] {
            const auto type = OssShaderNetworkManager::instance()->nodeType(Key);
            return (type ? type->date : QString()) == date;
        });
    }

    inline static const QString Key = QStringLiteral("My/Own");
    QTemporaryDir m_folder;
    QString m_config;
};

TEST_F(OwnTypes, areKnownWhileTheProgramRunsAndNodesStayWhatTheyWereUntilUpgraded)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    QSignalSpy population(networks, &OssShaderNetworkManager::registeredNodePopulationChanged);
    put("2026-01-01");
    ASSERT_TRUE(waitForDate(QStringLiteral("2026-01-01")));
    EXPECT_EQ(population.count(), 1);
    OssSnBaseNode *node = add("My/Own");
    ASSERT_NE(node, nullptr);
    const QString uuid = node->versionUUID();
    EXPECT_EQ(node->versionHashPresent(), networks->hashStringForVersionUUID(uuid));

    put("2026-02-01", "invert");
    ASSERT_TRUE(waitForDate(QStringLiteral("2026-02-01")));
    EXPECT_EQ(node->nodeType()->kernel, QStringLiteral("blur"));
    EXPECT_NE(node->versionHashPresent(), networks->hashStringForVersionUUID(uuid));
    EXPECT_TRUE(networks->upgradeNode(node));
    EXPECT_EQ(node->nodeType()->kernel, QStringLiteral("invert"));
    EXPECT_EQ(node->versionHashPresent(), networks->hashStringForVersionUUID(uuid));

    QFile::remove(OssNodeTypeWatch::folderPath() + QStringLiteral("/mine.xml"));
    ASSERT_TRUE(waitForDate(QString()));
    EXPECT_EQ(node->nodeType()->kernel, QStringLiteral("invert")) << "it stays what it is";
    EXPECT_TRUE(networks->hashStringForVersionUUID(uuid).isEmpty());
    const ExpectedLog expected("My/Own");
    EXPECT_EQ(add("My/Own"), nullptr);
}

TEST_F(OwnTypes, aFaultThatStaysIsToldOnceHoweverOftenTheFolderIsRead)
{
    const ExpectedLog expected("broken.xml");
    writeFile(OssNodeTypeWatch::folderPath() + QStringLiteral("/broken.xml"), "<NodeType");
    int told = 0;
    const auto listening = QObject::connect(
        OssDebugLog::instance(), &OssDebugLog::lineAdded, [&told](const OssDebugLog::Line &line) {
            told += line.text.contains(QLatin1String("broken.xml")) ? 1 : 0;
        });
    for (int i = 0; i < 3; ++i)
        OssNodeTypeWatch::instance()->start();
    EXPECT_EQ(told, 1);
    put("2026-01-01");
    ASSERT_TRUE(waitForDate(QStringLiteral("2026-01-01")));
    EXPECT_EQ(told, 1) << "another file is new";
    QObject::disconnect(listening);
    const ExpectedLog other("worse.xml");
    const QSignalSpy shown(OssStatusManager::instance(), &OssStatusManager::messageShown);
    writeFile(OssNodeTypeWatch::folderPath() + QStringLiteral("/worse.xml"), "<NodeType");
    OssNodeTypeWatch::instance()->start();
    EXPECT_TRUE(shown.last().first().toString().contains(QLatin1String("worse.xml")));
}

/// A group with a knob, whose inside is published.
class PublishedGroups : public OwnTypes
{
protected:
    void SetUp() override
    {
        OwnTypes::SetUp();
        m_group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Soften"));
        OssSnBaseNode *in = m_group->createInput(QStringLiteral("Below"), OssSnDataKind::Scalar);
        OssSnBaseNode *out = m_group->createOutput(QStringLiteral("Result"), OssSnDataKind::Color);
        m_blur = m_group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        wire(in, m_blur);
        wire(m_blur, out);
        m_knob = m_group->createKnob(m_blur, QStringLiteral("Radius"));
        m_group->setAttribute(m_knob, 12.0);
        m_color = add("Procedural/Color");
        m_merge = add("Layer/Merge");
        wire(m_color, m_group, "Below");
        m_merge->setInputNode(QStringLiteral("Base"), m_group, QStringLiteral("Result"));
        OssUndoManager::instance()->clear();
    }

    OssResult publish(const char *name = "Own")
    {
        return OssNodeTypeWatch::instance()->publish(
            m_group, {QStringLiteral("My"), QLatin1String(name), QStringLiteral("Softly")});
    }

    static OssSnBaseNode *inside(OssSnBaseNode *group, const char *name)
    {
        return qobject_cast<OssSnGroupNode *>(group)->groupNetwork()->node(QLatin1String(name));
    }

    QString installedHash() const
    {
        return OssShaderNetworkManager::instance()->hashStringForVersionUUID(
            m_group->versionUUID());
    }

    OssSnGroupNode *m_group = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_merge = nullptr;
    QString m_knob;
};

TEST_F(PublishedGroups, areTypesWhoseNodesBeginAsTheGroupWas)
{
    const QByteArray before = m_project->stateHash();
    ASSERT_TRUE(publish());
    const auto type = OssShaderNetworkManager::instance()->nodeType(Key);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->description, QStringLiteral("Softly"));
    EXPECT_EQ(m_group->pathKey(), Key);
    EXPECT_EQ(m_group->versionHashPresent(), installedHash());
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    OssUndoManager::instance()->redo();

    const QByteArray published = m_project->stateHash();
    OssSnBaseNode *made = add("My/Own");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name(), QStringLiteral("Own"));
    EXPECT_EQ(made->inputNames(), QStringList{QStringLiteral("Below")});
    EXPECT_EQ(made->inputPorts().first().kind, OssSnDataKind::Scalar);
    ASSERT_NE(inside(made, "Blur"), nullptr);
    EXPECT_NE(inside(made, "Blur"), m_blur);
    EXPECT_EQ(inside(made, "Result")->inputNode(QStringLiteral("Input")), inside(made, "Blur"));
    EXPECT_EQ(made->versionHashPresent(), installedHash());
    made->setAttribute(m_knob, 3.0);
    EXPECT_EQ(inside(made, "Blur")->attribute(QStringLiteral("Radius")).toDouble(), 3.0);
    EXPECT_EQ(m_blur->attribute(QStringLiteral("Radius")).toDouble(), 12.0);
    EXPECT_EQ(made->versionHashPresent(), installedHash()) << "a knob is there to be turned";
    EXPECT_EQ(undoCount(), 3);
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), published);
}

TEST_F(PublishedGroups, comeWithAProjectToWhereTheTypeIsNotKnown)
{
    ASSERT_TRUE(publish());
    const QString path = m_folder.filePath(QStringLiteral("published.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    const QByteArray saved = m_project->stateHash();
    QFile::remove(OssNodeTypeWatch::filePath(Key));
    OssNodeTypeWatch::instance()->start();
    ASSERT_EQ(OssShaderNetworkManager::instance()->nodeType(Key), nullptr);
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    m_project = OssProjectManager::instance()->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    OssSnBaseNode *loaded = m_network->node(QStringLiteral("Soften"));
    ASSERT_NE(loaded, nullptr);
    ASSERT_FALSE(loaded->isPlaceholder());
    EXPECT_TRUE(loaded->errorText().isEmpty());
    EXPECT_EQ(loaded->versionHashPresent(), loaded->versionHashCreated());
    EXPECT_FALSE(loaded->versionHashPresent().isEmpty());
    EXPECT_EQ(inside(loaded, "Blur")->attribute(QStringLiteral("Radius")).toDouble(), 12.0);
    EXPECT_EQ(m_project->stateHash(), saved);
}

TEST_F(PublishedGroups, anUpgradeRenewsWhatIsInsideAndKeepsKnobsAndWires)
{
    ASSERT_TRUE(publish());
    auto *old = qobject_cast<OssSnGroupNode *>(add("My/Own"));
    ASSERT_NE(old, nullptr);
    old->setAttribute(m_knob, 5.0);
    wire(m_color, old, "Below");
    m_merge->setInputNode(QStringLiteral("Over"), old, QStringLiteral("Result"));

    OssSnBaseNode *sharpen = m_group->groupNetwork()->createNode(QStringLiteral("Filter/Sharpen"));
    wire(m_blur, sharpen);
    inside(m_group, "Result")->setInputNode(QStringLiteral("Input"), sharpen, Out);
    EXPECT_NE(m_group->versionHashPresent(), installedHash()) << "changed by hand";
    ASSERT_TRUE(publish());
    EXPECT_EQ(m_group->versionHashPresent(), installedHash());
    EXPECT_EQ(inside(old, "Sharpen"), nullptr) << "it stays what it was";
    EXPECT_NE(old->versionHashPresent(), installedHash());
    EXPECT_EQ(old->versionHashPresent(), old->versionHashCreated());

    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    QStringList lost;
    ASSERT_TRUE(OssShaderNetworkManager::instance()->upgradeNode(old, &lost));
    EXPECT_TRUE(lost.isEmpty()) << qPrintable(lost.join(QLatin1Char('\n')));
    ASSERT_NE(inside(old, "Sharpen"), nullptr);
    EXPECT_EQ(old->inputNode(QStringLiteral("Below")), m_color);
    EXPECT_EQ(old->inputPorts().first().kind, OssSnDataKind::Scalar);
    EXPECT_EQ(m_merge->inputNode(QStringLiteral("Over")), old);
    EXPECT_EQ(inside(old, "Blur")->attribute(QStringLiteral("Radius")).toDouble(), 5.0);
    old->setAttribute(m_knob, 6.0);
    EXPECT_EQ(inside(old, "Blur")->attribute(QStringLiteral("Radius")).toDouble(), 6.0);
    EXPECT_EQ(old->versionHashPresent(), installedHash());
    EXPECT_EQ(undoCount(), 2);
    OssUndoManager::instance()->undo();
    const QByteArray after = m_project->stateHash();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(m_project->stateHash(), after);
}

TEST_F(PublishedGroups, whatCannotBeATypeIsRefusedWithTheReason)
{
    const auto refusal = [this](const char *category, const char *name) {
        return OssNodeTypeWatch::instance()
            ->publish(m_group, {QLatin1String(category), QLatin1String(name), {}})
            .error();
    };
    EXPECT_TRUE(refusal("Filter", "Blur").contains(QStringLiteral("inside")));
    EXPECT_TRUE(refusal("Filter", "Warp").contains(QStringLiteral("another node type")));
    EXPECT_TRUE(refusal("My", "  ").contains(QStringLiteral("name and a category")));
    EXPECT_TRUE(refusal("_System", "Own").contains(QStringLiteral("_System")));
    EXPECT_TRUE(refusal("../..", "Own").contains(QStringLiteral("name and a category")));
    EXPECT_EQ(undoCount(), 0);
    EXPECT_FALSE(QFileInfo::exists(OssNodeTypeWatch::filePath(Key)));
}

TEST_F(OwnTypes, whatCannotBeUsedIsToldWithFileAndReason)
{
    QString told;
    const auto listening = QObject::connect(OssStatusManager::instance(),
                                            &OssStatusManager::messageShown,
                                            [&told](const QString &text) { told = text; });
    const ExpectedLog expected("mine.xml");
    writeFile(OssNodeTypeWatch::folderPath() + QStringLiteral("/mine.xml"),
              "<NodeType PathKey=\"Filter/Blur\"/>");
    EXPECT_TRUE(QTest::qWaitFor([&told] { return told.contains(QStringLiteral("mine.xml")); }));
    EXPECT_TRUE(told.contains(QStringLiteral("\"Filter/Blur\" is taken")));
    QObject::disconnect(listening);
}

} // namespace
