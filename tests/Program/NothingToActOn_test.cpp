#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "Program/StartedProgram.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <algorithm>

namespace {

/// Commands where they have little or nothing to act on: each does something that can be seen, asks, or
/// says in the status bar why not.
class NothingToActOn : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        bringUser();
        QObject::connect(OssStatusManager::instance(), &OssStatusManager::messageShown, &m_closer,
                         [this](const QString &line) { m_said.append(line); });
        qApp->installEventFilter(&m_closer);
    }

    void TearDown() override { OssApplication::setPopupsAllowed(false); }

    OssNgView *view() const
    {
        const auto views = s_window->findChildren<OssNgView *>();
        const auto shown = std::find_if(views.cbegin(), views.cend(),
                                        [](const OssNgView *one) { return one->isVisible(); });
        return shown == views.cend() ? nullptr : *shown;
    }

    /// What a command may change.
    QVariantList state() const
    {
        const OssNgView *graph = view();
        int widgets = 0;
        const auto all = QApplication::allWidgets();
        for (const QWidget *widget : all)
            widgets += widget->isVisible() ? 1 : 0;
        QVariantList selected;
        const auto items = graph->scene()->selectedItems();
        for (const QGraphicsItem *item : items)
            selected.append(quintptr(item));
        return {history()->index(),
                project()->stateHash(),
                graph->viewportInSceneCoords(),
                graph->cursorTrackingMode(),
                graph->isSnapToGridOn(),
                graph->hasGesture(),
                QVariant(selected),
                widgets,
                QApplication::clipboard()->text()};
    }

    /// Whether the command is about nodes or what they belong to, and opens nothing for sure.
    static bool concerns(const QString &path)
    {
        static const QStringList folders{text("/Ossa/NodeGraph/"), text("/Ossa/Images/"),
                                         text("/Ossa/Edit/"), text("/Ossa/Mesh/")};
        return !path.endsWith(text("...")) && !path.endsWith(QLatin1Char('*'))
               && !path.contains(text("/Import "))
               && std::any_of(folders.cbegin(), folders.cend(),
                              [&path](const QString &folder) { return path.startsWith(folder); });
    }

    /// Runs each from the same start.
    void expectAnswers(const std::function<void()> &prepare)
    {
        int answered = 0;
        for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
            const QString path = OssCommandTable::path(row);
            QAction *action = OssActionTreeManager::instance()->findAction(path);
            if (!concerns(path) || !action)
                continue;
            history()->setIndex(0);
            prepare();
            view()->setFocus();
            view()->centerOn(4000, 3000); // far from what framing would show
            OssActionTreeManager::instance()->settleStates();
            if (!action->isEnabled())
                continue; // its key says why
            const QVariantList before = state();
            const bool checked = action->isChecked();
            m_said.clear();
            m_closer.opened = 0;
            action->trigger();
            EXPECT_TRUE(!m_said.join(QString()).isEmpty() || m_closer.opened > 0
                        || state() != before || action->isChecked() != checked)
                << qPrintable(path);
            ++answered;
        }
        EXPECT_GT(answered, 90);
    }

    /// Closes what opens.
    struct Closer : QObject
    {
        int opened = 0;

        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() != QEvent::Show
                || !(qobject_cast<QDialog *>(watched) || qobject_cast<QMenu *>(watched)))
                return false;
            ++opened;
            QTimer::singleShot(0, qobject_cast<QWidget *>(watched), &QWidget::close);
            return false;
        }
    };

    QStringList m_said;
    Closer m_closer;
    /// A thread of its own tells of what one of the commands before had looked at.
    const ExpectedLog m_toldLater{"it computes no pixels", ExpectedLog::Possible};
};

TEST_F(NothingToActOn, everyCommandAnswers)
{
    const ExpectedLog possible[] = {
        ExpectedLog("fallback onto current", ExpectedLog::Possible),
        ExpectedLog("Nothing to autoplace", ExpectedLog::Possible),
        ExpectedLog("nodes in the network", ExpectedLog::Possible),
        ExpectedLog("The clipboard holds no nodes", ExpectedLog::Possible),
        ExpectedLog("Bake Point nodes", ExpectedLog::Possible),
        ExpectedLog("No nodes are selected", ExpectedLog::Possible),
        ExpectedLog("Input 0 is reserved", ExpectedLog::Possible)};
    QApplication::clipboard()->clear();
    OssSnBaseNode *color = add("Procedural/Color");
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *area = add("Misc/Backdrop");
    wire(color, blur);
    history()->clear();
    {
        SCOPED_TRACE("nothing is selected");
        expectAnswers([this] { select({}); });
    }
    {
        SCOPED_TRACE("a wire");
        expectAnswers([this] {
            select({});
            const auto items = view()->scene()->items();
            for (QGraphicsItem *item : items) {
                if (auto *edge = dynamic_cast<OssNgEdge *>(item))
                    edge->setSelected(true);
            }
        });
    }
    {
        SCOPED_TRACE("a backdrop");
        expectAnswers([this, area] { select({area}); });
    }
}

TEST_F(NothingToActOn, whatWasArrangedIsNotSaidToStandLikeThatAlready)
{
    OssSnBaseNode *color = add("Procedural/Color");
    OssSnBaseNode *blur = add("Filter/Blur");
    color->viewContext()->setNodePosition({0, 0});
    blur->viewContext()->setNodePosition({300, 200});
    select({color, blur});
    for (const bool stands : {false, true}) {
        m_said.clear();
        const int steps = history()->count();
        trigger("Align Top");
        EXPECT_EQ(history()->count(), stands ? steps : steps + 1);
        EXPECT_EQ(m_said.join(QString()).contains(text("already")), stands);
    }
}

TEST_F(NothingToActOn, keysOfCommandsThatNeedAProjectSaySoWithoutOne)
{
    const ExpectedLog possible("fallback onto current", ExpectedLog::Possible);
    OssProjectManager::instance()->closeProject();
    s_window->setFocus();
    for (const char *keys : {"Ctrl+S", "Ctrl+Shift+S", "Ctrl+Z", "Ctrl+E"}) {
        m_said.clear();
        const int key = QKeySequence(text(keys))[0];
        QTest::keyClick(s_window, Qt::Key(key & ~Qt::KeyboardModifierMask),
                        Qt::KeyboardModifiers(key & Qt::KeyboardModifierMask));
        EXPECT_EQ(m_said.size(), 1) << keys;
    }
    const QStringList paths = OssActionTreeManager::instance()->paths();
    for (const QString &path : paths) {
        const QAction *action = OssActionTreeManager::instance()->findAction(path);
        const bool needs = OssCommandTable::whenOf(path) == OssCommandTable::WithProject;
        if (needs)
            EXPECT_FALSE(action->isEnabled()) << qPrintable(path);
        if (needs || !path.startsWith(text("/Ossa/NodeGraph/")) || !action->isEnabled())
            continue;
        EXPECT_TRUE(path.endsWith(text("Snap to Grid")) || path.endsWith(text("Shake To Extract")))
            << qPrintable(path);
    }
    EXPECT_TRUE(OssCommandTable::whyDisabled(text("/Ossa/NodeGraph/Create/Filter/Blur"))
                    .contains(text("project")));
}

} // namespace
