#pragma once

#include "OssNodeGraph/Items/OssNgAnnotation.h"

/// A note stuck on the canvas. Its text wraps, and the note grows downwards with it. Text is light
/// or dark, whichever can be read on the colour.
class OSSNODEGRAPH_EXPORT OssNgUINode : public OssNgAnnotation
{
    Q_OBJECT

public:
    enum { Type = UserType + 13 };

    OssNgUINode();

    int type() const override { return Type; }

    void paintDetailed(QPainter *painter) const override;
    void paintSimple(QPainter *painter) const override;

protected:
    QSizeF layoutBody() override;
    QColor usualBackground() const override;

private:
    QString shownText() const;
};
