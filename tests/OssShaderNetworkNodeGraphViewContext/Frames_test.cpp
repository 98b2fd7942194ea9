#include "GraphFixture.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "PluginUnderTest.h"
#include "View/Backdrops.h"

#include <QAction>
#include <QDir>
#include <QMetaEnum>

#include <algorithm>

namespace {

using Networks = OssShaderNetworkManager;
using Nodes = QList<OssSnBaseNode *>;

/// What is put somewhere in an example, and what it does to backdrops.
class Frames : public GraphFixture
{
protected:
    struct Stand
    {
        OssSnBaseNode *home = nullptr;
        QRectF rect;
    };

    using Stands = QHash<OssSnBaseNode *, Stand>;

    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        open("Weathered Brick.ossa");
    }

    /// Of its objects, the network with most backdrops is shown.
    void open(const char *example)
    {
        const QDir folder(OssResourceInfo::instance()->examplePath());
        ASSERT_TRUE(OssProjectManager::instance()->openProject(folder.filePath(text(example))));
        m_project = OssProjectManager::instance()->currentProject();
        const auto frames = [](const OssShadingGroup *group) {
            const Nodes nodes = group->network()->nodes();
            return std::count_if(nodes.cbegin(), nodes.cend(), [](const OssSnBaseNode *node) {
                return node->pathKey() == text("Misc/Backdrop");
            });
        };
        const QList<OssShadingGroup *> groups = m_project->shadingGroups();
        m_network = (*std::max_element(
                         groups.cbegin(), groups.cend(),
                         [&frames](const auto *a, const auto *b) { return frames(a) < frames(b); }))
                        ->network();
        Networks::instance()->setCurrentShaderNetwork(m_network);
        m_view = m_manager->currentView();
        m_nodes = m_network->nodes();
        m_before = stands();
    }

    Stands stands() const
    {
        Stands all;
        for (OssSnBaseNode *node : m_nodes)
            all.insert(node, {Backdrops::containerOf(node), rectOf(node)});
        return all;
    }

    static bool holds(const OssSnBaseNode *frame, const OssSnBaseNode *node)
    {
        const OssSnBaseNode *one = Backdrops::containerOf(node);
        while (one && one != frame)
            one = Backdrops::containerOf(one);
        return one;
    }

    /// Who lies over whom since, where neither is the other's; and who changed backdrops, but for those
    /// that may.
    QStringList faults(const Nodes &mayChange) const
    {
        const Stands now = stands();
        QStringList found;
        for (OssSnBaseNode *a : m_nodes) {
            if (!mayChange.contains(a) && now.value(a).home != m_before.value(a).home)
                found.append(a->name() + text(" is elsewhere"));
            for (OssSnBaseNode *b : m_nodes) {
                const bool over = now.value(a).rect.intersects(now.value(b).rect)
                                  && !m_before.value(a).rect.intersects(m_before.value(b).rect);
                if (a < b && over && !holds(a, b) && !holds(b, a))
                    found.append(a->name() + text(" over ") + b->name());
            }
        }
        return found;
    }

    int arrangePairs();

    Nodes m_nodes;
    Stands m_before;
};

int Frames::arrangePairs()
{
    int done = 0;
    const auto values = QMetaEnum::fromType<Networks::Arrangement>();
    const QStringList others = texts({"BringToFront", "SendToBack"});
    for (int i = 0; i < values.keyCount(); ++i) {
        if (others.contains(text(values.key(i))))
            continue;
        // Every eleventh pair: all of them take half a minute.
        for (int pair = i % 11; pair < m_nodes.size() * m_nodes.size(); pair += 11) {
            OssSnBaseNode *first = m_nodes.at(pair / m_nodes.size());
            OssSnBaseNode *second = m_nodes.at(pair % m_nodes.size());
            const auto how = Networks::Arrangement(values.value(i));
            if (!Networks::instance()->requestArrangement({first, second}, how))
                continue;
            ++done;
            EXPECT_EQ(faults({first, second}).join(text("; ")).toStdString(), "")
                << values.key(i) << ": " << qPrintable(first->name()) << ", "
                << qPrintable(second->name());
            OssUndoManager::instance()->setIndex(0);
        }
    }
    return done;
}

