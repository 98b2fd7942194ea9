#pragma once

#include <QMetaType>

/// What flows through a port. Told apart by colour and by shape, so that no one depends on colour.
enum class OssNgPortKind : quint8 {
    Color,    ///< disc
    Scalar,   ///< square
    Vector,   ///< triangle
    Material, ///< diamond
    Data,     ///< hexagon
};

Q_DECLARE_METATYPE(OssNgPortKind)
