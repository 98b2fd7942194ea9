#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// A file that takes its name only when it is complete: until then it lies beside it under another,
/// and the old content stays as it is. Every write and every sync is checked; abandoned, it leaves
/// nothing behind.
class OSSEVALUATION_EXPORT OssEvFile
{
public:
    explicit OssEvFile(const std::string &path);
    OssEvFile(const OssEvFile &) = delete;
    OssEvFile &operator=(const OssEvFile &) = delete;
    ~OssEvFile();

    /// Why nothing can be written, or has not been; empty while all is well.
    const std::string &error() const { return m_error; }

    /// The name that is wanted.
    const std::string &path() const { return m_path; }

    /// The name until then, for libraries that open files themselves.
    const std::string &temporaryPath() const { return m_temporary; }

    bool write(const void *data, std::size_t size);
    bool seek(std::uint64_t position);

    std::uint64_t position() const { return m_position; }

    /// After a library has put another file under the temporary name instead of writing into it.
    void takeReplaced();

    /// Notes a fault found elsewhere; the file cannot be finished any more.
    void fail(const std::string &reason);

    /// Syncs the content, renames the file and syncs the folder.
    OssEvResult finish();

private:
    bool flush();
    void failFromSystem();

    std::string m_path;
    std::string m_temporary;
    std::string m_error;
    std::string m_buffer;
    int m_descriptor = -1;
    std::uint64_t m_position = 0;
    bool m_exists = false;
};
