#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

class OssSnBaseNode;

/// The node that is looked at instead of what the current viewer shows, without any wire. Nothing of
/// it is in the document, saved or a step of the history. It ends with the node's leaving the graph,
/// the project's closing, another object's coming into view, and Esc. GUI thread.
class OSSMODEL_EXPORT OssSolo
    : public QObject
    , public OssService<OssSolo>
{
    Q_OBJECT

public:
    OssSolo();

    /// The output of the node that has pixels to look at; empty when there is none.
    static QString pictureOutput(const OssSnBaseNode *node);

    /// Null: there is none.
    const OssSnBaseNode *node() const;

    QString outputPoint() const { return m_outputPoint; }

    /// Takes the place of the one before. False, and nothing changes, for a node without a picture.
    bool look(const OssSnBaseNode *node);
    void end();

Q_SIGNALS:
    void changed();

private:
    void endIfGone();

    QPointer<const OssSnBaseNode> m_node;
    QString m_outputPoint;
};
