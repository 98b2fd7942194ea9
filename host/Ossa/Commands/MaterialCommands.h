#pragma once

#include <QCoreApplication>
#include <QString>

class OssGeoEntity;

/// What is done with node types that make a material.
class MaterialCommands
{
    Q_DECLARE_TR_FUNCTIONS(MaterialCommands)

public:
    /// Makes a node of the type in the graph of the object, or for null where the user works, and looks at
    /// it, as one step; what was there stays in the graph. False, and words in the status bar, where that
    /// cannot be.
    static bool putOnObject(const QString &pathKey, const OssGeoEntity *object = nullptr);
};
