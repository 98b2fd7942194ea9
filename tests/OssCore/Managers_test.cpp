#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Program/OssClassFactoryManager.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTranslator>

#include <algorithm>
#include <memory>

namespace {

/// Sets an environment variable for a while.
class Variable
{
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_before(qgetenv(name))
    {
        qputenv(name, value);
    }

    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

    ~Variable()
    {
        if (m_wasSet)
            qputenv(m_name, m_before);
        else
            qunsetenv(m_name);
    }

private:
    const char *m_name;
    bool m_wasSet;
    QByteArray m_before;
};

// --- status

/// Hears what the status manager says.
class Status : public testing::Test
{
protected:
    Status()
    {
        QObject::connect(m_status, &OssStatusManager::beginProcessing, &m_listener,
                         [this](const QString &title) { m_told.append(text("begin ") + title); });
        QObject::connect(m_status, &OssStatusManager::endProcessing, &m_listener,
                         [this] { m_told.append(text("end")); });
        QObject::connect(m_status, &OssStatusManager::progressChanged, &m_listener,
                         [this](int done, int total) {
                             m_told.append(QStringLiteral("%1/%2").arg(done).arg(total));
                         });
        QObject::connect(
            m_status, &OssStatusManager::messageShown, &m_listener,
            [this](const QString &message) { m_told.append(text("says ") + message); });
    }

    OssStatusManager *m_status = OssStatusManager::instance();
    QObject m_listener;
    QStringList m_told;
};

TEST_F(Status, theOutermostWorkIsWhatTheUserSees)
{
    EXPECT_FALSE(m_status->inProgress());
    {
        OssStatusManager::Work outer(text("Baking"));
        outer.setProgress(1, 10);
        {
            OssStatusManager::Work inner(text("Reading"));
            inner.setProgress(5, 6);
            EXPECT_EQ(m_status->title(), text("Baking"));
            EXPECT_EQ(m_status->done(), 1);
            EXPECT_EQ(m_status->total(), 10);
        }
        EXPECT_TRUE(m_status->inProgress()) << "the outer one goes on";
        outer.setProgress(2, 10);
    }
    EXPECT_FALSE(m_status->inProgress());
    EXPECT_EQ(m_told, texts({"begin Baking", "1/10", "2/10", "end"}));
    const OssStatusManager::Work next(text("Filling"));
    EXPECT_EQ(m_status->title(), text("Filling"));
    EXPECT_EQ(m_status->done() + m_status->total(), 0) << "a new one starts at nothing";
}

TEST_F(Status, cancellingReachesEveryWorkUntilTheLastIsOver)
{
    {
        const OssStatusManager::Work outer(text("Outer"));
        {
            const OssStatusManager::Work inner(text("Inner"));
            EXPECT_FALSE(inner.isCancelled());
            m_status->cancel();
            EXPECT_TRUE(inner.isCancelled());
            EXPECT_TRUE(outer.isCancelled());
        }
        const OssStatusManager::Work second(text("Second"));
        EXPECT_TRUE(second.isCancelled()) << "part of what was cancelled";
    }
    const OssStatusManager::Work next(text("Next"));
    EXPECT_FALSE(next.isCancelled()) << "what comes afterwards is another matter";
}

TEST_F(Status, cancellingNothingDoesNotCancelWhatComes)
{
    m_status->cancel();
    const OssStatusManager::Work work(text("Later"));
    EXPECT_FALSE(work.isCancelled());
}

TEST_F(Status, messagesAreShownWhetherWorkIsDoneOrNot)
{
    m_status->showMessage(text("Saved"));
    const OssStatusManager::Work work(text("Work"));
    m_status->showMessage(text("Half"));
    EXPECT_EQ(m_told, texts({"says Saved", "begin Work", "says Half"}));
}

// --- preferences

/// Has what the preferences ask for by name, for some of its properties.
class Chooser
    : public QObject
    , public OssGroupParameterObject
{
    Q_OBJECT
    Q_PROPERTY(int shakeTime MEMBER shakeTime)
    Q_PROPERTY(QString mode MEMBER mode)

public:
    int shakeTime = 5;
    QString mode = text("Ask");
    int saves = 0;

    QString prettyPropertyName(const QString &name) const override
    {
        return name == QLatin1String("mode") ? text("On bake")
                                             : OssGroupParameterObject::prettyPropertyName(name);
    }

public Q_SLOTS:

    void resetShakeTime() { shakeTime = 3; }

    QString modeTooltip() const { return text("What to do"); }

    QStringList modeList() const { return {text("Ask"), text("Never")}; }

    void savePreferences() { ++saves; }
};

/// Offers nothing by name.
class PlainChooser : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int gridSize MEMBER gridSize)

public:
    int gridSize = 8;
};

