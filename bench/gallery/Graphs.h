#pragma once

#include "support/ExampleGraph.h"

/// The wall of bricks: nodes of every look, a backdrop, a note, marks and an error.
void buildBrickWall(GraphScene *scene);
/// One node for every mark, shape and port-list mode, one wire for every mark.
void buildMarks(GraphScene *scene);
