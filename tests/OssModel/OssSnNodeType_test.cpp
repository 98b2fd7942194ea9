#include "OssModel/Types/OssSnNodeType.h"

#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssModel/Types/OssSnNodeTypeLibrary.h"
#include "support/OssaFiles.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

OssResult resultOf(const QByteArray &xml)
{
    OssResult result;
    OssSnNodeType::read(xml, QStringLiteral("T.xml"), &result);
    return result;
}

TEST(NodeType, faultyDescriptionsAreRefusedWithFileAndReason)
{
    struct Case
    {
        const char *xml;
        const char *reason;
    };

    const Case cases[] = {
        {"", "T.xml"},
        {"<Other/>", "not a NodeType"},
        {"<NodeType/>", "no PathKey"},
        {"<NodeType PathKey=\"A/B\"><Inputs><Input Kind=\"Color\"/></Inputs></NodeType>",
         "no name"},
        {"<NodeType PathKey=\"A/B\"><Inputs><Input Name=\"a\" Kind=\"Sound\"/></Inputs></NodeType>",
         "Sound"},
        {"<NodeType PathKey=\"A/B\"><Outputs><Output Name=\"a\"/><Output Name=\"a\"/></Outputs>"
         "</NodeType>",
         "there twice"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Name=\"a\" Type=\"real\" "
         "Default=\"much\"/></Attributes></NodeType>",
         "\"much\""},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Name=\"a\" Type=\"choice\" "
         "Choices=\"x,y\" Default=\"z\"/></Attributes></NodeType>",
         "none of its choices"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Name=\"a\" Type=\"sound\"/></Attributes>"
         "</NodeType>",
         "unknown type \"sound\""},
        {"<NodeType PathKey=\"A/B\"><Inputs><Input Name=\"a\"", "T.xml"},
        {"<NodeType PathKey=\"A/B\"><Inputs><Output Name=\"a\"/></Inputs></NodeType>",
         "where only \"Input\" may"},
        {"<NodeType PathKey=\"A/B\"><Inputs><Input Name=\"a\" Preferred=\"perhaps\"/></Inputs>"
         "</NodeType>",
         "neither true nor false"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Type=\"real\"/></Attributes></NodeType>",
         "no attribute name"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Name=\"a/b\" Type=\"real\"/>"
         "</Attributes></NodeType>",
         "no attribute name"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Name=\"a\" Type=\"real\"/>"
         "<Group Name=\"g\"><Attribute Name=\"a\" Type=\"real\"/></Group></Attributes></NodeType>",
         "\"a\" stands there twice"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Attribute Name=\"a\" Type=\"real\" "
         "Maximum=\"much\"/></Attributes></NodeType>",
         "is no number"},
        {"<NodeType PathKey=\"A/B\"><Attributes><Group Name=\"g\"><Group Name=\"h\"/></Group>"
         "</Attributes></NodeType>",
         "where only attributes may"},
    };
    for (const Case &bad : cases) {
        const OssResult result = resultOf(bad.xml);
        ASSERT_FALSE(result) << bad.xml;
        EXPECT_TRUE(result.error().contains(QLatin1String(bad.reason)))
            << qPrintable(result.error());
        EXPECT_TRUE(result.error().contains(QStringLiteral("T.xml")));
    }
}

TEST(NodeType, descriptionReachesLoadersWithItsContextsOnly)
{
    OssResult result;
    const auto type = OssSnNodeType::read(
        "<NodeType PathKey=\"A/B\"><Description>text</Description><Contexts><Context Type=\"X\">"
        "<Inputs><Input Name=\"a\"><Pos OriginOffset=\"3\">1,2</Pos></Input></Inputs></Context>"
        "</Contexts></NodeType>",
        QStringLiteral("T.xml"), &result);
    ASSERT_TRUE(result);
    EXPECT_EQ(type->contextsDescription,
              QStringLiteral("<NodeType><Contexts><Context Type=\"X\"><Inputs><Input Name=\"a\">"
                             "<Pos OriginOffset=\"3\">1,2</Pos></Input></Inputs></Context>"
                             "</Contexts></NodeType>"));
    EXPECT_EQ(type->versionUUID, QStringLiteral("OSS_A_B"));
}

