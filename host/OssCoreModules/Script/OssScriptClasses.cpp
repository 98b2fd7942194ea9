#include "OssCoreModules/Script/OssScriptClasses.h"

#include "OssCore/OssPreferenceManager.h"
#include "OssCore/OssStatusManager.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Images/OssImage.h"
#include "OssCoreModules/Images/OssImageSet.h"
#include "OssCoreModules/Interface/OssActionTreeManager.h"
#include "OssCoreModules/Interface/OssPalette.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Project/OssGeoEntity.h"
#include "OssCoreModules/Project/OssProject.h"
#include "OssCoreModules/Script/OssaActions.h"
#include "OssCoreModules/Script/OssaApplication.h"
#include "OssCoreModules/Script/OssaGeoEntity.h"
#include "OssCoreModules/Script/OssaImage.h"
#include "OssCoreModules/Script/OssaImageSet.h"
#include "OssCoreModules/Script/OssaNode.h"
#include "OssCoreModules/Script/OssaNodeGraph.h"
#include "OssCoreModules/Script/OssaPalette.h"
#include "OssCoreModules/Script/OssaPreferences.h"
#include "OssCoreModules/Script/OssaProgress.h"
#include "OssCoreModules/Script/OssaProject.h"
#include "OssCoreModules/Script/OssaUndo.h"
#include "OssCoreModules/Script/OssScriptManager.h"
#include "OssCoreModules/Script/OssScriptTypes.h"

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
