#include "Manager/OssSnNodeGraphScene.h"

#include "OssNodeGraph/Index/OssNgSceneIndex.h"

OssSnNodeGraphScene::OssSnNodeGraphScene() = default;

OssSnNodeGraphScene::~OssSnNodeGraphScene()
{
    OssNgSceneIndex::releaseItems(this);
}
