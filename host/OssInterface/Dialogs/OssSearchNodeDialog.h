#pragma once

#include "OssInterface/Dialogs/OssSearchPopup.h"
#include "OssInterface/OssInterface_export.h"

#include <QColor>
#include <QList>
#include <QPointer>
#include <QVector>

#include <functional>

class OssSnBaseNode;
class QStandardItemModel;

/// Finds a node among given ones while one types; see OssNodeSearch for what can be typed. With Ctrl
/// held, Enter or a click wants the node's properties as well.
class OSSINTERFACE_EXPORT OssSearchNodeDialog : public OssSearchPopup
{
    Q_OBJECT

public:
    explicit OssSearchNodeDialog(const QList<OssSnBaseNode *> &nodes, QWidget *parent = nullptr);

    /// Shows beside each node the colour that nodes of its type bear.
    void setColors(std::function<QColor(const QString &pathKey)> colorOf);

    /// Null when none was chosen, or it has died since.
    OssSnBaseNode *chosenNode() const;

    bool wantsProperties() const { return m_wantsProperties; }

protected:
    void search(const QString &text) override;
    void take() override;

private:
    QVector<QPointer<OssSnBaseNode>> m_nodes;
    std::function<QColor(const QString &)> m_colorOf;
    QStandardItemModel *m_model;
    bool m_wantsProperties = false;
};
