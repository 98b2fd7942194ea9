#include "OssModel/OssModelServices.h"

#include "OssCore/OssCoreServices.h"
#include "OssModel/Evaluation/OssBakeManager.h"
#include "OssModel/Evaluation/OssDependencyMarks.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Layers/OssLayerManager.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssModel/Layers/OssMaterialPaintManager.h"
#include "OssModel/Nodes/OssBakePointWatch.h"
#include "OssModel/Nodes/OssLayerRefreshSuspensionManager.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"
#include "OssModel/Nodes/OssSnNodeClasses.h"
#include "OssModel/Nodes/OssSnTeleportNodeManager.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Project/OssProjectManager.h"

struct OssModelServices::Services
{
    OssCoreServices core;
    OssFileWatch files;
    OssColorManagement colors;
    OssMeshes meshes;
    OssShaderNetworkManager networks;
    OssNodeTypeWatch nodeTypes;
    OssLinkedCustomAttributeManager links;
    OssSnTeleportNodeManager teleports;
    OssLayerShaderModelManager shaderModels;
    OssBakePointWatch bakePoints;
    OssProblems problems;
    OssLayerManager layers;
    OssLayerRefreshSuspensionManager layerRefreshes;
    OssLayerShaderManager layerShaders;
    OssMaterialPaintManager materialPaint;
    OssImageManager images;
    OssCanvasManager canvases;
    OssEvaluationService evaluation;
    OssBakeManager bakes;
    OssProjectManager projects;
    OssExportManager exports;
    OssSolo solo;
    OssViewedNode viewed;
    OssDependencyMarks dependencies;
};

OssModelServices::OssModelServices()
    : m_services(std::make_unique<Services>())
{
    OssSnNodeClasses::registerAll();
}

OssModelServices::~OssModelServices()
{
    m_services->projects.closeProject();
    OssUndoManager::instance()->clear(); // steps hold nodes
}
