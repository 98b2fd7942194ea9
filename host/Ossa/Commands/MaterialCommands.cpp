#include "Ossa/Commands/MaterialCommands.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnNodeType.h"

bool MaterialCommands::putOnObject(const QString &pathKey, const OssGeoEntity *object)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const OssShaderNetwork *now = networks->currentShaderNetwork();
    if (object && now && now->geoEntity() != object && !object->shadingGroups().isEmpty())
        networks->setCurrentShaderNetwork(object->shadingGroups().first()->network());
    const OssShaderNetwork *shown = networks->currentViewNetwork();
    const auto type = networks->nodeType(pathKey);
    if (!shown || !type) {
        OssStatusManager::instance()->showMessage(
            tr("Open a project first: the material becomes a node of an object's graph"));
        return false;
    }
    const OssUndoManager::AutoMacro macro(tr("Put %1 on the Object").arg(type->baseName()));
    if (!OssDragAndDropManager::createNode(pathKey))
        return false;
    OssSnBaseNode *made = shown->selectedNodes().value(0);
    if (!made || !made->nodeType() || made->nodeType()->pathKey != pathKey)
        return false;
    networks->requestViewer(made);
    networks->emitNodeGraphIsManuallyChanged();
    return true;
}
