#include "Ossa/Painting/Brushes.h"

#include <algorithm>

void Brushes::setBrush(const OssEvBrush &brush)
{
    m_brush.paint = brush;
    Q_EMIT changed();
}

void Brushes::take(const Brush &brush)
{
    const OssEvBrush before = m_brush.paint;
    m_brush = brush;
    m_brush.paint.color = before.color;
    m_brush.paint.erases = before.erases;
    Q_EMIT changed();
}

void Brushes::scale(double factor)
{
    OssEvBrush brush = m_brush.paint;
    if (brush.sizeIn == OssEvBrush::SizeIn::World)
        brush.worldRadius *= factor;
    else
        brush.radius = std::clamp(brush.radius * factor, smallestRadius, largestRadius);
    setBrush(brush);
}

void Brushes::harden(double by)
{
    OssEvBrush brush = m_brush.paint;
    brush.hardness = std::clamp(brush.hardness + by, 0.0, 1.0);
    setBrush(brush);
}

void Brushes::setErasing(bool erases)
{
    OssEvBrush brush = m_brush.paint;
    brush.erases = erases;
    setBrush(brush);
}

void Brushes::toggleMirror(int axis)
{
    OssEvBrush brush = m_brush.paint;
    bool &mirror = brush.mirrors.at(std::size_t(axis));
    mirror = !mirror;
    setBrush(brush);
}

void Brushes::takeColor(const std::optional<OssColor> &color)
{
    if (!color)
        return;
    OssEvBrush brush = m_brush.paint;
    brush.color = {float(color->red()), float(color->green()), float(color->blue())};
    brush.erases = false;
    setBrush(brush);
}
