#include "OssModel/Evaluation/OssSnEvaluationGraph.h"

#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssImageSetFiles.h"
#include "OssModel/Evaluation/OssSnParameter.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Nodes/OssSnProducer.h"

#include <QCoreApplication>
#include <QHash>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssSnEvaluationGraph", text);
}

class Copier
{
public:
    int copy(const OssSnProducer &wanted)
    {
        // Sources first, without recursion: graphs may be deep.
        QVector<const OssSnBaseNode *> open{wanted.node};
        while (!open.isEmpty()) {
            const OssSnBaseNode *node = open.last();
            if (m_indexes.value(node, -1) >= 0) {
                open.removeLast();
                continue;
            }
            const bool seen = m_indexes.contains(node);
            m_indexes.insert(node, -1);
            const int before = open.size();
            const QVector<OssSnBaseNode::InputPort> ports = portsOf(node);
            for (const OssSnBaseNode::InputPort &port : ports) {
                const OssSnBaseNode *source = OssSnProducer::ofInput(node, port.name).node;
                if (source && !m_indexes.contains(source) && !seen)
                    open.append(source);
            }
            if (open.size() > before)
                continue;
            add(node);
            open.removeLast();
        }
        return m_indexes.value(wanted.node);
    }

    QVector<const OssSnBaseNode *> nodes() const { return m_indexes.keys().toVector(); }

    std::shared_ptr<const OssEvGraph> finish() { return m_builder.finish(); }

private:
    /// None where the node has pixels of its own.
    static QVector<OssSnBaseNode::InputPort> portsOf(const OssSnBaseNode *node)
    {
        return OssShaderNetworkUtils::readsPixels(node) ? QVector<OssSnBaseNode::InputPort>()
                                                        : node->inputPorts();
    }

    void add(const OssSnBaseNode *node)
    {
        const OssSnNodeType *type = node->nodeType();
        const int index = m_builder.addNode(node->path().toStdString(),
                                            type ? type->kernel.toStdString() : std::string(),
                                            parametersOf(node));
        m_indexes.insert(node, index);
        const QVector<OssSnBaseNode::InputPort> ports = portsOf(node);
        for (const OssSnBaseNode::InputPort &port : ports) {
            const OssSnProducer source = OssSnProducer::ofInput(node, port.name);
            const int from = source.node ? m_indexes.value(source.node, -1) : -1;
            if (from >= 0)
                m_builder.connect(from, source.outputPoint.toStdString(), index,
                                  port.name.toStdString());
        }
        if (node->isCacheSet())
            m_builder.setCachePoint(index);
    }

    static OssEvParameters parametersOf(const OssSnBaseNode *node)
    {
        OssEvParameters parameters;
        const QVector<OssCustomAttribute> attributes = node->userAttributes();
        for (const OssCustomAttribute &attribute : attributes) {
            OssEvParameter parameter;
            if (OssSnParameter::fromValue(attribute.value(), &parameter))
                parameters.emplace(attribute.name().toStdString(), parameter);
        }
        const QString images = OssImageSetFiles::nameOf(node);
        if (!images.isEmpty())
            parameters["Image"] = images.toStdString();
        return parameters;
    }

    OssEvGraphBuilder m_builder;
    QHash<const OssSnBaseNode *, int> m_indexes; ///< -1 while the node waits for its sources
};

} // namespace

OssSnEvaluationGraph OssSnEvaluationGraph::of(const OssSnBaseNode *node, const QString &outputPoint)
{
    OssSnEvaluationGraph result;
    const OssSnProducer producer = OssSnProducer::of(node, outputPoint);
    if (!producer.node) {
        result.error = tr("Nothing is connected");
        return result;
    }
    Copier copier;
    result.node = copier.copy(producer);
    result.sources = copier.nodes();
    result.graph = copier.finish();
    const OssEvGraph::Node &made = result.graph->nodes()[std::size_t(result.node)];
    result.output = made.kernel ? made.kernel->outputIndex(producer.outputPoint.toStdString()) : -1;
    const OssEvResult checked = result.graph->check(result.node);
    if (!checked)
        result.error = QString::fromStdString(checked.error());
    else if (result.output < 0)
        result.error = tr("\"%1\" computes no \"%2\"")
                           .arg(producer.node->name(), producer.outputPoint);
    return result;
}
