#include "OssInterface/Dialogs/OssNodeInfoDialog.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "support/ModelFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

namespace {

class NodeInfo : public ModelFixture
{
protected:
    /// What the text says of the node under that name; null when there is no such line.
    static QString told(OssSnBaseNode *node, const char *name)
    {
        const QString start = QLatin1String(name) + QStringLiteral(": ");
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
    EXPECT_EQ(OssNodeInfoDialog::text({}), QStringLiteral("No node is selected."));
    EXPECT_EQ(OssNodeInfoDialog::text({nullptr}), OssNodeInfoDialog::text({}));
    OssSnBaseNode *blur = add("Filter/Blur", "Soft");
    for (const char *name : {"Description", "Error", "Inside", "Images", "Cost"})
        EXPECT_TRUE(told(blur, name).isNull()) << name;
    EXPECT_EQ(told(blur, "Node"), QStringLiteral("/Soft"));
    EXPECT_EQ(told(blur, "Type"), QStringLiteral("Filter/Blur"));
    blur->setDescription(QStringLiteral("for the moss"));
    blur->setErrorText(QStringLiteral("too wide"));
    EXPECT_EQ(told(blur, "Description"), QStringLiteral("for the moss"));
    EXPECT_EQ(told(blur, "Error"), QStringLiteral("too wide"));

    const QString two = OssNodeInfoDialog::text({blur, nullptr, m_network->viewerNode()});
    EXPECT_EQ(two.split(QStringLiteral("\n\n")).size(), 2);
    OssNodeInfoDialog dialog({blur});
    const auto buttons = dialog.findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text() == QLatin1String("Copy"))
            button->click();
    }
    EXPECT_EQ(QGuiApplication::clipboard()->text(), OssNodeInfoDialog::text({blur}));
}

TEST_F(NodeInfo, tellsTheStateInWords)
{
    OssSnBaseNode *blur = add("Filter/Blur");

    const struct
    {
        bool enabled;
        bool bypassed;
        int cache;
        const char *words;
    } cases[] = {
        {true, false, CacheOff, "enabled"},
        {false, false, CacheOff, "disabled"},
        {true, true, CacheOff, "enabled, bypassed"},
        {true, false, CachePending, "enabled"},
        {false, true, CacheActive, "disabled, bypassed, result kept"},
    };

    for (const auto &c : cases) {
        blur->setEnabled(c.enabled ? 1 : 0);
        blur->setBypassed(c.bypassed);
        blur->setCacheActive(c.cache);
        EXPECT_EQ(told(blur, "State").toStdString(), c.words);
    }
}

TEST_F(NodeInfo, tellsWhatItTakesFromFeedsAndHolds)
{
    OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise", "Noise");
    OssSnBaseNode *blur = add("Filter/Blur", "Soft");
    OssSnBaseNode *sharpen = add("Filter/Sharpen", "Crisp");
    ASSERT_TRUE(wire(noise, blur) && wire(blur, sharpen));
    EXPECT_EQ(told(sharpen, "Takes from"), QStringLiteral("2 nodes"));
    EXPECT_EQ(told(blur, "Takes from"), QStringLiteral("1 node"));
    EXPECT_EQ(told(blur, "Feeds"), QStringLiteral("1 node"));
    EXPECT_EQ(told(sharpen, "Feeds"), QStringLiteral("0 nodes"));
    EXPECT_EQ(told(blur, "Input Input"),
              QStringLiteral("/Noise . ") + noise->prefferedOutputPoint());
    EXPECT_EQ(told(noise, "Input Input"), QString());
    m_network->removeNodes({noise});
    EXPECT_EQ(told(blur, "Input Input"), QStringLiteral("not connected"));

    OssSnGroupNode *group = m_network->groupNodes({blur, sharpen});
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(told(group, "Inside"),
              QStringLiteral("%1 nodes").arg(group->groupNetwork()->getAllNodes().size()));
    OssSnBaseNode *paint = m_network->createPaintableNode({});
    EXPECT_TRUE(told(paint, "Images").endsWith(QStringLiteral(", empty")))
        << qPrintable(told(paint, "Images"));
}

// A group costs what is inside it; a node whose name only begins alike is another.
TEST_F(NodeInfo, tellsTheCostOfWhatWasComputed)
{
    const QTemporaryDir folder;
    m_network->geoEntity()->setGeometry(QStringLiteral("plane"));
    OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise", "Grain");
    OssSnBaseNode *idle = add("Procedural/Noise/Fractal Noise", "Gra");
    OssSnGroupNode *group = m_network->groupNodes({noise});
    ASSERT_NE(group, nullptr);
    group->setName(QStringLiteral("Holder"));
    OssSnBaseNode *idleGroup = m_network->groupNodes({idle});
    idleGroup->setName(QStringLiteral("Hold"));
    OssEvaluationService::BakeJob job;
    job.node = noise;
    job.outputPoint = noise->prefferedOutputPoint();
    job.entity = m_network->geoEntity();
    job.patches = {1001};
    job.resolution = 64;
    ASSERT_TRUE(OssEvaluationService::instance()->bake(
        job, folder.filePath(QStringLiteral("grain.<UDIM>.png"))));
    EXPECT_TRUE(told(noise, "Cost").endsWith(QStringLiteral("for a patch of 2048 \u00d7 2048")))
        << qPrintable(OssNodeInfoDialog::text({noise}));
    EXPECT_EQ(told(group, "Cost"), told(noise, "Cost"));
    EXPECT_TRUE(told(idle, "Cost").isNull());
    EXPECT_TRUE(told(idleGroup, "Cost").isNull()) << qPrintable(told(idleGroup, "Cost"));
}

} // namespace
