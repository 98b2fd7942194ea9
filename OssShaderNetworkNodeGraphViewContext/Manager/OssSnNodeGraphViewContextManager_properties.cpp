#include "OssSnNodeGraphViewContextManager.h"

#include "OssCore/Program/OssResourceInfo.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"

// The "Node Properties" palette.

namespace {

const QString PaletteKey = QStringLiteral("node_properties_palette");

} // namespace

void OssSnNodeGraphViewContextManager::initialiseNodePropertiesPalette()
{
    auto *palette = new OssPalette; // the palette manager takes it
    m_nodePropertiesWidget = new OssSnNodePropertiesWidget(m_nodeGraphWidget->view(), palette);
    connect(m_nodePropertiesWidget, &OssSnNodePropertiesWidget::nodeDoubledClicked, this,
            &OssSnNodeGraphViewContextManager::showPropertiesPalette);
    connect(m_nodePropertiesWidget, &OssSnNodePropertiesWidget::propertiesUnderMouseChanged, this,
            &OssSnNodeGraphViewContextManager::onNodePropertiesHoverChanged);
    palette->setBodyWidget(m_nodePropertiesWidget);
    palette->setObjectName(tr("Node Properties"));
    palette->setWindowTitle(tr("Node Properties"));
    palette->setContextHelpKey(PaletteKey);
    OssPaletteManager::instance()->registerPalette(palette, true,
                                                   OssResourceInfo::instance()->iconPath()
                                                       + QStringLiteral("/NodeProperties.png"));
}

OssSnNodePropertiesWidget *OssSnNodeGraphViewContextManager::nodePropertiesWidget() const
{
    return m_nodePropertiesWidget;
}

void OssSnNodeGraphViewContextManager::showPropertiesPalette()
{
    OssPalette *palette = OssPaletteManager::instance()->find(PaletteKey, false);
    // A double-click on a viewer would else cover the picture that it asks for.
    const bool hasNothing = m_nodePropertiesWidget && sender() == m_nodePropertiesWidget
                            && !m_nodePropertiesWidget->showsOpened();
    if (!palette || hasNothing)
        return;
    if (!palette->isVisible())
        palette->setVisible(true);
    palette->raise();
}

// An opened panel is a view of the document and no part of it: whether the request may be undone
// makes no difference here.

void OssSnNodeGraphViewContextManager::showNodePropertiesAtPositionEnd(OssSnBaseNode *Node,
                                                                       OssSnBaseNode *Target, bool)
{
    if (Node && Target && m_nodePropertiesWidget)
        m_nodePropertiesWidget->insertAfter(Node, Target);
}

void OssSnNodeGraphViewContextManager::showNodePropertiesAtPositionBegin(OssSnBaseNode *Node,
                                                                         OssSnBaseNode *Target,
                                                                         bool)
{
    if (Node && Target && m_nodePropertiesWidget)
        m_nodePropertiesWidget->insertBefore(Node, Target);
}

void OssSnNodeGraphViewContextManager::replaceNodeProperties(OssSnBaseNode *old,
                                                             OssSnBaseNode *replacement)
{
    if (m_nodePropertiesWidget)
        m_nodePropertiesWidget->replacePanel(old, replacement);
}

void OssSnNodeGraphViewContextManager::showNodeProperties(OssSnBaseNode *Node)
{
    if (m_nodePropertiesWidget)
        m_nodePropertiesWidget->openProperty(Node);
}
