#include "OssCore/Program/OssResourceInfo.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssModel/Types/OssSnNodeTypeLibrary.h"
#include "OssModel/Types/OssSnTypeHelp.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>

namespace {

class TypeHelp : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(needNodeTypes()); }

    static const OssSnNodeType &type(const char *key)
    {
        return *OssShaderNetworkManager::instance()->nodeType(text(key));
    }

    static void put(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
};

TEST_F(TypeHelp, everyTypeSaysWhenOneUsesItAndNamesOnlyTypesThatThereAre)
{
    OssSnNodeTypeLibrary shipped; // other tests bring types of their own
    shipped.readFolder(OssResourceInfo::instance()->nodeTypePath());
    const QStringList keys = shipped.pathKeys();
    ASSERT_GT(keys.size(), 100);
    QSet<QString> pages;
    for (const QString &key : keys) {
        EXPECT_GT(OssSnTypeHelp::whenOf(key).size(), 20)
            << "Nothing says when one uses " << qPrintable(key)
            << ". Add to the file Help.md beside its description in host/NodeTypes:\n\n## "
            << qPrintable(key) << "\nWhen one uses it, in a sentence or two.\nSee: Filter/Blur\n";
        EXPECT_FALSE(pages.contains(OssSnTypeHelp::pageName(key))) << qPrintable(key);
        pages.insert(OssSnTypeHelp::pageName(key));
        for (const QString &other : OssSnTypeHelp::seeAlso(key))
            EXPECT_TRUE(keys.contains(other) && other != key)
                << "\"See:\" of " << qPrintable(key) << " in Help.md names " << qPrintable(other);
    }
    for (const QString &key : OssSnTypeHelp::writtenKeys())
        EXPECT_TRUE(keys.contains(key))
            << "Help.md has a text for " << qPrintable(key) << ", which is no node type";
}

TEST_F(TypeHelp, aPageTellsWhatTheDescriptionHas)
{
    const QString page = OssSnTypeHelp::page(type("Filter/Blur"), text("/nowhere"));
    for (const char *part :
         {"<h1>Blur</h1>", "Softens its input, across seams.", "To soften masks",
          "<td>Radius</td><td>0 to 500</td><td>8</td><td>In pixels of a patch that is 1024 wide;",
          "<td>Box, Gaussian</td><td>Gaussian</td>", "<td>Input</td><td>color</td>",
          "node-filter-bilateral.html", "soften, gauss"})
        EXPECT_TRUE(page.contains(text(part))) << part << "\n" << qPrintable(page);
    EXPECT_FALSE(page.contains(text("<img"))) << "no picture was drawn";
    const QString brief = OssSnTypeHelp::brief(type("Filter/Blur"));
    EXPECT_TRUE(brief.contains(text("To soften masks")));
    EXPECT_TRUE(brief.contains(text("across seams")));
}

TEST_F(TypeHelp, picturesAndExamplesAreShownWhereTheyLie)
{
    const QTemporaryDir manual;
    const QDir folder(manual.path());
    ASSERT_TRUE(folder.mkpath(OssSnTypeHelp::pictureFolder()));
    ASSERT_TRUE(folder.mkpath(text("examples/Blur.ossa")));
    const QString pictures = folder.filePath(OssSnTypeHelp::pictureFolder());
    for (const char *name : {"/Blur.png", "/Blur 1.png"})
        put(pictures + text(name), "x");
    put(pictures + text("/captions.json"), R"({"Blur 1.png": "Radius 40"})");
    const auto found = OssSnTypeHelp::pictures(type("Filter/Blur"), manual.path());
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found.at(0).caption, QString());
    EXPECT_EQ(found.at(1).caption, text("Radius 40"));
    const QString page = OssSnTypeHelp::page(type("Filter/Blur"), manual.path());
    EXPECT_TRUE(page.contains(text("src=\"pictures/nodes/Blur 1.png\"")));
    EXPECT_TRUE(page.contains(text("href=\"examples/Blur.ossa\"")));
}

} // namespace
