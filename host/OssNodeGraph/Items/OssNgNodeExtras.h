#pragma once

#include "OssNodeGraph/Items/OssNgNode.h"

#include <QHash>
#include <QSet>
#include <QStringList>

struct OssNgNode::Extras
{
    QStringList inputDescriptiveNames;
    QStringList outputDescriptiveNames;
    QStringList inputPrettyNames;
    QStringList outputPrettyNames;
    QHash<QString, float> inputTextPositions;
    QHash<QString, float> outputTextPositions;
    StubPositions inputStubs;
    StubPositions outputStubs;
    QHash<QString, int> inputKinds;
    QHash<QString, int> outputKinds;
    QSet<QString> virtualInputs;
    QColor topColor;
    QColor bottomColor;
    QColor debugColor;
    QPixmap pixmap;
    QPoint pixmapOffset;
    QPixmap thumbnail;
    QString errorText;
    QString litPort;
    Side litSide = Side::Input;
};
