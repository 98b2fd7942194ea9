#include "Ossa/Surfaces/LitRenderer.h"

#include "OssRender/Draw/OssRdRenderer.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

// What is painted on, laid over the last sharp picture.

namespace {

constexpr double mostSharp = 50.0; // milliseconds, of an area that is drawn sharply with each dab

/// Whether they differ in nothing but what surfaces are made of.
bool haveSameShape(const OssRdScene &a, const OssRdScene &b)
{
    const auto isSame = [](const OssRdScene::Object &one, const OssRdScene::Object &other) {
        return one.geometry == other.geometry && one.slots == other.slots;
    };
    OssRdScene bare = a;
    bare.objects = b.objects;
    return bare == b
           && std::equal(a.objects.cbegin(), a.objects.cend(), b.objects.cbegin(), b.objects.cend(),
                         isSame);
}

/// Of an area of a picture alone.
OssRdView partOf(const OssRdView &whole, const QRect &area)
{
    const float across = float(whole.width) / float(area.width());
    const float down = float(whole.height) / float(area.height());
    const float middle = (2.0F * float(area.left()) + float(area.width())) / float(whole.width)
                         - 1.0F;
    const float height = 1.0F
                         - (2.0F * float(area.top()) + float(area.height())) / float(whole.height);
    glm::mat4 enlarged(1.0F);
    enlarged[0][0] = across;
    enlarged[1][1] = down;
    enlarged[3] = {-middle * across, -height * down, 0.0F, 1.0F};
    OssRdView view = whole;
    view.width = area.width();
    view.height = area.height();
    view.projection = enlarged * whole.projection;
    return view;
}

} // namespace

bool LitRenderer::goesOn(const Request &request) const
{
    const Request &last = m_lastOf;
    const auto isSame = [](const auto &one, const auto &other) {
        return one == other || (one && other && *one == *other);
    };
    return request.isPainted && !m_last.isEmpty() && request.view == last.view
           && request.screen == last.screen && request.border == last.border
           && isSame(request.beside, last.beside) && haveSameShape(*request.scene, *last.scene);
}

bool LitRenderer::isThere(const Request &request) const
{
    return request.scene == m_lastOf.scene || *request.scene == *m_lastOf.scene;
}

void LitRenderer::keep(int pass, const Request &request, OssRdImage image, const QImage &picture)
{
    if (pass == 0)
        return;
    if (pass == 2 && goesOn(request))
        m_last.setPicture(picture);
    else if (pass > 2)
        m_last.refine(std::move(image), picture);
    else
        m_last.set(std::move(image), picture, pass == 2);
    m_lastOf = request;
}

bool LitRenderer::isSmall(const QRect &area) const
{
    const double part = double(area.width()) * area.height()
                        / (double(m_lastOf.view.width) * m_lastOf.view.height);
    return m_smoothTime * part < mostSharp;
}

void LitRenderer::paintOver(OssRdRenderer *renderer, const Request &request)
{
    const std::shared_ptr<OssEvCancel> cancel = cancelOfNow();
    OssRdView view = coarseOf(request.view);
    if (m_last.coarse().isEmpty())
        m_last.setCoarse(render(renderer, m_lastOf, view, nullptr));
    view.width = m_last.coarse().width;
    view.height = m_last.coarse().height;
    OssRdImage now = render(renderer, request, view, nullptr);
    if (now.isEmpty())
        return;
    const QRect area = m_last.changed(now);
    QImage picture = m_last.picture();
    if (!area.isEmpty()) {
        const OssRdImage part = m_last.over(now, area);
        picture = m_last.pictureWith(LitPicture::shown(part, request.screen), area, false);
    }
    tell(picture);
    const bool isSharp = area.isEmpty()
                         || (!cancel->isCancelled() && paintSharply(renderer, request, area));
    if (!isSharp)
        return;
    m_last.setCoarse(std::move(now));
    m_lastOf.scene = request.scene;
}

bool LitRenderer::paintSharply(OssRdRenderer *renderer, const Request &request, const QRect &area)
{
    if (!m_last.isSmooth() || !isSmall(area))
        return false;
    Request part = request;
    const int border = int(float(request.view.width) * request.border) - area.left();
    part.border = std::clamp((float(border) + 0.5F) / float(area.width()), 0.0F, 1.0F);
    OssRdView view = partOf(request.view, area);
    view.isSmooth = true;
    view.isCoarse = false;
    view.mirrorSamples = 0;
    const OssRdImage image = render(renderer, part, view, cancelOfNow().get());
    if (image.isEmpty())
        return false;
    const QImage shown = LitPicture::shown(m_last.take(image, area), request.screen);
    const QImage picture = m_last.pictureWith(shown, area, true);
    tell(picture);
    return true;
}
