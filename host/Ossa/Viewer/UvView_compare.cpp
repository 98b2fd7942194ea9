#include "Ossa/Viewer/UvView.h"

#include "Ossa/Viewer/ViewerPictures.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

// A picture that was kept, left of a line that the user draws across what is looked at now.

namespace {

constexpr double grip = 5.0;   // pixels beside the line that take it
constexpr double least = 0.02; // of the width: the line stays where it can be seen
constexpr double knob = 6.0;

void drawName(QPainter *painter, QRectF plate, const QString &name)
{
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0x14, 0x15, 0x18, 200));
    painter->drawRoundedRect(plate, 4.0, 4.0);
    painter->setPen(QColor(0xe4, 0xe7, 0xec));
    painter->drawText(plate, Qt::AlignCenter, name);
}

} // namespace

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
    return isComparing() && std::abs(place.x() - wipePlace()) <= grip;
}

void UvView::moveWipe(const QPointF &place)
{
    m_wipe = std::clamp(place.x() / std::max(1, width()), least, 1.0 - least);
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

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    // Dark and light, so that it is seen on any picture.
    painter->setPen(QPen(QColor(0, 0, 0, 160), 3.0));
    painter->drawLine(QPointF(x, 0.0), QPointF(x, height()));
    painter->setPen(QPen(Qt::white, 1.0));
    painter->drawLine(QPointF(x, 0.0), QPointF(x, height()));
    painter->setBrush(Qt::white);
    painter->setPen(QPen(QColor(0, 0, 0, 160), 1.0));
    painter->drawEllipse(QPointF(x, height() / 2.0), knob, knob);
    const QFontMetricsF metrics(painter->font());
    const double line = metrics.height() + 6.0;
    const QString kept = tr("Kept: %1").arg(m_keptName);
    const double keptWidth = metrics.horizontalAdvance(kept) + 12.0;
    drawName(painter, {x - 8.0 - keptWidth, 6.0, keptWidth, line}, kept);
    drawName(painter, {x + 8.0, 6.0, metrics.horizontalAdvance(m_shownName) + 12.0, line},
             m_shownName);
    painter->restore();
}
