#pragma once

#include <QString>

#include <utility>

/// Outcome of an operation that can fail for reasons a user must read: empty means it went well.
/// The text names the file or object and the reason, without a full stop.
class [[nodiscard]] OssResult
{
public:
    OssResult() = default;

    static OssResult failure(QString reason)
    {
        OssResult result;
        result.m_error = std::move(reason);
        return result;
    }

    bool ok() const { return m_error.isEmpty(); }

    explicit operator bool() const { return ok(); }

    QString error() const { return m_error; }

private:
    QString m_error;
};
