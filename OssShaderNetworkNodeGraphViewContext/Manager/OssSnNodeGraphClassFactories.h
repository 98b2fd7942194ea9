#pragma once

/// Makes the context classes known to the host by name. Called once.
void registerNodeGraphClassFactories();
