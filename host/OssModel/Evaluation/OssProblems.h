#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>
#include <QVector>

class OssShaderNetwork;
class OssSnBaseNode;

/// What is wrong with the nodes of the open project, in words: types that are not known, files that
/// are not there, results that could not be computed or baked. GUI thread.
///
/// Types and files are looked at here, soon after the document or a file has changed; failures are
/// reported by who had them. One is forgotten when the node, or anything that feeds it, is another
/// than when it failed: whether it fails again is seen by whoever tries.
class OSSMODEL_EXPORT OssProblems
    : public QObject
    , public OssService<OssProblems>
{
    Q_OBJECT

public:
    enum Kind {
        Type,       ///< what the node says of itself: OssSnBaseNode::errorText()
        File,       ///< a file that it names is not there
        Evaluation, ///< it could not be computed
        Bake        ///< it could not be baked
    };

    struct Problem
    {
        OssSnBaseNode *node;
        QString path; ///< of the node
        Kind kind;
        QString reason;

        bool operator==(const Problem &other) const
        {
            return node == other.node && path == other.path && kind == other.kind
                   && reason == other.reason;
        }
    };

    OssProblems();
    ~OssProblems() override;

    /// Node by node in the order of the project's networks, each node's by kind.
    QVector<Problem> problems() const;
    /// All that is wrong with the node, a line for each; empty when it is well.
    QString reason(const OssSnBaseNode *node) const;

    /// An empty reason says that it went well. Null nodes are ignored.
    void report(const OssSnBaseNode *node, Kind kind, const QString &reason);

    /// Looks at types, files and what was reported now instead of soon; files on a worker all the
    /// same.
    void look();

Q_SIGNALS:
    /// reason() of the node is another. Never told for a node that is gone.
    void nodeChanged(OssSnBaseNode *node);
    /// problems() is another.
    void changed();

private:
    struct Entry
    {
        QPointer<OssSnBaseNode> node;
        QMap<Kind, QString> reasons;
        QMap<Kind, QString> keys; ///< what the node was like when it failed; empty: not known yet
    };

    void lookSoon();
    void lookAtFiles(const QSet<QString> &files);
    void takeMissing(const QSet<QString> &missing);
    void lookAtNodes(QSet<QString> *files);
    bool set(OssSnBaseNode *node, Kind kind, const QString &reason);
    void forgetOldFailures();
    QMap<Kind, QString> worthTelling(const Entry &entry) const;
    void tell(const QSet<OssSnBaseNode *> &nodes);
    void tellList();
    QVector<OssSnBaseNode *> allNodes() const;

    QVector<QPointer<OssShaderNetwork>> m_networks; ///< root networks
    QHash<const OssSnBaseNode *, Entry> m_entries;
    QSet<QString> m_missing; ///< files, as the nodes name them
    QTimer m_soon;
    QTimer m_regular; ///< while files are named: nothing may tell of their going or coming
    bool m_isLooking = false;
    bool m_isDue = false; ///< another look was wanted meanwhile
    QVector<Problem> m_told;
    QThreadPool m_worker;
};
