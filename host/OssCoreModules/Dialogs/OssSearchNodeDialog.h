#pragma once

#include "OssCoreModules/Dialogs/OssSearchPopup.h"

#include <QList>
#include <QPointer>
#include <QVector>

class OssSnBaseNode;
class QStandardItemModel;

/// Finds a node among given ones while one types; see OssNodeSearch for what can be typed.
class OSSCOREMODULES_EXPORT OssSearchNodeDialog : public OssSearchPopup
{
    Q_OBJECT

public:
    explicit OssSearchNodeDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent = nullptr);

    /// Null when none was chosen, or it has died since.
    OssSnBaseNode *chosenNode() const;

protected:
    void search(const QString &text) override;

private:
    QVector<QPointer<OssSnBaseNode>> m_nodes;
    QStandardItemModel *m_model;
};
