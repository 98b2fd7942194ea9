#pragma once

#include "OssModel/Types/OssSnDataKind.h"

#include <QPointer>
#include <QString>
#include <QStringList>

class OssSnBaseNode;

/// An input of a node, with the wire at it.
struct OssSnInputPort
{
    QString name;
    QString label; ///< empty: the name
    OssSnDataKind kind = OssSnDataKind::Color;
    bool preferred = false;
    bool setAtLoad = false;
    bool enabled = true;
    bool shared = false;
    QStringList tags;
    OssSnBaseNode *source = nullptr; ///< null: nothing connected
    QString sourceOutput;
};

/// What a node gives.
struct OssSnOutputPoint
{
    QString name;
    QString label;
    OssSnDataKind kind = OssSnDataKind::Color;
};

/// A wire as its source sees it.
struct OssSnOutgoingConnection
{
    QString outputPoint;
    OssSnBaseNode *target;
    QString input;
};

/// A connection as it stood in a file, until all nodes are there.
struct OssSnPendingConnection
{
    QString input;
    QString source; ///< a name of the same network, or a path from the root
    QString outputPoint;
};

/// A knob that an attribute of the node's original was linked to.
struct OssSnDelayedKnob
{
    QString groupPath;
    QString knob;
    QString attribute;
};

/// What holds a node, by its name as long as it is not read.
struct OssSnContainer
{
    QPointer<OssSnBaseNode> node;
    QString savedName;
};
