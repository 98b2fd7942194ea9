#pragma once

#include "OssNodeGraph/Items/OssNgNode.h"

/// An item that says something about the graph and computes nothing: a note, or a backdrop. It has
/// a text of the user's and a colour of its own.
class OSSNODEGRAPH_EXPORT OssNgAnnotation : public OssNgNode
{
    Q_OBJECT

public:
    /// Note: what is written on it. Backdrop: a remark in its area, below the title.
    Q_INVOKABLE void setLabel(const QString &label);

    const QString &label() const { return m_label; }

    /// Invalid: the colour that such items have.
    Q_INVOKABLE void setNodeBackgroundColour(const QColor &color);

    QColor backgroundColor() const
    {
        return m_background.isValid() ? m_background : usualBackground();
    }

    QColor mainColor() const override { return backgroundColor(); }

    void copyStateFrom(const OssNgNode *other) override;

protected:
    OssNgAnnotation() = default;

    virtual QColor usualBackground() const = 0;

    /// Where detail is low: a ring around the area while the item is selected.
    void paintSimpleSelection(QPainter *painter, const QRectF &area) const;

private:
    QString m_label;
    QColor m_background;
};
