#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvParameter.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What is computed: nodes and wires as plain values, immutable and free of any document. A caller
/// copies what matters of its document into a builder, which is cheap, and hands the graph to the
/// engine on any thread.
class OSSEVALUATION_EXPORT OssEvGraph
{
public:
    struct Link
    {
        /// -1 when nothing is connected.
        int node = -1;
        int output = 0;
    };

    struct Node
    {
        /// For messages.
        std::string name;
        /// Null when the kernel is not known; the error says so.
        const OssEvKernel *kernel = nullptr;
        /// Complete.
        OssEvParameters parameters;
        /// One for each input of the kernel.
        std::vector<Link> inputs;
        bool cachePoint = false;
        /// Why the node cannot be computed, in words. Nodes that do not depend on it can.
        std::string error;
    };

    const std::vector<Node> &nodes() const { return m_nodes; }

    /// In which all of its colours are.
    const OssEvWorkingSpace &working() const { return m_working; }

    /// Index of a node; -1 when there is none of that name.
    int find(std::string_view name) const;

    /// Nodes that the output of `node` depends on, it included, sources first.
    std::vector<int> upstream(int node) const;

    /// The first error of the node or of anything upstream, with the name of the node that has it.
    OssEvResult check(int node) const;

private:
    friend class OssEvGraphBuilder;
    std::vector<Node> m_nodes;
    OssEvWorkingSpace m_working;
};

/// Makes a graph. Faults do not stop it: they become errors of the nodes that have them.
class OSSEVALUATION_EXPORT OssEvGraphBuilder
{
public:
    OssEvGraphBuilder();
    /// Goes on from a graph, whose nodes keep their indices.
    explicit OssEvGraphBuilder(const OssEvGraph &graph);

    /// The index by which the node is connected.
    int addNode(std::string name, std::string_view kernel, const OssEvParameters &parameters = {});

    /// By the names of kernels' ports. An empty output is the first one.
    void connect(int from, std::string_view output, int to, std::string_view input);

    /// Keeps the node's pixels in the cache, as bake points and nodes under an editor's hand ask.
    void setCachePoint(int node);

    void setWorking(const OssEvWorkingSpace &working);

    /// The builder is empty afterwards.
    std::shared_ptr<const OssEvGraph> finish();

private:
    void addNamedImages();
    /// Likewise for inputs for which another kernel stands in.
    void addStandIns();
    void findMissingInputs();
    void findCycles();
    void fail(int node, const std::string &reason);

    std::shared_ptr<OssEvGraph> m_graph;
};
