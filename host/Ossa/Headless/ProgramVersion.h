#pragma once

#include <string>

/// What was built. The commit is empty where the sources came without their history.
namespace ProgramVersion {
extern const char *const number;
extern const char *const commit;

/// As "0.1.0 (1a2b3c4d5e)".
inline std::string text()
{
    const std::string built = commit;
    return number + (built.empty() ? std::string() : " (" + built + ")");
}
} // namespace ProgramVersion
