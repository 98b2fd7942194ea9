#include "OssNodeGraph/View/OssNgGlide.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgRenderer.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int Duration = 150; // milliseconds
constexpr int Interval = 12;
constexpr int MostNodes = 3000;

bool gEnabled = true;

} // namespace

OssNgGlide::OssNgGlide(OssNgView *view)
    : QObject(view)
    , m_view(view)
{
    m_timer.setInterval(Interval);
    connect(&m_timer, &QTimer::timeout, this, &OssNgGlide::step);
}

void OssNgGlide::setEnabled(bool enabled)
{
    gEnabled = enabled;
}

bool OssNgGlide::isEnabled()
{
    return gEnabled;
}

void OssNgGlide::start(const Places &before)
{
    stop();
    if (!gEnabled || !m_view->isVisible() || !m_view->scene()
        || m_view->sceneIndex()->nodeCount() > MostNodes)
        return;
    for (auto place = before.cbegin(); place != before.cend(); ++place) {
        const QPointF way = place.value() - place.key()->pos();
        if (!way.isNull())
            m_ways.insert(place.key(), way);
    }
    if (m_ways.isEmpty())
        return;
    m_left = 1.0;
    m_sinceStart.start();
    m_timer.start();
    m_view->viewport()->update();
}

void OssNgGlide::stop()
{
    if (!isActive())
        return;
    m_timer.stop();
    m_ways.clear();
    m_view->viewport()->update();
}

void OssNgGlide::step()
{
    const qreal way = qreal(m_sinceStart.elapsed()) / Duration;
    if (way >= 1.0) {
        stop();
        return;
    }
    m_left = (1.0 - way) * (1.0 - way); // fast at first
    m_view->viewport()->update();
}

QPointF OssNgGlide::shiftOf(const OssNgNode *node) const
{
    return m_ways.value(node) * m_left;
}

void OssNgGlide::paintNode(QPainter *painter, const OssNgNode *node) const
{
    const QTransform world = painter->worldTransform();
    painter->translate(node->pos() + shiftOf(node));
    if (m_view->zoom() < OssNgStyle::FullDetail)
        node->paintSimple(painter);
    else
        node->paintDetailed(painter);
    painter->setWorldTransform(world);
}

void OssNgGlide::paint(QPainter *painter) const
{
    const QRectF seen = m_view->viewportInSceneCoords();
    const OssNgSceneIndex &index = *m_view->sceneIndex();
    OssNgRenderer::paintCanvas(painter, {seen}, m_view->zoom());
    std::vector<int> found;
    index.findNodes(m_view->visibleNodeBounds(), &found);
    std::sort(found.begin(), found.end(), [&index](int a, int b) {
        const auto &left = index.nodeEntry(a);
        const auto &right = index.nodeEntry(b);
        return left.z != right.z ? left.z < right.z : left.serial < right.serial;
    });
    const auto paintAll = [&](bool background) {
        for (const int slot : found) {
            const OssNgSceneIndex::NodeEntry &entry = index.nodeEntry(slot);
            if (entry.background == background
                && entry.bounds.translated(shiftOf(entry.node)).intersects(seen))
                paintNode(painter, entry.node);
        }
    };
    paintAll(true);
    for (const int slot : found) {
        const QList<OssNgEdge *> edges = index.nodeEntry(slot).node->inputs();
        for (const OssNgEdge *edge : edges) {
            if (edge->isVisible() && edge->isFullConnected())
                OssNgRenderer::paintWire(painter, *edge, m_view->zoom(), shiftOf(edge->source()),
                                         shiftOf(edge->destination()));
        }
    }
    paintAll(false);
}
