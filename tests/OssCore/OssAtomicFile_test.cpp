#include "OssCore/Documents/OssAtomicFile.h"

#include "support/FileSizeLimit.h"
#include "support/SystemCallFaults.h"
#include "support/Text.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <functional>
#include <map>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// What new files of this process may not be allowed.
class FileModeMask
{
public:
    explicit FileModeMask(mode_t mask)
        : m_before(::umask(mask))
    {
    }

    FileModeMask(const FileModeMask &) = delete;
    FileModeMask &operator=(const FileModeMask &) = delete;

    ~FileModeMask() { ::umask(m_before); }

private:
    mode_t m_before;
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
}

int modeOf(const QString &path)
{
    struct stat state = {};
    return ::stat(QFile::encodeName(path).constData(), &state) == 0 ? int(state.st_mode & 07777U)
                                                                    : -1;
}

class AtomicFileTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(text("file"));

    QString at(const char *name) const { return m_folder.filePath(text(name)); }

    int filesLeft() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size();
    }

    /// How often each system call made `act` say that it failed, while every call failed in turn.
    /// `check` looks at what is left each time.
    static std::map<std::string, int> failures(const std::function<void()> &prepare,
                                               const std::function<OssResult()> &act,
                                               const std::function<void(const OssResult &)> &check)
    {
        std::map<std::string, int> told;
        for (int number = 1;; ++number) {
            prepare();
            OssResult result;
            bool happened = false;
            std::string call;
            {
                const SystemCallFaults fault(number, EIO);
                result = act();
                happened = SystemCallFaults::happened();
                call = SystemCallFaults::failedCall();
            }
            if (!happened) {
                EXPECT_TRUE(result) << "nothing failed";
                return told;
            }
            SCOPED_TRACE("call " + std::to_string(number) + ", " + call);
            if (!result)
                ++told[call];
            check(result);
        }
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
        return OssResult::failure(text("not good"));
    });
    EXPECT_FALSE(refused);
    EXPECT_TRUE(refused.error().contains(text("not good")));
    EXPECT_EQ(contentOf(m_path), "old");
    EXPECT_EQ(filesLeft(), 1);
}

TEST_F(AtomicFileTest, everyStepOfAWriteThatCanFailIsLookedAt)
{
    const auto told = failures([this] { put(m_path, "old"); },
                               [this] { return OssAtomicFile::write(m_path, "new"); },
                               [this](const OssResult &result) {
                                   const QByteArray now = contentOf(m_path);
                                   if (result)
                                       EXPECT_EQ(now, "new") << "who says so has written it";
                                   else
                                       EXPECT_TRUE(result.error().contains(m_path));
                                   EXPECT_TRUE(now == "old" || now == "new") << now.constData();
                                   EXPECT_EQ(filesLeft(), 1);
                               });
    EXPECT_EQ(told, (std::map<std::string, int>{
                        {"write", 1}, {"fsync", 2}, {"pread", 1}, {"rename", 1}, {"open", 1}}))
        << "the content and the folder are synced; what was written is read back";
}

TEST_F(AtomicFileTest, aDiskThatKeepsOtherBytesIsNoticed)
{
    ASSERT_TRUE(OssAtomicFile::write(m_path, "old"));
    bool asked = false;
    OssResult result;
    for (int number = 1; number < 20; ++number) {
        const SystemCallFaults fault(number, SystemCallFaults::Spoil);
        result = OssAtomicFile::write(m_path, "new", [&asked](const QByteArray &) {
            asked = true;
            return OssResult();
        });
        if (std::string(SystemCallFaults::failedCall()) == "write")
            break;
        asked = false;
    }
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().contains(text("reads back differently")))
        << qPrintable(result.error());
    EXPECT_FALSE(asked) << "what is spoilt need not be looked at";
    EXPECT_EQ(filesLeft(), 1);
}