class Preferences : public testing::Test
{
protected:
    Preferences()
        : m_before(m_manager->preferences().size())
        , m_object(std::make_unique<Chooser>())
    {
        m_manager->registerPreference(text("Graph"), text("Nodes"), m_object.get(),
                                      text("shakeTime"));
        m_manager->registerPreference(text("Graph"), text("Baking"), m_object.get(), text("mode"));
        m_manager->registerPreference(text("Graph"), text("Grid"), &m_plain, text("gridSize"));
    }

    OssPreferenceManager::Preference preference(int index) const
    {
        return m_manager->preferences().at(m_before + index);
    }

    OssPreferenceManager *m_manager = OssPreferenceManager::instance();
    int m_before;
    std::unique_ptr<Chooser> m_object;
    PlainChooser m_plain;
};

TEST_F(Preferences, comeInTheOrderOfRegistration)
{
    ASSERT_EQ(m_manager->preferences().size(), m_before + 3);
    EXPECT_EQ(preference(0).key, text("shakeTime"));
    EXPECT_EQ(preference(1).group, text("Baking"));
    EXPECT_EQ(preference(2).object.data(), &m_plain);
    m_manager->registerPreference(text("Page"), {}, nullptr, text("key"));
    m_manager->registerPreference(text("Page"), {}, m_object.get(), {});
    EXPECT_EQ(m_manager->preferences().size(), m_before + 3)
        << "without object or key there is none";
}

TEST_F(Preferences, areFoundByNameOnTheObject)
{
    using Manager = OssPreferenceManager;
    EXPECT_EQ(Manager::label(preference(0)), text("Shake Time"));
    EXPECT_EQ(Manager::label(preference(1)), text("On bake"));
    EXPECT_EQ(Manager::label(preference(2)), text("Grid Size"));
    EXPECT_EQ(Manager::toolTip(preference(1)), text("What to do"));
    EXPECT_EQ(Manager::toolTip(preference(0)), QString());
    EXPECT_EQ(Manager::allowedTexts(preference(1)).size(), 2);
    EXPECT_TRUE(Manager::allowedTexts(preference(2)).isEmpty());
    EXPECT_TRUE(Manager::setValue(preference(0), 9));
    EXPECT_EQ(Manager::value(preference(0)), QVariant(9));
    Manager::reset(preference(0));
    EXPECT_EQ(m_object->shakeTime, 3);
    Manager::reset(preference(2));
    EXPECT_EQ(m_plain.gridSize, 8) << "one that knows no default stays";
}

/// A language in which every text is written backwards.
class Backwards : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        QString found = QLatin1String(context) + QLatin1Char(':') + QLatin1String(text);
        std::reverse(found.begin(), found.end());
        return found;
    }

    bool isEmpty() const override { return false; }
};

TEST_F(Preferences, areReadInTheUsersLanguageAndKnownByTheSameNameInAll)
{
    using Manager = OssPreferenceManager;
    Backwards language;
    QCoreApplication::installTranslator(&language);
    EXPECT_EQ(Manager::path(preference(1)), text("Graph/Baking/On bake"));
    EXPECT_EQ(Manager::pageTitle(preference(1)), Chooser::tr("Graph"));
    EXPECT_EQ(Manager::groupTitle(preference(1)), Chooser::tr("Baking"));
    EXPECT_EQ(Manager::label(preference(1)), Chooser::tr("On bake"));
    EXPECT_NE(Manager::label(preference(1)), text("On bake"));
    QCoreApplication::removeTranslator(&language);
}

TEST_F(Preferences, thoseOfAnObjectThatIsGoneDropOut)
{
    const OssPreferenceManager::Preference old = preference(1);
    m_object.reset();
    EXPECT_EQ(m_manager->preferences().size(), m_before + 1);
    EXPECT_EQ(preference(0).key, text("gridSize"));
    EXPECT_FALSE(OssPreferenceManager::value(old).isValid());
    EXPECT_FALSE(OssPreferenceManager::setValue(old, text("Ask")));
    EXPECT_TRUE(OssPreferenceManager::allowedTexts(old).isEmpty());
    EXPECT_EQ(OssPreferenceManager::toolTip(old), QString());
    OssPreferenceManager::reset(old);
    EXPECT_EQ(OssPreferenceManager::label(old), text("Mode"));
    m_manager->savePreferences();
}

TEST_F(Preferences, everyObjectKeepsItsValuesOnce)
{
    m_manager->savePreferences();
    EXPECT_EQ(m_object->saves, 1) << "however many preferences it has";
    m_manager->savePreferences();
    EXPECT_EQ(m_object->saves, 2);
}

// --- factories

