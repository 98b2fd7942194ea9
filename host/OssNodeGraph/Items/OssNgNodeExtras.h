#pragma once

#include "OssNodeGraph/Items/OssNgNode.h"

#include <QSet>

struct OssNgNode::Extras
{
    QSet<QString> virtualInputs;
    QColor topColor;
    QColor bottomColor;
    QColor debugColor;
    QPixmap pixmap;
    QPoint pixmapOffset;
    QPixmap thumbnail;
    QString errorText;
    int errorLines = 3; ///< of them shown, as many as there is room for
};
