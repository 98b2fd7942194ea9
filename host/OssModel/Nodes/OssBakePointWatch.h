#pragma once

#include "OssCore/Program/OssService.h"

#include <QObject>
#include <QSet>
#include <QTimer>

class OssSnBakePointNode;

/// Has bake points look whether they are out of date, soon after the document or a file has changed:
/// any node upstream may be the reason, in other networks too. GUI thread.
class OssBakePointWatch
    : public QObject
    , public OssService<OssBakePointWatch>
{
    Q_OBJECT

public:
    OssBakePointWatch();

    /// Not owned; from its constructor to its destructor.
    void add(OssSnBakePointNode *node) { m_nodes.insert(node); }

    void remove(OssSnBakePointNode *node) { m_nodes.remove(node); }

private:
    void look();

    QSet<OssSnBakePointNode *> m_nodes;
    QTimer m_timer;
};
