#include "OssCore/OssAtomicFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

namespace {

/// No file can grow beyond the limit: what a full disk does to a writer.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

class AtomicFileTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("file"));

    int filesLeft() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size();
    }
};

TEST_F(AtomicFileTest, aWriteThatFailsKeepsTheOldFileAndLeavesNoOther)
{
    ASSERT_TRUE(OssAtomicFile::write(m_path, "old"));
    {
        const FileSizeLimit full(1000);
        const OssResult result = OssAtomicFile::write(m_path, QByteArray(5000, 'x'));
        ASSERT_FALSE(result);
        EXPECT_TRUE(result.error().contains(m_path));
    }
    const OssResult refused = OssAtomicFile::write(m_path, "new", [](const QByteArray &written) {
        EXPECT_EQ(written, "new");
        return OssResult::failure(QStringLiteral("not good"));
    });
    EXPECT_FALSE(refused);
    EXPECT_EQ(contentOf(m_path), "old");
    EXPECT_EQ(filesLeft(), 1);
}

TEST_F(AtomicFileTest, permissionsAndLinksSurvive)
{
    ASSERT_TRUE(OssAtomicFile::write(m_path, "old"));
    const auto mode = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    QFile::setPermissions(m_path, mode);
    const QString link = m_folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(m_path, link));
    ASSERT_TRUE(OssAtomicFile::write(link, "new"));
    EXPECT_EQ(contentOf(m_path), "new");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(QFile::permissions(m_path) & (QFileDevice::ReadGroup | QFileDevice::ReadOther), 0);
}

TEST_F(AtomicFileTest, readingRefusesWhatIsNoFileOrTooLarge)
{
    QByteArray content;
    EXPECT_FALSE(OssAtomicFile::read(m_path, 10, &content));
    EXPECT_FALSE(OssAtomicFile::read(m_folder.path(), 10, &content));
    ASSERT_TRUE(OssAtomicFile::write(m_path, "12345678901"));
    EXPECT_FALSE(OssAtomicFile::read(m_path, 10, &content));
    EXPECT_TRUE(OssAtomicFile::read(m_path, 11, &content));
    EXPECT_EQ(content, "12345678901");
}

} // namespace
