#include "Ossa/Viewer/ViewerHint.h"

#include "Ossa/Viewer/ViewerSource.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QTest>

namespace {

/// What the Viewer says where it has no picture.
class ViewerHints : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_network->geoEntity()->setGeometry(text("plane"));
        QObject::connect(&m_source, &ViewerSource::began, &m_source,
                         [this](const QList<int> &, const QString &, const QString &problem) {
                             m_said = problem;
                         });
        m_source.setResolution(64);
        m_source.setActive(true);
    }

    bool comesToSay(const char *words)
    {
        return QTest::qWaitFor([&] { return m_said.contains(text(words)); });
    }

    bool comesToShow()
    {
        return QTest::qWaitFor([&] { return m_said.isEmpty(); });
    }

    ViewerSource m_source;
    QString m_said;
};

TEST_F(ViewerHints, anInputThatIsSwitchedOffIsSaidToBeThat)
{
    OssSnBaseNode *viewer = m_network->viewerNode();
    OssSnBaseNode *color = add("Procedural/Color");
    OssSnBaseNode *dot = add("Misc/Dot");
    const QString input = dot->inputNames().first();
    EXPECT_TRUE(comesToSay("Nothing is connected"));
    m_network->setViewerNodeCurrentEdge(1, true);
    dot->setInputNode(input, color, color->prefferedOutputPoint());
    viewer->setInputNode(text("1"), dot, dot->prefferedOutputPoint());
    EXPECT_TRUE(comesToShow()) << qPrintable(m_said);
    const std::pair<OssSnBaseNode *, QString> ends[] = {{viewer, text("1")}, {dot, input}};
    for (const auto &[node, name] : ends) {
        node->setInputEnabled(name, false);
        EXPECT_TRUE(comesToSay("switched off")) << qPrintable(m_said);
        EXPECT_TRUE(m_said.contains(node->name()));
        EXPECT_TRUE(m_said.contains(text("Toggle Wire"))) << "how it comes back";
        EXPECT_TRUE(ViewerHint::whyBare().contains(text("switched off"))) << "on the object, too";
        node->setInputEnabled(name, true);
        EXPECT_TRUE(comesToShow()) << qPrintable(m_said);
    }
    viewer->setInputEnabled(text("1"), false);
    viewer->setInputNode(text("1"), nullptr, QString());
    EXPECT_TRUE(comesToSay("Nothing is connected")) << "there is no wire to switch on";
}

} // namespace
