#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

TestFolder::TestFolder()
    : m_path((std::filesystem::temp_directory_path() / "ossa-XXXXXX").string())
{
    EXPECT_NE(::mkdtemp(m_path.data()), nullptr);
}

TestFolder::~TestFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

std::string TestFolder::write(const std::string &name, const std::string &content) const
{
    std::ofstream file(path(name), std::ios::binary);
    file << content;
    file.close();
    EXPECT_TRUE(file.good()) << name;
    return path(name);
}

std::string TestFolder::content(const std::string &name) const
{
    const std::ifstream file(path(name), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> TestFolder::names() const
{
    std::vector<std::string> result;
    for (const auto &entry : std::filesystem::directory_iterator(m_path))
        result.push_back(entry.path().filename().string());
    std::sort(result.begin(), result.end());
    return result;
}
