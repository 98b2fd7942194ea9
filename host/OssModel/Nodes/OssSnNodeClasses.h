#pragma once

/// The classes of nodes that types can name.
namespace OssSnNodeClasses {

/// Tells them to the factory. A second time changes nothing.
void registerAll();

} // namespace OssSnNodeClasses
