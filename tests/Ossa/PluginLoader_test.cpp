#include "Ossa/Plugins/PluginLoader.h"

#include "Ossa/Plugins/PluginActions.h"
#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace {

class PluginLoading : public testing::Test
{
protected:
    PluginLoading() { qApp->setProperty("started", QStringList()); }

    void add(const char *plugin, const char *asName)
    {
        const QString source = QStringLiteral(OSSA_TEST_PLUGINS "/%1.so")
                                   .arg(QLatin1String(plugin));
        ASSERT_TRUE(QFile::copy(source, folder.filePath(QString::fromLatin1(asName))));
    }

    void load() { loader.load(folder.path()); }

    static QStringList started() { return qApp->property("started").toStringList(); }

    QTemporaryDir folder;
    PluginLoader loader;
};

} // namespace

TEST_F(PluginLoading, startsEachOnceInTheOrderOfPriority)
{
    add("GoodPlugin", "a.so");
    add("EarlyPlugin", "z.so");
    load();
    EXPECT_TRUE(loader.failures().isEmpty());
    EXPECT_EQ(started(),
              (QStringList{QStringLiteral("EarlyPlugin"), QStringLiteral("GoodPlugin")}));
    EXPECT_EQ(loader.plugins().size(), 2);
}

TEST_F(PluginLoading, foreignPluginsAreLeftAloneUnrun)
{
    const ExpectedLog expected("Plug-in foreign.so cannot be used");
    add("ForeignPlugin", "foreign.so");
    load();
    EXPECT_TRUE(loader.plugins().isEmpty());
    ASSERT_EQ(loader.failures().size(), 1);
    EXPECT_EQ(loader.failures().first().file, QStringLiteral("foreign.so"));
    EXPECT_TRUE(loader.failures().first().reason.contains(QStringLiteral("com.example.other/2.0")));
    EXPECT_FALSE(qApp->property("foreignCodeRan").toBool());
}

TEST_F(PluginLoading, aBrokenFileIsToldAndTheOthersStillStart)
{
    const ExpectedLog expected("Plug-in broken.so cannot be used");
    QFile broken(folder.filePath(QStringLiteral("broken.so")));
    ASSERT_TRUE(broken.open(QFile::WriteOnly));
    broken.write("\x7f"
                 "ELF and then nothing that makes sense");
    broken.close();
    add("GoodPlugin", "good.so");
    load();
    EXPECT_EQ(started(), QStringList(QStringLiteral("GoodPlugin")));
    ASSERT_EQ(loader.failures().size(), 1);
    EXPECT_EQ(loader.failures().first().file, QStringLiteral("broken.so"));
}

TEST_F(PluginLoading, oneThatRefusesIsTold)
{
    const ExpectedLog expected("Plug-in refusing.so cannot be used");
    add("RefusingPlugin", "refusing.so");
    load();
    EXPECT_TRUE(loader.plugins().isEmpty());
    EXPECT_EQ(loader.failures().size(), 1);
}

TEST_F(PluginLoading, aMissingFolderIsToldInTheLogToo)
{
    const ExpectedLog expected("Plug-in /nowhere/plugins cannot be used");
    loader.load(QStringLiteral("/nowhere/plugins"));
    ASSERT_EQ(loader.failures().size(), 1);
    EXPECT_EQ(loader.failures().first().file, QStringLiteral("/nowhere/plugins"));
    const auto lines = OssDebugLog::instance()->lines();
    EXPECT_TRUE(lines.last().text.contains(QStringLiteral("/nowhere/plugins")));
    EXPECT_EQ(lines.last().category, OssDebugLog::Warning);
}

TEST_F(PluginLoading, filesThatAreNoLibrariesAreNoFailure)
{
    QFile note(folder.filePath(QStringLiteral("README.txt")));
    ASSERT_TRUE(note.open(QFile::WriteOnly));
    note.close();
    add("GoodPlugin", "good.so");
    load();
    EXPECT_TRUE(loader.failures().isEmpty());
}

TEST_F(PluginLoading, slotsWithoutACommandGetOne)
{
    add("GoodPlugin", "good.so");
    load();
    PluginActions::fileUnfiled(loader);
    auto *tree = OssActionTreeManager::instance();
    QAction *dump = tree->findAction(QStringLiteral("/Ossa/NodeGraph/Dump Selected Node Info"));
    ASSERT_NE(dump, nullptr);
    dump->trigger();
    EXPECT_EQ(loader.plugins().first().object->property("dumps").toInt(), 1);
    // Slots that the plug-in lacks get none.
    EXPECT_FALSE(tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Upgrade All Node Info")));
    delete dump;
}
