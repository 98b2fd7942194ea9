#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Program/OssClassFactory.h"
#include "OssCore/Program/OssService.h"

#include <QHash>

#include <memory>
#include <vector>

/// Makes objects by class name through the registered factories.
class OSSCORE_EXPORT OssClassFactoryManager : public OssService<OssClassFactoryManager>
{
public:
    OssClassFactoryManager() = default;

    /// Takes ownership. A second factory of one name replaces the first in look-ups.
    void registerFactory(OssClassFactory *factory);
    /// Empty for names that no factory answers to.
    QPointer<QObject> create(const QString &className, QObject *node) const;

private:
    std::vector<std::unique_ptr<OssClassFactory>> m_factories;
    QHash<QString, OssClassFactory *> m_byName;
};
