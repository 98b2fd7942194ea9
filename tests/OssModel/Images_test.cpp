#include "OssCore/Values/OssColor.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "support/ModelFixture.h"

#include <QDropEvent>
#include <QFile>
#include <QImage>
#include <QMimeData>
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

TEST_F(ImageFiles, whatCannotBeAPictureIsRefusedWithTheReason)
{
    const auto make = [this](const char *name, const QByteArray &content) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    make("empty.exr", {});
    make("notes.txt", "hello");
    // A header only, of 70000 pixels each way.
    make("vast.png",
         QByteArray::fromHex("89504e470d0a1a0a0000000d4948445200011170000111700802000000b05ca3"
                             "9c0000000b49444154789c6360c00400001400017dfe1eee0000000049454e44"
                             "ae426082"));

    const struct
    {
        const char *name;
        const char *reason;
    } cases[] = {
        {"none.png", "no such file"},        {"", "no such file"},     {"empty.exr", "empty"},
        {"notes.txt", "no kind of picture"}, {"vast.png", "too many"},
    };

    for (const auto &test : cases) {
        const QString wanted = path(test.name);
        const OssResult result = OssImageManager::check(wanted);
        EXPECT_FALSE(result) << test.name;
        EXPECT_TRUE(result.error().contains(QLatin1String(test.reason)))
            << qPrintable(result.error());
        OssDebugLog::instance()->clear();
        EXPECT_EQ(open(test.name), nullptr);
        EXPECT_TRUE(OssDebugLog::instance()->lines().isEmpty()) << "nobody asked to be told";
        EXPECT_TRUE(
            OssImageManager::instance()->open(wanted, OssImageManager::TellFailures, {}).isEmpty());
        EXPECT_TRUE(logHas(QLatin1String(test.reason))) << test.name;
    }
    EXPECT_TRUE(OssImageManager::instance()->images().isEmpty());
    OssProjectManager::instance()->closeProject();
    paint({"one.png"});
    EXPECT_EQ(open("one.png"), nullptr) << "there is no project to take it";
}

TEST_F(ImageFiles, dragsBringImagesByIdByPathOrAsFilesAndFolders)
{
    OssImageManager *images = OssImageManager::instance();
    paint({"one.png", "two.png", "row.1001.png", "row.1002.png"});
    const OssImage *one = open("one.png");
    ASSERT_NE(one, nullptr);
    const auto dropped = [images](const QMimeData &data) {
        QDropEvent event({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        const bool taken = images->processDragEvent(&event, OssImageManager::NodeGraphTarget);
        EXPECT_EQ(taken, OssImageManager::bringsImages(&data));
        EXPECT_FALSE(images->processDragEvent(&event, 0)) << "that goes elsewhere";
        const int count = images->imageCount(&data);
        QStringList names;
        for (const OssImage *image : images->dropped(&event))
            names.append(image->name());
        EXPECT_EQ(count, names.size()) << "what was promised";
        return names.join(QLatin1Char(' ')).toStdString();
    };
    QMimeData ids;
    ids.setData(OssImage::MimeType, one->uniqueId().toString().toUtf8() + ", " + QByteArray(38, 'x')
                                        + ",\n " + OssImageUniqueId::create().toString().toUtf8());
    EXPECT_EQ(dropped(ids), "one.png") << "what is not known is left out";
    ids.setUrls({QUrl::fromLocalFile(path("two.png"))});
    EXPECT_EQ(dropped(ids), "one.png") << "ids say all there is to say";
    QMimeData paths;
    paths.setData(OssImage::PathMimeType,
                  path("two.png").toUtf8() + "\n\n" + path("none.png").toUtf8() + "\n");
    {
        const ExpectedLog expected("none.png");
        EXPECT_EQ(dropped(paths), "two.png");
    }
    paths.setUrls({QUrl::fromLocalFile(path("one.png"))});
    EXPECT_EQ(dropped(paths), "one.png") << "addresses say it better";
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(m_folder.path()), QUrl::fromLocalFile(path("one.png"))});
    EXPECT_EQ(dropped(files), "one.png row.<UDIM>.png two.png");
    QMimeData nothing;
    nothing.setText(QStringLiteral("hello"));
    EXPECT_FALSE(OssImageManager::bringsImages(&nothing));
    EXPECT_FALSE(OssImageManager::bringsImages(nullptr));
    EXPECT_EQ(dropped(nothing), "");
}

TEST(DisplayColor, whatIsBrighterThanAScreenIsShownAsBrightAsItGoes)
{
    EXPECT_EQ(OssDisplayColor::ofLinear(OssColor(9.0, -3.0, 0.0, 0.5)).rgba(),
              qRgba(255, 0, 0, 128));
    EXPECT_EQ(OssDisplayColor::ofLinear(OssColor(9.0, 9.0, 9.0)).spec(), QColor::Rgb);
    EXPECT_EQ(OssDisplayColor::toLinear(QColor(255, 0, 255)), OssColor(1.0, 0.0, 1.0));
}

TEST_F(ImageFiles, actionsOfTheirMenuAreThoseThatLive)
{
    OssImageManager *images = OssImageManager::instance();
    const int before = images->globalContextMenuActions().size();
    {
        QObject action;
        images->registerGlobalContextMenuAction(&action, QStringLiteral("Title"), {});
        images->registerGlobalContextMenuAction(nullptr, QStringLiteral("None"), {});
        ASSERT_EQ(images->globalContextMenuActions().size(), before + 1);
        EXPECT_EQ(images->globalContextMenuActions().last().action.data(), &action);
    }
    EXPECT_EQ(images->globalContextMenuActions().size(), before);
}

} // namespace
