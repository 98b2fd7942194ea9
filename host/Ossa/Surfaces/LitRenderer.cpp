#include "Ossa/Surfaces/LitRenderer.h"

#include "OssRender/Draw/OssRdRenderer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace {

constexpr double blink = 25.0;    // milliseconds, of a coarse picture
constexpr double firstPart = 0.4; // of the height, of the first coarse picture
constexpr double leastPart = 1.0 / 3.0;
constexpr double leastHeight = 200.0; // pixels; of small views all
constexpr double tolerance = 1.2;     // by which sizes do not change for nothing
constexpr int restSamples = 48;
/// Coarse, at full size, smooth, exact.
constexpr int passes = 4;

} // namespace

bool operator==(const LitRenderer::Request &a, const LitRenderer::Request &b)
{
    const auto isSame = [](const auto &one, const auto &other) {
        return one == other || (one && other && *one == *other);
    };
    return a.view == b.view && a.screen == b.screen && a.isMoving == b.isMoving
           && a.border == b.border && isSame(a.scene, b.scene) && isSame(a.beside, b.beside);
}

LitRenderer::LitRenderer(QObject *parent)
    : QObject(parent)
    , m_cancel(std::make_shared<OssEvCancel>())
    , m_thread([this] { run(); })
{
}

LitRenderer::~LitRenderer()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ends = true;
        m_cancel->cancel();
    }
    m_changed.notify_all();
    m_thread.join();
}

void LitRenderer::draw(const Request &request)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_wanted.scene && m_wanted == request)
            return;
        m_wanted = request;
        m_isWanted = true;
        m_cancel->cancel();
    }
    m_changed.notify_all();
}

template <class Work>
void LitRenderer::later(Work work)
{
    QMetaObject::invokeMethod(this, work, Qt::QueuedConnection);
}

void LitRenderer::run()
{
    OssRdRenderer renderer;
    if (!renderer.problem().empty()) {
        later([this, problem = QString::fromStdString(renderer.problem())] {
            Q_EMIT failed(problem);
        });
        return;
    }
    for (;;) {
        Request request;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait(lock, [this] { return m_isWanted || m_ends; });
            if (m_ends)
                return;
            request = m_wanted;
            m_isWanted = false;
            m_cancel = std::make_shared<OssEvCancel>();
        }
        const int last = request.isMoving ? 1 : passes;
        const int first = request.isMoving || m_wholeTime > blink ? 0 : 1;
        for (int pass = first; pass < last; ++pass) {
            if (!drawOne(&renderer, request, pass))
                break;
        }
    }
}

bool LitRenderer::drawOne(OssRdRenderer *renderer, const Request &request, int pass)
{
    std::shared_ptr<OssEvCancel> cancel;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        cancel = m_cancel;
    }
    OssRdView view = request.view;
    view.isSmooth = pass > 1;
    view.isCoarse = pass == 0;
    view.mirrorSamples = pass > 2 ? restSamples : 0;
    if (pass > 2 && view.shows != OssRdView::Shows::Lit)
        return false;
    if (pass == 0) {
        const double height = m_coarseHeight > 0.0 ? m_coarseHeight : firstPart * view.height;
        const double least = std::max(leastPart * view.height, leastHeight);
        const double part = std::min(std::max(height, least) / view.height, 1.0);
        view.width = std::max(1, int(view.width * part));
        view.height = std::max(1, int(view.height * part));
    }
    QElapsedTimer spent;
    spent.start();
    const OssEvCancel *stop = pass > 0 ? cancel.get() : nullptr;
    const int border = int(float(view.width) * request.border);
    const OssRdImage image = request.beside ? renderer->renderBeside(*request.beside, border,
                                                                     *request.scene, view, stop)
                                            : renderer->render(*request.scene, view, stop);
    if (image.isEmpty())
        return false;
    const QImage picture = LitPicture::shown(image, request.screen);
    learn(pass, view.height, double(spent.nsecsElapsed()) * 1e-6);
    later([this, picture] { Q_EMIT drawn(picture); });
    return !cancel->isCancelled();
}

void LitRenderer::learn(int pass, int height, double milliseconds)
{
    if (pass == 1)
        m_wholeTime = milliseconds;
    if (pass != 0)
        return;
    const double wanted = height * std::sqrt(blink / std::max(milliseconds, 0.1));
    const bool isMuchOther = wanted > m_coarseHeight * tolerance
                             || wanted * tolerance < m_coarseHeight;
    if (isMuchOther)
        m_coarseHeight = wanted;
}
