#include "OssModel/Evaluation/OssSnEvaluationGraph.h"

#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssImageSetFiles.h"
#include "OssModel/Evaluation/OssSnParameter.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Nodes/OssProblems.h"
#include "OssModel/Nodes/OssSnUpstream.h"

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
    /// A visitor of OssSnUpstream.
    void visit(const OssSnBaseNode *node, const QVector<OssSnUpstream::Input> &inputs)
    {
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
        if (node->isCacheSet())
            m_builder.setCachePoint(index);
    }

    int indexOf(const OssSnBaseNode *node) const { return m_indexes.value(node, -1); }

    QVector<const OssSnBaseNode *> nodes() const { return m_indexes.keys().toVector(); }

    std::shared_ptr<const OssEvGraph> finish() { return m_builder.finish(); }

private:
    static OssEvParameters parametersOf(const OssSnBaseNode *node)
    {
        OssEvParameters parameters;
        const QVector<OssCustomAttribute> attributes = node->userAttributes();
        for (const OssCustomAttribute &attribute : attributes) {
            OssEvParameter parameter;
            if (OssSnParameter::fromValue(OssFilePath::valueOf(attribute), &parameter))
                parameters.emplace(attribute.name().toStdString(), parameter);
        }
        const QString images = OssImageSetFiles::nameOf(node);
        if (!images.isEmpty())
            parameters["Image"] = images.toStdString();
        return parameters;
    }

    OssEvGraphBuilder m_builder;
    QHash<const OssSnBaseNode *, int> m_indexes;
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
    OssSnUpstream::walk(producer.node, [&copier](const auto *visited, const auto &inputs) {
        copier.visit(visited, inputs);
    });
    result.node = copier.indexOf(producer.node);
    const QVector<const OssSnBaseNode *> copied = copier.nodes();
    for (const OssSnBaseNode *source : copied)
        result.sources.append(source);
    result.graph = copier.finish();
    const OssEvGraph::Node &made = result.graph->nodes()[std::size_t(result.node)];
    result.output = made.kernel ? made.kernel->outputIndex(producer.outputPoint.toStdString()) : -1;
    const OssEvResult checked = result.graph->check(result.node);
    result.faulty = checked.node();
    if (!checked)
        result.error = QString::fromStdString(checked.error());
    else if (result.output < 0)
        result.error = tr("\"%1\" computes no \"%2\"")
                           .arg(producer.node->name(), producer.outputPoint);
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
