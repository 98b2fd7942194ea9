#include "Ossa/Plugins/PluginLoader.h"

#include "Ossa/Plugins/PluginActions.h"
#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "support/ExpectedLog.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

namespace {

class PluginLoading : public testing::Test
{
protected:
    PluginLoading() { qApp->setProperty("started", QStringList()); }

    void add(const char *plugin, const char *asName)
    {
        const QString source = text(OSSA_TEST_PLUGINS "/%1.so").arg(text(plugin));
        ASSERT_TRUE(QFile::copy(source, folder.filePath(text(asName))));
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
    writeFile(folder.filePath(text("README.txt")));
    load();
    EXPECT_TRUE(loader.failures().isEmpty()) << "what is no library is no failure";
    EXPECT_EQ(started(), texts({"EarlyPlugin", "GoodPlugin"}));
    EXPECT_EQ(loader.plugins().size(), 2);
}

TEST_F(PluginLoading, ofOneNameInSeveralFoldersTheFirstCounts)
{
    const ExpectedLog expected("one of this name was loaded from");
    QTemporaryDir other;
    add("GoodPlugin", "a.so");
    ASSERT_TRUE(QFile::copy(folder.filePath(text("a.so")), other.filePath(text("a.so"))));
    ASSERT_TRUE(
        QFile::copy(text(OSSA_TEST_PLUGINS "/EarlyPlugin.so"), other.filePath(text("b.so"))));
    loader.load(folder.path(), {other.path(), text("/nowhere/at/all")});
    ASSERT_EQ(loader.plugins().size(), 2);
    EXPECT_EQ(loader.plugins().first().file, other.filePath(text("b.so")));
    ASSERT_EQ(loader.failures().size(), 1) << "a folder that others may have is no failure";
    EXPECT_EQ(loader.failures().first().file, other.filePath(text("a.so")));
}

TEST_F(PluginLoading, whatCannotBeUsedIsToldAndTheOthersStillStart)
{
    const ExpectedLog expected[] = {ExpectedLog("Plug-in broken.so cannot be used"),
                                    ExpectedLog("Plug-in foreign.so cannot be used"),
                                    ExpectedLog("Plug-in refusing.so cannot be used")};
    writeFile(folder.filePath(text("broken.so")), "\x7f"
                                                  "ELF and then nothing that makes sense");
    add("ForeignPlugin", "foreign.so");
    add("RefusingPlugin", "refusing.so");
    add("GoodPlugin", "good.so");
    load();
    EXPECT_EQ(started(), texts({"GoodPlugin"}));
    EXPECT_EQ(loader.plugins().size(), 1);
    QMap<QString, QString> reasons;
    for (const PluginLoader::Failure &failure : loader.failures())
        reasons.insert(failure.file, failure.reason);
    EXPECT_EQ(reasons.keys(), texts({"broken.so", "foreign.so", "refusing.so"}));
    EXPECT_TRUE(reasons.value(text("foreign.so")).contains(text("com.example.other/2.0")));
    EXPECT_FALSE(qApp->property("foreignCodeRan").toBool());
}

TEST_F(PluginLoading, aMissingFolderIsToldInTheLogToo)
{
    const ExpectedLog expected("Plug-in /nowhere/plugins cannot be used");
    loader.load(text("/nowhere/plugins"));
    ASSERT_EQ(loader.failures().size(), 1);
    EXPECT_EQ(loader.failures().first().file, text("/nowhere/plugins"));
    EXPECT_EQ(OssDebugLog::instance()->lines().last().category, OssDebugLog::Warning);
}

TEST_F(PluginLoading, slotsWithoutACommandGetOne)
{
    add("GoodPlugin", "good.so");
    load();
    PluginActions::fileUnfiled(loader);
    auto *tree = OssActionTreeManager::instance();
    QAction *dump = tree->findAction(text("/Ossa/NodeGraph/Dump Selected Node Info"));
    ASSERT_NE(dump, nullptr);
    dump->trigger();
    EXPECT_EQ(loader.plugins().first().object->property("dumps").toInt(), 1);
    // Slots that the plug-in lacks get none.
    EXPECT_FALSE(tree->hasAction(text("/Ossa/NodeGraph/Upgrade All Node Info")));
    delete dump;
}
