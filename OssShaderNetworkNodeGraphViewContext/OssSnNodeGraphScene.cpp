#include "OssSnNodeGraphScene.h"

#include "OssNodeGraph/OssNgSceneIndex.h"

OssSnNodeGraphScene::OssSnNodeGraphScene() = default;

OssSnNodeGraphScene::~OssSnNodeGraphScene()
{
    OssNgSceneIndex::releaseItems(this);
}
