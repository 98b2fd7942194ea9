#include "OssModel/Evaluation/OssSnEvaluationGraph.h"

#include "OssCore/Values/OssColor.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssImageSetFiles.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Evaluation/OssSnParameter.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Nodes/OssSnUpstream.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssSnEvaluationGraph", text);
}

class Copier
{
public:
    void copy(const OssSnBaseNode *producer)
    {
        OssSnUpstream::walk(
            producer, [this](const auto *visited, const auto &inputs) { visit(visited, inputs); });
    }

    void finish(OssSnEvaluationGraph *result)
    {
        for (auto at = m_indexes.cbegin(); at != m_indexes.cend(); ++at)
            result->sources.append(at.key());
        result->paint = m_paint;
        m_builder.setWorking(OssColorManagement::spaces()->workingSpace());
        result->graph = m_builder.finish();
    }

    OssSnEvaluationGraph::Link linkOf(const OssSnEvaluationGraph &made,
                                      const OssSnProducer &producer) const
    {
        OssSnEvaluationGraph::Link link;
        link.node = m_indexes.value(producer.node, -1);
        const OssEvGraph::Node &node = made.graph->nodes()[std::size_t(link.node)];
        if (node.kernel)
            link.output = node.kernel->outputIndex(producer.outputPoint.toStdString());
        return link;
    }

private:
    void visit(const OssSnBaseNode *node, const QVector<OssSnUpstream::Input> &inputs)
    {
        if (m_indexes.contains(node))
            return;
        const OssSnNodeType *type = node->nodeType();
        const int index = m_builder.addNode(node->path().toStdString(),
                                            type ? type->kernel.toStdString() : std::string(),
                                            parametersOf(node));
        m_indexes.insert(node, index);
        for (const OssSnUpstream::Input &input : inputs) {
            const int from = m_indexes.value(input.source.node, -1);
            if (from >= 0)
                m_builder.connect(from, input.source.outputPoint.toStdString(), index,
                                  input.name.toStdString());
        }
        const OssImageSet *images = OssShaderNetworkUtils::imageSetOf(node);
        if (images && images->livePaint())
            m_paint.append(images->livePaint());
        if (node->isCacheSet())
            m_builder.setCachePoint(index);
    }

    OssEvParameters parametersOf(const OssSnBaseNode *node) const
    {
        OssEvParameters parameters;
        const QVector<OssCustomAttribute> attributes = node->userAttributes();
        for (const OssCustomAttribute &attribute : attributes) {
            OssEvParameter parameter;
            if (OssSnParameter::fromValue(OssFilePath::valueOf(attribute), &parameter))
                parameters.emplace(attribute.name().toStdString(), parameter);
        }
        if (OssSnUpstream::readsAttributeAround(node))
            addAttributeAround(node, &parameters);
        const QString images = OssImageSetFiles::nameOf(node);
        if (!images.isEmpty())
            parameters["Image"] = images.toStdString();
        return parameters;
    }

    /// What the group around it says, as a number or as a colour; why not, where it says neither.
    static void addAttributeAround(const OssSnBaseNode *node, OssEvParameters *parameters)
    {
        const OssCustomAttribute attribute = OssSnUpstream::attributeAround(node);
        const QVariant value = attribute.value();
        OssEvParameter color;
        bool isNumber = false;
        const double number = value.userType() == qMetaTypeId<OssUserEnum>()
                                  ? value.value<OssUserEnum>().currentValue()
                                  : value.toDouble(&isNumber);
        if (value.userType() == qMetaTypeId<OssColor>()
            && OssSnParameter::fromValue(value, &color)) {
            (*parameters)["Color"] = color;
            (*parameters)["IsColor"] = true;
        } else if (isNumber || value.userType() == qMetaTypeId<OssUserEnum>()) {
            (*parameters)["Value"] = number;
        } else {
            const QString name = node->attribute(QStringLiteral("Attribute")).toString();
            (*parameters)["Problem"] = (attribute.isValid()
                                            ? tr("\"%1\" of the group is neither number nor color")
                                            : tr("no group around it has an attribute \"%1\""))
                                           .arg(name)
                                           .toStdString();
        }
    }

