#include "OssEvaluation/Graph/OssEvGraph.h"

#include "OssEvaluation/Graph/OssEvKernelLibrary.h"

#include <algorithm>
#include <utility>

int OssEvGraph::find(std::string_view name) const
{
    const auto found = std::find_if(m_nodes.begin(), m_nodes.end(),
                                    [name](const Node &node) { return node.name == name; });
    return found == m_nodes.end() ? -1 : int(found - m_nodes.begin());
}

std::vector<int> OssEvGraph::upstream(int node) const
{
    std::vector<int> order;
    if (node < 0 || node >= int(m_nodes.size()))
        return order;
    // Depth first without recursion: graphs may be long chains.
    std::vector<char> seen(m_nodes.size(), 0);
    std::vector<std::pair<int, std::size_t>> path{{node, 0}};
    seen[std::size_t(node)] = 1;
    while (!path.empty()) {
        auto &[current, next] = path.back();
        const std::vector<Link> &inputs = m_nodes[std::size_t(current)].inputs;
        if (next == inputs.size()) {
            order.push_back(current);
            path.pop_back();
            continue;
        }
        const int source = inputs[next++].node;
        if (source >= 0 && seen[std::size_t(source)] == 0) {
            seen[std::size_t(source)] = 1;
            path.emplace_back(source, 0);
        }
    }
    return order;
}

OssEvResult OssEvGraph::check(int node) const
{
    if (node < 0 || node >= int(m_nodes.size()))
        return OssEvResult::failure("There is no such node");
    for (const int index : upstream(node)) {
        const Node &found = m_nodes[std::size_t(index)];
        if (!found.error.empty())
            return OssEvResult::failureOf(found.name, found.error);
    }
    return {};
}

OssEvGraphBuilder::OssEvGraphBuilder()
    : m_graph(std::make_shared<OssEvGraph>())
{
}

OssEvGraphBuilder::OssEvGraphBuilder(const OssEvGraph &graph)
    : m_graph(std::make_shared<OssEvGraph>(graph))
{
}

int OssEvGraphBuilder::addNode(std::string name, std::string_view kernel,
                               const OssEvParameters &parameters)
{
    OssEvGraph::Node node;
    node.name = std::move(name);
    node.kernel = OssEvKernelLibrary::find(kernel);
    if (node.kernel == nullptr) {
        node.error = kernel.empty() ? "it computes no pixels"
                                    : "there is no kernel \"" + std::string(kernel) + "\"";
    } else {
        node.inputs.resize(node.kernel->inputs.size());
        const OssEvResult result = node.kernel->normalise(parameters, &node.parameters);
        if (!result)
            node.error = result.error();
    }
    m_graph->m_nodes.push_back(std::move(node));
    return int(m_graph->m_nodes.size()) - 1;
}

void OssEvGraphBuilder::connect(int from, std::string_view output, int to, std::string_view input)
{
    const int count = int(m_graph->m_nodes.size());
    if (to < 0 || to >= count)
        return;
    if (from < 0 || from >= count) {
        fail(to, "what is connected to \"" + std::string(input) + "\" is missing");
        return;
    }
    const OssEvGraph::Node &source = m_graph->m_nodes[std::size_t(from)];
    OssEvGraph::Node &target = m_graph->m_nodes[std::size_t(to)];
    const int inputIndex = target.kernel == nullptr ? -1 : target.kernel->inputIndex(input);
    if (inputIndex < 0) {
        fail(to, "it has no input \"" + std::string(input) + "\"");
        return;
    }
    int outputIndex = 0;
    if (source.kernel != nullptr && !output.empty())
        outputIndex = source.kernel->outputIndex(output);
    if (outputIndex < 0) {
        fail(to, "\"" + source.name + "\" has no output \"" + std::string(output) + "\"");
        return;
    }
    target.inputs[std::size_t(inputIndex)] = {from, outputIndex};
}

void OssEvGraphBuilder::setCachePoint(int node)
{
    if (node >= 0 && node < int(m_graph->m_nodes.size()))
        m_graph->m_nodes[std::size_t(node)].cachePoint = true;
}