class NumberedFactory : public OssClassFactory
{
    Q_OBJECT

public:
    NumberedFactory(QString name, int number, int *alive)
        : m_name(std::move(name))
        , m_number(number)
        , m_alive(alive)
    {
        ++*m_alive;
    }

    ~NumberedFactory() override { --*m_alive; }

    QPointer<QObject> create(QObject *node) override
    {
        auto *made = new QObject(node);
        made->setObjectName(QString::number(m_number));
        return made;
    }

    QString className() override { return m_name; }

    QString displayName() override { return m_name; }

private:
    QString m_name;
    int m_number;
    int *m_alive;
};

TEST(ClassFactories, theLastOfANameMakesTheObjectsAndAllAreKept)
{
    // Owned by the manager until the program ends.
    static int alive = 0;
    auto *manager = OssClassFactoryManager::instance();
    QObject owner;
    EXPECT_TRUE(manager->create(text("Test::Thing"), &owner).isNull())
        << "nobody answers to it yet";
    auto *first = new NumberedFactory(text("Test::Thing"), 1, &alive);
    first->registerMe(first);
    const QPointer<QObject> made = manager->create(text("Test::Thing"), &owner);
    ASSERT_FALSE(made.isNull());
    EXPECT_EQ(made->parent(), &owner);
    EXPECT_EQ(made->objectName(), text("1"));
    manager->registerFactory(new NumberedFactory(text("Test::Thing"), 2, &alive));
    EXPECT_EQ(manager->create(text("Test::Thing"), &owner)->objectName(), text("2"));
    EXPECT_EQ(alive, 2);
    manager->registerFactory(nullptr);
    EXPECT_TRUE(manager->create(text("Test::thing"), &owner).isNull());
    EXPECT_TRUE(manager->create({}, &owner).isNull());
}

// --- places

TEST(Settings, lieWhereTheEnvironmentSaysAndAllSeeTheSame)
{
    const QTemporaryDir folder;
    const Variable variable("OSSA_CONFIG_DIR", folder.path().toLocal8Bit());
    EXPECT_EQ(OssSettings::folderPath(), folder.path());
    EXPECT_EQ(OssSettings::filePath(), folder.filePath(text("ossa.ini")));
    {
        OssSettings writer;
        writer.setValue(text("Group/key"), 7);
        const OssSettings reader;
        EXPECT_EQ(reader.value(text("Group/key")).toInt(), 7) << "before it is on the disk";
    }
    EXPECT_TRUE(QFile::exists(OssSettings::filePath()));
}

TEST(Settings, areTheUsersWhereNobodySaysOtherwise)
{
    const Variable variable("OSSA_CONFIG_DIR", {});
    EXPECT_TRUE(QDir::isAbsolutePath(OssSettings::folderPath()));
    EXPECT_TRUE(OssSettings::folderPath().endsWith(text("/ossa")));
    EXPECT_EQ(OssSettings::filePath(), OssSettings::folderPath() + text("/ossa.ini"));
}

TEST(Resources, areFoundInTheSourceTree)
{
    const OssResourceInfo *info = OssResourceInfo::instance();
    const QString root = QDir(qEnvironmentVariable("OSSA_ROOT")).absolutePath();
    EXPECT_EQ(info->iconPath(), root + text("/host/Icons"));
    EXPECT_EQ(info->nodeTypePath(), root + text("/host/NodeTypes"));
    EXPECT_EQ(info->examplePath(), root + text("/examples"));
    {
        const Variable variable("OSSA_PLUGIN_DIR", "/some/where/./else");
        EXPECT_EQ(QDir::cleanPath(info->pluginPath()), text("/some/where/else"));
    }
    EXPECT_FALSE(info->pluginPath().contains(text("..")));
    {
        const QTemporaryDir named;
        const QByteArray list = "here:" + named.path().toUtf8() + ":/nowhere/at/all:.";
        const Variable variable("OSSA_PLUGIN_PATH", list);
        EXPECT_TRUE(OssResourceInfo::extensionPaths().contains(named.path()));
        for (const QString &path : OssResourceInfo::extensionPaths())
            EXPECT_TRUE(QDir::isAbsolutePath(path) && QFileInfo(path).isDir())
                << path.toStdString();
    }
    EXPECT_TRUE(info->pluginPath().endsWith(text("/plugins")));
}

TEST(Resources, iconsAreMadeFromFilesThatAreThere)
{
    EXPECT_FALSE(OssIcon::createIconFromFilename(text("Ossa.png")).isNull());
    EXPECT_TRUE(OssIcon::createIconFromFilename(text("Nothing.png")).isNull());
    EXPECT_TRUE(OssIcon::createIconFromFilename({}).isNull());
    EXPECT_TRUE(OssIcon::getIconPath(text("a.png")).endsWith(text("/Icons/a.png")));
}

} // namespace

#include "Managers_test.moc"
