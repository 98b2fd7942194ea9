#include "GraphFixture.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssShaderNetworkUpgradeView.h"
#include "support/OssaFiles.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

namespace {

enum Column { UUID, Hash, Date, Same, Different, Older, Newer, Custom };

QByteArray description(const char *key, const char *date)
{
    return QByteArray("<NodeType PathKey=\"") + key + "\" Date=\"" + date
           + "\"><Inputs><Input Name=\"Input\"/><Input Name=\"Gone\"/></Inputs>"
             "<Outputs><Output Name=\"Output\"/></Outputs></NodeType>";
}

class VersionControl : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_same = add("Filter/Blur", "A Same");
        m_older = addFrom("Filter/Blur", "2020-01-01", "B Older");
        m_newer = addFrom("Filter/Blur", "2090-01-01", "C Newer");
        m_custom = addFrom("Filter/Blur", "2020-01-01", "D Custom");
        OssSnBaseNode::InputPort port;
        port.name = QStringLiteral("Own");
        m_custom->addInput(port);
        OssUndoManager::instance()->clear();
        m_start = m_project->stateHash();
        m_dialog = std::make_unique<OssShaderNetworkUpgradeView>(nullptr);
        m_tree = m_dialog->findChild<QTreeWidget *>();
    }

    OssSnBaseNode *addFrom(const char *key, const char *date, const char *name)
    {
        OssResult result;
        auto made = OssSnNodeFactory::make(
            OssSnNodeType::read(description(key, date), QStringLiteral("t"), &result));
        made->setName(QLatin1String(name));
        return m_network->addNode(std::move(made), true);
    }

    void fill(const QList<OssSnBaseNode *> &nodes)
    {
        m_dialog->populateNodes(nodes);
        m_tree->expandAll();
        m_dialog->show();
    }

    QTreeWidgetItem *version(int index = 0) const { return m_tree->topLevelItem(index); }

    static QString texts(const QTreeWidgetItem *row)
    {
        QStringList all;
        for (int column = Same; column <= Custom; ++column)
            all.append(row->text(column));
        return all.join(QLatin1Char('|'));
    }

    /// Opens the menu over a cell and triggers an action, if it is named; the active one's text.
    QString menu(QTreeWidgetItem *row, int column, const char *wanted)
    {
        QString active;
        QTimer::singleShot(0, m_tree, [&active, wanted] {
            auto *popup = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            ASSERT_NE(popup, nullptr);
            active = popup->activeAction() ? popup->activeAction()->text() : QString();
            QList<QAction *> actions = popup->actions();
            const QList<QAction *> types = actions.last()->menu()->actions();
            EXPECT_TRUE(std::is_partitioned(types.cbegin(), types.cend(), [](const QAction *type) {
                return type->isEnabled();
            })) << "what nodes can become comes first";
            EXPECT_TRUE(types.first()->isEnabled());
            EXPECT_FALSE(types.last()->isEnabled());
            QAction *chosen = nullptr;
            for (QAction *action : actions + types) {
                if (action->text() == QLatin1String(wanted))
                    chosen = action;
            }
            if (chosen && types.contains(chosen)) {
                popup->setActiveAction(actions.last());
                auto *convert = actions.last()->menu();
                convert->popup({0, 0});
                convert->setActiveAction(chosen);
                QTest::keyClick(convert, Qt::Key_Return);
            } else if (chosen) {
                popup->setActiveAction(chosen);
                QTest::keyClick(popup, Qt::Key_Return);
            } else {
                popup->close();
            }
        });
        Q_EMIT m_tree->itemEntered(row, column);
        Q_EMIT m_tree->customContextMenuRequested(m_tree->visualItemRect(row).center());
        return active;
    }

    OssSnBaseNode *m_same = nullptr;
    OssSnBaseNode *m_older = nullptr;
    OssSnBaseNode *m_newer = nullptr;
    OssSnBaseNode *m_custom = nullptr;
    std::unique_ptr<OssShaderNetworkUpgradeView> m_dialog;
    QTreeWidget *m_tree = nullptr;
    QByteArray m_start;
};

TEST_F(VersionControl, nodesOfEveryTypeAreTheSameWithTheirContexts)
{
    QList<OssSnBaseNode *> nodes{m_network->viewerNode()};
    const QString viewer = m_network->viewerNode()->pathKey();
    const QStringList keys = OssShaderNetworkManager::instance()->nodePathKeys();
    for (const QString &key : keys) {
        if (key != viewer) // there is one
            nodes.append(m_network->createNode(key));
    }
    fill(nodes);
    int same = 0;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        same += version(i)->text(Same).toInt();
        EXPECT_EQ(version(i)->text(Different), QString()) << qPrintable(version(i)->text(UUID));
    }
    EXPECT_EQ(same, nodes.size());
}

