#include "Ossa/Painting/PaintSession.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QEventLoop>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <new>

// What covers all at once, on all that are painted on.

namespace {

constexpr int tellEvery = 50; ///< milliseconds
constexpr int wholePart = 1000;

void tell(const QString &what)
{
    OssStatusManager::instance()->showMessage(what);
}

glm::vec2 vectorOf(const QPointF &point)
{
    return {float(point.x()), float(point.y())};
}

} // namespace

/// A fill on its way. It works on paint of its own, so that nothing is lost when what was painted on goes
/// away meanwhile. Its atomic members are what several threads use at once.
struct PaintSession::Fill
{
    /// Of one node.
    struct Part
    {
        PaintSession *session = nullptr;
        QPointer<OssImageSet> images;
        OssEvPaintBuffer paint;
        std::shared_ptr<OssEvPaintGround> ground;
        std::unique_ptr<OssEvStroke> stroke;
        bool follows = false; ///< the first one
    };

    std::vector<std::unique_ptr<Part>> parts;
    std::optional<OssEvStroke::Line> line;
    std::atomic<bool> isWanted{true};
    std::atomic<int> done{0}; ///< thousandths
    bool isWhole = false;
    bool isOutOfMemory = false;

    /// False when it cannot be done; the user knows why.
    bool add(PaintSession *session, const MakeStroke &make)
    {
        if (!session->makeRoom())
            return false;
        auto part = std::make_unique<Part>();
        part->session = session;
        part->images = session->m_images;
        part->paint = session->m_buffer;
        part->stroke = make(&part->paint);
        part->ground = session->m_ground;
        if (!part->stroke)
            return false;
        part->follows = !parts.empty() && parts.front()->stroke->isFollowedBy(*part->stroke);
        parts.push_back(std::move(part));
        return true;
    }

    void run()
    {
        std::vector<OssEvStroke *> followers;
        std::vector<OssEvStroke *> others;
        for (const auto &part : parts) {
            if (part->follows)
                followers.push_back(part->stroke.get());
            else if (part != parts.front())
                others.push_back(part->stroke.get());
        }
        try {
            isWhole = fill(parts.front()->stroke.get(), 0, others.size() + 1, followers);
            for (std::size_t i = 0; i < others.size() && isWhole; ++i)
                isWhole = fill(others[i], i + 1, others.size() + 1, {});
        } catch (const std::bad_alloc &) {
            isOutOfMemory = true;
        }
    }

    /// Why an image beneath could not be read.
    OssEvResult groundState() const
    {
        for (const auto &part : parts) {
            if (part->ground && !part->ground->state())
                return part->ground->state();
        }
        return {};
    }

    /// Whether nobody has painted on them meanwhile.
    bool areSame() const
    {
        return std::all_of(parts.cbegin(), parts.cend(), [](const auto &part) {
            const std::vector<OssEvStroke::Change> changes = part->stroke->changes();
            const PaintSession *session = part->session;
            return part->images && part->images == session->m_images
                   && std::all_of(changes.cbegin(), changes.cend(), [&](const auto &change) {
                          return session->m_buffer.tile(change.place) == change.before;
                      });
        });
    }

private:
    bool fill(OssEvStroke *stroke, std::size_t number, std::size_t count,
              const std::vector<OssEvStroke *> &followers)
    {
        return stroke->fill(
            line,
            [&](double part) {
                done = int((double(number) + part) / double(count) * wholePart);
                return isWanted.load();
            },
            followers);
    }
};

void PaintSession::waitFor(const std::shared_ptr<Fill> &fill)
{
    OssStatusManager::Work work(tr("Filling"), OssStatusManager::Blocking);
    const std::unique_ptr<QThread> thread(QThread::create([fill] { fill->run(); }));
    QEventLoop loop;
    connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    QTimer timer;
    connect(&timer, &QTimer::timeout, &loop, [&] {
        work.setProgress(fill->done, wholePart);
        if (work.isCancelled())
            fill->isWanted = false;
    });
    timer.start(tellEvery);
    thread->start();
    loop.exec();
    // The loop also ends when the application does.
    thread->wait();
}

bool PaintSession::fill(const PaintStart &start, const std::optional<QPointF> &end)
{
    return fillWith(start, end, [](PaintSession *session, const PaintStart &own) {
        return session->flatStroke(own);
    });
}

bool PaintSession::fillOn(const OssEvSurfaceStroke::ViewPointer &view, const PaintStart &start,
                          const std::optional<QPointF> &end)
{
    return fillWith(start, end, [view](PaintSession *session, const PaintStart &own) {
        return session->objectStroke(view, own);
    });
}

// All of them or none.
bool PaintSession::fillWith(const PaintStart &start, const std::optional<QPointF> &end,
                            const StrokeOf &strokeOf)
{
    if (!areReady())
        return false;
    OssUndoManager::AutoMacro macro(stepName());
    auto fill = std::make_shared<Fill>();
    if (end)
        fill->line = OssEvStroke::Line{vectorOf(start.place), vectorOf(*end)};
    bool isReady = fill->add(this, strokeOf(this, start));
    const std::vector<PaintSession *> others = inUse();
    for (PaintSession *along : others)
        isReady = isReady && fill->add(along, strokeOf(along, startOf(*along, start)));
    if (isReady) {
        for (const auto &part : fill->parts)
            part->session->m_isBusy = true;
        waitFor(fill);
        for (const auto &part : fill->parts)
            part->session->m_isBusy = false;
    }
    if (fill->isOutOfMemory)
        tell(tr("There is no memory left to paint"));
    const OssEvResult ground = fill->groundState();
    if (!ground)
        tell(QString::fromStdString(ground.error()));
    bool isDone = isReady && fill->isWhole && ground;
    if (isDone && !fill->areSame()) {
        tell(tr("What was filled has become another meanwhile"));
        isDone = false;
    }
    if (!isDone) {
        macro.cancel();
        return false;
    }
    for (const auto &part : fill->parts)
        part->session->takeFill(part->stroke->changes());
    return true;
}

void PaintSession::takeFill(const std::vector<OssEvStroke::Change> &changes)
{
    Tiles tiles;
    for (const OssEvStroke::Change &change : changes)
        tiles.emplace_back(change.place, change.after);
    for (const auto &[place, tile] : tiles)
        m_buffer.setTile(place, tile);
    tellTiles(tiles);
    finishStep(changes);
}
