#include "Ossa/Window/MainWindow.h"

#include "Ossa/Commands/GroupCommands.h"
#include "Ossa/Commands/RecentProjects.h"
#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Window/StatusArea.h"
#include "Ossa/Window/WelcomePanel.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Popups/OssApplication.h"
#include "support/DialogAnswers.h"
#include "support/InterfaceUser.h"
#include "WindowFixture.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

class Window : public WindowFixture
{
protected:
    Window()
    {
        open();
        projects()->newProject(text("Untitled"));
    }

    OssPalette *graph = make("Node Graph", "node_graph_palette");
};

class Status : public testing::Test
{
protected:
    Status()
    {
        window.setCentralWidget(field);
        window.setStatusBar(area);
        window.show();
    }

    /// Steps of work on this thread that take longer than the bar is patient, until cancelled.
    static int stepsUntilCancelled(int atMost)
    {
        OssStatusManager::Work work(text("Baking"));
        int step = 0;
        for (; step < atMost && !work.isCancelled(); ++step) {
            QTest::qSleep(60);
            work.setProgress(step, atMost);
        }
        return step;
    }

    QMainWindow window;
    QLineEdit *field = new QLineEdit;
    StatusArea *area = new StatusArea;
    QPushButton *stop = area->findChild<QPushButton *>();
};

} // namespace

TEST_F(Window, startsWithAnEmptyProjectAndClosesWithoutAQuestionWhenNothingChanged)
{
    ASSERT_NE(projects()->currentProject(), nullptr);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_TRUE(window->windowTitle().startsWith(projects()->currentProject()->name()));
    EXPECT_EQ(OssApplication::mainWindow(), window.get());
    const QPointer<OssPalette> palette = graph;
    close();
    EXPECT_FALSE(palette.isNull()) << "palettes outlive the window";
    EXPECT_EQ(OssApplication::mainWindow(), nullptr);
}

TEST_F(Window, changesAreAskedAboutAndOnlyCancelKeepsItOpen)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("wall.ossa")));
    change();
    EXPECT_TRUE(window->isWindowModified());
    answerWith(QMessageBox::Cancel);
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(projects()->isModified());
    answerWith(QMessageBox::Save);
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(projects()->isModified());
    EXPECT_EQ(RecentProjects::list().value(0), path("wall.ossa"));
    change();
    window->show();
    answerWith(QMessageBox::Discard);
    EXPECT_TRUE(window->close());
}

TEST_F(Window, whatIsTypedOrInTheHandIsSavedAndAskedAbout)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("typed.ossa")));
    QLineEdit field(window.get());
    QObject::connect(&field, &QLineEdit::editingFinished, &field, [&field] {
        projects()->currentProject()->setNewResolution(field.text().toInt());
    });
    field.show();
    QApplication::setActiveWindow(window.get());
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, text("512"));
    ASSERT_FALSE(projects()->isModified());
    command("File/Save")->trigger();
    EXPECT_EQ(projects()->currentProject()->newResolution(), 512);
    EXPECT_FALSE(projects()->isModified()) << "it was saved with the rest";
    EXPECT_TRUE(field.hasFocus());

    bool inHand = true;
    QObject::connect(OssUndoManager::instance(), &OssUndoManager::aboutToEdit, &field, [&inHand] {
        if (std::exchange(inHand, false))
            change();
    });
    command("File/Save")->trigger();
    EXPECT_FALSE(projects()->isModified());
    EXPECT_TRUE(OssUndoManager::instance()->canUndo()) << "it became a step first";
    inHand = true;
    QString asked;
    answerWith(QMessageBox::Cancel, &asked);
    command("File/Close")->trigger();
    EXPECT_FALSE(asked.isEmpty());
    EXPECT_NE(projects()->currentProject(), nullptr);
    OssUndoManager::instance()->setClean();
}

TEST_F(Window, commandsEndWhatIsInTheHandAlsoWhenTheyFindNothingToDo)
{
    const GroupCommands groups(nullptr);
    const QSignalSpy ends(OssUndoManager::instance(), &OssUndoManager::aboutToEdit);
    int expected = 0;
    for (const char *path : {"NodeGraph/Group Selected Nodes", "View/Reset Layout"}) {
        command(path)->trigger();
        EXPECT_EQ(ends.size(), ++expected) << path;
    }
}

TEST_F(Window, aProjectThatCannotBeOpenedIsToldOnceAndLeavesTheOpenOne)
{
    const DialogAnswers answers;
    const OssProject *before = projects()->currentProject();
    window->openAtStart(text("/nowhere/wall.ossa"));
    EXPECT_EQ(answers.boxes.size(), 1);
    EXPECT_EQ(projects()->currentProject(), before);
}