void OssEvGraphBuilder::setWorking(const OssEvWorkingSpace &working)
{
    m_graph->m_working = working;
}

std::shared_ptr<const OssEvGraph> OssEvGraphBuilder::finish()
{
    addNamedImages();
    addStandIns();
    findMissingInputs();
    findCycles();
    return std::exchange(m_graph, std::make_shared<OssEvGraph>());
}

// An input that names an image while nothing is connected becomes a node that reads it.
void OssEvGraphBuilder::addNamedImages()
{
    const std::size_t count = m_graph->m_nodes.size();
    for (std::size_t i = 0; i < count; ++i) {
        const OssEvKernel *kernel = m_graph->m_nodes[i].kernel;
        for (std::size_t input = 0; kernel != nullptr && input < kernel->inputs.size(); ++input) {
            const std::string &parameter = kernel->inputs[input].imageParameter;
            const OssEvGraph::Node &node = m_graph->m_nodes[i];
            const auto found = node.parameters.find(parameter);
            if (parameter.empty() || node.inputs[input].node >= 0 || found == node.parameters.end())
                continue;
            const auto *image = std::get_if<std::string>(&found->second);
            if (image == nullptr || image->empty())
                continue;
            const int added = addNode(node.name, "image", {{"File", *image}});
            m_graph->m_nodes[i].inputs[input] = {added, 0};
        }
    }
}

void OssEvGraphBuilder::addStandIns()
{
    const std::size_t count = m_graph->m_nodes.size();
    for (std::size_t i = 0; i < count; ++i) {
        const OssEvKernel *kernel = m_graph->m_nodes[i].kernel;
        for (std::size_t input = 0; kernel != nullptr && input < kernel->inputs.size(); ++input) {
            const OssEvKernelInput &port = kernel->inputs[input];
            const OssEvGraph::Node &node = m_graph->m_nodes[i];
            if (port.standIn.empty() || node.inputs[input].node >= 0 || !node.error.empty())
                continue;
            // Copies: the list of nodes moves when it grows.
            const std::string name = node.name;
            const OssEvParameters parameters = node.parameters;
            const int added = addNode(name, port.standIn, parameters);
            connect(added, port.standInOutput, int(i), port.name);
        }
    }
}

void OssEvGraphBuilder::findMissingInputs()
{
    for (std::size_t i = 0; i < m_graph->m_nodes.size(); ++i) {
        const OssEvGraph::Node &node = m_graph->m_nodes[i];
        if (node.kernel == nullptr)
            continue;
        for (std::size_t input = 0; input < node.inputs.size(); ++input) {
            const OssEvKernelInput &port = node.kernel->inputs[input];
            if (port.required && node.inputs[input].node < 0)
                fail(int(i), "nothing is connected to \"" + port.name + "\"");
        }
    }
}

// Takes nodes away whose inputs are all gone; what is left lies on a cycle or behind one.
void OssEvGraphBuilder::findCycles()
{
    const std::vector<OssEvGraph::Node> &nodes = m_graph->m_nodes;
    std::vector<std::vector<int>> consumers(nodes.size());
    std::vector<int> open(nodes.size(), 0);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const OssEvGraph::Link &link : nodes[i].inputs) {
            if (link.node >= 0) {
                consumers[std::size_t(link.node)].push_back(int(i));
                ++open[i];
            }
        }
    }
    std::vector<int> ready;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (open[i] == 0)
            ready.push_back(int(i));
    }
    while (!ready.empty()) {
        const int node = ready.back();
        ready.pop_back();
        for (const int consumer : consumers[std::size_t(node)]) {
            if (--open[std::size_t(consumer)] == 0)
                ready.push_back(consumer);
        }
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (open[i] > 0)
            fail(int(i), "its wires run in a circle");
    }
}

void OssEvGraphBuilder::fail(int node, const std::string &reason)
{
    std::string &error = m_graph->m_nodes[std::size_t(node)].error;
    if (error.empty())
        error = reason;
}
