#pragma once

#include "OssCore/OssCore_export.h"

#include <QString>

/// Carrier of named parameters that dialogs can show: preferences, attributes, knobs.
class OSSCORE_EXPORT OssGroupParameterObject
{
public:
    virtual ~OssGroupParameterObject();

    /// Label of the parameter `Name` for people. Names nobody knows are taken apart at capitals
    /// and underscores: "shakeTime" gives "Shake Time".
    virtual QString prettyPropertyName(const QString &Name) const;
};
