#pragma once

class OssScriptManager;

/// The script classes of the host.
namespace OssScriptClasses {

/// Makes them and their factories known.
void registerAll(OssScriptManager *manager);

} // namespace OssScriptClasses
