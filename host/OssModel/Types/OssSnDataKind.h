#pragma once

#include <QMetaType>

/// What flows through a port. The numbers are used in files and by the GUI.
enum class OssSnDataKind { Color = 0, Scalar = 1, Vector = 2, Material = 3, Data = 4 };

Q_DECLARE_METATYPE(OssSnDataKind)