    OssEvGraphBuilder m_builder;
    QVector<std::shared_ptr<const OssLivePaint>> m_paint;
    QHash<const OssSnBaseNode *, int> m_indexes;
};

/// An image whose file is data by what the user chose, or else by its name.
bool readsData(const OssSnBaseNode *node)
{
    const QString chosen = node->attribute(QStringLiteral("FileSpace")).toString();
    if (!chosen.isEmpty())
        return OssColorManagement::spaces()->isData(chosen.toStdString());
    const auto path = OssFilePath::valueOf(node->userAttribute(QStringLiteral("File"))).toString();
    return OssColorManagement::instance()->fileColors().spaceOf({path.toStdString(), 4, true, {}})
           == OssEvFileColors::Data;
}

/// By the port, and by what an image says of its file.
bool givesData(const OssSnProducer &producer)
{
    if (!producer.node)
        return false;
    OssEvParameter space;
    if (OssSnParameter::fromValue(
            OssFilePath::valueOf(producer.node->userAttribute(QStringLiteral("ColorSpace"))),
            &space)
        && (space == OssEvParameter(std::string("Data"))
            || space == OssEvParameter(std::string("Scalar"))
            || (space == OssEvParameter(std::string("Automatic")) && readsData(producer.node))))
        return true;
    const auto &points = producer.node->outputPoints();
    return std::any_of(points.cbegin(), points.cend(), [&producer](const auto &point) {
        return point.name == producer.outputPoint && point.kind != OssSnDataKind::Color
               && point.kind != OssSnDataKind::Material;
    });
}

} // namespace

QString OssSnEvaluationGraph::switchedOff(const OssSnWireEnd &input)
{
    return input.node
               ? tr("Input \"%1\" of %2 is switched off").arg(input.input, input.node->name())
               : QString();
}

OssSnEvaluationGraph OssSnEvaluationGraph::of(const OssSnBaseNode *node, const QString &outputPoint)
{
    QVector<Link> links;
    OssSnEvaluationGraph result = ofAll(node, {outputPoint}, &links);
    result.node = links.first().node;
    result.output = links.first().output;
    result.isData = givesData(OssSnProducer::of(node, outputPoint));
    if (result.node < 0) {
        const QString off = switchedOff(OssSnProducer::offBehind(node, outputPoint));
        result.error = off.isEmpty() ? tr("Nothing is connected") : off;
        return result;
    }
    const OssEvResult checked = result.graph->check(result.node);
    result.faulty = checked.node();
    if (!checked)
        result.error = QString::fromStdString(checked.error());
    else if (result.output < 0)
        result.error = tr("\"%1\" computes no \"%2\"").arg(node->name(), outputPoint);
    return result;
}

OssSnEvaluationGraph OssSnEvaluationGraph::ofAll(const OssSnBaseNode *node,
                                                 const QStringList &outputPoints,
                                                 QVector<Link> *links)
{
    OssSnEvaluationGraph result;
    Copier copier;
    QVector<OssSnProducer> producers;
    for (const QString &point : outputPoints) {
        const OssSnProducer producer = OssSnProducer::of(node, point);
        if (producer.node)
            copier.copy(producer.node);
        producers.append(producer);
    }
    copier.finish(&result);
    links->clear();
    for (const OssSnProducer &producer : qAsConst(producers))
        links->append(producer.node ? copier.linkOf(result, producer) : Link());
    return result;
}

void OssSnEvaluationGraph::tellProblem(const std::string &name, const QString &reason) const
{
    const QString path = QString::fromStdString(name);
    const auto found = std::find_if(
        sources.cbegin(), sources.cend(),
        [&path](const OssSnBaseNode *candidate) { return candidate && candidate->path() == path; });
    if (name.empty() || found == sources.cend())
        return;
    // Whoever lists problems names the node by itself.
    const QString blame = QString::fromStdString(OssEvResult::prefix(name));
    OssProblems::instance()->report(*found, OssProblems::Evaluation,
                                    reason.mid(reason.indexOf(blame) + blame.size()));
}

void OssSnEvaluationGraph::tellSuccess() const
{
    for (const OssSnBaseNode *source : sources)
        OssProblems::instance()->report(source, OssProblems::Evaluation, {});
}
