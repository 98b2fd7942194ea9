#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaImage.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssaPalette.h"
#include "OssScriptObjects/OssaPreferences.h"
#include "OssScriptObjects/OssaProgress.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssaUndo.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "support/ModelFixture.h"

#include <QMetaMethod>

#include <memory>

namespace {

/// Of any type that a meta-object names, as it is when nobody has given it a value.
QVariant plain(int type)
{
    return type == QMetaType::Void || type == QMetaType::QVariant ? QVariant()
                                                                  : QVariant(type, nullptr);
}

/// Where a call finds such a value or leaves its own.
void *placeOf(QVariant &value, int type)
{
    if (type == QMetaType::Void)
        return nullptr;
    return type == QMetaType::QVariant ? &value : value.data();
}

/// Whether a list is empty, anything else as it was made.
bool isUntouched(const QVariant &value, int type)
{
    if (value.canConvert<QVariantList>())
        return value.toList().isEmpty();
    if (QMetaType::typeFlags(type).testFlag(QMetaType::PointerToQObject))
        return !value.value<QObject *>();
    return type >= QMetaType::User || type == QMetaType::QVariant || value == plain(type);
}

void expectGone(const QByteArray &what)
{
    OssScriptManager *scripts = OssScriptManager::instance();
    EXPECT_TRUE(scripts->hasError()) << what.constData();
    EXPECT_EQ(scripts->lastError().type, OssScriptException::InternalObjectGone)
        << what.constData() << ": " << qPrintable(scripts->lastError().message);
    scripts->clearError();
}

/// Calls every slot and reads and writes every property of an object that has nothing to work on.
void expectAllReportThatItIsGone(Ossa::API *api, const QByteArrayList &except = {})
{
    const OssScriptManager::Run quiet;
    const QMetaObject *type = api->metaObject();
    for (int i = Ossa::API::staticMetaObject.methodCount(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (method.methodType() != QMetaMethod::Slot || except.contains(method.name()))
            continue;
        QVariant result = plain(method.returnType());
        std::vector<QVariant> values(std::size_t(method.parameterCount()));
        std::vector<void *> arguments{placeOf(result, method.returnType())};
        for (int n = 0; n < method.parameterCount(); ++n) {
            ASSERT_NE(method.parameterType(n), QMetaType::UnknownType)
                << method.methodSignature().constData();
            values[std::size_t(n)] = plain(method.parameterType(n));
            arguments.push_back(placeOf(values[std::size_t(n)], method.parameterType(n)));
        }
        api->qt_metacall(QMetaObject::InvokeMetaMethod, i, arguments.data());
        expectGone(method.methodSignature());
        EXPECT_TRUE(isUntouched(result, method.returnType()))
            << method.methodSignature().constData();
    }
    for (int i = Ossa::API::staticMetaObject.propertyCount(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        const QVariant value = property.read(api);
        expectGone(property.name());
        if (property.isWritable()) {
            property.write(api, value);
            expectGone(property.name());
        }
    }
}

template <class... Api>
std::vector<std::unique_ptr<Ossa::API>> allWithNothing()
{
    const OssScriptManager::Run quiet;
    QObject stranger;
    std::vector<std::unique_ptr<Ossa::API>> all;
    (all.push_back(std::make_unique<Api>(&stranger)), ...);
    return all;
}

using GoneObjects = ModelFixture;

} // namespace

TEST_F(GoneObjects, everySlotAndPropertyOfEveryClassSaysSoAndAnswersNothing)
{
    const std::vector<std::unique_ptr<Ossa::API>> gone = allWithNothing<
        Ossa::Actions, Ossa::GeoEntity, Ossa::Image, Ossa::ImageSet, Ossa::Node, Ossa::NodeGraph,
        Ossa::Palette, Ossa::Preferences, Ossa::Progress, Ossa::Project, Ossa::Undo>();
    for (const auto &api : gone) {
        SCOPED_TRACE(api->metaObject()->className());
        OssScriptManager::instance()->clearError();
        // Of work that could not begin there is none to go on with or to end.
        expectAllReportThatItIsGone(api.get(), {"set", "end"});
    }
}

TEST_F(GoneObjects, aRemovedNodeIsGoneThoughTheHistoryKeepsIt)
{
    OssSnBaseNode *node = add("Misc/Group");
    auto *api = OssScriptObject<Ossa::Node>(node);
    m_network->removeNodes({node});
    ASSERT_FALSE(api->isNull());
    expectAllReportThatItIsGone(api);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(api->type(), QStringLiteral("Misc/Group")) << "until it is back";
}
