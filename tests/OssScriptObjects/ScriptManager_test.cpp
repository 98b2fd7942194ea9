#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaPalette.h"
#include "OssScriptObjects/OssScriptError.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "ScriptTestObjects.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QPointer>

namespace {

const QString thingClass = QStringLiteral("Tests::ThingAPI");
const QString otherClass = QStringLiteral("Tests::OtherAPI");

OssScriptManager *scripts()
{
    return OssScriptManager::instance();
}

Ossa::Application *application()
{
    return OssScriptObject<Ossa::Application>(qApp);
}

class ScriptManager : public testing::Test
{
protected:
    ScriptManager()
    {
        static bool once = false;
        if (!once) {
            scripts()->registerAPIFactory(new ThingFactory(thingClass));
            scripts()->registerAPIFactory(new ThingFactory(otherClass));
        }
        once = true;
        scripts()->clearError();
    }
};

} // namespace

TEST_F(ScriptManager, oneScriptObjectPerInternalObjectAndClass)
{
    Thing thing;
    Ossa::API *api = scripts()->obtainAPI(&thing, thingClass);
    ASSERT_NE(api, nullptr);
    EXPECT_EQ(scripts()->obtainAPI(&thing, thingClass), api);
    EXPECT_NE(scripts()->obtainAPI(&thing, otherClass), api);
    EXPECT_EQ(api->internalObject(), &thing);
}

TEST_F(ScriptManager, factoriesServeSubclasses)
{
    SubThing thing;
    EXPECT_NE(scripts()->obtainAPI(&thing, thingClass), nullptr);
    QObject stranger;
    EXPECT_EQ(scripts()->obtainAPI(&stranger, thingClass), nullptr);
    EXPECT_EQ(scripts()->obtainAPI(nullptr, thingClass), nullptr);
}

TEST_F(ScriptManager, entryGoesWithTheInternalObjectAndTheScriptObjectStaysEmpty)
{
    auto thing = std::make_unique<Thing>();
    const QObject *address = thing.get();
    const QPointer<Ossa::API> api = scripts()->obtainAPI(thing.get(), thingClass);
    thing.reset();
    EXPECT_EQ(scripts()->findAPI(address, thingClass), nullptr);
    ASSERT_FALSE(api.isNull());
    EXPECT_TRUE(api->isNull());
    scripts()->deleteAPI(api);
    EXPECT_TRUE(api.isNull());
}

TEST_F(ScriptManager, entryGoesWithTheScriptObject)
{
    Thing thing;
    scripts()->deleteAPI(scripts()->obtainAPI(&thing, thingClass));
    EXPECT_EQ(scripts()->findAPI(&thing, thingClass), nullptr);
    delete scripts()->obtainAPI(&thing, thingClass); // behind the registry's back
    EXPECT_EQ(scripts()->findAPI(&thing, thingClass), nullptr);
    EXPECT_NE(scripts()->obtainAPI(&thing, thingClass), nullptr);
}

TEST_F(ScriptManager, emptyScriptObjectsAreNotHandedOut)
{
    Thing refused;
    refused.setObjectName(QStringLiteral("refused"));
    const int before = ThingAPI::living;
    EXPECT_EQ(scripts()->obtainAPI(&refused, thingClass), nullptr);
    EXPECT_EQ(ThingAPI::living, before);
}

TEST_F(ScriptManager, firstErrorOfACallIsKept)
{
    const ExpectedLog expected[] = {ExpectedLog("3 of %n"), ExpectedLog("later")};
    OssScriptError(OssScriptException::OutOfRange, "/some/folder/File.cpp", 7, "%d of %s", 3, "%n");
    OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__, "later");
    ASSERT_TRUE(scripts()->hasError());
    EXPECT_EQ(int(scripts()->lastError().type), 13);
    EXPECT_EQ(scripts()->lastError().source, QStringLiteral("File.cpp"));
    EXPECT_EQ(scripts()->lastError().line, 7);
    EXPECT_EQ(scripts()->lastError().message, QStringLiteral("3 of %n"));
    scripts()->clearError();
    EXPECT_FALSE(scripts()->hasError());
}

TEST_F(ScriptManager, errorsOfARunningScriptAreNotLoggedToo)
{
    const ExpectedLog expected("nobody else tells");
    const auto logged = [] {
        return OssDebugLog::instance()->lines().size();
    };
    const int before = logged();
    {
        const OssScriptManager::Run run;
        OssScriptError(OssScriptException::WrongState, __FILE__, __LINE__, "told by the runner");
        EXPECT_TRUE(scripts()->hasError());
    }
    EXPECT_EQ(logged(), before);
    OssScriptError(OssScriptException::WrongState, __FILE__, __LINE__, "nobody else tells");
    EXPECT_EQ(logged(), before + 1);
}

TEST_F(ScriptManager, errorTypesKeepTheirNumbers)
{
    EXPECT_EQ(int(OssScriptException::InternalObjectGone), 0);
    EXPECT_EQ(int(OssScriptException::ObjectUnavailable), 11);
    EXPECT_EQ(int(OssScriptException::OutOfRange), 13);
}

TEST_F(ScriptManager, paletteIsFoundWrappedAndReportsWhenGone)
{
    const ExpectedLog expected[] = {ExpectedLog("Internal OssPalette object not valid"),
                                    ExpectedLog("There is no palette \"Tests\"")};
    auto *palette = new OssPalette;
    palette->setObjectName(QStringLiteral("Tests"));
    OssPaletteManager::instance()->registerPalette(palette, true, QString());
    auto *api = application()->palette(QStringLiteral("Tests"));
    ASSERT_NE(api, nullptr);
    EXPECT_EQ(api->name(), QStringLiteral("Tests"));
    OssPaletteManager::instance()->deletePalettes();
    EXPECT_EQ(api->name(), QString());
    EXPECT_EQ(scripts()->lastError().type, OssScriptException::InternalObjectGone);
    scripts()->clearError();
    EXPECT_EQ(application()->palette(QStringLiteral("Tests")), nullptr);
    EXPECT_EQ(scripts()->lastError().type, OssScriptException::UnknownName);
}

TEST_F(ScriptManager, wrongObjectIsReportedOnce)
{
    const ExpectedLog expected("Not an object of class OssPalette");
    QObject stranger;
    const Ossa::Palette api(&stranger);
    EXPECT_TRUE(api.isNull());
    EXPECT_EQ(scripts()->lastError().type, OssScriptException::ObjectUnavailable);
}

TEST_F(ScriptManager, commandsAreTriggeredByPath)
{
    const ExpectedLog expected("is not available now");
    QAction command(QStringLiteral("Run Me"));
    int runs = 0;
    QObject::connect(&command, &QAction::triggered, [&runs] { ++runs; });
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Tests/Script"), &command);
    application()->trigger(QStringLiteral("Tests/Script/Run Me"));
    EXPECT_FALSE(scripts()->hasError());
    command.setEnabled(false);
    application()->trigger(QStringLiteral("/Tests/Script/Run Me"));
    EXPECT_EQ(scripts()->lastError().type, OssScriptException::NotAllowed);
    EXPECT_EQ(runs, 1);
}
