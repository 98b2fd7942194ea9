#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssScriptObjects/OssaPalette.h"
#include "OssScriptObjects/OssScriptError.h"
#include "ScriptFixture.h"
#include "ScriptTestObjects.h"

#include <QPointer>

namespace {

const QString ThingClass = text("Tests::ThingAPI");
const QString OtherClass = text("Tests::OtherAPI");

class ScriptManager : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        scripts()->registerAPIFactory(new ThingFactory(ThingClass));
        scripts()->registerAPIFactory(new ThingFactory(OtherClass));
    }

    ScriptManager() { scripts()->clearError(); }

    static Ossa::API *obtain(QObject *thing) { return scripts()->obtainAPI(thing, ThingClass); }

    static Ossa::API *find(const QObject *thing) { return scripts()->findAPI(thing, ThingClass); }

    /// The error of the call before.
    static OssScriptException::Type errorType()
    {
        EXPECT_TRUE(scripts()->hasError());
        const OssScriptException::Type type = scripts()->lastError().type;
        scripts()->clearError();
        return type;
    }
};

} // namespace

TEST_F(ScriptManager, oneScriptObjectPerInternalObjectAndClassAlsoOfSubclasses)
{
    Thing thing;
    SubThing subThing;
    QObject stranger;
    Ossa::API *api = obtain(&thing);
    ASSERT_NE(api, nullptr);
    EXPECT_EQ(obtain(&thing), api);
    EXPECT_NE(scripts()->obtainAPI(&thing, OtherClass), api);
    EXPECT_EQ(api->internalObject(), &thing);
    EXPECT_NE(obtain(&subThing), nullptr);
    EXPECT_EQ(obtain(&stranger), nullptr);
    EXPECT_EQ(obtain(nullptr), nullptr);
}

TEST_F(ScriptManager, entryGoesWithTheInternalObjectAndTheScriptObjectStaysEmpty)
{
    auto thing = std::make_unique<Thing>();
    const QObject *address = thing.get();
    const QPointer<Ossa::API> api = obtain(thing.get());
    thing.reset();
    EXPECT_EQ(find(address), nullptr);
    ASSERT_FALSE(api.isNull());
    EXPECT_TRUE(api->isNull());
    scripts()->deleteAPI(api);
    EXPECT_TRUE(api.isNull());
}

TEST_F(ScriptManager, entryGoesWithTheScriptObject)
{
    Thing thing;
    scripts()->deleteAPI(obtain(&thing));
    EXPECT_EQ(find(&thing), nullptr);
    delete obtain(&thing); // behind the registry's back
    EXPECT_EQ(find(&thing), nullptr);
    EXPECT_NE(obtain(&thing), nullptr);
}

TEST_F(ScriptManager, emptyScriptObjectsAreNotHandedOut)
{
    Thing refused;
    refused.setObjectName(text("refused"));
    const int before = ThingAPI::living;
    EXPECT_EQ(obtain(&refused), nullptr);
    EXPECT_EQ(ThingAPI::living, before);
}

TEST_F(ScriptManager, theRegisterTakesNothingThatIsNone)
{
    const ExpectedLog expected[] = {ExpectedLog("Factory is NULL", ExpectedLog::Possible),
                                    ExpectedLog("API is NULL", ExpectedLog::Possible)};
    scripts()->registerAPIFactory(nullptr);
    scripts()->registerAPI(nullptr, text("None"));
    scripts()->deleteAPI(nullptr);
    auto *application = OssScriptObject<Ossa::Application>(qApp);
    EXPECT_EQ(scripts()->obtainAPI(qApp, {}), application) << "the class that the factory makes";
    EXPECT_EQ(scripts()->obtainAPI(qApp, text("Ossa::None")), nullptr);
}

TEST_F(ScriptManager, firstErrorOfACallIsKept)
{
    const ExpectedLog expected[] = {ExpectedLog("3 of %n"), ExpectedLog("later")};
    OssScriptError(OssScriptException::OutOfRange, "/some/folder/File.cpp", 7, "%d of %s", 3, "%n");
    OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__, "later");
    ASSERT_TRUE(scripts()->hasError());
    EXPECT_EQ(int(scripts()->lastError().type), 13) << "types keep their numbers";
    EXPECT_EQ(scripts()->lastError().source, text("File.cpp"));
    EXPECT_EQ(scripts()->lastError().line, 7);
    EXPECT_EQ(scripts()->lastError().message, text("3 of %n"));
    scripts()->clearError();
    EXPECT_FALSE(scripts()->hasError());
    EXPECT_EQ(int(OssScriptException::InternalObjectGone), 0);
    EXPECT_EQ(int(OssScriptException::ObjectUnavailable), 11);
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

TEST_F(ScriptManager, paletteIsFoundWrappedAndReportsWhenGone)
{
    const ExpectedLog expected[] = {ExpectedLog("Internal OssPalette object not valid"),
                                    ExpectedLog("There is no palette \"Tests\""),
                                    ExpectedLog("Not an object of class OssPalette")};
    auto *application = OssScriptObject<Ossa::Application>(qApp);
    auto *palette = new OssPalette;
    palette->setObjectName(text("Tests"));
    OssPaletteManager::instance()->registerPalette(palette, true, QString());
    auto *api = application->palette(text("Tests"));
    ASSERT_NE(api, nullptr);
    EXPECT_EQ(api->name(), text("Tests"));
    api->show();
    EXPECT_TRUE(palette->isVisible());
    api->hide();
    EXPECT_FALSE(palette->isVisible());
    OssPaletteManager::instance()->deletePalettes();
    EXPECT_EQ(api->name(), QString());
    EXPECT_EQ(errorType(), OssScriptException::InternalObjectGone);
    EXPECT_EQ(application->palette(text("Tests")), nullptr);
    EXPECT_EQ(errorType(), OssScriptException::UnknownName);
    QObject stranger;
    EXPECT_TRUE(Ossa::Palette(&stranger).isNull());
    EXPECT_EQ(errorType(), OssScriptException::ObjectUnavailable);
}
