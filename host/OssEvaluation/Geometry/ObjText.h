#pragma once

#include <cstddef>
#include <string>

/// The text of an OBJ file as the reading library takes it.
struct ObjText
{
    std::string text;
    std::size_t leftOut = 0; ///< faces that name what the file does not have
    std::string firstFault;  ///< the first of them: line 11, "f 1/1 2/2 99/3"

    /// Numbers without a digit before the point get one; faces that name vertices, texture coordinates or
    /// normals that do not exist are left out. Needs memory for twice the file.
    static ObjText read(const std::string &path);
};
