#include "OssCore/Values/OssColor.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/ModelFixture.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <functional>
#include <vector>

namespace {

/// Images of an object's shading and its geo-channels, as a document keeps them.
class ImageSets : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_shading = m_project->shadingGroups().first();
        m_entity = m_network->geoEntity();
    }

    OssImageSet *add(const char *name, const OssImageSet *like = nullptr)
    {
        return m_network->createImageSet(QString::fromLatin1(name), like, 64);
    }

    static QString pixelName(char digit)
    {
        return QString(64, QLatin1Char(digit)) + QLatin1String(".exr");
    }

    QStringList names() const
    {
        QStringList found;
        const QList<OssImageSet *> sets = m_shading->imageSets();
        for (const OssImageSet *set : sets)
            found.append(set->name());
        return found;
    }

    QString path() const { return m_folder.filePath(QStringLiteral("Sets.ossa")); }

    QByteArray document() const
    {
        QFile file(path() + QStringLiteral("/project.xml"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void overwrite(const QByteArray &text) const
    {
        QFile file(path() + QStringLiteral("/project.xml"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    /// With the images "Wall" in a node, whose name it gives, and in one of two geo-channels.
    QString saveFilled()
    {
        OssImageSet *set = add("Wall");
        set->setPixels({{1001, pixelName('a')}, {1012, pixelName('b')}});
        m_entity->addGeoImageSet(QStringLiteral("Mask"))->setImageSet(set);
        m_entity->addGeoImageSet(QStringLiteral("Empty"));
        auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
        node->setImageSet(set, true);
        EXPECT_TRUE(OssProjectManager::instance()->saveProjectAs(path()));
        return node->name();
    }

    OssResult reopen()
    {
        const OssResult opened = OssProjectManager::instance()->openProject(path());
        m_project = OssProjectManager::instance()->currentProject();
        m_shading = m_project->shadingGroups().first();
        m_network = m_project->shadingGroups().first()->network();
        m_entity = m_network->geoEntity();
        return opened;
    }

    QTemporaryDir m_folder;
    OssShadingContext *m_shading = nullptr;
    OssGeoEntity *m_entity = nullptr;
};

TEST_F(ImageSets, theyComeAndGoInOrderUnderNamesOfTheirOwn)
{
    const QByteArray start = m_project->stateHash();
    const QList<OssImageSet *> made{add("Paint"), add("Paint"), add("Paint")};
    const QStringList all{QStringLiteral("Paint"), QStringLiteral("Paint 2"),
                          QStringLiteral("Paint 3")};
    EXPECT_EQ(names(), all);
    const int steps = undoCount();
    m_shading->addImageSet(made.first()); // it is there already
    m_shading->addImageSet(nullptr);
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(names(), all);
    m_shading->removeImageSet(made.at(1));
    m_shading->removeImageSet(made.at(1)); // nothing is left to be removed
    EXPECT_EQ(undoCount(), steps + 1);
    EXPECT_EQ(names(), (QStringList{all.at(0), all.at(2)}));
    EXPECT_EQ(m_shading->findImageSet(all.at(1)), nullptr);
    EXPECT_EQ(m_shading->freeImageSetName(all.at(0)), all.at(1));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(names(), all) << "in its old place";
    OssUndoManager::instance()->redo();
    expectUndoIsExact(start);
}

TEST_F(ImageSets, settingsAreTakenOverAndChannelsSayHowFineTheyAre)
{
    OssImageSet *like = add("Like");
    like->setDepth(OssImageSet::FloatDepth);
    like->setBleed(3);
    like->setFileSpace(QStringLiteral("Raw"));
    like->setScalar(true);
    like->setFillColor(OssColor(0.25, 0.5, 0.75));
    like->setPixels({{1001, pixelName('a')}});
    OssImageSet *set = add("Set", like);
    const std::unique_ptr<OssImageSet> copy(like->duplicate(QStringLiteral("Copy")));
    for (const OssImageSet *other :
         {static_cast<const OssImageSet *>(set), static_cast<const OssImageSet *>(copy.get())}) {
        EXPECT_EQ(other->depth(), OssImageSet::FloatDepth);
        EXPECT_EQ(other->bleed(), 3);
        EXPECT_EQ(other->fileSpace(), QStringLiteral("Raw"));
        EXPECT_TRUE(other->isScalar());
        EXPECT_EQ(other->fillColor(), OssColor(0.25, 0.5, 0.75));
    }
    EXPECT_TRUE(set->pixels().isEmpty()) << "settings are no pixels";
    EXPECT_EQ(copy->pixels(), like->pixels());
    EXPECT_EQ(copy->resolution(), like->resolution());

    OssImageSet *bytes = add("Bytes");
    EXPECT_FALSE(bytes->isByteColor()) << "new ones lose nothing";
    bytes->setDepth(OssChannel::UnsignedByte);
    EXPECT_TRUE(bytes->isByteColor());
    bytes->setScalar(true);
    EXPECT_FALSE(bytes->isByteColor());
    bytes->setScalar(false);
    bytes->setDepth(OssImageSet::FloatDepth);
    EXPECT_FALSE(bytes->isByteColor());
    m_shading->setCurrentImageSet(bytes);
    ASSERT_NE(bytes->channel(), nullptr);
    EXPECT_EQ(bytes->channel()->type(), OssImageSet::FloatDepth);
    const OssChannel *channel = bytes->channel();
    bytes->channel()->setType(OssChannel::UnsignedByte);
    EXPECT_TRUE(bytes->isByteColor()) << "the channel knows better";
    m_shading->setCurrentImageSet(nullptr);
    EXPECT_EQ(m_shading->currentImageSet(), nullptr);
    m_shading->setCurrentImageSet(bytes);
    EXPECT_EQ(bytes->channel(), channel);
}

TEST_F(ImageSets, whatIsSetAsItIsMakesNoStepAndWhatIsSetAnewGoesBothWays)
{
    OssImageSet *set = add("Set");
    OssGeoImageSet *geo = m_entity->addGeoImageSet(QStringLiteral("Mask"));
    auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
    ASSERT_NE(node, nullptr);
    QSignalSpy pixels(set, &OssImageSet::pixelsChanged);
    QSignalSpy ofGeo(geo, &OssGeoImageSet::imageSetChanged);
    QSignalSpy ofObject(m_entity, &OssGeoEntity::geoImageSetsChanged);

    const struct
    {
        const char *what;
        QSignalSpy *told; ///< null: nothing is told
        std::function<void()> set;
    } cases[] = {
        {"pixels", &pixels,
         [&] {
             set->setPixels({{1001, pixelName('a')}});
         }},
        {"images of a geo-channel", &ofGeo,
         [&] {
             geo->setImageSet(set);
         }},
        {"images of a node", nullptr,
         [&] {
             node->setImageSet(set, true);
         }},
    };

    for (const auto &test : cases) {
        const QByteArray before = m_project->stateHash();
        const int steps = undoCount();
        test.set();
        EXPECT_NE(m_project->stateHash(), before) << test.what;
        test.set();
        EXPECT_EQ(undoCount(), steps + 1) << test.what;
        EXPECT_TRUE(!test.told || test.told->count() == 1) << test.what;
        const QByteArray after = m_project->stateHash();
        OssUndoManager::instance()->undo();
        EXPECT_EQ(m_project->stateHash(), before) << test.what;
        OssUndoManager::instance()->redo();
        EXPECT_EQ(m_project->stateHash(), after) << test.what;
        EXPECT_TRUE(!test.told || test.told->count() == 3) << test.what;
    }
    EXPECT_EQ(ofObject.count(), 3) << "the object tells of its geo-channels";
}

TEST_F(ImageSets, whatIsNoSizeIsNotTaken)
{
    OssImageSet set(QStringLiteral("Set"));
    set.setResolution(512);
    const ExpectedLog refused("is no resolution");
    for (const int size : {0, -5, 1000000000})
        set.setResolution(size);
    EXPECT_EQ(set.resolution(), 512);
}

TEST_F(ImageSets, geoChannelsHaveNamesOfTheirOwnAndGoBothWays)
{
    QSignalSpy told(m_entity, &OssGeoEntity::geoImageSetsChanged);
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();
    OssGeoImageSet *mask = m_entity->addGeoImageSet(QStringLiteral("Mask"));
    ASSERT_NE(mask, nullptr);
    for (const char *name : {"Mask", "", "  "})
        EXPECT_EQ(m_entity->addGeoImageSet(QString::fromLatin1(name)), nullptr) << name;
    EXPECT_EQ(m_entity->geoImageSets(), QList<OssGeoImageSet *>{mask});
    EXPECT_EQ(told.count(), 1);
    EXPECT_FALSE(mask->isValid());
    expectUndoIsExact(start);
    EXPECT_EQ(told.count(), 3);
    EXPECT_EQ(m_entity->geoImageSet(QStringLiteral("Mask")), mask);
}

TEST_F(ImageSets, documentsKeepThem)
{
    const ExpectedLog gone("The pixels");
    const QString nodeName = saveFilled();
    const QByteArray hash = m_project->stateHash();
    ASSERT_TRUE(reopen());
    EXPECT_EQ(m_project->stateHash(), hash);
    OssImageSet *set = m_shading->findImageSet(QStringLiteral("Wall"));
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->pixels().value(1012), pixelName('b'));
    EXPECT_EQ(m_entity->geoImageSet(QStringLiteral("Mask"))->imageSet(), set);
    EXPECT_FALSE(m_entity->geoImageSet(QStringLiteral("Empty"))->isValid());
    auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->node(nodeName));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->imageSet(), set);
}

TEST_F(ImageSets, documentsKeepWhatANewerProgramSaidOfThem)
{
    const ExpectedLog gone("The pixels");
    saveFilled();
    overwrite(document()
                  .replace("<pixels ", "<future keep=\"me\"/><pixels ")
                  .replace("<images ", "<future keep=\"me too\"/><images "));
    ASSERT_TRUE(reopen());
    ASSERT_TRUE(OssProjectManager::instance()->saveProject());
    EXPECT_EQ(document().count("<future keep=\"me\"/>"), 2);
    EXPECT_EQ(document().count("<future keep=\"me too\"/>"), 2);
    EXPECT_EQ(document().count("<images "), 2);
}

TEST_F(ImageSets, documentsThatLieAboutThemAreRefused)
{
    const ExpectedLog gone("The pixels");
    const QString nodeName = saveFilled();
    const QByteArray hash = m_project->stateHash();
    const QByteArray good = document();
    ASSERT_TRUE(reopen());

    const struct
    {
        QByteArray from;
        QByteArray to;
        const char *reason;
    } lies[] = {
        {"name=\"Empty\" type=\"OssGeoImageSet\"", "name=\"Mask\" type=\"OssGeoImageSet\"",
         "geo-channel"},
        {"name=\"Empty\" type=\"OssGeoImageSet\"", "name=\"\" type=\"OssGeoImageSet\"",
         "geo-channel"},
        {"name=\"Wall\" type=\"OssImageSet\"", "name=\"\" type=\"OssImageSet\"", "for images"},
        {"name=\"Wall\" type=\"OssImageSet\"",
         "name=\"" + nodeName.toUtf8() + "\" type=\"OssImageSet\"", "for images"},
        {pixelName('a').toUtf8(), "../../../etc/passwd", "cannot be the pixels"},
        {"patch=\"1001\"", "patch=\"first\"", "cannot be the pixels of patch first"},
    };

    for (const auto &lie : lies) {
        ASSERT_TRUE(good.contains(lie.from)) << lie.from.constData();
        overwrite(QByteArray(good).replace(lie.from, lie.to));
        const OssResult opened = reopen();
        EXPECT_FALSE(opened) << lie.to.constData();
        EXPECT_TRUE(opened.error().contains(QLatin1String(lie.reason)))
            << qPrintable(opened.error());
        EXPECT_EQ(m_project->stateHash(), hash);
    }
}

TEST_F(ImageSets, copiesOfUnsavedWorkNameFreshPaintAndTheStateDoesNot)
{
    OssImageSet *set = add("Wall");
    set->setPixels({{1001, pixelName('a')}});
    const QByteArray state = m_project->stateHash();
    set->setUnbakedPaint(QStringLiteral("paint-of-now"));
    EXPECT_EQ(m_project->stateHash(), state);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    ASSERT_TRUE(m_project->save(serializer, m_project->name(), {}));
    EXPECT_TRUE(buffer.data().contains("paint-of-now"));
    EXPECT_TRUE(buffer.data().contains(pixelName('a').toUtf8()));
    EXPECT_EQ(m_project->pixelFiles(), QStringList{pixelName('a')});
}

TEST_F(ImageSets, imagesThatAreGoneLeaveTheNodeWithoutAny)
{
    auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
    ASSERT_NE(node, nullptr);
    node->setImageSet(nullptr, true);
    EXPECT_EQ(node->imageSet(), nullptr);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(node->imageSet(), m_shading->imageSets().first());
    QSignalSpy refreshed(node, &OssSnBaseNode::nodeStateRefreshed);
    node->enablePropertiesBasedOnManagedByChannel();
    EXPECT_FALSE(node->isManagedByChannel());
    m_shading->setCurrentImageSet(node->imageSet());
    node->enablePropertiesBasedOnManagedByChannel();
    node->enablePropertiesBasedOnManagedByChannel();
    EXPECT_TRUE(node->isManagedByChannel());
    EXPECT_EQ(refreshed.count(), 1);
}

} // namespace
