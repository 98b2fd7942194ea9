#include "OssInterface/Dialogs/OssNodeInfoDialog.h"
#include "OssInterface/Widgets/OssHelpBrowser.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QClipboard>
#include <QTemporaryDir>

namespace {

class NodeInfo : public ModelFixture
{
protected:
    /// What the text says of the node under that name; null when there is no such line.
    static QString told(OssSnBaseNode *node, const char *name)
    {
        const QString start = text(name) + text(": ");
        const QStringList lines = OssNodeInfoDialog::text({node}).split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (line.startsWith(start))
                return line.mid(start.size());
        }
        return {};
    }
};

TEST_F(NodeInfo, tellsOnlyWhatThereIsToTell)
{
    EXPECT_EQ(OssNodeInfoDialog::text({}), text("No node is selected."));
    EXPECT_EQ(OssNodeInfoDialog::text({nullptr}), OssNodeInfoDialog::text({}));
    OssSnBaseNode *blur = add("Filter/Blur", "Soft");
    for (const char *name : {"Description", "Error", "Inside", "Images", "Cost"})
        EXPECT_TRUE(told(blur, name).isNull()) << name;
    EXPECT_EQ(told(blur, "Node"), text("/Soft"));
    EXPECT_EQ(told(blur, "Type"), text("Filter/Blur"));
    blur->setDescription(text("for the moss"));
    blur->setErrorText(text("too wide"));
    EXPECT_EQ(told(blur, "Description"), text("for the moss"));
    EXPECT_EQ(told(blur, "Error"), text("too wide"));

    EXPECT_EQ(told(blur, "What it does"), blur->nodeType()->description);
    EXPECT_TRUE(told(blur, "When to use it").startsWith(text("To soften masks")));

    const QString two = OssNodeInfoDialog::text({blur, nullptr, m_network->viewerNode()});
    EXPECT_EQ(two.split(text("\n\n")).size(), 2);
    OssNodeInfoDialog dialog({blur});
    const auto *help = dialog.findChild<OssHelpBrowser *>();
    ASSERT_TRUE(help);
    EXPECT_TRUE(help->toPlainText().contains(told(blur, "When to use it")));
    press(&dialog, "Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), OssNodeInfoDialog::text({blur}));
}

TEST_F(NodeInfo, tellsTheStateInWords)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    const std::tuple<bool, bool, int, const char *> cases[] = {
        {true, false, CacheOff, "enabled"},
        {false, false, CacheOff, "disabled"},
        {true, true, CacheOff, "enabled, bypassed"},
        {true, false, CachePending, "enabled"},
        {false, true, CacheActive, "disabled, bypassed, result kept"},
    };
    for (const auto &[enabled, bypassed, cache, words] : cases) {
        blur->setEnabled(enabled ? 1 : 0);
        blur->setBypassed(bypassed);
        blur->setCacheActive(cache);
        EXPECT_EQ(told(blur, "State").toStdString(), words);
    }
}

TEST_F(NodeInfo, tellsWhatItTakesFromFeedsAndHolds)
{
    OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise", "Noise");
    OssSnBaseNode *blur = add("Filter/Blur", "Soft");
    OssSnBaseNode *sharpen = add("Filter/Sharpen", "Crisp");
    ASSERT_TRUE(wire(noise, blur) && wire(blur, sharpen));
    const std::tuple<OssSnBaseNode *, const char *, QString> cases[] = {
        {sharpen, "Takes from", text("2 nodes")},
        {blur, "Takes from", text("1 node")},
        {blur, "Feeds", text("1 node")},
        {sharpen, "Feeds", text("0 nodes")},
        {blur, "Input Input", text("/Noise . ") + noise->prefferedOutputPoint()},
        {noise, "Input Input", {}},
    };
    for (const auto &[node, name, wanted] : cases)
        EXPECT_EQ(told(node, name), wanted) << name;
    m_network->removeNodes({noise});
    EXPECT_EQ(told(blur, "Input Input"), text("not connected"));

    OssSnGroupNode *group = m_network->groupNodes({blur, sharpen});
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(told(group, "Inside"),
              text("%1 nodes").arg(group->groupNetwork()->getAllNodes().size()));
    OssSnBaseNode *paint = m_network->createPaintableNode({});
    EXPECT_TRUE(told(paint, "Images").endsWith(text(", empty")))
        << qPrintable(told(paint, "Images"));
}

// A group costs what is inside it; a node whose name only begins alike is another.
TEST_F(NodeInfo, tellsTheCostOfWhatWasComputed)
{
    const QTemporaryDir folder;
    m_network->geoEntity()->setGeometry(text("plane"));
    OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise", "Grain");
    OssSnBaseNode *idle = add("Procedural/Noise/Fractal Noise", "Gra");
    OssSnGroupNode *group = m_network->groupNodes({noise});
    ASSERT_NE(group, nullptr);
    group->setName(text("Holder"));
    OssSnBaseNode *idleGroup = m_network->groupNodes({idle});
    idleGroup->setName(text("Hold"));
    OssEvaluationService::BakeJob job;
    job.node = noise;
    job.outputPoint = noise->prefferedOutputPoint();
    job.entity = m_network->geoEntity();
    job.patches = {1001};
    job.resolution = 64;
    ASSERT_TRUE(
        OssEvaluationService::instance()->bake(job, folder.filePath(text("grain.<UDIM>.png"))));
    EXPECT_TRUE(told(noise, "Cost").endsWith(text("for a patch of 2048 \u00d7 2048")))
        << qPrintable(OssNodeInfoDialog::text({noise}));
    EXPECT_EQ(told(group, "Cost"), told(noise, "Cost"));
    EXPECT_TRUE(told(idle, "Cost").isNull());
    EXPECT_TRUE(told(idleGroup, "Cost").isNull()) << qPrintable(told(idleGroup, "Cost"));
}

} // namespace
