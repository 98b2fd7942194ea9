#pragma once

#include "OssNodeGraph/Drawing/OssNgPortKind.h"

#include <QPointF>
#include <QSet>
#include <QString>

/// One port of a node, as the node lists and paints it. A plain value; the node owns it.
struct OssNgPort
{
    QString name;
    QString text; ///< label given explicitly; empty: the node's names for the port apply
    QSet<QString> tags;
    QPointF position; ///< centre in node coordinates; the side of the header when not listed
    OssNgPortKind kind = OssNgPortKind::Color;
    bool preferred = false; ///< an input that is offered first when a wire is dropped on the body
    bool flag = false;      ///< an output that takes part in the graph but is drawn hollow
    bool used = false;      ///< an output with at least one consumer
    bool listed = true;     ///< has a place of its own in the present port-list mode
    bool labelled = true;   ///< carries the label of its row
};
