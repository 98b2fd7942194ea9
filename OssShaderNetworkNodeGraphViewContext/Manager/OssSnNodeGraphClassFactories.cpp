#include "Manager/OssSnNodeGraphClassFactories.h"

#include "OssCore/Program/OssClassFactory.h"
#include "OssSnGeoChannelNodeGraphViewContext.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnUINodeGraphViewContext.h"

// The host puts the prefix before the whole class name, so the factories bear it twice.
#define OSS_CONTEXT_FACTORY(Class, ...) \
    class Oss##Class##ClassFactory final : public OssClassFactory \
    { \
    public: \
        ~Oss##Class##ClassFactory() override = default; \
        QPointer<QObject> create(QObject *node) override { return new Class(__VA_ARGS__); } \
        QString className() override { return QStringLiteral(#Class); } \
        QString displayName() override { return className(); } \
    }

namespace {

OSS_CONTEXT_FACTORY(OssSnNodeGraphViewContext, node, true);
OSS_CONTEXT_FACTORY(OssSnBakePointNodeGraphViewContext, node);
OSS_CONTEXT_FACTORY(OssSnGeoChannelNodeGraphViewContext, node);
OSS_CONTEXT_FACTORY(OssSnBaseTeleportNodeGraphViewContext, node);
OSS_CONTEXT_FACTORY(OssSnGroupNodeGraphViewContext, node);
OSS_CONTEXT_FACTORY(OssSnUINodeGraphViewContext, node);

template <class Factory>
void registerFactory()
{
    auto *factory = new Factory; // the factory manager takes it
    factory->registerMe(factory);
}

} // namespace

void registerNodeGraphClassFactories()
{
    registerFactory<OssOssSnNodeGraphViewContextClassFactory>();
    registerFactory<OssOssSnBakePointNodeGraphViewContextClassFactory>();
    registerFactory<OssOssSnGeoChannelNodeGraphViewContextClassFactory>();
    registerFactory<OssOssSnBaseTeleportNodeGraphViewContextClassFactory>();
    registerFactory<OssOssSnGroupNodeGraphViewContextClassFactory>();
    registerFactory<OssOssSnUINodeGraphViewContextClassFactory>();
}
