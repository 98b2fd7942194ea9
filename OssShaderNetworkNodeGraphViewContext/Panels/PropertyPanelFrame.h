#pragma once

#include <QColor>
#include <QString>

class OssSnBaseNode;

namespace PropertyPanelFrame {

/// The style sheet of a node's property panel, by the panel's object name: its top in the colour of
/// the node's item, its sides too while the node is selected, faintly while it is hovered. A node
/// without an item gets the default colour.
QString styleSheet(const OssSnBaseNode *node, const QString &name, const QColor &defaultColor);

} // namespace PropertyPanelFrame
