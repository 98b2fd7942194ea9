#pragma once

/// Makes the node graph's script classes known to the script manager, the palette's first.
void initNodeGraphAPI();
