#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <string>
#include <vector>

/// What is other when a mesh takes the place of another one that was painted on.
namespace OssEvMeshChange {

struct Change
{
    std::vector<int> patchesGone; ///< paint of theirs is kept, but not seen
    std::vector<int> patchesNew;
    /// Patches of both whose faces lie in other places: paint may sit elsewhere on the object.
    std::vector<int> patchesMoved;
    std::size_t facesBefore = 0;
    std::size_t facesNow = 0;
    bool isShapeOther = false; ///< positions, which bakes of position and normal follow

    bool areUvsSame() const
    {
        return patchesGone.empty() && patchesNew.empty() && patchesMoved.empty();
    }
};

/// Of finished meshes.
OSSEVALUATION_EXPORT Change of(const OssEvMesh &before, const OssEvMesh &now);

/// One line for people; that nothing changed, too.
OSSEVALUATION_EXPORT std::string inWords(const OssEvMesh &before, const OssEvMesh &now);

} // namespace OssEvMeshChange
