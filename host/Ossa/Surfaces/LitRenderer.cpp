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
           && a.isPainted == b.isPainted && a.border == b.border && isSame(a.scene, b.scene)
           && isSame(a.beside, b.beside);
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

void LitRenderer::tell(const QImage &picture)
{
    QMetaObject::invokeMethod(
        this, [this, picture] { Q_EMIT drawn(picture); }, Qt::QueuedConnection);
}

void LitRenderer::run()
{
    OssRdRenderer renderer;
    if (!renderer.problem().empty()) {
        QMetaObject::invokeMethod(
            this,
            [this, problem = QString::fromStdString(renderer.problem())] {
                Q_EMIT failed(problem);
            },
            Qt::QueuedConnection);
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
        if (goesOn(request))
            paintOver(&renderer, request);
        const auto [first, last] = passesOf(request);
        for (int pass = first; pass < last; ++pass) {
            if (!drawOne(&renderer, request, pass))
                break;
        }
    }
}

std::pair<int, int> LitRenderer::passesOf(const Request &request) const
{
    if (goesOn(request)) {
        const bool isSmooth = isThere(request) && m_last.isSmooth();
        return {request.isMoving ? passes : isSmooth ? 3 : 2, passes};
    }
    return {request.isMoving || m_wholeTime > blink ? 0 : 1, request.isMoving ? 1 : passes};
}

std::shared_ptr<OssEvCancel> LitRenderer::cancelOfNow()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_cancel;
}

OssRdView LitRenderer::coarseOf(const OssRdView &whole) const
{
    OssRdView view = whole;
    view.isSmooth = false;
    view.isCoarse = true;
    view.mirrorSamples = 0;
    const double height = m_coarseHeight > 0.0 ? m_coarseHeight : firstPart * view.height;
    const double least = std::max(leastPart * view.height, leastHeight);
    const double part = std::min(std::max(height, least) / view.height, 1.0);
    view.width = std::max(1, int(view.width * part));
    view.height = std::max(1, int(view.height * part));
    return view;
}

OssRdImage LitRenderer::render(OssRdRenderer *renderer, const Request &request,
                               const OssRdView &view, const OssEvCancel *cancel)
{
    const int border = int(float(view.width) * request.border);
    return request.beside
               ? renderer->renderBeside(*request.beside, border, *request.scene, view, cancel)
               : renderer->render(*request.scene, view, cancel);
}

bool LitRenderer::drawOne(OssRdRenderer *renderer, const Request &request, int pass)
{
    const std::shared_ptr<OssEvCancel> cancel = cancelOfNow();
    OssRdView view = pass == 0 ? coarseOf(request.view) : request.view;
    if (pass > 0) {
        view.isSmooth = pass > 1;
        view.isCoarse = false;
        view.mirrorSamples = pass > 2 ? restSamples : 0;
    }
    if (pass > 2 && view.shows != OssRdView::Shows::Lit)
        return false;
    QElapsedTimer spent;
    spent.start();
    OssRdImage image = render(renderer, request, view, pass > 0 ? cancel.get() : nullptr);
    if (image.isEmpty())
        return false;
    if (pass == 2 && goesOn(request))
        image = m_last.wholeOf(std::move(image));
    const QImage picture = LitPicture::shown(image, request.screen);
    learn(pass, view.height, double(spent.nsecsElapsed()) * 1e-6);
    tell(picture);
    keep(pass, request, std::move(image), picture);
    return !cancel->isCancelled();
}

void LitRenderer::learn(int pass, int height, double milliseconds)
{
    if (pass == 1)
        m_wholeTime = milliseconds;
    if (pass == 2)
        m_smoothTime = milliseconds;
    if (pass != 0)
        return;
    const double wanted = height * std::sqrt(blink / std::max(milliseconds, 0.1));
    const bool isMuchOther = wanted > m_coarseHeight * tolerance
                             || wanted * tolerance < m_coarseHeight;
    if (isMuchOther)
        m_coarseHeight = wanted;
}
