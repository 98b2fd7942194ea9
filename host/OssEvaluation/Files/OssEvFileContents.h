#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvKey.h"

#include <memory>
#include <string>

/// What files hold, as keys: equal bytes, equal key, whatever a file is called and whenever it was
/// written. A file is read again only when its size, its times or itself is another. Any thread.
class OSSEVALUATION_EXPORT OssEvFileContents
{
public:
    OssEvFileContents();
    OssEvFileContents(const OssEvFileContents &) = delete;
    OssEvFileContents &operator=(const OssEvFileContents &) = delete;
    ~OssEvFileContents();

    /// Null when there is no such file, or it cannot be read.
    OssEvKey of(const std::string &path);

    /// Has whoever reads a file now, or wants to, go without. For the end of the process.
    void giveUp();

    /// What tells without reading that a file may have changed: name, size and times. Empty when
    /// there is no such file.
    static std::string quickLook(const std::string &path);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
