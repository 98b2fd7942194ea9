#pragma once

#include <QPoint>
#include <QString>

#include <functional>

class OssSnNodeType;
class QWidget;

/// Finding a type of node by a few letters, with what was used last and the favourites at hand.
namespace QuickCreation {

using Filter = std::function<bool(const OssSnNodeType &type)>;

/// Path key of the type that the user chooses; empty when none was. `position`, of the viewport, is
/// where the search opens and then where the node is wanted. Without a filter all types.
QString findNodeType(QWidget *viewport, QPoint *position, const Filter &fits);

} // namespace QuickCreation