TEST_F(AtomicFileTest, interruptedCallsAreMadeOnceMore)
{
    std::map<std::string, int> interrupted;
    for (int number = 1;; ++number) {
        const QByteArray content(number, 'x');
        const SystemCallFaults fault(number, EINTR);
        const OssResult result = OssAtomicFile::write(m_path, content);
        if (!SystemCallFaults::happened())
            break;
        const std::string call = SystemCallFaults::failedCall();
        if (call != "write" && call != "pread")
            continue;
        ++interrupted[call];
        EXPECT_TRUE(result) << call << ": " << qPrintable(result.error());
        EXPECT_EQ(contentOf(m_path), content) << call;
    }
    EXPECT_EQ(interrupted, (std::map<std::string, int>{{"write", 1}, {"pread", 1}}));
}

TEST_F(AtomicFileTest, whatAKilledWriterLeftIsSweptAndNothingElse)
{
    put(m_path, "old");
    for (const char *name :
         {"file.part-1abc", "file.part-2abc", "file2.part-1abc", "file.part", "my file.part-1abc"})
        put(at(name), "half");
    // Somebody is still writing this one.
    const int busy = ::open(QFile::encodeName(at("file.part-2abc")).constData(),
                            O_RDONLY | O_CLOEXEC);
    ASSERT_GE(busy, 0);
    ASSERT_EQ(::flock(busy, LOCK_EX | LOCK_NB), 0);
    ASSERT_TRUE(OssAtomicFile::write(m_path, "new"));
    EXPECT_FALSE(QFile::exists(at("file.part-1abc")));
    for (const char *name : {"file.part-2abc", "file2.part-1abc", "file.part", "my file.part-1abc"})
        EXPECT_TRUE(QFile::exists(at(name))) << name;
    ::close(busy);
    ASSERT_TRUE(OssAtomicFile::write(m_path, "newer"));
    EXPECT_FALSE(QFile::exists(at("file.part-2abc"))) << "its writer is gone now";
}

TEST_F(AtomicFileTest, permissionsAndLinksSurvive)
{
    for (const int mode : {0600, 0640, 0664, 0755, 0444}) {
        if (mode == 0444 && ::geteuid() != 0)
            continue; // the user's wish; only root may pass over it
        put(m_path, "old");
        ASSERT_EQ(::chmod(QFile::encodeName(m_path).constData(), mode_t(mode)), 0);
        ASSERT_TRUE(OssAtomicFile::write(m_path, "new"));
        EXPECT_EQ(modeOf(m_path), mode);
        ::chmod(QFile::encodeName(m_path).constData(), 0600);
    }
    const QString link = at("link");
    ASSERT_TRUE(QFile::link(m_path, link));
    ASSERT_TRUE(OssAtomicFile::write(link, "through the link"));
    EXPECT_EQ(contentOf(m_path), "through the link");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}

TEST_F(AtomicFileTest, aNewFileGetsWhatTheUserGivesNewFiles)
{
    for (const int mask : {0022, 0027, 0077, 0002}) {
        const FileModeMask usual{mode_t(mask)};
        QFile::remove(m_path);
        ASSERT_TRUE(OssAtomicFile::write(m_path, "new"));
        EXPECT_EQ(modeOf(m_path), 0666 & ~mask);
    }
}

TEST_F(AtomicFileTest, linksToLinksAndToNothingYetStayLinks)
{
    ASSERT_TRUE(OssAtomicFile::write(m_path, "old"));
    ASSERT_TRUE(QFile::link(text("file"), at("first")));
    ASSERT_TRUE(QFile::link(at("first"), at("second")));
    ASSERT_TRUE(OssAtomicFile::write(at("second"), "new"));
    EXPECT_EQ(contentOf(m_path), "new");
    EXPECT_TRUE(QFileInfo(at("first")).isSymLink());
    EXPECT_TRUE(QFileInfo(at("second")).isSymLink());

    ASSERT_TRUE(QFile::link(at("to come"), at("early")));
    ASSERT_TRUE(OssAtomicFile::write(at("early"), "here"));
    EXPECT_EQ(contentOf(at("to come")), "here");
    EXPECT_TRUE(QFileInfo(at("early")).isSymLink());

    ASSERT_TRUE(QFile::link(at("round"), at("and")));
    ASSERT_TRUE(QFile::link(at("and"), at("round")));
    const OssResult result = OssAtomicFile::write(at("round"), "nowhere");
    EXPECT_FALSE(result) << "links that run in a circle lead nowhere";
    EXPECT_TRUE(QFileInfo(at("round")).isSymLink());
}

