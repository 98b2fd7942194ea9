#pragma once

#include "OssNodeGraph/Items/OssNgNode.h"

/// A note stuck on the canvas. Its text wraps, and the note grows downwards with it.
class OSSNODEGRAPH_EXPORT OssNgUINode : public OssNgNode
{
    Q_OBJECT

public:
    enum { Type = UserType + 13 };

    OssNgUINode();

    Q_INVOKABLE void setLabel(const QString &label);

    const QString &label() const { return m_label; }

    /// Invalid: the style's. Text is light or dark, whichever can be read on it.
    Q_INVOKABLE void setNodeBackgroundColour(const QColor &color);
    QColor backgroundColor() const;

    QColor mainColor() const override { return backgroundColor(); }

    int type() const override { return Type; }

    void paintDetailed(QPainter *painter) const override;
    void paintSimple(QPainter *painter) const override;
    void copyStateFrom(const OssNgNode *other) override;

protected:
    QSizeF layoutBody() override;

private:
    QString shownText() const;

    QString m_label;
    QColor m_background;
};
