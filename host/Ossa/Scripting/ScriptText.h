#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

class OssShaderNetwork;
class OssSnBaseNode;

/// Parts of the document as Python writes them.
namespace ScriptText {

QString text(const QString &value);
QString list(const QStringList &expressions);
/// Empty for values that have no such form.
QString value(const QVariant &value);

/// "ossa.graph()" or what leads to the graph inside a group.
QString graph(const OssShaderNetwork *network);
/// The node of that path, in the root graph of its object.
QString node(const QString &path);
QString createNode(const OssSnBaseNode *node);
QString setAttribute(const QString &path, const QString &attribute, const QVariant &value);

} // namespace ScriptText
