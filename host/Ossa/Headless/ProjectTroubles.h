#pragma once

/// For commands that worked with the open project: tells on stderr, a line for each, which meshes
/// their files could not give, and what stands in for its colour configuration. The exit code for that: Failure where there is any, though the work may
/// have been done with what the project keeps. A code that is a failure already stays, and nothing is
/// told twice.
int withProjectTroubles(int exitCode);
