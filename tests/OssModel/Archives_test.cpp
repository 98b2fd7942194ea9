#include "OssCore/Documents/OssArchive.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssNodeArchive.h"
#include "OssModel/Nodes/OssSnCustomProceduralNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "support/ModelFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace {

class Archives : public ModelFixture
{
protected:
    QString file(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    static void write(const QString &path, const QByteArray &content)
    {
        QFile target(path);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(content);
    }

    OssImage *openPicture(const char *name)
    {
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(Qt::red);
        EXPECT_TRUE(picture.save(file(name)));
        const auto layers = OssImageManager::instance()->open(
            file(name), OssImageManager::GatherPatches, OssImageManager::defaultCategory());
        return layers.size() == 1 ? layers.first().image : nullptr;
    }

    QTemporaryDir m_folder;
    QList<OssSnBaseNode *> m_inserted;
};

TEST_F(Archives, partsComeBackAndTheSamePartsGiveTheSameBytes)
{
    const OssArchive::Parts parts{{QStringLiteral("a.xml"), "<a/>"},
                                  {QStringLiteral("images/ü.png"), QByteArray(100000, 'x')}};
    ASSERT_TRUE(OssArchive::write(file("one.zip"), parts));
    ASSERT_TRUE(OssArchive::write(file("two.zip"), parts));
    QFile one(file("one.zip"));
    QFile two(file("two.zip"));
    ASSERT_TRUE(one.open(QIODevice::ReadOnly) && two.open(QIODevice::ReadOnly));
    EXPECT_EQ(one.readAll(), two.readAll());
    OssArchive::Parts read;
    ASSERT_TRUE(OssArchive::read(file("one.zip"), &read));
    EXPECT_EQ(read, parts);
}

TEST_F(Archives, whatLeadsOutsideIsDamagedOrIsNoArchiveIsRefusedByName)
{
    for (const char *name : {"../up", "/root", "a/../../b", "C:/x", "a\\b"}) {
        ASSERT_TRUE(OssArchive::write(file("bad.zip"), {{QString::fromLatin1(name), "x"}}));
        OssArchive::Parts read;
        const OssResult result = OssArchive::read(file("bad.zip"), &read);
        EXPECT_FALSE(result) << name;
        EXPECT_TRUE(result.error().contains(QStringLiteral("bad.zip")));
        EXPECT_TRUE(read.isEmpty());
    }
    ASSERT_TRUE(
        OssArchive::write(file("good.zip"), {{QStringLiteral("a"), QByteArray(5000, 'q')}}));
    QFile good(file("good.zip"));
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const QByteArray bytes = good.readAll();
    OssArchive::Parts read;
    for (int size = 0; size < bytes.size(); size += 7) {
        write(file("cut.zip"), bytes.left(size));
        EXPECT_FALSE(OssArchive::read(file("cut.zip"), &read)) << size;
    }
    for (int at = 30; at < 60; ++at) {
        QByteArray damaged = bytes;
        damaged[at] = char(damaged[at] ^ 0x55);
        write(file("damaged.zip"), damaged);
        OssResult result = OssArchive::read(file("damaged.zip"), &read); // must not crash
        EXPECT_EQ(bool(result), !read.isEmpty());
    }
    write(file("text.zip"), "hello");
    EXPECT_FALSE(OssArchive::read(file("text.zip"), &read));
    EXPECT_FALSE(OssArchive::read(file("none.zip"), &read));
}

TEST_F(Archives, aMaterialComesBackWithItsImages)
{
    auto *material = qobject_cast<OssSnMaterialNode *>(add("_System/Material", "Rust"));
    ASSERT_NE(material, nullptr);
    EXPECT_TRUE(material->isValid());
    EXPECT_TRUE(material->hasOutputPoint(QStringLiteral("Material")));
    OssImage *image = openPicture("rust.1001.png");
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(image->isUdim());
    OssSnBaseNode *tiled = material->groupNetwork()->createNode(
        QStringLiteral("Procedural/Pattern/Tiled"));
    tiled->setAttribute(QStringLiteral("TileImage"), OssImageList(image->uniqueId()).toVariant());
    ASSERT_TRUE(OssNodeArchive::write(material, OssNodeArchive::Kind::Material, file("rust.oma")));

    OssProjectManager::instance()->closeProject();
    m_project = OssProjectManager::instance()->newProject(QStringLiteral("Other"));
    m_network = m_project->shadingGroups().first()->network();
    const QByteArray before = m_project->stateHash();
    ASSERT_TRUE(OssSnMaterialNode::importFromFile(m_network, file("rust.oma"), &m_inserted));
    ASSERT_EQ(m_inserted.size(), 1);
    auto *copy = qobject_cast<OssSnMaterialNode *>(m_inserted.first());
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->isValid());
    OssSnBaseNode *copied = copy->groupNetwork()->node(tiled ? QStringLiteral("Tiled") : QString());
    ASSERT_NE(copied, nullptr);
    const auto ids = OssImageList::fromVariant(copied->attribute(QStringLiteral("TileImage")))
                         .ids();
    ASSERT_EQ(ids.size(), 1);
    OssImage *unpacked = OssImageManager::instance()->getImage(ids.first());
    ASSERT_NE(unpacked, nullptr);
    EXPECT_TRUE(QFile::exists(unpacked->pathOfPatch(1001)));
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);

    EXPECT_FALSE(
        OssSnCustomProceduralNode::importFromFile(m_network, file("rust.oma"), &m_inserted));
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Archives, aGroupBecomesACustomProcedural)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Dirt"));
    OssSnBaseNode *in = group->createInput(QStringLiteral("Below"), OssSnDataKind::Color);
    OssSnBaseNode *out = group->createOutput(QStringLiteral("Result"), OssSnDataKind::Color);
    wire(in, out);
    ASSERT_TRUE(
        OssNodeArchive::write(group, OssNodeArchive::Kind::CustomProcedural, file("dirt.opc")));
    ASSERT_TRUE(
        OssSnCustomProceduralNode::importFromFile(m_network, file("dirt.opc"), &m_inserted));
    auto *closed = qobject_cast<OssSnCustomProceduralNode *>(m_inserted.value(0));
    ASSERT_NE(closed, nullptr);
    EXPECT_EQ(closed->inputNames(), group->inputNames());
    EXPECT_EQ(closed->outputNodesInside().first()->inputNode(QStringLiteral("Input")),
              closed->inputNodesInside().first());
}

