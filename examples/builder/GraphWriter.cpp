#include "builder/GraphWriter.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnNodeFactory.h"

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void giveUp(const QString &reason)
{
    std::fprintf(stderr, "ossa_build_examples: %s\n", qPrintable(reason));
    std::exit(1);
}

OssSnBaseContext *contextOf(OssSnBaseNode *node)
{
    OssSnBaseContext *context = node->context(QStringLiteral("NodeGraphView"));
    if (!context)
        giveUp(QStringLiteral("the node graph plug-in is not loaded"));
    return context;
}

} // namespace

GraphWriter::GraphWriter(OssShaderNetwork *network)
    : m_network(network)
{
}

OssSnBaseNode *GraphWriter::add(const QString &pathKey, const QString &name,
                                const QPointF &position)
{
    OssSnBaseNode *node = m_network->createNode(pathKey, name);
    if (!node)
        giveUp(QStringLiteral("there is no node type %1").arg(pathKey));
    place(node, position);
    return node;
}

OssSnBaseNode *GraphWriter::addOf(const char *description, const QString &name,
                                  const QPointF &position)
{
    OssResult result;
    const auto type = OssSnNodeType::read(description, name, &result);
    if (!type)
        giveUp(result.error());
    auto made = OssSnNodeFactory::make(type);
    made->setName(name);
    OssSnBaseNode *node = m_network->addNode(std::move(made), true);
    place(node, position);
    return node;
}

OssSnBaseNode *GraphWriter::addBackdrop(const QString &title, const QPointF &position,
                                        const QSizeF &size, const QString &color)
{
    OssSnBaseNode *node = add(QStringLiteral("Misc/Backdrop"), title + QStringLiteral(" Backdrop"),
                              position);
    set(node, QStringLiteral("TitleText"), title);
    set(node, QStringLiteral("BackgroundColor"), color);
    contextOf(node)->setNodeSizeUndo(size);
    place(node, position);
    m_backdrops.append({node, QRectF(position, size)});
    return node;
}

void GraphWriter::fillBackdrops()
{
    const QList<OssSnBaseNode *> all = m_network->nodes();
    for (OssSnBaseNode *node : all) {
        OssSnBaseNode *holder = nullptr;
        for (const auto &backdrop : qAsConst(m_backdrops)) {
            if (node != backdrop.first && backdrop.second.contains(contextOf(node)->nodePosition()))
                holder = backdrop.first;
        }
        node->setContainer(holder);
    }
}

OssSnBaseNode *GraphWriter::addNote(const QString &text, const QPointF &position)
{
    OssSnBaseNode *node = add(QStringLiteral("Misc/Sticky Note"), QStringLiteral("Note"), position);
    set(node, QStringLiteral("Label"), text);
    return node;
}

void GraphWriter::wire(OssSnBaseNode *source, OssSnBaseNode *target, const QString &input,
                       const QString &outputPoint)
{
    const QString point = outputPoint.isEmpty() ? source->prefferedOutputPoint() : outputPoint;
    if (!target->setInputNode(input, source, point))
        giveUp(target->canConnect(input, source, point).error());
}

void GraphWriter::set(OssSnBaseNode *node, const QString &attribute, const QVariant &value)
{
    if (!node->setAttribute(attribute, value))
        giveUp(QStringLiteral("%1 has no attribute %2").arg(node->name(), attribute));
}

void GraphWriter::place(OssSnBaseNode *node, const QPointF &position)
{
    contextOf(node)->setNodePosition(position);
}