TEST_F(AtomicFileTest, whereNothingCanBeWrittenIsSaid)
{
    for (const char *name : {"no folder/file", "file/below"}) {
        ASSERT_TRUE(OssAtomicFile::write(m_path, "old"));
        const OssResult result = OssAtomicFile::write(at(name), "new");
        ASSERT_FALSE(result) << name;
        EXPECT_TRUE(result.error().contains(at(name))) << qPrintable(result.error());
    }
    QDir(m_folder.path()).mkdir(text("folder"));
    EXPECT_FALSE(OssAtomicFile::write(at("folder"), "new")) << "a folder is not replaced";
    EXPECT_TRUE(QFileInfo(at("folder")).isDir());
    EXPECT_EQ(filesLeft(), 1);
}

TEST_F(AtomicFileTest, contentOfAnyKindIsWrittenWhole)
{
    QByteArray large(5 << 20, Qt::Uninitialized);
    for (int i = 0; i < large.size(); ++i)
        large[i] = char(i * 7 + i / 251);
    for (const QByteArray &content : {QByteArray(), QByteArray("\0\r\n\xff", 4), large}) {
        ASSERT_TRUE(OssAtomicFile::write(m_path, content));
        EXPECT_TRUE(contentOf(m_path) == content) << content.size();
    }
}

TEST_F(AtomicFileTest, aCopyReplacesItsTargetAndLeavesTheSource)
{
    put(m_path, "source");
    put(at("copy"), "old");
    ASSERT_TRUE(OssAtomicFile::copy(m_path, at("copy")));
    EXPECT_EQ(contentOf(at("copy")), "source");
    EXPECT_EQ(contentOf(m_path), "source");
    const OssResult missing = OssAtomicFile::copy(at("gone"), at("copy"));
    ASSERT_FALSE(missing);
    EXPECT_TRUE(missing.error().contains(at("gone")));
    EXPECT_EQ(contentOf(at("copy")), "source");
}

TEST_F(AtomicFileTest, whatIsKeptUnderASecondNameStaysAsItWas)
{
    put(m_path, "first");
    ASSERT_TRUE(OssAtomicFile::keepAs(m_path, at("kept")));
    ASSERT_TRUE(OssAtomicFile::write(m_path, "second"));
    EXPECT_EQ(contentOf(at("kept")), "first");
    const OssResult taken = OssAtomicFile::keepAs(m_path, at("kept"));
    ASSERT_FALSE(taken) << "what was kept is not given up for it";
    EXPECT_TRUE(taken.error().contains(at("kept")));
    EXPECT_EQ(contentOf(at("kept")), "first");
    const OssResult gone = OssAtomicFile::keepAs(at("gone"), at("other"));
    EXPECT_FALSE(gone);
    EXPECT_TRUE(gone.error().contains(at("gone"))) << qPrintable(gone.error());
    EXPECT_FALSE(QFile::exists(at("other")));
}

TEST_F(AtomicFileTest, withoutHardLinksACopyIsKept)
{
    put(m_path, "first");
    OssResult result;
    {
        const SystemCallFaults noLinks(1, EPERM);
        result = OssAtomicFile::keepAs(m_path, at("kept"));
        ASSERT_STREQ(SystemCallFaults::failedCall(), "link");
    }
    EXPECT_TRUE(result) << qPrintable(result.error());
    EXPECT_EQ(contentOf(at("kept")), "first");
}

TEST_F(AtomicFileTest, aKeptOrMovedNameThatMayNotLastIsToldAsAFailure)
{
    const auto kept = failures(
        [this] {
            put(m_path, "old");
            QFile::remove(at("kept"));
        },
        [this] { return OssAtomicFile::keepAs(m_path, at("kept")); },
        [this](const OssResult &) { EXPECT_EQ(contentOf(m_path), "old"); });
    EXPECT_EQ(kept, (std::map<std::string, int>{{"open", 1}, {"fsync", 1}})) << "links may fail";
    const auto moved = failures(
        [this] {
            put(m_path, "old");
            QFile::remove(at("moved"));
        },
        [this] { return OssAtomicFile::move(m_path, at("moved")); },
        [this](const OssResult &) {
            EXPECT_EQ(contentOf(m_path) + contentOf(at("moved")), "old") << "in one place";
        });
    EXPECT_EQ(moved, (std::map<std::string, int>{{"rename", 1}, {"open", 1}, {"fsync", 1}}));
}

