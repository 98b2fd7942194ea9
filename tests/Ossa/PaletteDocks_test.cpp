#include "WindowFixture.h"

#include <qtadvanceddocking/DockWidget.h>
#include <qtadvanceddocking/DockWidgetTab.h>
#include <qtadvanceddocking/ElidingLabel.h>

#include <QSplitter>

#include <array>

namespace {

/// The window with stand-ins for the palettes that have a place of their own.
class Docks : public WindowFixture
{
protected:
    Docks() { open(); }

    void open(bool restored = false)
    {
        WindowFixture::open(restored);
        settle();
    }

    void openAnew()
    {
        close();
        open(true);
    }

    /// Shares are given once the window has its size.
    static void settle() { QTest::qWait(20); }

    QRect place(const OssPalette *palette) const
    {
        return {palette->mapTo(window.get(), QPoint()), palette->size()};
    }

    /// The innermost splitter around both the graph and another one.
    QSplitter *splitter(Qt::Orientation orientation, const QWidget *other) const
    {
        QSplitter *found = nullptr;
        const auto all = window->findChildren<QSplitter *>();
        for (QSplitter *one : all) {
            if (one->orientation() == orientation && one->isAncestorOf(graph)
                && one->isAncestorOf(other))
                found = one;
        }
        return found;
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

    static ads::CDockWidget *dock(const char *name)
    {
        QWidget *one = OssPaletteManager::instance()->find(text(name));
        while (one && !qobject_cast<ads::CDockWidget *>(one))
            one = one->parentWidget();
        return qobject_cast<ads::CDockWidget *>(one);
    }

    /// What the menu says is what is there, and these alone are.
    void expectOpen(const QStringList &names) const
    {
        for (const OssPalette *palette :
             QList<OssPalette *>{graph, viewer, properties, history, log, extra}) {
            const QByteArray name = palette->objectName().toUtf8();
            const ads::CDockWidget *one = dock(name.constData());
            ASSERT_NE(one, nullptr) << name.constData();
            const bool isOpen = names.contains(palette->objectName());
            EXPECT_EQ(toggle(name.constData())->isChecked(), isOpen) << name.constData();
            EXPECT_EQ(one->isClosed(), !isOpen) << name.constData();
            EXPECT_EQ(one->tabWidget()->isHidden(), !isOpen) << name.constData();
        }
    }

    OssPalette *graph = make("Node Graph", "node_graph_palette");
    OssPalette *viewer = make("Viewer", "viewer_palette");
    OssPalette *properties = make("Node Properties", "node_properties_palette");
    OssPalette *history = make("History", "history_palette");
    OssPalette *log = make("Log", "log_palette");
    OssPalette *extra = nullptr;
};

TEST_F(Docks, palettesHaveTheirPlacesAtFirstAndAfterAReset)
{
    properties->showBySidebar();
    expectFirstLayout();
    toggle("Viewer")->trigger();
    toggle("Log")->trigger();
    command("View/Reset Layout")->trigger();
    settle();
    properties->showBySidebar();
    expectFirstLayout();
}

TEST_F(Docks, theMenuSaysWhatIsOpen)
{
    extra = make("Extra", "extra_palette", false);
    const QStringList first{text("Node Graph"), text("Viewer"), text("Node Properties"),
                            text("History"), text("Log")};
    expectOpen(first);
    const auto expectFirst = [&] {
        command("View/Reset Layout")->trigger();
        expectOpen(first);
    };
    for (const bool floats : {false, true}) {
        SCOPED_TRACE(floats);
        toggle("Extra")->trigger();
        dock("Log")->closeDockWidget();
        dock("History")->closeDockWidget();
        if (floats)
            dock("Extra")->setFloating();
        const QStringList now{text("Node Graph"), text("Viewer"), text("Node Properties"),
                              text("Extra")};
        expectOpen(now);
        if (!floats)
            openAnew();
        expectOpen(now);
        expectFirst();
        openAnew();
        expectOpen(first);
    }
    for (const QString &name : first)
        dock(name.toUtf8().constData())->closeDockWidget();
    expectOpen({});
    projects()->newProject(text("Other"));
    openAnew();
    expectOpen({});
    expectFirst();
}

TEST_F(Docks, showingAPaletteOpensItsDockAndItsTabComesToTheFront)
{
    for (OssPalette *palette : {history, properties, history}) {
        palette->showBySidebar();
        EXPECT_TRUE(palette->isVisible());
        EXPECT_NE(history->isVisible(), properties->isVisible());
    }
    for (const bool byVisibility : {false, true}) {
        toggle("Node Graph")->trigger();
        EXPECT_FALSE(graph->isVisible());
        byVisibility ? graph->setVisible(true) : graph->showBySidebar();
        EXPECT_TRUE(graph->isVisible());
        EXPECT_TRUE(toggle("Node Graph")->isChecked());
    }
}

TEST_F(Docks, severalAreasInARowShareTheRoomAmongThem)
{
    close();
    delete properties; // the neighbour of those that have no place of their own
    const OssPalette *first = make("First", "first_palette");
    const OssPalette *second = make("Second", "second_palette");
    open();
    for (const OssPalette *palette : QList<const OssPalette *>{graph, viewer, first, second})
        EXPECT_GE(place(palette).width(), 1200 / 20) << qPrintable(palette->windowTitle());
}

TEST_F(Docks, aLayoutThatIsDamagedIsNone)
{
    close();
    const ExpectedLog damaged("qUncompress");
    OssSettings().setValue(text("MainWindow/docks"), QByteArray("no layout"));
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
    close();
    for (const char *helpKey : {"late_palette", "later_palette"})
        delete OssPaletteManager::instance()->find(text(helpKey));
    const OssPalette *added = make("Added", "added_palette");
    open(true);
    EXPECT_FALSE(toggle("Log")->isChecked());
    EXPECT_TRUE(added->isVisible()) << "no session knew it";
    EXPECT_TRUE(graph->isVisible());
    make("Late", "late_palette");
    EXPECT_FALSE(toggle("Late")->isChecked());
    EXPECT_FALSE(toggle("Log")->isChecked());
    make("Later", "later_palette");
    EXPECT_TRUE(toggle("Later")->isChecked());
    const OssPalette *fresh = make("New", "new_palette");
    EXPECT_TRUE(toggle("New")->isChecked()) << "no session knew it";
    EXPECT_EQ(fresh->window(), window.get());
    command("View/Reset Layout")->trigger();
    EXPECT_TRUE(toggle("Late")->isChecked() && toggle("Log")->isChecked());
}

TEST_F(Docks, aSessionWithoutAPluginSpoilsNoLayout)
{
    toggle("Log")->trigger();
    splitter(Qt::Horizontal, viewer)->setSizes({400, 800});
    close();
    for (int session = 0; session < 2; ++session) {
        delete graph;
        open(true);
        EXPECT_FALSE(toggle("Log")->isChecked());
        toggle("History")->trigger(); // off, and on again in the other session
        close();
        graph = make("Node Graph", "node_graph_palette");
    }
    open(true);
    EXPECT_FALSE(toggle("Log")->isChecked());
    EXPECT_TRUE(toggle("Node Graph")->isChecked());
    EXPECT_NEAR(100.0 * place(graph).width() / window->width(), 33, 4);
    toggle("Viewer")->trigger();
    openAnew();
    EXPECT_FALSE(toggle("Viewer")->isChecked()) << "the latest of the whole ones counts";
}

TEST_F(Docks, theUsersSizesComeBackAndAPaletteThatIsShownHasRoom)
{
    toggle("Log")->trigger();
    toggle("Viewer")->trigger();
    openAnew();
    EXPECT_FALSE(toggle("Viewer")->isChecked());
    toggle("Viewer")->trigger();
    toggle("Log")->trigger();
    settle();
    EXPECT_GE(place(viewer).height(), 800 / 10);
    EXPECT_GE(place(log).height(), 800 / 10);
    EXPECT_GE(place(viewer).width(), 1200 / 10);
}

TEST_F(Docks, theLayoutComesBackUnderAnotherLanguage)
{
    toggle("Log")->trigger();
    close();
    OssPaletteManager::instance()->deletePalettes();
    make("Knotengraph", "node_graph_palette");
    make("Protokoll", "log_palette");
    open(true);
    EXPECT_FALSE(toggle("Log")->isChecked());
    EXPECT_TRUE(toggle("Node Graph")->isChecked());
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

TEST_F(Docks, whatTheUserSizedStaysWhenTheWindowComesBack)
{
    const auto share = [this] {
        return 100 * place(graph).width() / window->width();
    };
    const int first = share();
    QSplitter *wide = splitter(Qt::Horizontal, graph);
    ASSERT_NE(wide, nullptr);
    wide->setSizes({400, 800});
    const int sized = share();
    ASSERT_LT(sized, first - 10);
    window->hide();
    window->show();
    settle();
    EXPECT_NEAR(share(), sized, 2) << "only the first time is the window's own";
    openAnew();
    EXPECT_NEAR(share(), sized, 5);
}

TEST_F(Docks, aPaletteThatOpensTooSmallGetsRoomAndOthersKeepTheirs)
{
    QSplitter *tall = splitter(Qt::Vertical, log);
    ASSERT_NE(tall, nullptr);
    for (const auto &[percent, grows] : {std::pair(4, true), std::pair(50, false)}) {
        const int room = tall->height();
        tall->setSizes({room * (100 - percent) / 100, room * percent / 100});
        const int before = log->height();
        toggle("Log")->trigger();
        toggle("Log")->trigger();
        settle();
        EXPECT_EQ(log->height() > before + 10, grows) << percent;
        EXPECT_GE(log->height(), room * 15 / 100 - 40);
    }
}

TEST_F(Docks, whereTabsHaveNoRoomTheOneInFrontKeepsItsName)
{
    const std::array<const char *, 6> names = {"Node Properties", "History",    "First Drawer",
                                               "Next Drawer",     "Far Drawer", "Last Drawer"};
    for (std::size_t i = 2; i < names.size(); ++i)
        make(names[i], names[i]);
    QPixmap icon(16, 16);
    icon.fill(Qt::red);
    for (const char *name : names)
        dock(name)->setIcon(QIcon(icon));
    QSplitter *wide = splitter(Qt::Horizontal, graph);
    ASSERT_NE(wide, nullptr);
    constexpr int All = 2400;
    constexpr int Roomy = 1800;
    window->resize(All, 800);
    for (const int width : {Roomy, 360, 200, Roomy}) {
        wide->setSizes({All - width, width});
        for (const char *front : names) {
            toggle(front)->trigger();
            if (!toggle(front)->isChecked())
                toggle(front)->trigger();
            settle();
            for (const char *name : names) {
                const auto *label = dock(name)->tabWidget()->findChild<ads::CElidingLabel *>();
                const bool isWhole = label->width()
                                     >= label->fontMetrics().horizontalAdvance(label->text());
                EXPECT_EQ(isWhole, width == Roomy || name == front) << name << width;
                EXPECT_EQ(dock(name)->tabWidget()->toolTip(), text(name));
            }
            const QRect seen = dock(front)->tabWidget()->visibleRegion().boundingRect();
            EXPECT_GT(seen.width(), 40) << front << width;
        }
    }
}

TEST_F(Docks, whatIsClosedWithTheKeyboardGivesItToTheGraph)
{
    projects()->newProject(text("Test"));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const auto closeWithKeyboardIn = [this](OssPalette *palette, const char *closed) {
        properties->setFocus(); // where it was before
        palette->setFocus();
        toggle(closed)->trigger();
        settle();
        return QApplication::focusWidget();
    };
    EXPECT_EQ(closeWithKeyboardIn(log, "Log"), graph->focusProxy());
    EXPECT_EQ(closeWithKeyboardIn(viewer, "History"), viewer->focusProxy());
    EXPECT_EQ(closeWithKeyboardIn(viewer, "Viewer"), graph->focusProxy());
    EXPECT_EQ(closeWithKeyboardIn(properties, "Node Graph"), properties->focusProxy());
}

TEST_F(Docks, keysOfTheGraphActInTheGraphAlone)
{
    QAction disable(text("Disable"));
    OssActionTreeManager::instance()->registerAction(text("/Ossa/NodeGraph/"), &disable);
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
    settle();
    EXPECT_GT(place(late).left(), place(graph).right());
    command("View/Reset Layout")->trigger();
    settle();
    for (const OssPalette *palette : {graph, other, late})
        EXPECT_GT(palette->height() * palette->width(), 100 * 100) << "none is squeezed away";
}

} // namespace
