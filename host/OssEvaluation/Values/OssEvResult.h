#pragma once

#include <string>
#include <utility>

/// Outcome of an operation that can fail for reasons a user must read: empty means it went well.
/// The text names the file or node and the reason, in UTF-8 and without a full stop.
class [[nodiscard]] OssEvResult
{
public:
    OssEvResult() = default;

    /// `node`: see node().
    static OssEvResult failure(std::string reason, std::string node = {})
    {
        OssEvResult result;
        result.m_error = std::move(reason);
        result.m_node = std::move(node);
        return result;
    }

    /// The text begins with the name of the node that is at fault.
    static OssEvResult failureOf(const std::string &node, const std::string &reason)
    {
        return failure(prefix(node) + reason, node);
    }

    bool ok() const { return m_error.empty(); }

    explicit operator bool() const { return ok(); }

    const std::string &error() const { return m_error; }

    /// By its name in the graph; empty when no single node is at fault, or none is known.
    const std::string &node() const { return m_node; }

    /// How an error begins that a node is to blame for.
    static std::string prefix(const std::string &node)
    {
        return node.empty() ? std::string() : "\"" + node + "\": ";
    }

private:
    std::string m_error;
    std::string m_node;
};
