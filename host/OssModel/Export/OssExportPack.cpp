#include "OssModel/Export/OssExportPack.h"

#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"

#include <QCoreApplication>

namespace {

constexpr std::array<const char *, 4> Inputs{"Red", "Green", "Blue", "Alpha"};
/// Behind what is looked at, and behind small pictures of it.
constexpr int Priority = -2;

bool isWholeNumbers(const OssEvImageForm &form)
{
    return form.depth == OssEvDepth::Byte || form.depth == OssEvDepth::Short;
}

/// What feeds the packing. Of a shader one with a single input stands in: what else feeds it is no
/// matter of this file, and may be faulty.
void connect(const OssEvGraph &graph, const OssSnEvaluationGraph::Link &link,
             const std::string &channel, OssEvGraphBuilder *builder, int pack, const char *input)
{
    const OssEvGraph::Node &from = graph.nodes()[std::size_t(link.node)];
    const bool isKnown = from.kernel != nullptr && link.output >= 0;
    const std::string output = isKnown ? from.kernel->outputs[std::size_t(link.output)].name
                                       : channel;
    int node = link.node;
    if (isKnown && from.kernel->name == "material") {
        node = builder->addNode(from.name, "material", from.parameters);
        const int index = from.kernel->inputIndex(output);
        if (index >= 0 && from.inputs[std::size_t(index)].node >= 0) {
            const OssEvGraph::Link &fed = from.inputs[std::size_t(index)];
            const OssEvGraph::Node &source = graph.nodes()[std::size_t(fed.node)];
            builder->connect(fed.node,
                             source.kernel ? source.kernel->outputs[std::size_t(fed.output)].name
                                           : std::string(),
                             node, output);
        }
    }
    builder->connect(node, output, pack, input);
}

} // namespace

OssExportSource OssExportSource::withPaintSettled(const OssExportMaterial &material)
{
    if (material.node)
        OssEvaluationService::settlePaint(of(material).graph.sources);
    return of(material);
}

OssExportSource OssExportSource::of(const OssExportMaterial &material)
{
    OssExportSource source;
    for (const OssExportMaterial::Channel &channel : material.channels)
        source.channels.append(channel.name);
    if (!material.node) {
        source.state = OssResult::failure(
            QCoreApplication::translate("OssExportSource", "The material is gone"));
        return source;
    }
    source.graph = OssSnEvaluationGraph::ofAll(material.node, source.channels, &source.links);
    OssEvaluationService *service = OssEvaluationService::instance();
    source.target = service->target(source.graph, material.entity, 0, 0);
    source.colors = OssColorManagement::spaces();
    if (!source.target.mesh)
        source.state = OssResult::failure(
            QCoreApplication::translate("OssExportSource", "The mesh is gone"));
    return source;
}

OssEvBake::Job OssExportSource::job(const OssExportFile &file) const
{
    OssEvParameters parameters;
    OssEvGraphBuilder builder(*graph.graph);
    for (std::size_t i = 0; i < Inputs.size(); ++i) {
        const OssExportPreset::Channel &channel = file.how.channels[i];
        const std::string input = Inputs[i];
        parameters[input] = channel.value;
        if (!channel.component.isEmpty())
            parameters[input + "From"] = channel.component.toStdString();
        parameters[input + "Invert"] = channel.inverts;
    }
    const bool hasAlpha = file.channelCount() == 4;
    const bool multiplies = hasAlpha && !file.isData && !isWholeNumbers(file.how.form);
    parameters["Premultiply"] = multiplies;
    const int pack = builder.addNode({}, "pack", parameters);
    for (std::size_t i = 0; i < Inputs.size(); ++i) {
        const int channel = channels.indexOf(file.how.channels[i].from);
        const OssSnEvaluationGraph::Link link = channel < 0 ? OssSnEvaluationGraph::Link()
                                                            : links.at(channel);
        if (link.node < 0 || !file.how.channels[i].isUsed)
            continue;
        connect(*graph.graph, link, channels.at(channel).toStdString(), &builder, pack, Inputs[i]);
    }
    OssEvBake::Job job;
    job.target = target;
    job.target.graph = builder.finish();
    job.target.node = pack;
    const bool isPrecise = file.how.form.depth == OssEvDepth::Short
                           || file.how.form.depth == OssEvDepth::Float;
    const std::string output = (isPrecise ? "Precise " : "") + std::to_string(file.channelCount());
    job.target.output = job.target.graph->nodes()[std::size_t(pack)].kernel->outputIndex(output);
    job.target.patch = file.patch;
    job.target.width = file.resolution;
    job.target.height = file.resolution;
    // The engine counts in texels of a patch of 4096.
    job.dilate = file.padding != 0;
    job.fillsAll = file.padding == OssExportOptions::EndlessPadding;
    job.target.bleed = std::max(0, file.padding) * 4096 / std::max(1, file.resolution);
    job.path = file.path.toStdString();
    job.isData = file.isData;
    job.form = file.how.form;
    job.form.colors = colors;
    job.form.isStraight = !multiplies;
    job.priority = Priority;
    return job;
}
