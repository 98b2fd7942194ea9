#pragma once

/// The module "_ossa", on which the module "ossa" stands: calls, properties and signals of script
/// objects, descriptions of their classes.
namespace OssPyModule {

/// Has the linker keep this part of the library, whose module registers itself.
void use();

/// Delivers the signals that came while a script called the program. With the interpreter's lock
/// held.
void deliverSignals();

} // namespace OssPyModule