TEST_F(AtomicFileTest, movingTakesThePlaceOfAFileAndNamesTheNewOneWhenItCannot)
{
    put(m_path, "new");
    put(at("target"), "old");
    ASSERT_TRUE(OssAtomicFile::move(m_path, at("target")));
    EXPECT_EQ(contentOf(at("target")), "new");
    EXPECT_FALSE(QFile::exists(m_path));
    const OssResult nowhere = OssAtomicFile::move(at("target"), at("none/target"));
    ASSERT_FALSE(nowhere);
    EXPECT_TRUE(nowhere.error().contains(at("none/target")));
    EXPECT_EQ(contentOf(at("target")), "new");
    ASSERT_TRUE(OssAtomicFile::makeFolder(at("from/inner")));
    ASSERT_TRUE(OssAtomicFile::move(at("from"), at("to")));
    EXPECT_TRUE(QFileInfo(at("to/inner")).isDir());
}

TEST_F(AtomicFileTest, foldersAreMadeWithThoseAboveThem)
{
    for (const char *name : {"a/b/c", "a/b/c", "a/b/d/", "a/./e/../f"}) {
        const OssResult made = OssAtomicFile::makeFolder(at(name));
        ASSERT_TRUE(made) << name << ": " << qPrintable(made.error());
        EXPECT_TRUE(QFileInfo(at(name)).isDir() || QFileInfo(at("a/f")).isDir()) << name;
    }
    EXPECT_TRUE(OssAtomicFile::makeFolder(text("/")));
    const OssResult nameless = OssAtomicFile::makeFolder(QString());
    ASSERT_FALSE(nameless);
    EXPECT_TRUE(nameless.error().contains(text("without a name")));
}

TEST_F(AtomicFileTest, aFileInAFoldersPlaceIsNoFolder)
{
    put(m_path, "file");
    for (const char *name : {"file", "file/below"}) {
        const OssResult result = OssAtomicFile::makeFolder(at(name));
        ASSERT_FALSE(result) << name;
        EXPECT_TRUE(result.error().contains(m_path)) << qPrintable(result.error());
    }
    EXPECT_EQ(contentOf(m_path), "file");
}

TEST_F(AtomicFileTest, foldersThatMayNotLastAreToldAsAFailure)
{
    const auto told = failures([this] { QDir(at("a")).removeRecursively(); },
                               [this] { return OssAtomicFile::makeFolder(at("a/b")); },
                               [](const OssResult &) {});
    EXPECT_EQ(told, (std::map<std::string, int>{{"mkdir", 2}, {"open", 2}, {"fsync", 2}}));
}

TEST_F(AtomicFileTest, readingRefusesWhatIsNoFileOrTooLarge)
{
    QByteArray content;
    const auto refusal = [&content](const QString &path, qint64 maximum) {
        return OssAtomicFile::read(path, maximum, &content).error();
    };
    EXPECT_TRUE(refusal(m_path, 10).contains(text("there is no such file")));
    EXPECT_TRUE(refusal(m_folder.path(), 10).contains(text("it is not a file")));
    ASSERT_TRUE(OssAtomicFile::write(m_path, "12345678901"));
    EXPECT_TRUE(refusal(m_path, 10).contains(m_path));
    EXPECT_TRUE(content.isEmpty());
    EXPECT_TRUE(OssAtomicFile::read(m_path, 11, &content));
    EXPECT_EQ(content, "12345678901");
}

TEST_F(AtomicFileTest, halfAFileIsNeverReadAsAWholeOne)
{
    put(m_path, QByteArray(100000, 'x'));
    for (int number = 1;; ++number) {
        QByteArray content;
        const SystemCallFaults fault(number, EIO);
        const OssResult result = OssAtomicFile::read(m_path, 1 << 20, &content);
        EXPECT_TRUE(!result || content.size() == 100000) << SystemCallFaults::failedCall();
        if (!SystemCallFaults::happened())
            break;
        ASSERT_LT(number, 100);
    }
}

} // namespace