TEST(NodeType, theApplicationsOwnTypesAreAllGood)
{
    OssSnNodeTypeLibrary library;
    const QStringList faults = library.readFolder(qEnvironmentVariable("OSSA_ROOT")
                                                  + QStringLiteral("/host/NodeTypes"));
    EXPECT_TRUE(faults.isEmpty()) << qPrintable(faults.join(QLatin1Char('\n')));
    EXPECT_GT(library.pathKeys().size(), 40);
    const QStringList keys = library.pathKeys();
    for (const QString &key : keys) {
        const auto type = library.find(key);
        EXPECT_TRUE(OssSnNodeFactory::isKnownClass(type->className)) << qPrintable(key);
        // What is offered under "Nodes" is found there by its key.
        EXPECT_TRUE(type->menuPath == key || type->menuPath.isEmpty()
                    || key.startsWith(QLatin1String("_System/")))
            << qPrintable(key);
        EXPECT_FALSE(type->description.isEmpty()) << qPrintable(key);
    }
}

TEST(NodeType, whatIsNotSaidIsAsUsual)
{
    OssResult result;
    const auto type = OssSnNodeType::read(
        "<NodeType PathKey=\"A/B c\" VersionUUID=\"mine\"><Inputs><Input Name=\"a\"/>"
        "<Input Name=\"b\" Tags=\"_hidden,_x\"/></Inputs><Tags><Tag>_internal</Tag></Tags>"
        "</NodeType>",
        QStringLiteral("T.xml"), &result);
    ASSERT_TRUE(result) << qPrintable(result.error());
    EXPECT_EQ(type->versionUUID, QStringLiteral("mine"));
    EXPECT_EQ(type->contextsDescription, QStringLiteral("<NodeType/>"));
    EXPECT_TRUE(type->inputs.at(0).tags.isEmpty());
    EXPECT_EQ(type->inputs.at(1).tags,
              (QStringList{QStringLiteral("_hidden"), QStringLiteral("_x")}));
    EXPECT_EQ(type->menuPath, QStringLiteral("A/B c"));
    EXPECT_EQ(type->baseName(), QStringLiteral("B c"));
    EXPECT_TRUE(type->tags.contains(QStringLiteral("_internal")));
}

