#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

/// An image node in a project that is saved in "one" beside "pictures".
class FilePaths : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(text("one/pictures")));
        m_image = add("Misc/Image");
        ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(at("one/Wall.ossa")));
    }

    QString at(const char *path) const { return m_folder.filePath(text(path)); }

    QString file() const { return m_image->attribute(text("File")).toString(); }

    const QTemporaryDir m_folder;
    OssSnBaseNode *m_image = nullptr;
};

TEST_F(FilePaths, countFromTheFolderInWhichTheProjectLies)
{
    const QString picture = at("one/pictures/wood.exr");
    EXPECT_EQ(OssFilePath::resolved(text("pictures/wood.exr")), picture);
    EXPECT_EQ(OssFilePath::resolved(text("../one/pictures/wood.exr")), picture);
    EXPECT_EQ(OssFilePath::resolved(picture), picture);
    EXPECT_EQ(OssFilePath::resolved({}), QString());
    EXPECT_EQ(OssFilePath::shortened(picture), text("pictures/wood.exr"));
    EXPECT_EQ(OssFilePath::shortened(at("one1/wood.exr")), at("one1/wood.exr"));
    m_image->setAttribute(text("File"), text("pictures/wood.exr"));
    EXPECT_EQ(OssFilePath::valueOf(m_image->userAttribute(text("File"))).toString(), picture);
    m_image->setAttribute(text("File"), QString());
    OssProjectManager::instance()->newProject(text("New"));
    EXPECT_EQ(OssFilePath::resolved(text("wood.exr")), text("wood.exr"))
        << "there is no folder yet";
    EXPECT_EQ(OssFilePath::shortened(picture), picture);
}

TEST_F(FilePaths, goOnLeadingWhereTheyLeadWhenTheProjectIsSavedElsewhere)
{
    const QString picture = at("one/pictures/wood.exr");
    m_image->setAttribute(text("File"), text("pictures/wood.exr"));
    m_image->setLocked(true);
    auto *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(at("one/Floor.ossa")));
    EXPECT_EQ(file(), text("pictures/wood.exr"));
    const int steps = undoCount();
    const ExpectedLog expected("two", ExpectedLog::Possible);
    writeFile(at("two"));
    EXPECT_FALSE(projects->saveProjectAs(at("two/Wall.ossa"))) << "that is no folder";
    EXPECT_EQ(file(), text("pictures/wood.exr"));
    EXPECT_EQ(undoCount(), steps);
    ASSERT_TRUE(projects->saveProjectAs(at("three/Wall.ossa")));
    EXPECT_EQ(OssFilePath::resolved(file()), picture);
    EXPECT_FALSE(projects->isModified());
    ASSERT_TRUE(projects->saveProjectAs(at("Wall.ossa")));
    EXPECT_EQ(OssFilePath::resolved(file()), picture);
}

} // namespace
