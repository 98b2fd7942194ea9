#include "OssNodeGraph/Gestures/OssNgSeverGesture.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

namespace {

bool crosses(const OssNgEdge *edge, const QLineF &stroke)
{
    const QPolygonF curve = edge->path().toFillPolygon();
    // The polygon closes itself at the end; that side is no part of the wire.
    for (int i = 1; i < curve.size() - 1; ++i) {
        if (QLineF(curve[i - 1], curve[i]).intersects(stroke, nullptr)
            == QLineF::BoundedIntersection)
            return true;
    }
    return false;
}

} // namespace

OssNgSeverGesture::OssNgSeverGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                     const QPointF &start)
    : OssNgGesture(host, button)
{
    m_stroke.append(host->toScene(start));
}

int OssNgSeverGesture::state() const
{
    return OssNgGestureHost::EdgeSever;
}

void OssNgSeverGesture::move(QMouseEvent *event)
{
    const QPointF position = host()->toScene(event->localPos());
    const QLineF stroke(m_stroke.last(), position);
    m_stroke.append(position);
    markCrossed(stroke);
    host()->canvas()->update();
}

void OssNgSeverGesture::markCrossed(const QLineF &stroke) const
{
    const QVector<OssNgEdge *> edges = OssNgSceneIndex::of(host()->graphScene())
                                           ->edgesIn(QRectF(stroke.p1(), stroke.p2()).normalized());
    for (OssNgEdge *edge : edges) {
        if (edge->isFullConnected() && !edge->isVirtual() && crosses(edge, stroke))
            edge->setMark(OssNgEdge::Doomed, true);
    }
}

void OssNgSeverGesture::release(QMouseEvent *)
{
    struct Cut
    {
        QPointer<OssNgNode> destination;
        QString input;
    };

    QVector<Cut> cuts;
    for (const OssNgSceneIndex::WireEntry &entry :
         OssNgSceneIndex::of(host()->graphScene())->wireEntries()) {
        if (entry.edge && entry.edge->hasMark(OssNgEdge::Doomed))
            cuts.append({entry.edge->destination(), entry.edge->destinationInput()});
    }
    endMarks();
    host()->canvas()->update();
    if (cuts.isEmpty())
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Cut connections"));
    for (const Cut &cut : qAsConst(cuts)) {
        if (cut.destination)
            Q_EMIT cut.destination->inputSourceChanged(nullptr, cut.input, QString());
    }
}

void OssNgSeverGesture::cancel()
{
    endMarks();
    host()->canvas()->update();
}

void OssNgSeverGesture::endMarks() const
{
    QVector<OssNgEdge *> marked;
    for (const OssNgSceneIndex::WireEntry &entry :
         OssNgSceneIndex::of(host()->graphScene())->wireEntries()) {
        if (entry.edge && entry.edge->hasMark(OssNgEdge::Doomed))
            marked.append(entry.edge);
    }
    for (OssNgEdge *edge : qAsConst(marked))
        edge->setMark(OssNgEdge::Doomed, false);
}

void OssNgSeverGesture::paint(QPainter *painter) const
{
    QPolygonF shown;
    for (const QPointF &point : m_stroke)
        shown.append(host()->fromScene(point));
    QPen pen(OssNgStyle::instance()->color(OssNgStyle::Role::Error), 1.5);
    pen.setDashPattern({4.0, 3.0});
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    painter->drawPolyline(shown);
}
