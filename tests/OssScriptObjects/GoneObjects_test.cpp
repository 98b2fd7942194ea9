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

/// Values of any type that a meta-object names, as they are when nobody has given them one.
class Plain
{
public:
    explicit Plain(int type)
        : m_type(type)
        , m_data(type == QMetaType::Void ? nullptr : QMetaType::create(type))
    {
    }

    ~Plain()
    {
        if (m_data)
            QMetaType::destroy(m_type, m_data);
    }

    Plain(const Plain &) = delete;
    Plain &operator=(const Plain &) = delete;

    void *data() const { return m_data; }

    /// Whether a list is empty, anything else as it was made.
    bool isUntouched() const
    {
        if (!m_data || m_type == QMetaType::QVariant)
            return true;
        const QVariant value(m_type, m_data);
        if (value.canConvert<QVariantList>())
            return value.toList().isEmpty();
        const bool isPointer = QMetaType::typeFlags(m_type).testFlag(QMetaType::PointerToQObject);
        return isPointer ? !value.value<QObject *>()
                         : m_type >= QMetaType::User || value == QVariant(m_type, nullptr);
    }

private:
    const int m_type;
    void *const m_data;
};

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
        const Plain result(method.returnType());
        std::vector<std::unique_ptr<Plain>> values;
        std::vector<void *> arguments{result.data()};
        for (int n = 0; n < method.parameterCount(); ++n) {
            ASSERT_NE(method.parameterType(n), QMetaType::UnknownType)
                << method.methodSignature().constData();
            values.push_back(std::make_unique<Plain>(method.parameterType(n)));
            arguments.push_back(values.back()->data());
        }
        api->qt_metacall(QMetaObject::InvokeMetaMethod, i, arguments.data());
        expectGone(method.methodSignature());
        EXPECT_TRUE(result.isUntouched()) << method.methodSignature().constData();
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
