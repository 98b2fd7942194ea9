#include "Panels/PropertyPanelFrame.h"

#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QBrush>

namespace {

QColor fillColorOf(const OssNgNode *guiNode)
{
    const QBrush brush = guiNode->fillBrush();
    if (brush.gradient() && !brush.gradient()->stops().isEmpty())
        return brush.gradient()->stops().first().second;
    return brush.color();
}

} // namespace

QString PropertyPanelFrame::styleSheet(const OssSnBaseNode *node, const QString &name,
                                       const QColor &defaultColor)
{
    QString top = defaultColor.name();
    QString side = QStringLiteral("rgba(0, 0, 0, 0%)");
    if (const OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(node)) {
        const QColor color = fillColorOf(guiNode);
        top = color.name();
        if (node->selected())
            side = top;
        else if (guiNode->hovered())
            side = QStringLiteral("rgba(%1, %2, %3, %4%)")
                       .arg(color.red())
                       .arg(color.green())
                       .arg(color.blue())
                       .arg(color.alphaF() * 50.0);
    }
    return QStringLiteral("QFrame#%1[OssExpandableListWidget=true] {"
                          "    border-top-style: solid;"
                          "    border-top-width: 2px;"
                          "    border-top-color: %2;"
                          "    border-left-style: solid;"
                          "    border-left-width: 1px;"
                          "    border-left-color: %3;"
                          "    border-right-style: solid;"
                          "    border-right-width: 1px;"
                          "    border-right-color: %3;"
                          "    border-bottom-style: solid;"
                          "    border-bottom-width: 1px;"
                          "    border-bottom-color: %3;"
                          "    border-radius: 3px;}")
        .arg(name, top, side);
}