TEST_F(VersionControl, statesAreDecidedByHashAndDate)
{
    OssSnBaseNode *unknown = add("Adjust/Invert", "Unknown");
    unknown->setVersionUUID(QStringLiteral("Z_None"));
    OssSnBaseNode *nameless = add("Adjust/Levels", "Nameless");
    nameless->setVersionUUID(QString());
    fill({unknown, m_custom, m_newer, m_older, m_same, nameless});
    ASSERT_EQ(m_tree->topLevelItemCount(), 3);
    EXPECT_EQ(version(0)->text(UUID), QStringLiteral("<EMPTY>"));
    EXPECT_EQ(version(1)->text(UUID), QStringLiteral("OSS_Filter_Blur"));
    EXPECT_EQ(texts(version(1)), QStringLiteral("1|3|1|1|1"));
    EXPECT_EQ(texts(version(1)->child(0)), QStringLiteral("/A Same||||"));
    EXPECT_EQ(texts(version(1)->child(1)), QStringLiteral("|/B Older|/B Older||"));
    EXPECT_EQ(texts(version(1)->child(2)), QStringLiteral("|/C Newer||/C Newer|"));
    EXPECT_EQ(texts(version(1)->child(3)), QStringLiteral("|/D Custom|||/D Custom"));
    EXPECT_EQ(version(1)->child(1)->text(Date), QStringLiteral("2020-01-01"));
    EXPECT_EQ(version(1)->child(1)->text(Hash), m_older->versionHashPresent());
    // Nothing to compare with: shown, not counted.
    EXPECT_EQ(version(2)->text(Hash), QStringLiteral("<EMPTY>"));
    EXPECT_EQ(texts(version(2)), QStringLiteral("||||"));
    EXPECT_EQ(texts(version(2)->child(0)), QStringLiteral("/Unknown||||"));
}

TEST_F(VersionControl, menuUpgradesTheStateUnderThePointer)
{
    const ExpectedLog expected("the input \"Gone\", which is gone");
    m_older->setInputNode(QStringLiteral("Gone"), m_same, QStringLiteral("Output"));
    OssUndoManager::instance()->clear();
    m_start = m_project->stateHash();
    fill({m_same, m_older, m_newer, m_custom});
    EXPECT_EQ(menu(version(), Older, ""), QStringLiteral("Old"));
    EXPECT_EQ(menu(version(), Custom, ""), QStringLiteral("Custom"));
    EXPECT_EQ(undoCount(), 0);
    menu(version()->child(1), Same, "Old"); // that row alone
    EXPECT_EQ(texts(version()->child(1)), QStringLiteral("/B Older||||"));
    EXPECT_EQ(texts(version()), QStringLiteral("2|2||1|1"));
    EXPECT_EQ(version()->child(1)->text(Date), m_older->versionDate());
    EXPECT_EQ(version()->child(1)->text(Hash), m_older->versionHashCreated());
    EXPECT_EQ(undoCount(), 1);
    const auto labels = m_dialog->findChildren<QLabel *>();
    EXPECT_TRUE(labels.first()->isVisible());
    EXPECT_TRUE(labels.first()->text().contains(QStringLiteral("Gone")));

    menu(version(), Different, "All");
    EXPECT_EQ(texts(version()), QStringLiteral("4||||"));
    EXPECT_EQ(undoCount(), 2);
    EXPECT_EQ(itemOf(m_custom)->inputPortNames(), m_same->inputNames());
    expectUndoIsExact(m_start);
}

TEST_F(VersionControl, menuConvertsSelectedRowsAndDumpsDefinitions)
{
    contextOf(m_older)->setNodePosition({120, 340});
    OssUndoManager::instance()->clear();
    m_start = m_project->stateHash();
    fill({m_same, m_older});
    EXPECT_EQ(version()->toolTip(Hash), version()->text(Hash));
    EXPECT_EQ(version()->child(0)->toolTip(Hash), m_same->versionHashPresent());
    menu(version()->child(1), Different, "Dump");
    EXPECT_TRUE(logHas(QStringLiteral("port Gone")));
    m_tree->setCurrentItem(version()->child(1));
    menu(version()->child(1), Different, "Filter/Sharpen");
    OssSnBaseNode *converted = m_network->node(QStringLiteral("B Older"));
    ASSERT_NE(converted, nullptr);
    EXPECT_EQ(converted->pathKey(), QStringLiteral("Filter/Sharpen"));
    EXPECT_EQ(contextOf(converted)->nodePosition(), QPointF(120, 340));
    ASSERT_EQ(m_tree->topLevelItemCount(), 2);
    EXPECT_EQ(version(1)->text(UUID), QStringLiteral("OSS_Filter_Sharpen"));
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(m_start);
}

