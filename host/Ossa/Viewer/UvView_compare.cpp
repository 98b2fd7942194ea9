#include "Ossa/Viewer/UvView.h"

#include "Ossa/Viewer/ViewerPictures.h"
#include "Ossa/Viewer/WipeLine.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

// A picture that was kept, left of a line that the user draws across what is looked at now.

void UvView::keepPicture()
{
    m_kept.clear();
    const QList<int> patches = m_pictures->patches();
    for (const int patch : patches)
        m_kept.insert(patch, m_pictures->picture(patch));
    m_keptName = m_shownName;
    m_wipe = 0.5;
    update();
}

void UvView::dropKeptPicture()
{
    m_kept.clear();
    m_isWiping = false;
    showPointer();
    update();
}

void UvView::setShownName(const QString &name)
{
    m_shownName = name;
    update();
}

double UvView::wipePlace() const
{
    return std::round(m_wipe * width());
}

bool UvView::isKeptAt(const QPointF &place) const
{
    return isComparing() && place.x() < wipePlace();
}

bool UvView::isAtWipe(const QPointF &place) const
{
    return isComparing() && std::abs(place.x() - wipePlace()) <= WipeLine::grip;
}

void UvView::moveWipe(const QPointF &place)
{
    m_wipe = std::clamp(place.x() / std::max(1, width()), WipeLine::least, 1.0 - WipeLine::least);
    update();
}

void UvView::showPointer()
{
    if (m_isWiping || isAtWipe(m_last))
        setCursor(Qt::SplitHCursor);
    else if (m_isPainting)
        setCursor(Qt::CrossCursor);
    else
        unsetCursor();
}

void UvView::drawComparison(QPainter *painter) const
{
    if (!isComparing())
        return;
    const double x = wipePlace();
    painter->save();
    painter->setClipRect(QRectF(0.0, 0.0, x, height()));
    painter->fillRect(rect(), groundColor());
    QList<int> patches = m_kept.keys();
    std::sort(patches.begin(), patches.end());
    for (const int patch : qAsConst(patches))
        drawPatch(painter, patch, m_kept.value(patch));
    painter->restore();
    WipeLine::draw(painter, rect(), x, m_keptName, m_shownName);
}
