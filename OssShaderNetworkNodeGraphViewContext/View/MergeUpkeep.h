#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QVector>

class OssSnBaseNode;

/// Looks at the end of each edit, whoever makes it, at the nodes that it made or wired: new merges, and
/// what keeps 8-bit paint and got merges above it. What it sets is part of the edit's step.
class MergeUpkeep : public QObject
{
    Q_OBJECT

public:
    explicit MergeUpkeep(QObject *parent);

private:
    struct Made
    {
        QPointer<OssSnBaseNode> merge;
        bool isOff = false; ///< when it was made
    };

    struct End
    {
        QPointer<OssSnBaseNode> node;
        QSet<OssSnBaseNode *> known; ///< merges that were above it before the edit; only addresses
    };

    void noteMade(OssSnBaseNode *node);
    void noteInserted(OssSnBaseNode *node);
    void noteWiring(OssSnBaseNode *node);
    void finish(bool kept);

    QVector<Made> m_made;
    QVector<End> m_ends;
    QSet<const OssSnBaseNode *> m_noted; ///< those of m_ends
};
