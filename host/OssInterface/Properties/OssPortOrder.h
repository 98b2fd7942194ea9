#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>

class OssSnGroupNode;
class QListWidget;

/// The ports of a group in their order, to be dragged up and down, or moved by Alt and an arrow. The
/// nodes that stand for inputs change places with them. A move is one undo step. Of a locked group it
/// shows only.
class OSSINTERFACE_EXPORT OssPortOrder : public QWidget
{
    Q_OBJECT

public:
    OssPortOrder(OssSnGroupNode *group, QWidget *parent);

    QListWidget *inputs() const { return m_inputs; }

    QListWidget *outputs() const { return m_outputs; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QListWidget *makeList(const QString &title);
    void follow();
    void refresh();
    void show(QListWidget *list, const QStringList &names);
    /// The list was changed by the user, who may still hold the mouse: later, once.
    void applyLater();
    void apply();
    static QStringList namesOf(const QListWidget *list);

    QPointer<OssSnGroupNode> m_group;
    QListWidget *m_inputs;
    QListWidget *m_outputs;
    bool m_showing = false;
    bool m_applies = false;
};
