#pragma once

#include <QString>

class OssSnBaseNode;

/// Which node a line of text speaks of: a line of the log, or what a script wrote.
namespace NodeMention {

/// The first node of the open project whose path, or name in quotes, stands in the text. Names are
/// looked for in the object that is shown first. Null where there is none.
OssSnBaseNode *find(const QString &text);

} // namespace NodeMention
