#pragma once

#include "OssModel/OssModel_export.h"

#include <QList>
#include <QObject>
#include <QString>

class OssSnBaseContext;
class OssSnBaseNode;

/// Makes the context that nodes get under the name it is registered with.
class OSSMODEL_EXPORT OssShaderNetworkContextLoader : public QObject
{
    Q_OBJECT

public:
    explicit OssShaderNetworkContextLoader(QObject *parent = nullptr);
    ~OssShaderNetworkContextLoader() override;

    /// `description` is the node type's description with its "Contexts". The contexts belong to the
    /// node. The list may hold null; the node then has no such context.
    virtual QList<OssSnBaseContext *> load(const QString &description, OssSnBaseNode *node) = 0;
};
