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

    /// The user stopped it: a failure that needs no box to tell.
    static OssResult cancelled(QString reason)
    {
        OssResult result = failure(std::move(reason));
        result.m_isCancelled = true;
        return result;
    }

    bool ok() const { return m_error.isEmpty(); }

    explicit operator bool() const { return ok(); }

    bool isCancelled() const { return m_isCancelled; }

    QString error() const { return m_error; }

private:
    QString m_error;
    bool m_isCancelled = false;
};
