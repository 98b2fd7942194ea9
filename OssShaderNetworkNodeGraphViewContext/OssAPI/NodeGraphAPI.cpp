#include "OssAPI/NodeGraphAPI.h"

#include "OssAPI/NodeGraphPalette.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptTypes.h"

namespace {

class OssOssPaletteNodeGraphPaletteAPIFactory : public OssAPIFactory
{
public:
    Ossa::API *create(QObject *internal) override { return new Ossa::NodeGraphPalette(internal); }

    QString internalClassName() override { return QStringLiteral("OssPalette"); }

    QString scriptClassName() override { return QStringLiteral("Ossa::NodeGraphPalette"); }
};

class OssOssShaderNetworkViewNodeGraphViewAPIFactory : public OssAPIFactory
{
public:
    Ossa::API *create(QObject *internal) override { return new Ossa::NodeGraphView(internal); }

    QString internalClassName() override { return QStringLiteral("OssShaderNetworkView"); }

    QString scriptClassName() override { return QStringLiteral("Ossa::NodeGraphView"); }
};

} // namespace

void initNodeGraphAPI()
{
    OssScriptManager *scripts = OssScriptManager::instance();
    OssScriptTypes::registerClass<Ossa::NodeGraphPalette>();
    OssScriptTypes::registerClass<Ossa::NodeGraphView>();
    scripts->registerAPIFactory(new OssOssPaletteNodeGraphPaletteAPIFactory);        // takes it
    scripts->registerAPIFactory(new OssOssShaderNetworkViewNodeGraphViewAPIFactory); // takes it
}
