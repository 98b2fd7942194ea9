#pragma once

#include "OssModel/Graph/OssPublishedGroup.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QPointF>
#include <QSet>
#include <QStringList>
#include <QTimer>

class OssShaderNetwork;
class OssSnBaseNode;
class QAction;

/// Tells what the user does by hand as script lines that do the same when they are run: from what
/// changed in the current graph when it can be said so, else as the command that was chosen, with its
/// selection. What is neither is told as a comment.
class ScriptEcho : public QObject
{
    Q_OBJECT

public:
    explicit ScriptEcho(QObject *parent = nullptr);
    ~ScriptEcho() override;

    /// Off at first. Costs nothing while it is off.
    void setEnabled(bool enabled);
    /// What a script does is not told again.
    void setScriptRunning(bool running);

Q_SIGNALS:
    void line(const QString &text);

private:
    /// What was known of a node when the last step was told.
    struct Known
    {
        QString path;
        QPointF position;
        QPointF size; ///< of a backdrop
        const OssShaderNetwork *network = nullptr;
        QPointer<OssSnBaseNode> node; ///< null when it died
        QStringList outputs;
    };

    struct Change
    {
        QSet<QString> attributes;
        QSet<QString> inputs;
        QSet<QString> switched;                 ///< inputs, on or off
        QVector<QPair<QString, QString>> knobs; ///< from name to name
        QString published;                      ///< the call, for a group
        bool version = false;                   ///< another one of its type
        bool inputOrder = false;
        bool outputOrder = false;
        bool enabled = false;
        bool bypassed = false;
        bool locked = false;
        bool description = false;
        bool renamed = false;
    };

    static QPointF positionOf(const OssSnBaseNode *node);
    /// Of a backdrop; others have none of their own.
    static QPointF sizeOf(const OssSnBaseNode *node);
    static QString sizeLine(const OssSnBaseNode *node);
    void watchAction(QAction *action);
    void watchNode(OssShaderNetwork *network, OssSnBaseNode *node);
    void addNode(OssShaderNetwork *network, OssSnBaseNode *node);
    void addArrangement(const QList<OssSnBaseNode *> &nodes,
                        OssShaderNetworkManager::Arrangement how);
    void addPublished(OssSnBaseNode *group, const OssPublishedGroup::Form &form);
    void loseNode(OssSnBaseNode *node);
    void learnEverything();
    void schedule();
    void tell();
    void tellNow();
    void forgetChanges();
    bool canBeSaid() const;
    /// What left its network, without what went with its group.
    QStringList removedNodes() const;
    QStringList describe();
    QStringList describeNode(OssSnBaseNode *node, const Change &change) const;
    static QStringList describeVersion(const OssSnBaseNode *node);
    QStringList describePorts(OssSnBaseNode *node, const Change &change) const;
    QStringList describeNew(OssSnBaseNode *node) const;
    QStringList describeWires(OssSnBaseNode *node, const QStringList &inputs) const;
    QStringList describeMoves();
    QString describeAction() const;

    bool m_enabled = false;
    bool m_scriptRunning = false;
    QTimer m_later; ///< a command is over when the event loop runs again
    QHash<OssSnBaseNode *, Known> m_known;
    QStringList m_selection; ///< paths, before the command
    QString m_action;        ///< path of the command that ran since
    QStringList m_arranged;  ///< lines that put nodes in order as was done since
    QStringList m_titles;    ///< of the steps since
    QStringList m_moves;     ///< "undo" and "redo" since
    QList<OssSnBaseNode *> m_added;
    QStringList m_removed; ///< paths
    QSet<OssSnBaseNode *> m_removedNodes;
    QHash<OssSnBaseNode *, Change> m_changes;
    QList<OssSnBaseNode *> m_changeOrder;
};