TEST_F(VersionControl, whatIsConvertedKeepsItsItemsStateAndItsPanel)
{
    OssSnNodePropertiesWidget *panels = m_manager->nodePropertiesWidget();
    contextOf(m_older)->setPortListMode(OssNgExtendedNode::NoPortList);
    panels->openProperty(m_same);
    panels->openProperty(m_older);
    const auto placeOf = [panels](const OssSnBaseNode *node) {
        const QWidget *panel = panels->panel(node);
        return panel ? panel->parentWidget()->layout()->indexOf(const_cast<QWidget *>(panel)) : -1;
    };
    panels->insertAfter(m_older, m_same);
    ASSERT_EQ(placeOf(m_older), 1);
    panels->panel(m_older)->setProperty("pinned", true);
    OssUndoManager::instance()->clear();
    m_start = m_project->stateHash();
    const QString name = m_older->name();
    OssSnBaseNode *converted = OssShaderNetworkManager::instance()->convertNodeToKeyPath(
        m_older, QStringLiteral("Filter/Sharpen"));
    ASSERT_NE(converted, nullptr);
    EXPECT_EQ(contextOf(converted)->portListMode(), OssNgExtendedNode::NoPortList);
    EXPECT_EQ(placeOf(converted), 1);
    EXPECT_EQ(placeOf(m_older), -1);
    EXPECT_TRUE(panels->panel(converted)->property("pinned").toBool());
    expectUndoIsExact(m_start);
    EXPECT_EQ(placeOf(m_network->node(name)), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(placeOf(m_older), 1) << "also when it comes back";
}

TEST_F(VersionControl, aVersionAndItsRowsAreConvertedOnceAndGroupsWithWhatIsInside)
{
    const ExpectedLog expected("the nodes inside do not come along");
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Z Group"));
    OssSnBaseNode *inner = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"),
                                                             QStringLiteral("Inner"));
    OssUndoManager::instance()->clear();
    fill({m_same, m_older, inner, group});
    m_tree->clearSelection();
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        version(i)->setSelected(true);
        version(i)->child(0)->setSelected(true);
    }
    const int nodes = m_network->nodes().size();
    menu(version()->child(0), Different, "Filter/Sharpen");
    EXPECT_EQ(m_network->nodes().size(), nodes);
    int sharpened = 0;
    for (const OssSnBaseNode *node : m_network->nodes())
        sharpened += node->pathKey() == QLatin1String("Filter/Sharpen");
    EXPECT_EQ(sharpened, 3) << "two nodes and the group, which took the inner one along";
    ASSERT_EQ(m_tree->topLevelItemCount(), 1);
    EXPECT_EQ(version()->childCount(), 3);
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(VersionControl, ofManyLossesTheLastAreShownAndTheRestCounted)
{
    QByteArray inputs;
    for (int i = 0; i < 7; ++i)
        inputs += "<Input Name=\"Gone" + QByteArray::number(i) + "\"/>";
    OssResult result;
    auto made = OssSnNodeFactory::make(OssSnNodeType::read(
        "<NodeType PathKey=\"Filter/Blur\" Date=\"2020-01-01\"><Inputs>" + inputs
            + "</Inputs><Outputs><Output Name=\"Output\"/></Outputs></NodeType>",
        QStringLiteral("t"), &result));
    OssSnBaseNode *node = m_network->addNode(std::move(made), true);
    for (int i = 0; i < 7; ++i)
        node->setInputNode(QStringLiteral("Gone%1").arg(i), m_same, QStringLiteral("Output"));
    const ExpectedLog expected("which is gone");
    fill({node});
    menu(version(), Older, "Old");
    const QString shown = m_dialog->findChildren<QLabel *>().first()->text();
    EXPECT_EQ(shown.count(QLatin1Char('\n')), 4) << qPrintable(shown);
    EXPECT_TRUE(shown.contains(QStringLiteral("and 3 more"))) << qPrintable(shown);
    EXPECT_TRUE(shown.contains(QStringLiteral("Gone6")));
    EXPECT_FALSE(shown.contains(QStringLiteral("Gone0")));
}

TEST_F(VersionControl, besideTheRowsThereIsNoMenuAndItsEndIsNoChoice)
{
    fill({m_same, nullptr, m_older});
    EXPECT_TRUE(logHas(QStringLiteral("Node is NULL")));
    EXPECT_EQ(version()->childCount(), 2);
    Q_EMIT m_tree->customContextMenuRequested({5, m_tree->viewport()->height() - 3});
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(menu(version(), Hash, ""), QString());
    EXPECT_EQ(undoCount(), 0);
    menu(version()->child(0), Older, "Old"); // that row has none
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(m_project->stateHash(), m_start);
    EXPECT_FALSE(m_dialog->findChildren<QLabel *>().first()->isVisible());
}

TEST_F(VersionControl, rowsFollowTheTypesWhileTheWindowIsOpen)
{
    const QTemporaryDir folder;
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const auto read = [&](const char *date) {
        const QString path = folder.filePath(text("own.xml"));
        // Another port each month.
        if (*date != 0)
            writeFile(path, description("My/Own", date).replace("Gone", date));
        else
            QFile::remove(path);
        OssSnNodeTypeLibrary::Changes changes;
        networks->readUserNodeTypes(folder.path(), &changes);
    };
    read("2026-01-01");
    OssSnBaseNode *own = add("My/Own");
    OssUndoManager::instance()->clear();
    fill({own});
    EXPECT_EQ(texts(version()), text("1||||"));
    read("2026-02-01");
    EXPECT_EQ(version()->text(Date), text("2026-02-01"));
    EXPECT_EQ(texts(version()), text("|1|1||"));
    read("");
    EXPECT_EQ(version()->text(Hash), text("<EMPTY>"));
}

} // namespace