TEST_F(Window, aStartWithoutAProjectSaysHowToGoOn)
{
    projects()->closeProject();
    QApplication::setActiveWindow(window.get());
    window->setFocus();
    window->openAtStart(QString());
    EXPECT_EQ(projects()->currentProject(), nullptr);
    const auto *welcome = window->findChild<WelcomePanel *>();
    EXPECT_TRUE(welcome->isVisible());
    EXPECT_TRUE(welcome->isAncestorOf(QApplication::focusWidget())) << "its keys work at once";
    const auto lists = welcome->findChildren<QListWidget *>();
    EXPECT_TRUE(std::any_of(lists.cbegin(), lists.cend(), [](const QListWidget *list) {
        return !list->findItems(text("Weathered Brick"), Qt::MatchExactly).isEmpty();
    })) << "the examples";
    const auto guides = std::find_if(lists.cbegin(), lists.cend(), [](const QListWidget *list) {
        return !list->findItems(text("1 First Material"), Qt::MatchExactly).isEmpty();
    });
    ASSERT_TRUE(guides != lists.cend());
    EXPECT_EQ((*guides)->count(), 6);
    EXPECT_TRUE(command("File/Example/6 Scripting"));
}

TEST_F(Window, theLastProjectIsOpenedAgainOnlyWhenTheUserWantsIt)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("wall.ossa")));
    RecentProjects::add(path("wall.ossa"));
    auto *preferences = ApplicationPreferences::instance();
    for (const bool reopen : {true, false}) {
        preferences->setReopenLastProject(reopen);
        projects()->closeProject();
        window->openAtStart(QString());
        EXPECT_EQ(projects()->currentProject() != nullptr, reopen);
    }
    preferences->resetReopenLastProject();
    RecentProjects::clear();
}

TEST_F(Window, recentProjectsAreCommands)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("recent wall.ossa")));
    window->openAtStart(path("recent wall.ossa"));
    EXPECT_NE(command("File/Recent/recent wall"), nullptr);
    command("File/Clear Recent")->trigger();
    EXPECT_EQ(command("File/Recent/recent wall"), nullptr);
}

TEST_F(Window, pluginsThatFailAreNamedUntilDismissed)
{
    window->tellAbout({{text("paint.so"), text("it is damaged")},
                       {text("bake.so"), text("it could not be started")}});
    EXPECT_TRUE(window->notificationText().contains(text("paint.so")));
    EXPECT_TRUE(window->notificationText().contains(text("bake.so")));
    press(window.get(), "Dismiss");
    EXPECT_TRUE(window->notificationText().isEmpty());
}

TEST_F(Window, undoCommandsNameTheStep)
{
    QAction *undo = command("Edit/Undo");
    EXPECT_FALSE(undo->isEnabled());
    change();
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text(), text("Undo Move node Brick"));
    undo->trigger();
    EXPECT_EQ(command("Edit/Redo")->text(), text("Redo Move node Brick"));
    EXPECT_EQ(undo->text(), text("Undo"));
}

TEST_F(Window, namesAreShownAsTheyWereTyped)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("A && B & C.ossa")));
    window->openAtStart(path("A && B & C.ossa"));
    const QAction *recent = command("File/Recent/A && B & C");
    ASSERT_NE(recent, nullptr);
    EXPECT_EQ(OssMenu::asSeen(recent->text()), text("A && B & C"));
    OssUndoManager::instance()->record(
        text("Rename Fish & Chips"), [] {}, [] {});
    EXPECT_EQ(command("Edit/Undo")->text(), text("Undo Rename Fish && Chips"));
    QMenu menu;
    EXPECT_EQ(OssMenu::submenu(&menu, {text("R&D")}), OssMenu::submenu(&menu, {text("R&D")}));
    EXPECT_EQ(menu.actions().first()->text(), text("R&&D"));
    OssUndoManager::instance()->undo();
    ASSERT_TRUE(projects()->saveProjectAs(path("a[*]b.ossa")));
    EXPECT_TRUE(window->windowTitle().startsWith(text("a[*][*]b")));
}

