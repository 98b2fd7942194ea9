#pragma once

#include <QString>
#include <QStringList>

class OssSnBaseNode;

/// Which input of a new node a selected one is wired to.
namespace AutoConnect {

/// The next free input: preferred ones first, then in order; hidden ones never. Empty when none is
/// left.
QString nextFreeInput(const OssSnBaseNode *node);

} // namespace AutoConnect
