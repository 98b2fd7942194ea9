#pragma once

#include <QByteArray>
#include <QObject>
#include <QStringList>

class OssNgNode;
class OssProject;
class OssShaderNetwork;
class OssSnBaseNode;

/// What holds of the open document and of the node graph that shows it, whatever was done to them.
/// Lives beside the document, to know what was saved of it.
class DocumentInvariants : public QObject
{
    Q_OBJECT

public:
    DocumentInvariants();

    /// What is wrong, a line for each; empty: nothing. Both ends of every wire agree; nodes are
    /// alive and stand in the network that has them; each item is where its node is and has its
    /// node's ports, labels, wires and selection, no two ports on one spot; an object has one viewer
    /// at most; what is bound to be asked about on closing is known to be modified.
    QStringList broken();
    /// A bake point that says it is up to date holds the pixels that a bake would give now.
    /// Evaluates.
    static QStringList falseBakes();

private:
    void checkNetwork(OssShaderNetwork *network);
    void checkWires(const OssSnBaseNode *node);
    void checkItem(const OssSnBaseNode *node);
    void checkItemPorts(const OssSnBaseNode *node, const OssNgNode *item);
    void checkItemWires(const OssSnBaseNode *node, const OssNgNode *item);
    void checkScene(OssShaderNetwork *network);
    void checkViewers(const OssProject *project);
    void checkSaved(OssProject *project);
    void rememberSaved();
    void say(const OssSnBaseNode *node, const QString &what);

    QByteArray m_saved;
    QStringList m_broken;
};
