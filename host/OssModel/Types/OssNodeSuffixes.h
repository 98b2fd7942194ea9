#pragma once

#include <QString>

/// What files of nodes are called.
namespace OssNodeSuffixes {

inline const QString Nodes = QStringLiteral(".ong"); ///< gizmos, too
inline const QString Material = QStringLiteral(".oma");
inline const QString CustomProcedural = QStringLiteral(".opc");

/// For a file dialog: "*.ong".
inline QString filter(const QString &suffix)
{
    return QLatin1Char('*') + suffix;
}

} // namespace OssNodeSuffixes
