#include "OssCore/Program/OssClassFactoryManager.h"

OssClassFactory::OssClassFactory(QObject *parent)
    : QObject(parent)
{
}

OssClassFactory::~OssClassFactory() = default;

void OssClassFactory::registerMe(OssClassFactory *factory)
{
    OssClassFactoryManager::instance()->registerFactory(factory);
}

void OssClassFactoryManager::registerFactory(OssClassFactory *factory)
{
    if (!factory)
        return;
    m_factories.emplace_back(factory);
    m_byName.insert(factory->className(), factory);
}

QPointer<QObject> OssClassFactoryManager::create(const QString &className, QObject *node) const
{
    OssClassFactory *factory = m_byName.value(className);
    return factory ? factory->create(node) : QPointer<QObject>();
}
