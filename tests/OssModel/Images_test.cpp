#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "support/ModelFixture.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace {

/// Image files that a project opens.
class ImageFiles : public ModelFixture
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    void paint(std::initializer_list<const char *> names)
    {
        QImage picture(4, 4, QImage::Format_RGB32);
        picture.fill(Qt::red);
        for (const char *name : names)
            ASSERT_TRUE(picture.save(path(name))) << name;
    }

    /// The image that opening the file gives; null when it is refused.
    OssImage *open(const char *name)
    {
        const auto layers = OssImageManager::instance()->open(
            path(name), OssImageManager::GatherPatches, OssImageManager::defaultCategory());
        return layers.isEmpty() ? nullptr : layers.first().image;
    }

    QTemporaryDir m_folder;
};

TEST_F(ImageFiles, patchesAreOneImageUnderAnyOfTheirNames)
{
    paint({"rust.1001.png", "rust.1003.png", "wood-1001.png", "wood-1002.png"});
    OssImage *rust = open("rust.1003.png");
    ASSERT_NE(rust, nullptr);
    EXPECT_EQ(rust->path(), path("rust.<UDIM>.png"));
    EXPECT_TRUE(rust->isUdim());
    EXPECT_EQ(rust->patches(), (QList<int>{1001, 1003}));
    EXPECT_EQ(rust->pathOfPatch(1003), path("rust.1003.png"));
    EXPECT_EQ(open("rust.<UDIM>.png"), rust);
    EXPECT_EQ(open("rust.1001.png"), rust);
    OssImage *wood = open("wood-1002.png");
    ASSERT_NE(wood, nullptr);
    EXPECT_EQ(wood->patches(), (QList<int>{1001, 1002}));
    EXPECT_EQ(open("none.<UDIM>.png"), nullptr);
}

TEST_F(ImageFiles, aNumberThatMayBeAnythingMakesNoPatches)
{
    paint({"IMG_1234.png", "IMG_1235.png"});
    OssImage *photo = open("IMG_1234.png");
    ASSERT_NE(photo, nullptr);
    EXPECT_EQ(photo->path(), path("IMG_1234.png"));
    EXPECT_FALSE(photo->isUdim());
    EXPECT_EQ(photo->patches(), QList<int>{1001});
    EXPECT_EQ(OssImageManager::picturesOf({QUrl::fromLocalFile(m_folder.path())}).size(), 2);
}

TEST_F(ImageFiles, picturesAreWhatTheDialogsOffer)
{
    const QString filter = OssImageManager::fileFilter();
    const QStringList patterns =
        filter.section(QLatin1Char('('), 1).chopped(1).split(QLatin1Char(' '));
    EXPECT_GT(patterns.size(), 10) << qPrintable(filter);
    for (const QString &pattern : patterns)
        EXPECT_TRUE(OssImageManager::isPictureFile(
            QString(pattern).replace(QLatin1Char('*'), QLatin1String("A PICTURE"))))
            << qPrintable(pattern);
    for (const char *name : {"notes.txt", "png", "folder.png/file", ""})
        EXPECT_FALSE(OssImageManager::isPictureFile(QString::fromLatin1(name))) << name;
}

} // namespace
