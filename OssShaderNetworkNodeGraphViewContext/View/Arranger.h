#pragma once

#include "OssModel/Graph/OssShaderNetworkManager.h"

#include <QObject>

/// Carries out what commands and scripts ask of the places of nodes (see
/// OssShaderNetworkManager::Arrangement): asks each node to go where it belongs, clear of others, and
/// has backdrops take in what comes to lie on them. A backdrop takes along what lies on it. Each arrangement is one undo step.
class Arranger : public QObject
{
    Q_OBJECT

public:
    explicit Arranger(QObject *parent);

private:
    static void arrange(const QList<OssSnBaseNode *> &nodes,
                        OssShaderNetworkManager::Arrangement how, OssResult *result);
};
