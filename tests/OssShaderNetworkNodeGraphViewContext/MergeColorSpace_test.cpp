#include "GraphFixture.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QTimer>

namespace {

/// Merges above 8-bit paint, which are to blend in a colour space that keeps precision.
class MergeColorSpace : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
    }

    void TearDown() override
    {
        m_manager->resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
        OssApplication::setPopupsAllowed(m_popups);
        GraphFixture::TearDown();
    }

    static int blending(const OssSnBaseNode *merge)
    {
        return merge->attribute(QStringLiteral("BlendColorSpaceEnabled"))
            .value<OssUserEnum>()
            .currentValue();
    }

    bool m_popups = true;
};

TEST_F(MergeColorSpace, mergesAboveBytePaintAreAskedAboutOnceAndAsThePreferenceSays)
{
    OssSnBaseNode *first = addAt("Layer/Merge", {0, 0});
    OssSnBaseNode *second = addAt("Layer/Merge", {300, 0});
    OssSnBaseNode *mask = addAt("Layer/Merge", {0, 400});
    OssSnBaseNode *input = addAt("_System/Shader Input", {600, 0});
    wire(first, second, "Base");
    wire(mask, second, "Mask");
    wire(second, input);
    ASSERT_NE(m_network->groupNodes({first}), nullptr); // which hides it from nothing
    OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(input);
    EXPECT_EQ(blending(first), 0); // nobody to ask
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(QStringLiteral("Leave"));
    OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(input);
    EXPECT_EQ(blending(first), 0);
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(QStringLiteral("Change"));
    OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(input);
    EXPECT_EQ(blending(first), 1);
    EXPECT_EQ(blending(second), 1);
    EXPECT_EQ(blending(mask), 0);
}

TEST_F(MergeColorSpace, whoeverIsAskedAboutMergesCanSayNeverAgain)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {0, 0});
    OssSnBaseNode *input = addAt("_System/Shader Input", {600, 0});
    wire(merge, input);
    OssApplication::setPopupsAllowed(true);
    const auto ask = [&](QMessageBox::StandardButton button, bool never) {
        int asked = 0;
        QTimer::singleShot(0, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            ++asked;
            box->checkBox()->setChecked(never);
            box->button(button)->click();
        });
        OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(input);
        EXPECT_EQ(asked, 1);
        return m_manager->autoUpdateUpstreamMergeNodeColorspaceEnabled();
    };
    EXPECT_EQ(ask(QMessageBox::No, false), QStringLiteral("Prompt"));
    EXPECT_EQ(blending(merge), 0);
    EXPECT_EQ(ask(QMessageBox::No, true), QStringLiteral("Leave"));
    EXPECT_EQ(blending(merge), 0);
    m_manager->resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
    EXPECT_EQ(ask(QMessageBox::Yes, false), QStringLiteral("Prompt"));
    EXPECT_EQ(blending(merge), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(blending(merge), 0);
    EXPECT_EQ(ask(QMessageBox::Yes, true), QStringLiteral("Change"));
    EXPECT_EQ(blending(merge), 1);
    m_manager->resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
    QCoreApplication::processEvents();
    OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(input);
}

TEST_F(MergeColorSpace, onlyBytePaintBelowAMergeMatters)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {0, 0});
    auto *bake = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({600, 0}, QStringLiteral("Misc/Bake Point")));
    wire(merge, bake);
    OssSnBaseNode *blur = addAt("Filter/Blur", {600, 300});
    wire(merge, blur);
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(QStringLiteral("Change"));
    const auto update = [&](OssSnBaseNode *end) {
        OssUndoManager::instance()->clear();
        OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(end);
        const int changed = blending(merge);
        OssUndoManager::instance()->undo();
        return changed;
    };
    bake->imageSet()->setDepth(5121);
    EXPECT_EQ(update(bake), 1);
    EXPECT_EQ(update(blur), 0) << "keeps nothing";
    bake->imageSet()->setScalar(true);
    EXPECT_EQ(update(bake), 0);
    bake->imageSet()->setScalar(false);
    bake->imageSet()->setDepth(OssImageSet::FloatDepth);
    EXPECT_EQ(update(bake), 0);
    OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(nullptr);
}

TEST_F(MergeColorSpace, whatIsMadeAndWiredAtOnceIsLookedAtOnceItIsWired)
{
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(QStringLiteral("Change"));
    OssSnBaseNode *merge = addAt("Layer/Merge", {0, 0});
    select({merge});
    OssUndoManager::instance()->clear();
    ASSERT_NE(m_view->createNodeAt(QStringLiteral("_System/Shader Input"), QPoint(200, 200)),
              nullptr);
    EXPECT_EQ(blending(merge), 1);
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(blending(merge), 0);
}

