#include "OssModel/Types/OssSnNodeType.h"

#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssModel/Types/OssSnNodeTypeLibrary.h"

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

} // namespace
