#include "Monkey.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "OssScripting/OssScriptEngine.h"
#include "support/ExpectedLog.h"
#include "WatchedPlugin.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QLibrary>
#include <QMainWindow>
#include <QTest>
#include <QTimer>

#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include <execinfo.h>

namespace {

/// For whoever reads of a crash.
volatile std::sig_atomic_t crashSeed = 0;
volatile std::sig_atomic_t crashEvent = 0;
char crashAction[200] = "";

void tellOfCrash(int signal)
{
    std::fprintf(stderr, "\nOSSA_SEED=%d, event %d: signal %d after \"%s\"\n", int(crashSeed),
                 int(crashEvent), signal, crashAction);
    std::array<void *, 60> calls = {};
    backtrace_symbols_fd(calls.data(), backtrace(calls.data(), int(calls.size())), 2);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

template <class Function>
Function *resolved(const char *name)
{
    const QStringList files = QDir(QStringLiteral(OSSA_WATCHED_PLUGIN)).entryList(QDir::Files);
    QLibrary plugin(QDir(QStringLiteral(OSSA_WATCHED_PLUGIN)).filePath(files.value(0)));
    return reinterpret_cast<Function *>(plugin.resolve(name)); // of what is loaded
}

QStringList brokenInvariants()
{
    static auto *const broken = resolved<decltype(watchedPluginBroken)>("watchedPluginBroken");
    QStringList lines;
    broken(&lines);
    return lines;
}

void settleViewer()
{
    static auto *const settle = resolved<decltype(watchedPluginSettleViewer)>(
        "watchedPluginSettleViewer");
    settle();
}

OssProject *project()
{
    return OssProjectManager::instance()->currentProject();
}

QByteArray settledHash()
{
    settleViewer();
    return project()->stateHash();
}

QStringList gesturesInHand()
{
    QStringList found;
    const QWidgetList all = QApplication::allWidgets();
    for (const QWidget *widget : all) {
        const auto *view = qobject_cast<const OssNgView *>(widget);
        if (view && view->hasGesture())
            found.append(QStringLiteral("a gesture outlives its button, in state %1")
                             .arg(view->interactionState()));
    }
    return found;
}

QStringList falseTitle()
{
    const QWidget *window = OssApplication::mainWindow();
    const bool modified = project() && OssProjectManager::instance()->isModified();
    if (!window || window->isWindowModified() == modified)
        return {};
    return {QStringLiteral("the title says %1, the document %2")
                .arg(window->isWindowModified())
                .arg(modified)};
}

} // namespace

Monkey::Monkey(quint32 seed, const QString &example)
    : m_seed(seed)
    , m_example(example)
    , m_hands(seed, m_folder.path())
{
    crashSeed = std::sig_atomic_t(seed);
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGBUS})
        std::signal(signal, tellOfCrash);
    QDir::setCurrent(m_folder.path());
    QFile script(m_folder.filePath(QStringLiteral("script.py")));
    if (script.open(QIODevice::WriteOnly))
        script.write("import ossa\nprint(ossa)\n");
}

Monkey::~Monkey()
{
    OssProjectManager::instance()->closeProject(); // its files go with the folder
    EXPECT_TRUE(QTest::qWaitFor([] { return !OssMeshes::instance()->isReading(); }, 30000));
    QDir::setCurrent(QDir::rootPath());
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGBUS})
        std::signal(signal, SIG_DFL);
}

QString Monkey::where() const
{
    return QStringLiteral("OSSA_SEED=%1, %2, event %3, depth %4, after:\n  %5\n told:\n  %6")
        .arg(m_seed)
        .arg(QFileInfo(m_example).fileName())
        .arg(m_done)
        .arg(m_depth)
        .arg(m_recent.join(QStringLiteral("\n  ")), m_diary.lines().join(QStringLiteral("\n  ")));
}

