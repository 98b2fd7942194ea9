#include "OssModel/Evaluation/OssSnEvaluationGraph.h"

#include "OssCore/OssColor.h"
#include "OssCore/OssUserEnum.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssImageSetFiles.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnProducer.h"

#include <QCoreApplication>
#include <QHash>
#include <QPointF>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssSnEvaluationGraph", text);
}

/// False for values that say nothing to a kernel.
bool toParameter(const QVariant &value, OssEvParameter *parameter)
{
    if (value.userType() == qMetaTypeId<OssColor>()) {
        const auto color = value.value<OssColor>();
        *parameter = OssEvColor{float(color.red()), float(color.green()), float(color.blue()),
                                float(color.alpha())};
        return true;
    }
    if (value.userType() == qMetaTypeId<OssUserEnum>()) {
        *parameter = value.value<OssUserEnum>().currentName().toStdString();
        return true;
    }
    switch (value.userType()) {
    case QMetaType::Double:
        *parameter = value.toDouble();
        return true;
    case QMetaType::Int:
        *parameter = std::int64_t(value.toInt());
        return true;
    case QMetaType::Bool:
        *parameter = value.toBool();
        return true;
    case QMetaType::QString:
        *parameter = value.toString().toStdString();
        return true;
    case QMetaType::QPointF:
        *parameter = OssEvVector2{value.toPointF().x(), value.toPointF().y()};
        return true;
    case QMetaType::QStringList: {
        const auto ids = OssImageList::fromVariant(value).ids();
        const OssImage *image = ids.isEmpty() ? nullptr
                                              : OssImageManager::instance()->getImage(ids.first());
        *parameter = image ? image->path().toStdString() : std::string();
        return true;
    }
    default:
        return false;
    }
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
            if (toParameter(attribute.value(), &parameter))
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
