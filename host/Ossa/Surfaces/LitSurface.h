#pragma once

#include "OssModel/Nodes/OssSnProducer.h"

#include <QVector>

#include <vector>

class OssGeoEntity;
class OssProject;

/// What is seen on faces of an object: a material, or what some node gives. GUI thread; a value for the
/// moment.
struct LitSurface
{
    OssSnProducer shown; ///< a null node: nothing, the object is bare
    const OssGeoEntity *entity = nullptr;
    std::vector<int> slots; ///< material slots of the object's mesh; none: all faces

    /// An object's materials, each where it belongs. An object without one is bare; while its mesh is not
    /// there it is not seen at all.
    static QVector<LitSurface> of(const OssProject *project, const OssGeoEntity *entity);
    /// The same with a node that is looked at: a material where it belongs among the others, anything
    /// else on all faces. It comes first.
    static QVector<LitSurface> of(const OssProject *project, const OssGeoEntity *entity,
                                  const OssSnProducer &looked);
    /// Objects that are seen with an object: all that were read from files, if that was. Shapes of our own all
    /// lie at the same place.
    static QVector<const OssGeoEntity *> beside(const OssProject *project,
                                                const OssGeoEntity *entity);
};
