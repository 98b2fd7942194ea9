#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>
#include <QVector>

class OssSnBaseNode;

/// A wire by where it ends.
struct OssSnWireEnd
{
    const OssSnBaseNode *node = nullptr;
    QString input;
};

/// An output that computes something. Null where nothing does.
struct OssSnProducer
{
    const OssSnBaseNode *node = nullptr;
    QString outputPoint;

    /// What an output really comes from: through groups and the nodes that stand for their ports,
    /// dots, teleports, and nodes that are disabled or bypassed and so pass on their stream. The wires
    /// on the way are added to `wires`, which may be null.
    OSSMODEL_EXPORT static OssSnProducer of(const OssSnBaseNode *node, const QString &outputPoint,
                                            QVector<OssSnWireEnd> *wires = nullptr);
    /// The same for what feeds an input.
    OSSMODEL_EXPORT static OssSnProducer ofInput(const OssSnBaseNode *node, const QString &input,
                                                 QVector<OssSnWireEnd> *wires = nullptr);

    /// The input at which the way from an input or output ends because it is switched off, though a
    /// wire comes to it. A null node where that is not why.
    OSSMODEL_EXPORT static OssSnWireEnd offAtInput(const OssSnBaseNode *node, const QString &input);
    OSSMODEL_EXPORT static OssSnWireEnd offBehind(const OssSnBaseNode *node,
                                                  const QString &outputPoint);
};