TEST_F(Archives, archivesThatLieAboutTheirContentsChangeNothing)
{
    const QByteArray before = m_project->stateHash();
    const QByteArray manifest = "<ossaArchive major=\"1\" kind=\"material\" name=\"x\"/>";

    OssSnBaseNode *color = add("Procedural/Color");
    const QByteArray nodes = OssShaderNetworkIO::nodesToText({color});
    m_network->removeNodes({color});
    OssUndoManager::instance()->clear();

    const struct
    {
        OssArchive::Parts parts;
        const char *reason;
    } cases[] = {
        {{}, "lie.oma"},
        {{{QStringLiteral("manifest.xml"), "<other/>"}}, "no manifest"},
        {{{QStringLiteral("manifest.xml"), manifest}}, "lie.oma"},
        {{{QStringLiteral("manifest.xml"), manifest}, {QStringLiteral("nodes.ong"), "<x"}},
         "lie.oma"},
        {{{QStringLiteral("manifest.xml"), manifest}, {QStringLiteral("nodes.ong"), nodes}},
         "not what it says"},
        {{{QStringLiteral("manifest.xml"),
           QByteArray(manifest).replace("material", "customProcedural")},
          {QStringLiteral("nodes.ong"), nodes}},
         "holds no material"},
        {{{QStringLiteral("manifest.xml"), QByteArray(manifest).replace("\"1\"", "\"7\"")},
          {QStringLiteral("nodes.ong"), nodes}},
         "format that is not known"},
        {{{QStringLiteral("manifest.xml"), "<ossaArchive major=\"1\" kind=\"material\">"
                                           "<image id=\"../..\" name=\"a.png\"/></ossaArchive>"},
          {QStringLiteral("nodes.ong"), nodes}},
         "\"../..\" is no id of an image"},
        {{{QStringLiteral("manifest.xml"),
           "<!DOCTYPE a [<!ENTITY b \"c\">]><ossaArchive major=\"1\" kind=\"&b;\"/>"}},
         "lie.oma"},
    };

    for (const auto &test : cases) {
        ASSERT_TRUE(OssArchive::write(file("lie.oma"), test.parts));
        const OssResult result = OssSnMaterialNode::importFromFile(m_network, file("lie.oma"),
                                                                   &m_inserted);
        EXPECT_FALSE(result) << test.reason;
        EXPECT_TRUE(result.error().contains(QStringLiteral("lie.oma")))
            << qPrintable(result.error());
        EXPECT_TRUE(result.error().contains(QLatin1String(test.reason)))
            << qPrintable(result.error());
        EXPECT_TRUE(m_inserted.isEmpty());
        EXPECT_EQ(m_project->stateHash(), before);
        EXPECT_EQ(undoCount(), 0);
    }
    EXPECT_FALSE(OssSnMaterialNode::importFromFile(m_network, file("none.oma"), &m_inserted));
}

