#pragma once

class OssProject;

/// A brick wall with mortar, moss and edge wear: one network of about 25 nodes.
void writeWeatheredBrick(OssProject *project);
/// A plaster wall as it was saved when node types were others: older, newer and changed ones, and a
/// group with knobs.
void writeOldPlaster(OssProject *project);
