#include "OssScriptObjects/OssScriptClasses.h"

#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProject.h"
#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaImage.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssaPalette.h"
#include "OssScriptObjects/OssaPreferences.h"
#include "OssScriptObjects/OssaProgress.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssaUndo.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptTypes.h"

#include <QCoreApplication>

namespace {

template <class Api, class Internal>
void add(OssScriptManager *manager)
{
    OssScriptTypes::registerClass<Api>();
    qRegisterMetaType<Internal *>(); // for slots that take what scripts have as a script object
    manager->registerAPIFactory(new OssScriptTypes::Factory<Api, Internal>); // takes it
}

} // namespace

void OssScriptClasses::registerAll(OssScriptManager *manager)
{
    qRegisterMetaType<QList<int>>("QList<int>");
    add<Ossa::Application, QCoreApplication>(manager);
    add<Ossa::Project, OssProject>(manager);
    add<Ossa::GeoEntity, OssGeoEntity>(manager);
    add<Ossa::NodeGraph, OssShaderNetwork>(manager);
    add<Ossa::Node, OssSnBaseNode>(manager);
    add<Ossa::Image, OssImage>(manager);
    add<Ossa::ImageSet, OssImageSet>(manager);
    add<Ossa::Palette, OssPalette>(manager);
    add<Ossa::Actions, OssActionTreeManager>(manager);
    add<Ossa::Preferences, OssPreferenceManager>(manager);
    add<Ossa::Undo, OssUndoManager>(manager);
    add<Ossa::Progress, OssStatusManager>(manager);
}
