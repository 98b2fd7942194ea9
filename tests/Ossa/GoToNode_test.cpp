#include "Ossa/Commands/MarkCommands.h"
#include "Ossa/Common/NodeMention.h"
#include "Ossa/Palettes/HistoryPanel.h"
#include "Ossa/Palettes/LogPanel.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QListView>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

// The ways from panels to nodes of the graph.

namespace {

class GoToNode : public ModelFixture
{};

TEST_F(GoToNode, stepsOfTheHistoryLeadToWhatTheyChangeWithoutGoingThere)
{
    HistoryPanel panel;
    OssSnBaseNode *blur = add("Filter/Blur", "Soft");
    blur->setAttribute(text("Radius"), 3.0);
    add("Filter/Blur", "Other");
    QSignalSpy focus(OssShaderNetworkManager::instance(),
                     &OssShaderNetworkManager::focusOnNodeRequest);
    const auto *list = panel.findChild<QListView *>();
    panel.resize(300, 300);
    panel.show();
    const QPoint place = list->visualRect(list->model()->index(2, 0)).center(); // the radius
    QTest::mouseClick(list->viewport(), Qt::RightButton, {}, place);
    EXPECT_EQ(OssUndoManager::instance()->index(), 3);
    QTimer::singleShot(0, [] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        menu->actions().first()->trigger();
        menu->close();
    });
    QContextMenuEvent asked(QContextMenuEvent::Mouse, place, list->viewport()->mapToGlobal(place));
    QApplication::sendEvent(list->viewport(), &asked);
    ASSERT_EQ(focus.size(), 1);
    EXPECT_EQ(focus.takeFirst().first().value<OssSnBaseNode *>(), blur);
    press(&panel, "Go to Node");
    ASSERT_EQ(focus.size(), 1);
    EXPECT_EQ(focus.takeFirst().first().value<OssSnBaseNode *>()->name(), text("Other"));
    EXPECT_EQ(OssUndoManager::instance()->index(), 3);

    {
        const OssUndoManager::AutoMacro macro(text("Move Other"));
        blur->setAttribute(text("Radius"), 4.0);
        m_network->node(text("Other"))->setAttribute(text("Radius"), 5.0);
    }
    EXPECT_TRUE(MarkCommands::goToStep(3));
    EXPECT_EQ(focus.takeFirst().first().value<OssSnBaseNode *>()->name(), text("Other"));

    OssUndoManager::instance()->setIndex(0);
    EXPECT_FALSE(MarkCommands::goToStep(1)) << "the node is not in the graph now";
    EXPECT_FALSE(MarkCommands::goToStep(-1));
}

TEST_F(GoToNode, linesThatSpeakOfANodeLeadToIt)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Big Group"));
    OssSnBaseNode *inner = group->groupNetwork()->createNode(text("Filter/Blur"), text("Inner"));
    OssSnBaseNode *blur = add("Filter/Blur", "Soft");

    const struct
    {
        const char *line;
        const OssSnBaseNode *node;
    } rows[] = {
        {"[ !! ] Node 'Soft' is protected and stays", blur},
        {"NotAllowed: \"Nobody\" cannot be wired to \"Big Group\"", group},
        {"[ !! ] 'Radius' of node '/Big Group/Inner' was not changed", inner},
        {"/Big Group/Inner: the value \"3\" of Radius has no place any more", inner},
        {"/Soft/None and /Soft", blur},
        {"it is Soft", nullptr},
        {"File \"/usr/lib/python3/site.py\", line 3", nullptr},
    };

    for (const auto &row : rows)
        EXPECT_EQ(NodeMention::find(text(row.line)), row.node) << row.line;

    LogPanel panel;
    QSignalSpy goes(inner, &OssSnBaseNode::gotoNode);
    const ExpectedLog expected("was not changed");
    OssDebug("x", 1, "[ !! ] 'Radius' of node '/Big Group/Inner' was not changed");
    auto *view = panel.findChild<QListView *>();
    ASSERT_TRUE(QTest::qWaitFor([view] { return view->model()->rowCount() > 0; }, 2000));
    const QModelIndex last = view->model()->index(view->model()->rowCount() - 1, 0);
    Q_EMIT view->activated(last);
    EXPECT_EQ(goes.size(), 1);
    m_network->removeNodes({group});
    Q_EMIT view->activated(last);
    EXPECT_EQ(goes.size(), 1) << "it is gone";
}

} // namespace
