#pragma once

#include <QPair>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QVariant>
#include <QVector>

class OssShaderNetwork;
class OssSnBaseNode;

/// Names and texts.
inline QString key(const char *text)
{
    return QString::fromLatin1(text);
}

/// Where a node stands in a graph of columns.
inline QPointF at(qreal column, qreal y)
{
    return {column * 240.0, y};
}

/// Writes a graph into a network, node by node, with the operations that commands use. What cannot
/// be done ends the program with the reason: examples are whole or not there.
class GraphWriter
{
public:
    explicit GraphWriter(OssShaderNetwork *network);

    OssSnBaseNode *add(const QString &pathKey, const QString &name, const QPointF &position);
    /// A node of a type that is described here and need not be the installed one.
    OssSnBaseNode *addOf(const char *description, const QString &name, const QPointF &position);
    OssSnBaseNode *addBackdrop(const QString &title, const QPointF &position, const QSizeF &size,
                               const QString &color);
    /// Nodes become members of the backdrop on which they are now.
    void fillBackdrops();
    OssSnBaseNode *addNote(const QString &text, const QPointF &position);
    /// From the source's first output, or from the named one.
    void wire(OssSnBaseNode *source, OssSnBaseNode *target, const QString &input,
              const QString &outputPoint = {});
    void set(OssSnBaseNode *node, const QString &attribute, const QVariant &value);

    OssShaderNetwork *network() const { return m_network; }

    static void place(OssSnBaseNode *node, const QPointF &position);

private:
    OssShaderNetwork *m_network;
    QVector<QPair<OssSnBaseNode *, QRectF>> m_backdrops;
};
