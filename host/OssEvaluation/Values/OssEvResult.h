#pragma once

#include <string>
#include <utility>

/// Outcome of an operation that can fail for reasons a user must read: empty means it went well.
/// The text names the file or node and the reason, in UTF-8 and without a full stop.
class [[nodiscard]] OssEvResult
{
public:
    OssEvResult() = default;

    static OssEvResult failure(std::string reason)
    {
        OssEvResult result;
        result.m_error = std::move(reason);
        return result;
    }

    bool ok() const { return m_error.empty(); }

    explicit operator bool() const { return ok(); }

    const std::string &error() const { return m_error; }

private:
    std::string m_error;
};
