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
    m_brush.paint.secondColor = before.secondColor;
    const auto &mirrors = brush.paint.mirrors;
    if (std::find(mirrors.cbegin(), mirrors.cend(), true) == mirrors.cend())
        m_brush.paint.mirrors = before.mirrors;
    if (before.erases() && brush.paint.tool == OssEvBrush::Tool::Brush)
        m_brush.paint.tool = before.tool;
    Q_EMIT changed();
}

void Brushes::edit(const Brush &brush)
{
    m_brush = brush;
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

void Brushes::setTool(OssEvBrush::Tool tool)
{
    OssEvBrush brush = m_brush.paint;
    brush.tool = tool;
    setBrush(brush);
}

void Brushes::toggleTool(OssEvBrush::Tool tool)
{
    setTool(m_brush.paint.tool == tool ? OssEvBrush::Tool::Brush : tool);
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
    if (brush.erases())
        brush.tool = OssEvBrush::Tool::Brush;
    setBrush(brush);
}

// --- the sheet

QTransform PaintSheet::fromView(const QSizeF &view) const
{
    QTransform toView;
    toView.translate(view.width() / 2.0 + place.x(), view.height() / 2.0 + place.y());
    toView.rotate(angle);
    toView.scale(half, half);
    return toView.inverted();
}

bool Brushes::hasSheet() const
{
    return m_brush.paint.stencil
           || (m_brush.paint.picture && m_brush.paint.pictureOn == OssEvBrush::PictureOn::Sheet);
}

void Brushes::setSheet(const PaintSheet &sheet)
{
    m_sheet = sheet;
    m_sheet.half = std::clamp(sheet.half, PaintSheet::smallest, PaintSheet::largest);
    Q_EMIT changed();
}