TEST_F(MergeColorSpace, aWireDrawnByHandAsksAndARefusedOneDoesNot)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {0, 0});
    auto *bake = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({600, 0}, QStringLiteral("Misc/Bake Point")));
    bake->imageSet()->setDepth(5121);
    wire(merge, bake);
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(QStringLiteral("Change"));
    const ExpectedLog refused("Cannot connect", ExpectedLog::Possible);
    contextOf(bake)->connectInputFromGui(merge, QStringLiteral("None"), QStringLiteral("Output"));
    EXPECT_EQ(blending(merge), 0);
    bake->setInputNode(QStringLiteral("Input"), nullptr, {});
    contextOf(bake)->connectInputFromGui(merge, QStringLiteral("Input"),
                                         merge->prefferedOutputPoint());
    EXPECT_EQ(blending(merge), 1);
}

TEST_F(MergeColorSpace, whoeverMakesOrWiresNodesHasTheMergesLookedAt)
{
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Change"));
    // A wire by itself, as a script makes it.
    OssSnBaseNode *merge = add("Layer/Merge");
    OssSnBaseNode *input = add("_System/Shader Input");
    OssUndoManager::instance()->clear();
    wire(merge, input);
    EXPECT_EQ(blending(merge), 1);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), text("Connect ") + input->name());
    OssUndoManager::instance()->undo();
    EXPECT_EQ(blending(merge), 0);
    EXPECT_EQ(input->inputConnection(input->inputNames().first()), nullptr);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(blending(merge), 1);
    // A new merge that is wired before its edit ends, by no view.
    OssSnBaseNode *made = nullptr;
    {
        const OssUndoManager::AutoMacro macro(text("Make"));
        made = m_network->createNode(text("Layer/Merge"));
        wire(made, merge, "Over");
        EXPECT_EQ(blending(made), 0);
    }
    EXPECT_EQ(blending(made), 1);
    // What comes from elsewhere brings its wires along.
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Leave"));
    OssSnBaseNode *copied = add("Layer/Merge");
    OssSnBaseNode *copiedInput = add("_System/Shader Input");
    wire(copied, copiedInput);
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Change"));
    const QList<OssSnBaseNode *> copies = OssShaderNetworkIO::duplicateNodes(
        m_network, {copied, copiedInput}, false);
    ASSERT_EQ(copies.size(), 2);
    EXPECT_EQ(blending(copies.first()), 1);
    EXPECT_EQ(blending(copied), 0);
}

TEST_F(MergeColorSpace, whatWasAboveBeforeTheEditIsNotTouched)
{
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Leave"));
    OssSnBaseNode *merge = add("Layer/Merge");
    OssSnBaseNode *input = add("_System/Shader Input");
    wire(merge, input);
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Change"));
    OssSnGroupNode *group = m_network->groupNodes({merge}); // which wires the input anew
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(blending(merge), 0);
    m_network->ungroup(group);
    EXPECT_EQ(blending(merge), 0);
    // What is taken back was never there.
    OssSnBaseNode *other = add("Layer/Merge");
    {
        OssUndoManager::AutoMacro macro(text("Try"));
        wire(other, input);
        macro.cancel();
    }
    m_network->createNode(text("Filter/Blur"));
    EXPECT_EQ(blending(other), 0);
    EXPECT_EQ(blending(merge), 0);
}

TEST_F(MergeColorSpace, whatAnEditSetsOnItsOwnMergeStays)
{
    const OssUndoManager::Gathering command(text("Command"));
    OssSnBaseNode *merge = nullptr;
    {
        const OssUndoManager::AutoMacro macro(text("Make"));
        merge = m_network->createNode(text("Layer/Merge"));
        auto value = merge->attribute(text("BlendColorSpaceEnabled")).value<OssUserEnum>();
        value.setCurrentValue(1);
        merge->setAttribute(text("BlendColorSpaceEnabled"), QVariant::fromValue(value));
    }
    EXPECT_EQ(blending(merge), 1) << "nothing below it keeps 8-bit paint, but somebody chose it";
}

TEST_F(MergeColorSpace, aBakePointThatWillKeepBytesCountsBeforeItsFirstBake)
{
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Change"));
    for (const char *depth : {"16 bit half", "8 bit"}) {
        OssSnBaseNode *merge = add("Layer/Merge");
        OssSnBaseNode *bakePoint = add("Misc/Bake Point");
        bakePoint->setAttribute(text("depth"), text(depth));
        wire(merge, bakePoint);
        OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(bakePoint);
        EXPECT_EQ(blending(merge), depth == std::string("8 bit") ? 1 : 0) << depth;
    }
}

} // namespace