TEST_F(Archives, onlyPicturesComeOutAndAnArchiveMayComeTwice)
{
    auto *material = qobject_cast<OssSnMaterialNode *>(add("_System/Material", "Rust"));
    OssImage *image = openPicture("rust.png");
    OssSnBaseNode *tiled = material->groupNetwork()->createNode(
        QStringLiteral("Procedural/Pattern/Tiled"));
    tiled->setAttribute(QStringLiteral("TileImage"), OssImageList(image->uniqueId()).toVariant());
    ASSERT_TRUE(OssNodeArchive::write(material, OssNodeArchive::Kind::Material, file("rust.oma")));
    OssArchive::Parts parts;
    ASSERT_TRUE(OssArchive::read(file("rust.oma"), &parts));
    const QString id = image->uniqueId().toString();
    parts.insert(QStringLiteral("images/") + id + QStringLiteral("/run.sh"), "rm");
    parts.insert(QStringLiteral("elsewhere/x.png"), "x");
    parts[QStringLiteral("manifest.xml")].replace(
        "<image ",
        "<image id=\"0b5f7a52-6a0f-4f3c-9f55-0d1b8a3c2e11\" name=\"absent.png\"/><image ");
    ASSERT_TRUE(OssArchive::write(file("more.oma"), parts));
    const QString imported = OssSettings::folderPath() + QStringLiteral("/imported");
    QDir(imported).removeRecursively();
    for (int i = 0; i < 2; ++i) {
        const OssResult result = OssSnMaterialNode::importFromFile(m_network, file("more.oma"),
                                                                   &m_inserted);
        EXPECT_TRUE(result) << qPrintable(result.error());
    }
    QStringList found;
    QDirIterator files(imported, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        found.append(QFileInfo(files.next()).fileName());
    EXPECT_EQ(found, QStringList{QStringLiteral("rust.png")});

    // What it needs and what it brings is there, or nothing is.
    QDir(imported).removeRecursively();
    write(imported, "in the way");
    const QByteArray before = m_project->stateHash();
    EXPECT_FALSE(OssSnMaterialNode::importFromFile(m_network, file("more.oma"), &m_inserted));
    EXPECT_EQ(m_project->stateHash(), before);
    QFile::remove(imported);
    QFile::remove(file("rust.png"));
    const OssResult exported = OssNodeArchive::write(material, OssNodeArchive::Kind::Material,
                                                     file("gone.oma"));
    EXPECT_TRUE(exported.error().contains(file("rust.png"))) << qPrintable(exported.error());
    EXPECT_FALSE(QFile::exists(file("gone.oma")));
    EXPECT_FALSE(OssNodeArchive::write(nullptr, OssNodeArchive::Kind::Material, file("gone.oma")));
}

TEST_F(Archives, whatUnpacksToTooMuchIsRefused)
{
    const OssArchive::Parts parts{{QStringLiteral("a"), QByteArray(600, '\0')},
                                  {QStringLiteral("b"), QByteArray(400, '\0')}};
    ASSERT_TRUE(OssArchive::write(file("two.zip"), parts));
    OssArchive::Parts read;
    EXPECT_TRUE(OssArchive::read(file("two.zip"), &read, 1000));
    for (const int largest : {999, 500}) { // both together, and one by itself
        const OssResult result = OssArchive::read(file("two.zip"), &read, largest);
        EXPECT_TRUE(result.error().contains(QStringLiteral("too large")))
            << qPrintable(result.error());
        EXPECT_TRUE(read.isEmpty());
    }
}

TEST_F(Archives, picturesAreGatheredByPatchAndSavedWithTheProject)
{
    openPicture("wood.1001.png");
    openPicture("wood.1002.png");
    openPicture("single.png");
    write(file("broken.txt"), "x");
    EXPECT_EQ(OssImageManager::instance()->images().size(), 2);
    EXPECT_TRUE(OssImageManager::instance()
                    ->open(file("broken.txt"), 0, OssImageManager::defaultCategory())
                    .isEmpty());
    EXPECT_EQ(OssImageManager::instance()->images().first()->patches(), (QList<int>{1001, 1002}));
    EXPECT_EQ(OssImageManager::picturesOf({QUrl::fromLocalFile(m_folder.path())}).size(), 2);
    const OssImageUniqueId id = OssImageManager::instance()->images().first()->uniqueId();
    const QByteArray hash = m_project->stateHash();
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(file("Test.ossa")));
    ASSERT_TRUE(projects->openProject(file("Test.ossa")));
    m_project = projects->currentProject();
    EXPECT_NE(OssImageManager::instance()->getImage(id), nullptr);
    EXPECT_EQ(m_project->stateHash(), hash);
}

} // namespace
