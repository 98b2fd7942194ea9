#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "PluginUnderTest.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>

namespace {

class ContextMenu : public GraphFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        m_group = m_network->createNode(text("Misc/Group"), text("Around"));
        m_blur = add("Filter/Blur");
    }

    /// Opens the menu of the view, looks at it and closes it.
    void open(const std::function<void(QMenu *)> &look)
    {
        bool seen = false;
        whenMenuOpens([&](QMenu *menu) {
            seen = true;
            look(menu);
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 20}, {20, 20});
        QApplication::sendEvent(m_view->viewport(), &event);
        EXPECT_TRUE(seen);
    }

    /// The commands below a menu as "Submenu/Text", in order.
    static QStringList entries(const QMenu *menu, const QString &path = {})
    {
        QStringList found;
        const QList<QAction *> actions = menu->actions();
        for (const QAction *action : actions) {
            if (action->isSeparator())
                continue;
            const QString name = path + action->text().remove(QLatin1Char('&'));
            if (action->menu())
                found += entries(action->menu(), name + QLatin1Char('/'));
            else
                found.append(name);
        }
        return found;
    }

    OssSnBaseNode *m_group = nullptr;
    OssSnBaseNode *m_blur = nullptr;
};

TEST_F(ContextMenu, offersTheNodesThatUsersMakeSortedIntoTheirFolders)
{
    QStringList nodes;
    open([&](QMenu *menu) {
        const QList<QMenu *> menus = menu->findChildren<QMenu *>(QString(),
                                                                 Qt::FindDirectChildrenOnly);
        for (const QMenu *submenu : menus) {
            if (submenu->title() == QLatin1String("Nodes"))
                nodes = entries(submenu);
        }
        EXPECT_FALSE(entries(menu).contains(QString()));
    });
    EXPECT_TRUE(nodes.contains(text("Filter/Blur"))) << qPrintable(nodes.join(QLatin1Char(' ')));
    EXPECT_TRUE(nodes.contains(text("Procedural/Pattern/Tiled")));
    EXPECT_EQ(nodes.filter(text("Procedural/Pattern/Tiled")).size(), 1);
    for (const QString &node : qAsConst(nodes)) {
        for (const char *hidden : {"Shader Network/", "Shaders/", "Lighting/", "_"})
            EXPECT_FALSE(node.startsWith(QLatin1String(hidden))) << qPrintable(node);
        EXPECT_FALSE(node.contains(text("/_"))) << qPrintable(node);
    }
}

TEST_F(ContextMenu, enablesWhatFitsTheSelectionAndOnlyWhileItIsOpen)
{
    OssShaderNetwork *inside = qobject_cast<OssSnGroupNode *>(m_group)->groupNetwork();
    OssSnBaseNode *inner = inside->createNode(text("Filter/Blur"), text("In"));

    const struct
    {
        OssShaderNetwork *shown;
        QList<OssSnBaseNode *> selected;
        bool knobs;
        bool exposure;
    } cases[] = {
        {m_network, {}, false, false},       {m_network, {m_group}, true, false},
        {m_network, {m_blur}, false, false}, {m_network, {m_group, m_blur}, false, false},
        {inside, {inner}, false, true},
    };

    QAction *knobs = graphAction("Manage User Knobs");
    QAction *exposure = graphAction("Expose Node Properties");
    ASSERT_TRUE(knobs && exposure);
    for (const auto &c : cases) {
        m_manager->showNetworkInView(c.shown, m_view);
        select(c.selected);
        for (const bool before : {false, true}) {
            knobs->setEnabled(before);
            exposure->setEnabled(before);
            open([&](const QMenu *) {
                EXPECT_EQ(knobs->isEnabled(), c.knobs) << &c - cases;
                EXPECT_EQ(exposure->isEnabled(), c.exposure) << &c - cases;
            });
            EXPECT_EQ(knobs->isEnabled(), before) << "the key must not stay dead";
            EXPECT_EQ(exposure->isEnabled(), before);
        }
    }
    m_manager->showNetworkInView(m_network, m_view);
}

TEST_F(ContextMenu, commandsThatNeedASelectionAreOffEverywhereWithoutOne)
{
    auto *group = qobject_cast<OssSnGroupNode *>(m_group);
    OssSnBaseNode *inner = addInside(group, "Filter/Blur", "In");
    const auto expectEnabled = [](bool knobs, bool exposure) {
        OssActionTreeManager::instance()->settleStates();
        EXPECT_EQ(graphAction("Manage User Knobs")->isEnabled(), knobs);
        EXPECT_EQ(graphAction("Expose Node Properties")->isEnabled(), exposure);
    };
    m_manager->showNetworkInView(m_network, m_view);
    select({});
    expectEnabled(false, false);
    select({m_blur, m_group});
    expectEnabled(true, false);
    select({m_blur});
    QCoreApplication::processEvents();
    EXPECT_FALSE(graphAction("Manage User Knobs")->isEnabled()) << "nobody has to ask";
    m_manager->showNetworkInView(group->groupNetwork(), m_view);
    expectEnabled(true, false);
    select({inner});
    expectEnabled(true, true);
    m_manager->showNetworkInView(m_network, m_view);
    expectEnabled(false, false);
}

TEST_F(ContextMenu, bearsWhatOthersAddToIt)
{
    {
        QAction added(text("Send to the Renderer"));
        OssShaderNetworkManager::instance()->registerGlobalContextMenuAction(&added);
        open([&](const QMenu *menu) { EXPECT_TRUE(menu->actions().contains(&added)); });
    }
    open([&](const QMenu *menu) {
        EXPECT_FALSE(entries(menu).contains(text("Send to the Renderer")));
    });
}

} // namespace
