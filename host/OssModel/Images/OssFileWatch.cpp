#include "OssModel/Images/OssFileWatch.h"

#include "OssEvaluation/Files/OssEvFileContents.h"
#include "OssEvaluation/Files/OssEvUdim.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QRunnable>

#include <algorithm>
#include <vector>

namespace {

constexpr int Quiet = 120;        // milliseconds after the last notice of a change
constexpr int LongestWait = 1000; // milliseconds after the first, while a file goes on changing
constexpr int RegularWait = 3000; // milliseconds between looks at what is not watched
constexpr int AskInterval = 10;   // milliseconds
constexpr int MostWatchedFiles = 256;

QString folderOf(const QString &path)
{
    return QFileInfo(path).absolutePath();
}

} // namespace

/// What a worker saw.
struct OssFileWatch::Look
{
    QString path;
    QString content;
    QStringList files;

    static Look at(const QString &path, OssEvFileContents *contents)
    {
        const std::string pattern = OssEvUdim::pattern(path.toStdString());
        std::vector<int> patches{0};
        if (OssEvUdim::isPattern(pattern))
            patches = OssEvUdim::patches(pattern);
        Look look{path, QLatin1String(""), {}};
        OssEvKeyBuilder whole;
        for (const int patch : patches) {
            const std::string file = patch > 0 ? OssEvUdim::file(pattern, patch) : pattern;
            const OssEvKey key = contents->of(file);
            if (key.isNull())
                continue;
            look.files.append(QString::fromStdString(file));
            whole.add(patch).add(key);
        }
        const OssEvKey key = whole.key();
        if (!look.files.isEmpty())
            look.content = QStringLiteral("%1%2").arg(key.high, 0, 36).arg(key.low, 0, 36);
        return look;
    }
};

OssFileWatch::OssFileWatch()
    : m_contents(std::make_shared<OssEvFileContents>())
    , m_watcher(this)
{
    m_worker.setMaxThreadCount(1);
    m_soon.setSingleShot(true);
    m_regular.setInterval(RegularWait);
    connect(&m_soon, &QTimer::timeout, this, &OssFileWatch::lookAtDue);
    connect(&m_regular, &QTimer::timeout, this, [this] {
        for (const QString &path : qAsConst(m_unwatched))
            m_entries[path].isDue = true;
        lookAtDue();
    });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &OssFileWatch::noteChange);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &OssFileWatch::noteChange);
}

OssFileWatch::~OssFileWatch()
{
    m_contents->giveUp();
    m_worker.clear();
    m_worker.waitForDone();
}

QString OssFileWatch::contentOf(const QString &path)
{
    if (path.isEmpty())
        return QLatin1String("");
    const auto known = m_entries.constFind(path);
    if (known != m_entries.cend())
        return known->content;
    m_entries.insert(path, {});
    m_soon.start(0);
    return {};
}

QString OssFileWatch::readContent(const QString &path) const
{
    return Look::at(path, m_contents.get()).content;
}

void OssFileWatch::forget()
{
    ++m_generation;
    m_entries.clear();
    m_unwatched.clear();
    m_regular.stop();
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    if (!watched.isEmpty())
        m_watcher.removePaths(watched);
}

// --- notices

void OssFileWatch::noteChange(const QString &path)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        if (folderOf(entry.key()) == path || entry->files.contains(path))
            entry->isDue = true;
    }
    lookSoon();
}

void OssFileWatch::lookSoon()
{
    // Whoever writes a file does so in pieces.
    if (!m_soon.isActive())
        m_sinceNotice.start();
    if (m_sinceNotice.elapsed() < LongestWait)
        m_soon.start(Quiet);
}

// --- looks

void OssFileWatch::lookAtDue()
{
    const QStringList paths = m_entries.keys();
    for (const QString &path : paths) {
        Entry &entry = m_entries[path];
        if (!entry.isDue || entry.isLookedAt)
            continue;
        entry.isDue = false;
        entry.isLookedAt = true;
        const auto look = [this, path, contents = m_contents, generation = m_generation] {
            const Look seen = Look::at(path, contents.get());
            QMetaObject::invokeMethod(
                this,
                [this, seen, generation] {
                    if (generation == m_generation)
                        take(seen);
                },
                Qt::QueuedConnection);
        };
        m_worker.start(QRunnable::create(look)); // the pool owns it
    }
}

void OssFileWatch::take(const Look &look)
{
    Entry &entry = m_entries[look.path];
    entry.isLookedAt = false;
    entry.files = look.files;
    const bool isOther = entry.content.isNull() || entry.content != look.content;
    entry.content = look.content;
    watch(look.path, look.files);
    if (entry.isDue)
        lookSoon();
    if (isOther)
        Q_EMIT changed();
}

void OssFileWatch::watch(const QString &path, const QStringList &files)
{
    QStringList wanted{folderOf(path)};
    const QStringList watched = m_watcher.files();
    const int room = std::max(0, MostWatchedFiles - watched.size());
    QStringList fresh;
    for (const QString &file : files) {
        if (!watched.contains(file))
            fresh.append(file);
    }
    wanted += fresh.mid(0, room);
    if (m_watcher.directories().contains(wanted.first()))
        wanted.removeFirst();
    const QStringList refused = wanted.isEmpty() ? QStringList() : m_watcher.addPaths(wanted);
    if (fresh.size() > room || !refused.isEmpty())
        m_unwatched.insert(path);
    else
        m_unwatched.remove(path);
    if (m_unwatched.isEmpty())
        m_regular.stop();
    else if (!m_regular.isActive())
        m_regular.start();
}

bool OssFileWatch::isSettled() const
{
    return std::none_of(m_entries.cbegin(), m_entries.cend(),
                        [](const Entry &entry) { return entry.isDue || entry.isLookedAt; });
}

void OssFileWatch::settle(const std::function<bool()> &goesOn)
{
    for (Entry &entry : m_entries)
        entry.isDue = true;
    lookAtDue();
    if (isSettled())
        return;
    QEventLoop loop;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &loop, [&] {
        if (isSettled() || !goesOn())
            loop.quit();
        else
            lookAtDue();
    });
    timer.start(AskInterval);
    loop.exec();
}
