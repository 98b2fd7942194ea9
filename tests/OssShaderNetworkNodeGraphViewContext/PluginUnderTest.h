#pragma once

#include "OssShaderNetworkNodeGraphViewContextPlugin.h"

/// The one of the process: its actions are filed once.
inline OssShaderNetworkNodeGraphViewContextPlugin *pluginUnderTest()
{
    static auto *object = [] {
        auto *made = new OssShaderNetworkNodeGraphViewContextPlugin; // for the process
        made->initialize();
        return made;
    }();
    return object;
}
