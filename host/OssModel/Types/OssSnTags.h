#pragma once

#include <QString>

/// The tags by which the program knows a node, or an input, for what it is. Descriptions of node types
/// give them; others may stand there, too, and mean nothing.
namespace OssSnTags {

/// Shows what is connected to it; one for an object.
inline QString viewer()
{
    return QStringLiteral("_viewer");
}

/// A point on a wire.
inline QString dot()
{
    return QStringLiteral("_dot");
}

/// Has a network of its own inside.
inline QString group()
{
    return QStringLiteral("_group");
}

/// Stands inside a group for an input of it.
inline QString input()
{
    return QStringLiteral("_input");
}

/// Stands inside a group for an output of it.
inline QString output()
{
    return QStringLiteral("_output");
}

/// Makes a surface.
inline QString shader()
{
    return QStringLiteral("_shader");
}

inline QString shaderInput()
{
    return QStringLiteral("_shaderInput");
}

/// Gives the channels of the material that it is wired to.
inline QString splitMaterial()
{
    return QStringLiteral("_splitMaterial");
}

/// Of the program, as is all inside of it.
inline QString systemShader()
{
    return QStringLiteral("_systemShader");
}

/// Fed by a stack of layers.
inline QString stackShader()
{
    return QStringLiteral("_stackShader");
}

/// A backdrop around a stack of masks.
inline QString maskStack()
{
    return QStringLiteral("_maskStack");
}

/// Merges one stream with another.
inline QString blend()
{
    return QStringLiteral("_blend");
}

inline QString bottomTransparency()
{
    return QStringLiteral("_bottomTransparency");
}

/// Stands for the current material.
inline QString currentMaterialProxy()
{
    return QStringLiteral("_currentMaterialProxy");
}

/// Cannot be removed.
inline QString graphLayerInput()
{
    return QStringLiteral("_GraphLayerInput");
}

/// Offered in no menu.
inline QString internal()
{
    return QStringLiteral("_internal");
}

/// Its panel keeps the order of its attributes.
inline QString attributesInOrder()
{
    return QStringLiteral("_respectShaderGroupNodeAttributeOrder");
}

/// Of an input: has no port on the item.
inline QString hidden()
{
    return QStringLiteral("_hidden");
}

} // namespace OssSnTags
