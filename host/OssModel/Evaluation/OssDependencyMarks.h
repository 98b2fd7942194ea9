#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QVector>

class OssSnBaseNode;

/// Marks in the graph what nodes depend on, with what it has cost to compute: the wires along which
/// their pixels come and the nodes that compute them, the dearer the redder. Marks are how the user
/// looks at the graph and no part of the document. They follow what is done by hand, undone and redone;
/// a script marks anew itself. GUI thread.
class OSSMODEL_EXPORT OssDependencyMarks
    : public QObject
    , public OssService<OssDependencyMarks>
{
    Q_OBJECT

public:
    struct Cost
    {
        OssSnBaseNode *node;
        double perTexel; ///< seconds; 0 for what was not computed in this session, or is one value
    };

    OssDependencyMarks();

    /// What computes the pixels of the nodes, themselves included, in groups too; sources first.
    static QVector<Cost> costs(const QList<OssSnBaseNode *> &nodes);

    /// Marks what the nodes depend on instead of what was marked. None: nothing is marked any more.
    void mark(const QList<OssSnBaseNode *> &nodes);

    bool isEmpty() const { return m_nodes.isEmpty(); }

    /// What was marked: how many nodes, their cost and the dearest of them, in words. Empty without
    /// marks.
    QString inWords() const;
    /// Share of a marked node in the cost of all, in words; empty for others.
    QString shareOf(const OssSnBaseNode *node) const;

private:
    void refresh();

    QVector<QPointer<OssSnBaseNode>> m_nodes; ///< whose sources are marked
    QVector<Cost> m_costs;                    ///< compared by address only
};
