#include "Ossa/Surfaces/LitRenderer.h"

#include "OssRender/Draw/OssRdRenderer.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>

namespace {

constexpr int movingHeight = 320; ///< most, in pixels
constexpr int restSamples = 48;
/// Coarse, at full size, smooth, exact.
constexpr int passes = 4;

} // namespace

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
        for (int pass = request.isMoving ? 0 : 1; pass < last; ++pass) {
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
    if (pass == 0 && view.height > movingHeight) {
        view.width = std::max(1, view.width * movingHeight / view.height);
        view.height = movingHeight;
    }
    const OssRdImage image = renderer->render(*request.scene, view,
                                              pass > 0 ? cancel.get() : nullptr);
    if (image.isEmpty())
        return false;
    const QImage picture = LitPicture::shown(image, request.screen);
    later([this, picture] { Q_EMIT drawn(picture); });
    return !cancel->isCancelled();
}
