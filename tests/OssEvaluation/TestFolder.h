#pragma once

#include <string>
#include <vector>

/// A folder that is gone with everything in it when the test is over.
class TestFolder
{
public:
    TestFolder();
    TestFolder(const TestFolder &) = delete;
    TestFolder &operator=(const TestFolder &) = delete;
    ~TestFolder();

    std::string path(const std::string &name) const { return m_path + "/" + name; }

    /// Makes a file; returns its path.
    std::string write(const std::string &name, const std::string &content) const;
    std::string content(const std::string &name) const;
    /// Of everything in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string m_path;
};