TEST(NodeTypeLibrary, oneThatCannotBeReadIsToldAndTheOthersAreThere)
{
    const QTemporaryDir folder;
    for (const char *name : {"a.xml", "b.xml", "c.txt"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        if (name != std::string("a.xml"))
            file.write(QByteArray("<NodeType PathKey=\"A/") + name + "\"/>");
    }
    OssSnNodeTypeLibrary library;
    const QStringList faults = library.readFolder(folder.path());
    ASSERT_EQ(faults.size(), 1);
    EXPECT_TRUE(faults.first().contains(QStringLiteral("a.xml")));
    EXPECT_EQ(library.pathKeys(), QStringList{QStringLiteral("A/b.xml")});
    EXPECT_FALSE(library.add(nullptr));
}

TEST(NodeTypeLibrary, aTakenKeyIsToldAndTheFirstStays)
{
    const QTemporaryDir folder;
    for (const char *name : {"a.xml", "b.xml"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("<NodeType PathKey=\"A/B\" Kernel=\"") + name + "\"/>");
    }
    OssSnNodeTypeLibrary library;
    const QStringList faults = library.readFolder(folder.path());
    ASSERT_EQ(faults.size(), 1);
    EXPECT_TRUE(faults.first().contains(QStringLiteral("b.xml")));
    EXPECT_EQ(library.find(QStringLiteral("A/B"))->kernel, QStringLiteral("a.xml"));
}

/// A folder whose types come and go beside one that is installed.
class ChangingTypes : public testing::Test
{
protected:
    ChangingTypes()
    {
        OssResult result;
        m_library.add(OssSnNodeType::read("<NodeType PathKey=\"A/Installed\"/>",
                                          QStringLiteral("t"), &result));
    }

    /// Empty: no file.
    void put(const char *file, const QByteArray &attributes)
    {
        const QString path = m_folder.filePath(QString::fromLatin1(file));
        if (attributes.isEmpty())
            QFile::remove(path);
        else
            writeFile(path, "<NodeType " + attributes + "</NodeType>");
    }

    /// "+" new, "~" changed, "-" gone, "!" refused and why.
    QString read()
    {
        OssSnNodeTypeLibrary::Changes changes;
        const QStringList faults = m_library.readChangingFolder(m_folder.path(), &changes);
        QStringList words;
        for (const QString &key : qAsConst(changes.added))
            words.append(QLatin1Char('+') + key);
        for (const QString &key : qAsConst(changes.changed))
            words.append(QLatin1Char('~') + key);
        for (const QString &key : qAsConst(changes.removed))
            words.append(QLatin1Char('-') + key);
        for (QString fault : faults)
            words.append(QLatin1Char('!') + fault.remove(m_folder.path() + QLatin1Char('/')));
        EXPECT_EQ(changes.isEmpty(), words.size() == faults.size());
        return words.join(QLatin1Char(' '));
    }

    OssSnNodeTypeLibrary::TypePointer find(const char *key) const
    {
        return m_library.find(QString::fromLatin1(key));
    }

    QTemporaryDir m_folder;
    OssSnNodeTypeLibrary m_library;
};

TEST_F(ChangingTypes, comeChangeAndGoAndStayTheSameWhereNothingChanged)
{
    put("a.xml", "PathKey=\"My/A\">");
    put("b.xml", "PathKey=\"My/B\">");
    EXPECT_EQ(read().toStdString(), "+My/A +My/B");
    const auto before = find("My/A");
    const auto other = find("My/B");
    EXPECT_EQ(read().toStdString(), "");
    put("a.xml", "PathKey=\"My/A\" Date=\"2026-11-01\">");
    EXPECT_EQ(read().toStdString(), "~My/A");
    EXPECT_NE(find("My/A"), before);
    EXPECT_EQ(m_library.findByVersion(find("My/A")->versionUUID), find("My/A"));
    EXPECT_EQ(find("My/B"), other);
    put("a.xml", {});
    EXPECT_EQ(read().toStdString(), "-My/A");
    EXPECT_EQ(find("My/A"), nullptr);
    EXPECT_EQ(m_library.findByVersion(before->versionUUID), nullptr);
    EXPECT_NE(find("A/Installed"), nullptr);
    put("b.xml", "PathKey=\"My/C\">");
    EXPECT_EQ(read().toStdString(), "+My/C -My/B");
}

TEST_F(ChangingTypes, takeNoPlaceOfOthersOrOfTheApplication)
{
    put("1.xml", "PathKey=\"A/Installed\">");
    put("2.xml", "PathKey=\"_System/Viewer\">");
    put("3.xml", "PathKey=\"My/C\"><Tags><Tag>_viewer</Tag></Tags>");
    put("4.xml", "PathKey=\"My/D\" VersionUUID=\"OSS_A_Installed\">");
    put("5.xml", "PathKey=\"My/E\">");
    put("6.xml", "PathKey=\"My/E\">");
    put("7.xml", "PathKey=\"My/F\" VersionUUID=\"OSS_My_E\">");
    put("8.xml", "Path=\"My/G\">");
    const QString told = read();
    EXPECT_TRUE(told.startsWith(QStringLiteral("+My/E "))) << qPrintable(told);
    EXPECT_EQ(told.count(QLatin1Char('!')), 7) << qPrintable(told);
    for (const char *reason :
         {"1.xml\": the key \"A/Installed\" is taken", "the application's own",
          "3.xml\": the tag \"_viewer\"", "4.xml\": the version id \"OSS_A_Installed\"",
          "6.xml\": the key \"My/E\"", "7.xml\": the version id", "8.xml"})
        EXPECT_TRUE(told.contains(QString::fromLatin1(reason))) << reason << qPrintable(told);
}

} // namespace