TEST_F(Window, withoutAProjectTheGraphsPlaceSaysHowToGoOn)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("wall.ossa")));
    window->openAtStart(path("wall.ossa"));
    const auto *welcome = window->findChild<WelcomePanel *>();
    EXPECT_FALSE(welcome->isVisible());
    EXPECT_TRUE(graph->isEnabled());
    graph->setFocus();
    for (const bool byMouse : {true, false}) {
        command("File/Close")->trigger();
        EXPECT_TRUE(welcome->isVisible());
        EXPECT_EQ(welcome->geometry(), graph->geometry());
        EXPECT_FALSE(graph->isEnabled()) << "what it covers takes no input";
        auto *recent = welcome->findChild<QListWidget *>();
        ASSERT_TRUE(recent->item(0)->text().startsWith(text("wall\n")));
        if (byMouse)
            QTest::mouseClick(recent->viewport(), Qt::LeftButton, {},
                              recent->visualItemRect(recent->item(0)).center());
        else
            QTest::keyClick(recent, Qt::Key_Return);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !welcome->isVisible(); }));
        EXPECT_EQ(projects()->currentProject()->path(), path("wall.ossa"));
        EXPECT_TRUE(graph->isEnabled());
    }
    command("File/Close")->trigger();
    // Behind a dialog that closes the window is not active yet, and Qt knows of nobody with the focus.
    welcome->findChild<QPushButton *>()->setFocus();
    QApplication::setActiveWindow(nullptr);
    ASSERT_TRUE(projects()->openProject(path("wall.ossa")));
    EXPECT_TRUE(graph == window->focusWidget() || graph->isAncestorOf(window->focusWidget()));
    command("File/Close")->trigger();
    delete graph;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    graph = make("Node Graph", "node_graph_palette");
    EXPECT_TRUE(window->findChild<WelcomePanel *>()->isVisible())
        << "also over one that comes late";
    EXPECT_FALSE(graph->isEnabled());
}

TEST_F(Window, aProjectThatIsDroppedIsOpened)
{
    ASSERT_TRUE(projects()->saveProjectAs(path("wall.ossa")));
    projects()->closeProject();
    for (const char *name : {"", "wall.ossa"}) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path(name))});
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(window.get(), &enter);
        EXPECT_EQ(enter.isAccepted(), *name != 0) << name;
        QDropEvent drop({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(window.get(), &drop);
        QCoreApplication::processEvents();
        EXPECT_EQ(projects()->currentProject() != nullptr, *name != 0);
    }
}

TEST_F(Window, menusWithoutCommandsAreNotThere)
{
    const auto isShown = [this](const char *title) {
        const QList<QAction *> menus = window->menuBar()->actions();
        return std::any_of(menus.cbegin(), menus.cend(), [title](const QAction *menu) {
            return menu->text().remove(QLatin1Char('&')) == text(title) && menu->isVisible();
        });
    };
    EXPECT_TRUE(isShown("File"));
    EXPECT_FALSE(isShown("Node Graph"));
    QAction paint(text("Paint the Town"));
    OssActionTreeManager::instance()->registerAction(text("/Ossa/NodeGraph/Create/"), &paint);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isShown("Node Graph"); }));
}

TEST_F(Status, stopIsThereOnlyWhileWorkRunsAndMessagesAreShown)
{
    EXPECT_FALSE(stop->isVisible());
    {
        const OssStatusManager::Work work(text("Baking"));
        EXPECT_TRUE(stop->isVisible());
    }
    EXPECT_FALSE(stop->isVisible());
    OssStatusManager::instance()->showMessage(text("Saved wall.ossa"));
    EXPECT_EQ(area->currentMessage(), text("Saved wall.ossa"));
}

TEST_F(Status, stopReachesWorkThatBlocksTheEventLoop)
{
    QTimer::singleShot(0, stop, [this] { QTest::mouseClick(stop, Qt::LeftButton); });
    EXPECT_LT(stepsUntilCancelled(40), 40);
    QTimer::singleShot(0, stop, [this] { QTest::keyClick(field, Qt::Key_Escape); });
    EXPECT_LT(stepsUntilCancelled(40), 40);
    EXPECT_TRUE(field->text().isEmpty());
}

TEST_F(Status, whatIsDoneNowIsNamedAndNothingRunsBackwards)
{
    OssStatusManager::Work work(text("Baking"));
    work.setPart(text("Wall"));
    const auto labels = area->findChildren<QLabel *>();
    EXPECT_TRUE(std::any_of(labels.cbegin(), labels.cend(), [](const QLabel *label) {
        return label->text() == text("Baking: Wall");
    }));
    const auto *bar = area->findChild<QProgressBar *>();
    for (const auto &[done, total, shown] : {std::tuple(5, 10, 50), {30, 100, 50}, {60, 100, 60}}) {
        work.setProgress(done, total);
        EXPECT_EQ(100 * bar->value() / bar->maximum(), shown) << done;
    }
}

TEST_F(Status, noOtherInputArrivesMeanwhileNotEvenFromWorkWithinWork)
{
    bool isClosed = false;
    bool hasArrived = false;
    QTimer::singleShot(0, field, [&] {
        QTest::keyClicks(field, text("typed"));
        isClosed = window.close();
        Q_EMIT OssStatusManager::instance()->progressChanged(1, 2);
        QTest::keyClicks(field, text("typed"));
    });
    QMetaObject::invokeMethod(
        field, [&] { hasArrived = true; }, Qt::QueuedConnection);
    stepsUntilCancelled(12);
    EXPECT_TRUE(field->text().isEmpty());
    EXPECT_FALSE(isClosed);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(hasArrived) << "it is no input";
    QTest::keyClicks(field, text("typed"));
    EXPECT_EQ(field->text(), text("typed"));
}