void Monkey::open()
{
    // Under its own name: what lies beside the document is named with it.
    const QString copy = m_folder.filePath(QFileInfo(m_example).fileName());
    std::error_code error;
    std::filesystem::remove_all(copy.toStdString(), error);
    std::filesystem::copy(m_example.toStdString(), copy.toStdString(),
                          std::filesystem::copy_options::recursive, error);
    ASSERT_FALSE(error) << error.message();
    ASSERT_TRUE(OssProjectManager::instance()->openProject(copy));
}

void Monkey::play(int events)
{
    brokenInvariants(); // what is saved is watched from here on
    open();
    m_left = events;
    QTimer::singleShot(0, this, &Monkey::next);
    while (!m_failed && m_left >= 0)
        m_loop.exec(); // whatever quits the application has to be told again
    if (m_failed)
        return;
    look();
    if (project() && !m_failed)
        lookAtHistory();
}

void Monkey::next()
{
    const bool over = m_failed || m_left <= 0;
    QTimer::singleShot(over ? 1 : 0, this, &Monkey::next);
    if (over) {
        finish();
        return;
    }
    --m_left;
    crashEvent = ++m_done;
    ++m_depth;
    if (m_depth > 6)
        m_hands.letGo();
    else
        m_hands.act();
    const bool isIdle = m_hands.isEmpty() && !OssStatusManager::instance()->inProgress();
    m_idle = isIdle ? m_idle + 1 : 0;
    m_recent.append(m_hands.last());
    if (m_recent.size() > 25)
        m_recent.removeFirst();
    qstrncpy(crashAction, m_hands.last().toUtf8().constData(), sizeof crashAction);
    --m_depth;
    if (m_done % 10 == 0)
        look();
    if (m_depth == 0 && !project() && m_hands.below(20) == 0)
        open();
}

void Monkey::finish()
{
    // What was done last may have asked for something that comes later, such as a dialog.
    constexpr int Quiet = 5;
    constexpr int Longest = 10000;
    m_quiet = m_hands.letGo() ? 0 : m_quiet + 1;
    if (++m_letGo > Longest)
        ADD_FAILURE() << "something stays in hand, or a dialog open: " << qPrintable(where());
    if (m_letGo <= Longest && m_quiet < Quiet)
        return;
    m_left = -1;
    m_loop.quit();
}

void Monkey::look()
{
    if (m_failed)
        return;
    ExpectedLog::failOnUnexpected();
    // By then the window system's queue was emptied, and the program came back to its loop.
    constexpr int Settled = 3;
    if (m_idle > Settled && !m_hands.hasWirePickedUp())
        expect(gesturesInHand());
    if (m_depth == 0 && !QApplication::activeModalWidget() && !QApplication::activePopupWidget()
        && !OssUndoManager::instance()->isMacroOpen() && !OssScriptEngine::instance()->isRunning()
        && m_hands.isEmpty()) {
        expect(falseTitle());
        if (m_done % 50 == 0)
            expect(brokenInvariants());
    }
    if (testing::Test::HasFailure() && !m_failed) {
        m_failed = true;
        ADD_FAILURE() << qPrintable(where());
    }
}

void Monkey::expect(const QStringList &broken)
{
    EXPECT_TRUE(broken.isEmpty()) << qPrintable(broken.join(QLatin1Char('\n')));
}

void Monkey::lookAtHistory()
{
    OssUndoManager *steps = OssUndoManager::instance();
    const auto undoAll = [steps] {
        while (steps->canUndo())
            steps->undo();
    };
    const int index = steps->index();
    const QByteArray end = settledHash();
    undoAll();
    const QByteArray begun = settledHash();
    steps->setIndex(index);
    EXPECT_EQ(settledHash(), end) << "redone is not what was undone; " << qPrintable(where());
    undoAll();
    EXPECT_EQ(settledHash(), begun) << "undone is not what it was; " << qPrintable(where());
    expect(brokenInvariants());
    ExpectedLog::failOnUnexpected();
}
