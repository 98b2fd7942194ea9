#pragma once

#include <vector>

/// The menus of the application as texts for OssMenuDefinition. The tables stand in the source
/// file: the one place where the content of menus is written down.
namespace OssHostMenus {

struct Row
{
    const char *group;
    const char *name;
    const char *text;
};

const std::vector<Row> &table();

} // namespace OssHostMenus
