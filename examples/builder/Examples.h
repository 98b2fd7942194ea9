#pragma once

class OssProject;

/// A brick wall with mortar, moss and edge wear: one network of about 25 nodes.
void writeWeatheredBrick(OssProject *project);
/// The materials of a harbour: about 400 nodes in several groups, with backdrops.
void writeHarborScene(OssProject *project);
