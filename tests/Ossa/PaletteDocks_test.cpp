#include "Ossa/Commands/RecentProjects.h"
#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Window/MainWindow.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ModelFixture.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

/// The window with stand-ins for the palettes that have a place of their own.
class Docks : public testing::Test
{
protected:
    Docks()
    {
        graph = make("Node Graph", "node_graph_palette");
        viewer = make("Viewer", "viewer_palette");
        properties = make("Node Properties", "node_properties_palette");
        history = make("History", "history_palette");
        log = make("Log", "log_palette");
        open();
    }

    ~Docks() override
    {
        OssProjectManager::instance()->closeProject();
        window.reset();
        OssPaletteManager::instance()->deletePalettes();
        OssSettings().remove(QStringLiteral("MainWindow"));
    }

    static OssPalette *make(const char *name, const char *helpKey)
    {
        auto *palette = new OssPalette;
        palette->setObjectName(QString::fromLatin1(name));
        palette->setWindowTitle(palette->objectName());
        palette->setContextHelpKey(QString::fromLatin1(helpKey));
        palette->setBodyWidget(new QWidget(palette));
        OssPaletteManager::instance()->registerPalette(palette, true, QString());
        return palette;
    }

    /// A session: the window as it starts.
    void open(bool restored = false)
    {
        window = std::make_unique<MainWindow>();
        if (restored)
            window->restoreLayout();
        window->resize(1200, 800);
        window->show();
        QTest::qWait(20); // shares are given once the window has its size
    }

    void openAnew()
    {
        EXPECT_TRUE(window->close());
        window.reset();
        open(true);
    }

    QRect place(const OssPalette *palette) const
    {
        return {palette->mapTo(window.get(), QPoint()), palette->size()};
    }

    static QAction *toggle(const char *name)
    {
        return OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/Palettes/")
                                                            + QLatin1String(name));
    }

    /// The graph has most of the room; beside it the viewer above the properties, below it the log.
    void expectFirstLayout() const
    {
        EXPECT_GT(place(graph).width(), 1200 * 6 / 10);
        EXPECT_GT(place(graph).height(), 800 / 2);
        EXPECT_GT(place(viewer).left(), place(graph).right());
        EXPECT_GT(place(properties).top(), place(viewer).bottom());
        EXPECT_EQ(place(properties).left(), place(viewer).left());
        EXPECT_GT(place(log).top(), place(graph).bottom());
        EXPECT_LT(place(log).right(), place(viewer).left());
        EXPECT_NE(history->isVisible(), properties->isVisible()) << "tabs of one place";
    }

    OssPalette *graph = nullptr;
    OssPalette *viewer = nullptr;
    OssPalette *properties = nullptr;
    OssPalette *history = nullptr;
    OssPalette *log = nullptr;
    std::unique_ptr<MainWindow> window;
};

TEST_F(Docks, palettesHaveTheirPlacesAtFirstAndAfterAReset)
{
    properties->showBySidebar();
    expectFirstLayout();
    toggle("Viewer")->trigger();
    toggle("Log")->trigger();
    OssActionTreeManager::instance()
        ->findAction(QStringLiteral("/Ossa/View/Reset Layout"))
        ->trigger();
    QTest::qWait(20);
    properties->showBySidebar();
    expectFirstLayout();
}

TEST_F(Docks, severalAreasInARowShareTheRoomAmongThem)
{
    EXPECT_TRUE(window->close());
    window.reset();
    delete properties; // the neighbour of those that have no place of their own
    const OssPalette *first = make("First", "first_palette");
    const OssPalette *second = make("Second", "second_palette");
    open();
    for (const OssPalette *palette : QList<const OssPalette *>{graph, viewer, first, second})
        EXPECT_GE(place(palette).width(), 1200 / 20) << qPrintable(palette->windowTitle());
}

TEST_F(Docks, aTabComesToTheFrontWhenItIsAskedFor)
{
    for (OssPalette *palette : {history, properties, history}) {
        palette->showBySidebar();
        EXPECT_TRUE(palette->isVisible());
        EXPECT_NE(history->isVisible(), properties->isVisible());
    }
}

TEST_F(Docks, aLayoutThatIsDamagedIsNone)
{
    EXPECT_TRUE(window->close());
    window.reset();
    const ExpectedLog damaged("qUncompress");
    OssSettings().setValue(QStringLiteral("MainWindow/docks"), QByteArray("no layout"));
    open(true);
    for (const char *name : {"Node Graph", "Viewer", "Node Properties", "History", "Log"})
        EXPECT_TRUE(toggle(name)->isChecked()) << name;
    EXPECT_GT(place(viewer).left(), place(graph).right());
}

TEST_F(Docks, aPaletteThatComesLateStandsWhereItWasInTheLastSession)
{
    make("Late", "late_palette");
    make("Later", "later_palette");
    toggle("Late")->trigger();
    toggle("Log")->trigger();
    EXPECT_TRUE(window->close());
    window.reset();
    for (const char *helpKey : {"late_palette", "later_palette"})
        delete OssPaletteManager::instance()->find(QString::fromLatin1(helpKey));
    open(true);
    EXPECT_FALSE(toggle("Log")->isChecked());
    make("Late", "late_palette");
    EXPECT_FALSE(toggle("Late")->isChecked());
    EXPECT_FALSE(toggle("Log")->isChecked());
    make("Later", "later_palette");
    EXPECT_TRUE(toggle("Later")->isChecked());
    make("New", "new_palette");
    EXPECT_TRUE(toggle("New")->isChecked()) << "no session knew it";
}

