#pragma once

#include "OssEvaluation/Graph/OssEvGraph.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A node of a graph that a test writes down.
struct TestNode
{
    std::string name;
    std::string kernel;
    OssEvParameters parameters{};
    /// What is read by which input: a node's first output, "Noise", or another one, "Brick.Height".
    std::vector<std::pair<std::string, std::string>> inputs{};
    bool isCachePoint = false;
};

/// Nodes are numbered as they stand; what they read may stand behind them.
inline std::shared_ptr<const OssEvGraph> graphOf(const std::vector<TestNode> &nodes)
{
    OssEvGraphBuilder builder;
    std::map<std::string, int> numbers;
    for (const TestNode &node : nodes) {
        numbers[node.name] = builder.addNode(node.name, node.kernel, node.parameters);
        if (node.isCachePoint)
            builder.setCachePoint(numbers[node.name]);
    }
    for (const TestNode &node : nodes) {
        for (const auto &[input, source] : node.inputs) {
            const auto dot = std::min(source.find('.'), source.size());
            const std::string output = dot < source.size() ? source.substr(dot + 1) : "";
            builder.connect(numbers.at(source.substr(0, dot)), output, numbers.at(node.name),
                            input);
        }
    }
    return builder.finish();
}

/// Nodes "0", "1" and so on of these kernels, each but the first with the one before as "Input".
inline std::shared_ptr<const OssEvGraph> chainOf(const std::vector<const char *> &kernels)
{
    OssEvGraphBuilder builder;
    int last = -1;
    for (const char *kernel : kernels) {
        const int node = builder.addNode(std::to_string(last + 1), kernel);
        if (last >= 0)
            builder.connect(last, "", node, "Input");
        last = node;
    }
    return builder.finish();
}

inline std::shared_ptr<const OssEvGraph> nodeOf(const char *kernel,
                                                const OssEvParameters &parameters = {})
{
    return graphOf({{"Node", kernel, parameters}});
}

/// The attributes of a node that reads an image.
inline OssEvParameters file(const std::string &name)
{
    return {{"File", name}};
}
