#include "Ossa/Viewer/PaintBar.h"

#include "../support/ModelFixture.h"
#include "Ossa/Viewer/PaintSession.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"

#include <QComboBox>
#include <QSpinBox>
#include <QToolButton>

namespace {

/// The bar of the brush over a network in which a blur is looked at.
class PaintBars : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_blur = add("Filter/Blur");
        m_network->setViewerNodeCurrentEdge(1, true);
        m_session = std::make_unique<PaintSession>();
        m_source = std::make_unique<ViewerSource>();
        m_bar = std::make_unique<PaintBar>(m_session.get(), m_source.get());
        m_bar->show();
        OssUndoManager::instance()->clear();
    }

    void TearDown() override
    {
        ModelFixture::TearDown();
        m_bar.reset();
        m_source.reset();
        m_session.reset();
    }

    OssSnBaseNode *viewed() const
    {
        return m_network->viewerNode()->inputNode(QStringLiteral("1"));
    }

    OssSnBaseNode *paintNode(const char *name)
    {
        OssSnBaseNode *node = m_network->createPaintableNode({});
        node->setName(QString::fromLatin1(name));
        node->setSelected(false);
        return node;
    }

    QSpinBox *number(const char *prefix) const
    {
        const auto fields = m_bar->findChildren<QSpinBox *>();
        for (QSpinBox *field : fields) {
            if (field->prefix() == QLatin1String(prefix))
                return field;
        }
        return nullptr;
    }

    QToolButton *button(const char *text) const
    {
        const auto buttons = m_bar->findChildren<QToolButton *>();
        for (QToolButton *button : buttons) {
            if (button->text() == QLatin1String(text))
                return button;
        }
        return nullptr;
    }

    OssSnBaseNode *m_blur = nullptr;
    std::unique_ptr<PaintSession> m_session;
    std::unique_ptr<ViewerSource> m_source;
    std::unique_ptr<PaintBar> m_bar;
};

TEST_F(PaintBars, newPaintLiesOverWhatIsShownInOneStep)
{
    const QByteArray before = m_project->stateHash();
    button("New")->click();
    ASSERT_NE(m_session->node(), nullptr);
    EXPECT_EQ(viewed(), m_session->node()) << "nothing was shown";
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);

    m_network->viewerNode()->setInputNode(QStringLiteral("1"), m_blur,
                                          m_blur->prefferedOutputPoint());
    OssUndoManager::instance()->clear();
    const QByteArray shown = m_project->stateHash();
    button("New")->click();
    OssSnBaseNode *merge = viewed();
    ASSERT_TRUE(merge && merge != m_session->node());
    EXPECT_EQ(merge->inputNode(QStringLiteral("Base")), m_blur);
    EXPECT_EQ(merge->inputNode(QStringLiteral("Over")), m_session->node());
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), shown);
}

TEST_F(PaintBars, paintsOnTheNodeThatIsSelectedOrChosen)
{
    OssSnBaseNode *first = paintNode("First");
    OssSnBaseNode *second = paintNode("Second");
    m_bar->refresh();
    EXPECT_EQ(m_session->node(), first) << "one is there at once";
    auto *nodes = m_bar->findChild<QComboBox *>();
    EXPECT_EQ(nodes->count(), 2);
    second->setSelected(true);
    m_bar->refresh();
    EXPECT_EQ(m_session->node(), second);
    EXPECT_EQ(nodes->currentText(), QStringLiteral("Second"));
    Q_EMIT nodes->activated(nodes->findText(QStringLiteral("First")));
    EXPECT_EQ(m_session->node(), first);
    m_bar->refresh();
    EXPECT_EQ(m_session->node(), first) << "until another one is selected";
    {
        const OssUndoManager::AutoMacro macro(QStringLiteral("Work"));
        second->setSelected(false);
        m_bar->refresh();
        second->setSelected(true);
        m_bar->refresh();
        EXPECT_EQ(m_session->node(), first) << "not in the middle of an edit";
    }
    m_bar->hide();
    m_network->removeNodes({first});
    m_bar->refresh();
    EXPECT_EQ(nodes->count(), 2) << "nobody sees it";
    m_bar->show();
    m_bar->refresh();
    EXPECT_EQ(nodes->count(), 1);
    EXPECT_EQ(m_session->node(), second);
}

TEST_F(PaintBars, fieldsAreTheBrush)
{
    OssEvBrush brush = m_session->brush();
    brush.radius = 7.3; // the keys make such
    brush.hardness = 0.4;
    brush.erases = true;
    m_session->setBrush(brush);
    EXPECT_EQ(number("Size ")->value(), 15);
    EXPECT_EQ(number("Hard ")->value(), 40);
    EXPECT_TRUE(button("Eraser")->isChecked());
    number("Hard ")->setValue(60);
    EXPECT_DOUBLE_EQ(m_session->brush().hardness, 0.6);
    EXPECT_DOUBLE_EQ(m_session->brush().radius, 7.3) << "another field was meant";
    number("Size ")->setValue(20);
    EXPECT_DOUBLE_EQ(m_session->brush().radius, 10.0);
    number("Opacity ")->setValue(25);
    EXPECT_DOUBLE_EQ(m_session->brush().opacity, 0.25);
    button("Eraser")->setChecked(false);
    EXPECT_FALSE(m_session->brush().erases);
}

} // namespace
