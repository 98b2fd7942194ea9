#include "OssShaderNetworkWidget.h"

#include "OssCore/Program/OssDebug.h"
#include "OssGroupNodeKnobWidget.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Layers/OssLayerShader.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssModel/Layers/OssLayerShaderUtils.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "Panels/PropertyPanelFrame.h"

#include <QScrollArea>

// One panel of node properties: what it lists, its frame, and the buttons of a group.

namespace {

constexpr const char *Source = "OssShaderNetworkWidget";
constexpr const char *GroupNodeProperty = "GroupNode";
const QColor DefaultFrame(0, 0, 255, 255);

QString panelName(const OssSnBaseNode *node)
{
    QString name = node->uuidString();
    name.remove(QLatin1Char('{')).remove(QLatin1Char('}'));
    return name;
}

OssPropertyPanelOptions optionsFor(OssSnBaseNode *node)
{
    OssPropertyPanelOptions options;
    if (!OssLayerShaderUtils::isLayerShaderNode(node))
        return options;
    if (!node->hasTag(OssSnTags::attributesInOrder())) {
        for (const char *pattern :
             {"Diffuse.*", "Specular.*", "Environment.*", "Ambient.*", "Emissive.*", "Bump.*",
              "Normal.*", "Vector.*", "Displacement.*"})
            options.sectionOrder.append(QRegularExpression(QLatin1String(pattern)));
    }
    const OssLayerShader *shader = OssLayerShaderManager::instance()->getLayerShader(node);
    if (shader && shader->isStackShader())
        options.hiddenSections.append(QStringLiteral("Displacement"));
    options.nodeProperties.append(QStringLiteral("name"));
    options.nodePropertyPaths.append(QStringLiteral("/Node"));
    options.showNodeProperties = true;
    options.orderSections = true;
    options.foldUntouchedSections = true;
    return options;
}

/// Of a button in a group's heading; with a line when the button has none.
OssSnGroupNode *groupOf(const QObject *sender)
{
    const auto *button = qobject_cast<const QPushButton *>(sender);
    if (!button)
        return nullptr;
    auto *group = qobject_cast<OssSnGroupNode *>(
        button->property(GroupNodeProperty).value<QObject *>());
    if (!group)
        OssDebug(Source, __LINE__, "GroupNode is NULL");
    return group;
}

} // namespace

QString OssSnNodePropertiesWidget::frameStyle(const OssSnBaseNode *node, const QWidget *panel)
{
    return PropertyPanelFrame::styleSheet(node, panel->objectName(), DefaultFrame);
}

QWidget *OssSnNodePropertiesWidget::makePanel(OssSnBaseNode *node)
{
    auto *made = new OssNodePropertyPanel(node, optionsFor(node), m_scrollArea->widget());
    connect(made, &OssNodePropertyPanel::left, this, &OssSnNodePropertiesWidget::giveFocusBack);
    made->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    made->setAttribute(Qt::WA_DeleteOnClose);
    made->setObjectName(panelName(node));
    made->setStyleSheet(frameStyle(node, made));
    addGroupButtons(made, node);
    followSections(made);
    return made;
}

/// A section that the user folded, or unfolded, is so when the panel is opened again in this session.
void OssSnNodePropertiesWidget::followSections(const QWidget *panel)
{
    const auto sections = panel->findChildren<OssExpandableListWidget *>();
    for (OssExpandableListWidget *section : sections) {
        if (!section->heading())
            continue;
        const QString key = panel->objectName() + QLatin1Char('/') + section->heading()->text();
        const auto known = m_foldedSections.constFind(key);
        if (known != m_foldedSections.cend() && *known != section->isCollapsed())
            section->toggle();
        connect(section, &OssExpandableListWidget::collapsedChanged, this,
                [this, key](bool collapsed) { m_foldedSections.insert(key, collapsed); });
    }
}

void OssSnNodePropertiesWidget::addGroupButtons(QWidget *panel, OssSnBaseNode *node)
{
    auto *group = qobject_cast<OssSnGroupNode *>(node);
    const auto *list = qobject_cast<OssExpandableListWidget *>(panel);
    if (!group || !list || !list->heading())
        return;
    const auto add = [&](int index, const QString &text, const QString &toolTip) {
        auto *button = new OssMiniButton(text);
        button->setToolTip(toolTip);
        button->setAccessibleName(toolTip);
        button->setAutoFillBackground(true);
        button->setProperty(GroupNodeProperty, QVariant::fromValue<QObject *>(group));
        list->heading()->insertWidget(index, button);
        return button;
    };
    connect(add(0, QStringLiteral("p"),
                tr("Choose which knobs and parameters should be included in the group")),
            &QPushButton::clicked, this, &OssSnNodePropertiesWidget::showGroupNodeKnobWidget);
    connect(
        add(1, QStringLiteral("s"),
            tr("Open Group Node subgraph (%1+Enter, %1+Doube-click)").arg(QStringLiteral("Ctrl"))),
        &QPushButton::clicked, this, &OssSnNodePropertiesWidget::showGroupNodeSubgraph);
}

void OssSnNodePropertiesWidget::showGroupNodeKnobWidget()
{
    OssSnGroupNode *group = groupOf(sender());
    if (!group)
        return;
    OssGroupNodeKnobDialog dialog(group);
    dialog.resize(600, 400);
    dialog.exec();
}

void OssSnNodePropertiesWidget::showGroupNodeSubgraph()
{
    const OssSnGroupNode *group = groupOf(sender());
    if (!group)
        return;
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(group->viewContext());
    if (!context) {
        OssDebug(Source, __LINE__, "Context is NULL");
        return;
    }
    context->showGroupNodeTab();
}