TEST_F(Docks, theUsersSizesComeBackAndAPaletteThatIsShownHasRoom)
{
    toggle("Log")->trigger();
    toggle("Viewer")->trigger();
    openAnew();
    EXPECT_FALSE(toggle("Viewer")->isChecked());
    toggle("Viewer")->trigger();
    toggle("Log")->trigger();
    QTest::qWait(20);
    EXPECT_GE(place(viewer).height(), 800 / 10);
    EXPECT_GE(place(log).height(), 800 / 10);
    EXPECT_GE(place(viewer).width(), 1200 / 10);
}

TEST_F(Docks, aPaletteThatIsDeletedLeavesTheWindow)
{
    delete history;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(toggle("History"), nullptr);
    EXPECT_TRUE(properties->isVisible());
    openAnew();
    EXPECT_TRUE(toggle("Node Properties")->isChecked());
}

TEST_F(Docks, theLastProjectIsOpenedAgainOnlyWhenTheUserWantsIt)
{
    const QTemporaryDir folder;
    needNodeTypes();
    auto *projects = OssProjectManager::instance();
    projects->newProject(QStringLiteral("wall"));
    const QString path = folder.filePath(QStringLiteral("wall.ossa"));
    ASSERT_TRUE(projects->saveProjectAs(path));
    RecentProjects::add(path);
    auto *preferences = ApplicationPreferences::instance();
    for (const bool reopen : {true, false}) {
        preferences->setReopenLastProject(reopen);
        projects->closeProject();
        window->openAtStart(QString());
        EXPECT_EQ(projects->currentProject()->path() == path, reopen);
    }
    preferences->resetReopenLastProject();
    RecentProjects::clear();
    projects->closeProject();
}

TEST_F(Docks, whatTheUserSizedStaysWhenTheWindowComesBack)
{
    const auto share = [this] {
        return 100 * place(graph).width() / window->width();
    };
    const int first = share();
    QSplitter *wide = nullptr;
    const auto splitters = window->findChildren<QSplitter *>();
    for (QSplitter *one : splitters) {
        if (one->orientation() == Qt::Horizontal && one->isAncestorOf(graph))
            wide = one;
    }
    ASSERT_NE(wide, nullptr);
    wide->setSizes({400, 800});
    const int sized = share();
    ASSERT_LT(sized, first - 10);
    window->hide();
    window->show();
    QTest::qWait(20);
    EXPECT_NEAR(share(), sized, 2) << "only the first time is the window's own";
    openAnew();
    EXPECT_NEAR(share(), sized, 5);
}

TEST_F(Docks, aPaletteThatOpensTooSmallGetsRoomAndOthersKeepTheirs)
{
    QSplitter *tall = nullptr;
    const auto splitters = window->findChildren<QSplitter *>();
    for (QSplitter *one : splitters) {
        if (one->orientation() == Qt::Vertical && one->isAncestorOf(graph)
            && one->isAncestorOf(log))
            tall = one;
    }
    ASSERT_NE(tall, nullptr);

    const struct
    {
        int part; ///< of the room, in percent
        bool grows;
    } cases[] = {{4, true}, {50, false}};

    for (const auto &c : cases) {
        const int room = tall->height();
        tall->setSizes({room * (100 - c.part) / 100, room * c.part / 100});
        const int before = log->height();
        toggle("Log")->trigger();
        toggle("Log")->trigger();
        QTest::qWait(20);
        EXPECT_EQ(log->height() > before + 10, c.grows) << c.part;
        EXPECT_GE(log->height(), room * 15 / 100 - 40);
    }
}

TEST_F(Docks, keysOfTheGraphActInTheGraphAlone)
{
    const QString path = QStringLiteral("/Ossa/NodeGraph/Disable");
    QAction disable(QStringLiteral("Disable"));
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &disable);
    ASSERT_FALSE(disable.shortcuts().isEmpty());
    EXPECT_TRUE(graph->actions().contains(&disable));
    EXPECT_FALSE(viewer->actions().contains(&disable));
    EXPECT_FALSE(log->actions().contains(&disable));
}

TEST_F(Docks, aPaletteWithoutItsNeighbourGoesToTheRight)
{
    window.reset();
    OssPaletteManager::instance()->deletePalettes();
    graph = make("Node Graph", "node_graph_palette");
    OssPalette *other = make("Other", "other_palette"); // would go to the properties
    open();
    EXPECT_GT(place(other).left(), place(graph).right());
    EXPECT_TRUE(graph->isVisible());
    OssPalette *late = make("Node Properties", "node_properties_palette");
    QTest::qWait(20);
    EXPECT_GT(place(late).left(), place(graph).right());
    OssActionTreeManager::instance()
        ->findAction(QStringLiteral("/Ossa/View/Reset Layout"))
        ->trigger();
    QTest::qWait(20);
    for (const OssPalette *palette : {graph, other, late})
        EXPECT_GT(palette->height() * palette->width(), 100 * 100) << "none is squeezed away";
}

} // namespace
