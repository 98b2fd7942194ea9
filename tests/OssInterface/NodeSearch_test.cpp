#include "OssInterface/Dialogs/OssNodeSearch.h"
#include "support/ModelFixture.h"

using NodeSearch = ModelFixture;

TEST_F(NodeSearch, everyWordHasAReasonAndNamesComeFirst)
{
    OssSnBaseNode *node = add("Filter/Blur", "Soft wall");
    add("Misc/Dot", "Other");
    node->setDescription(QStringLiteral("for the northern side"));
    const QString radius = QStringLiteral("Radius");
    ASSERT_TRUE(node->exists(radius));
    ASSERT_TRUE(node->setAttribute(radius, 6.25));
    const QString path = node->path();
    const QString value = QStringLiteral("Radius = 6.25");

    const struct
    {
        const char *text;
        QString why;
        int least;
        int most;
    } cases[] = {
        {"", path, 0, 0},
        {"  ", path, 0, 0},
        {"WALL", path, 2000, 9999},
        {"soft wall", path, 4000, 9999},
        {"unconn", QStringLiteral("unconnected"), 400, 400},
        {"filter/bl", QStringLiteral("Filter/Blur"), 300, 300},
        {"northern", node->description(), 200, 200},
        {"6.25", value, 100, 100},
        {"radius=6.2", value, 500, 500},
        {"radi=6", value, 500, 500},
        {"wall northern", node->description(), 2200, 9999},
        {"northern wall", node->description(), 2200, 9999},
        {"sfwl", path, 0, 1999},
        {"radius=7", {}, 0, 0},
        {"size=6.25", {}, 0, 0},
        {"=6.25", {}, 0, 0},
        {"radius=", {}, 0, 0},
        {"wall zzqx", {}, 0, 9999},
        {"disabled", {}, 0, 0},
        {"bypassed", {}, 0, 0},
    };

    for (const auto &c : cases) {
        int score = -1;
        EXPECT_EQ(OssNodeSearch::whyFound(node, QString::fromUtf8(c.text), &score), c.why)
            << c.text;
        EXPECT_GE(score, c.least) << c.text;
        EXPECT_LE(score, c.most) << c.text;
        EXPECT_EQ(OssNodeSearch::whyFound(node, QString::fromUtf8(c.text), nullptr), c.why);
    }
    node->setEnabled(0);
    node->setBypassed(true);
    for (const char *state : {"disabled", "bypassed"})
        EXPECT_EQ(OssNodeSearch::whyFound(node, QString::fromUtf8(state), nullptr),
                  QString::fromUtf8(state));
    wire(add("Misc/Dot"), node);
    EXPECT_EQ(OssNodeSearch::whyFound(node, QStringLiteral("unconn"), nullptr), QString());
}
