#include "Manager/OssSnNodeGraphScene.h"

#include "OssNodeGraph/Items/OssNgSceneIndex.h"

OssSnNodeGraphScene::OssSnNodeGraphScene() = default;

OssSnNodeGraphScene::~OssSnNodeGraphScene()
{
    OssNgSceneIndex::releaseItems(this);
}
