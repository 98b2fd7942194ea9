#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QString>
#include <QVector>

class OssSnBaseNode;

/// Finds nodes by what is known of them.
namespace OssNodeSearch {

/// Why a node was found, in words; empty when it was not. A text is looked for in the node's name,
/// its type, its description, its error, the values of its attributes ("radius=3" names one), and
/// its state: "disabled", "bypassed", "cached", "error", "unconnected". Several words must all fit.
/// `score` ranks names above all else; it may be null.
OSSINTERFACE_EXPORT QString whyFound(const OssSnBaseNode *node, const QString &text, int *score);

} // namespace OssNodeSearch
