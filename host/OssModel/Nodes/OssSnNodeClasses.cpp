#include "OssModel/Nodes/OssSnNodeClasses.h"

#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Nodes/OssSnCustomProceduralNode.h"
#include "OssModel/Nodes/OssSnGeoChannelNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBakePointNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBottomTransparencyNode.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Nodes/OssSnShaderInputNode.h"

void OssSnNodeClasses::registerAll()
{
    OssSnNodeFactory::registerClass<OssSnBaseNode>("OssSnBaseNode");
    OssSnNodeFactory::registerClass<OssSnGroupNode>("OssSnGroupNode");
    OssSnNodeFactory::registerClass<OssSnMultiChannelBakePointNode>(
        "OssSnMultiChannelBakePointNode");
    OssSnNodeFactory::registerClass<OssSnMultiChannelBottomTransparencyNode>(
        "OssSnMultiChannelBottomTransparencyNode");
    OssSnNodeFactory::registerClass<OssSnMultiChannelMergeNode>("OssSnMultiChannelMergeNode");
    OssSnNodeFactory::registerClass<OssSnMultiChannelGroupNode>("OssSnMultiChannelGroupNode");
    OssSnNodeFactory::registerClass<OssSnCustomProceduralNode>("OssSnCustomProceduralNode");
    OssSnNodeFactory::registerClass<OssSnMaterialNode>("OssSnMaterialNode");
    OssSnNodeFactory::registerClass<OssSnBakePointNode>("OssSnBakePointNode");
    OssSnNodeFactory::registerClass<OssSnGeoChannelNode>("OssSnGeoChannelNode");
    OssSnNodeFactory::registerClass<OssSnBroadcastTeleportNode>("OssSnBroadcastTeleportNode");
    OssSnNodeFactory::registerClass<OssSnReceiverTeleportNode>("OssSnReceiverTeleportNode");
    OssSnNodeFactory::registerClass<OssSnShaderInputNode>("OssSnShaderInputNode");
    OssSnNodeFactory::registerClass<OssSnChannelInputNode>("OssSnChannelInputNode");
}
