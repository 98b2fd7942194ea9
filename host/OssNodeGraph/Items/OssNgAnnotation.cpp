#include "OssNodeGraph/Items/OssNgAnnotation.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"

void OssNgAnnotation::setLabel(const QString &label)
{
    if (m_label == label)
        return;
    m_label = label;
    refresh();
}

void OssNgAnnotation::setNodeBackgroundColour(const QColor &color)
{
    m_background = color;
    setNodeColor(color, color);
}

void OssNgAnnotation::paintSimpleSelection(QPainter *painter, const QRectF &area) const
{
    if (isSelected())
        drawThinRing(painter, area, OssNgStyle::instance()->color(OssNgStyle::Role::Accent));
}

void OssNgAnnotation::copyStateFrom(const OssNgNode *other)
{
    const auto *annotation = qobject_cast<const OssNgAnnotation *>(other);
    if (annotation && annotation->type() == type()) {
        m_label = annotation->m_label;
        m_background = annotation->m_background;
    }
    OssNgNode::copyStateFrom(other);
}