TEST_F(Frames, noArrangementBringsANodeOntoABackdropThatIsNotItsNorTakesAMemberAway)
{
    int done = 0;
    for (const char *example : {"Weathered Brick.ossa", "Old Plaster.ossa"}) {
        open(example);
        done += arrangePairs();
    }
    EXPECT_GT(done, 1000);
}

/// Those of every eleventh pair there that went wrong: too many nodes to try all each time.
TEST_F(Frames, noneDoesSoInAGraphOfManyBackdropsEither)
{
    struct Pair
    {
        Networks::Arrangement how;
        const char *first;
        const char *second;
    };

    const Pair pairs[] = {
        // The first is sent out of its backdrop, and the one of the second grows towards it.
        {Networks::AlignCenter, "Facing Up", "Bollards"},
        {Networks::AlignCenter, "Rain", "Jetty"},
        {Networks::AlignCenter, "Crane Channels", "Jetty Channels"},
        {Networks::AlignCenter, "Bollards in Algae", "Canvas"},
        // A note stands below the backdrop that grows.
        {Networks::PlaceUnderneath, "Open Sky", "Bollards"},
        {Networks::PlaceUnderneath, "Facing Up", "Jetty"},
        {Networks::PlaceFarBelow, "Open Sky", "Canvas in Rain"},
    };
    open("Harbor.ossa");
    for (const Pair &pair : pairs) {
        const Nodes nodes{m_network->node(text(pair.first)), m_network->node(text(pair.second))};
        EXPECT_TRUE(Networks::instance()->requestArrangement(nodes, pair.how));
        EXPECT_EQ(faults(nodes).join(text("; ")).toStdString(), "") << pair.first;
        OssUndoManager::instance()->setIndex(0);
    }
}

TEST_F(Frames, placedByAMemberAMemberStaysInItsBackdropWhichGrows)
{
    const auto node = [this](const char *name) {
        return m_network->node(text(name));
    };
    OssSnBaseNode *home = Backdrops::containerOf(node("Brick"));
    ASSERT_NE(home, nullptr);
    for (const auto how : {Networks::PlaceLeft, Networks::PlaceFarBelow, Networks::PlaceUnderneath,
                           Networks::PlaceRight, Networks::ArrangeInLayers}) {
        EXPECT_TRUE(Networks::instance()->requestArrangement({node("Brick"), node("Warp")}, how));
        EXPECT_EQ(Backdrops::containerOf(node("Warp")), home) << how;
        EXPECT_TRUE(rectOf(home).contains(rectOf(node("Warp")))) << how;
        EXPECT_EQ(Backdrops::containerOf(node("Raw Clay")), nullptr) << how;
        OssUndoManager::instance()->setIndex(0);
    }
}

TEST_F(Frames, autoplaceFitsOnlyBackdropsOfWhichAMemberMovedAndKeepsClearOfOthers)
{
    for (OssSnBaseNode *start : m_nodes) {
        for (OssSnBaseNode *node : m_nodes)
            node->setSelected(node == start);
        const ExpectedLog nothing("Nothing to autoplace", ExpectedLog::Possible);
        OssActionTreeManager::instance()->findAction(text("/Ossa/NodeGraph/Autoplace"))->trigger();
        EXPECT_EQ(faults({}).join(text("; ")).toStdString(), "") << qPrintable(start->name());
        const Stands now = stands();
        for (OssSnBaseNode *frame : m_nodes) {
            const bool hasMoved = std::any_of(
                m_nodes.cbegin(), m_nodes.cend(), [&](OssSnBaseNode *node) {
                    return m_before.value(node).home == frame
                           && m_before.value(node).rect != now.value(node).rect;
                });
            if (Backdrops::isBackdrop(frame) && !hasMoved)
                EXPECT_EQ(now.value(frame).rect, m_before.value(frame).rect)
                    << qPrintable(start->name()) << ", " << qPrintable(frame->name());
        }
        OssUndoManager::instance()->setIndex(0);
    }
}

} // namespace
