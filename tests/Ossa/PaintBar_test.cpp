#include "Ossa/Viewer/PaintBar.h"

#include "Ossa/Viewer/ViewerSource.h"
#include "OssCore/Program/OssStatusManager.h"
#include "PaintFixture.h"
#include "support/DialogAnswers.h"
#include "support/PassTime.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QSignalSpy>
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
        Brushes::instance()->setBrush({});
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

    OssSnBaseNode *viewed() const { return m_network->viewerNode()->inputNode(text("1")); }

    OssSnBaseNode *paintNode(const char *name)
    {
        OssSnBaseNode *node = m_network->createPaintableNode({});
        node->setName(text(name));
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

    QDoubleSpinBox *size() const { return named<QDoubleSpinBox>(m_bar.get(), "Across"); }

    QAbstractButton *button(const char *name) const { return ::button(m_bar.get(), name); }

    void stroke() const
    {
        ASSERT_TRUE(m_session->begin(QPointF(0.5, 0.5)));
        m_session->end();
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

    m_network->viewerNode()->setInputNode(text("1"), m_blur, m_blur->prefferedOutputPoint());
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    shader->setInputNode(text("Base Color"), m_blur, m_blur->prefferedOutputPoint());
    OssUndoManager::instance()->clear();
    const QByteArray shown = m_project->stateHash();
    button("New")->click();
    OssSnBaseNode *merge = viewed();
    ASSERT_TRUE(merge && merge != m_session->node());
    EXPECT_EQ(merge->inputNode(text("Base")), m_blur);
    EXPECT_EQ(merge->inputNode(text("Over")), m_session->node());
    EXPECT_EQ(shader->inputNode(text("Base Color")), merge) << "the material has it";
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), shown);
}

TEST_F(PaintBars, overAMaterialNewPaintLiesOverItsColor)
{
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    shader->setInputNode(text("Base Color"), m_blur, m_blur->prefferedOutputPoint());
    m_network->viewerNode()->setInputNode(text("1"), shader, shader->prefferedOutputPoint());
    OssUndoManager::instance()->clear();
    button("New")->click();
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(viewed(), shader);
    const OssSnBaseNode *merge = shader->inputNode(text("Base Color"));
    ASSERT_NE(merge, nullptr);
    EXPECT_EQ(merge->inputNode(text("Base")), m_blur);
    EXPECT_EQ(merge->inputNode(text("Over")), m_session->node());
    EXPECT_TRUE(m_session->node()->selected());
}

TEST_F(PaintBars, followsTheSelectionWhereThatIsNoEdit)
{
    OssSnBaseNode *first = paintNode("First");
    OssSnBaseNode *second = paintNode("Second");
    m_bar->refresh();
    ASSERT_EQ(m_session->node(), first);
    second->setSelected(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_session->node() == second; }));
    stroke();
    second->setSelected(false);
    first->setSelected(true);
    passTime(50);
    EXPECT_EQ(m_session->node(), second) << "its paint would have to be baked";
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
    EXPECT_EQ(nodes->currentText(), text("Second"));
    Q_EMIT nodes->activated(nodes->findText(text("First")));
    EXPECT_EQ(m_session->node(), first);
    m_bar->refresh();
    EXPECT_EQ(m_session->node(), first) << "until another one is selected";
    {
        const OssUndoManager::AutoMacro macro(text("Work"));
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

TEST_F(PaintBars, aLayersHeightBendsLightWhereTheHeightBeneathDoes)
{
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    OssSnBaseNode *normal = add("Math/Height to Normal");
    const QString height = normal->inputNames().first();
    normal->setInputNode(height, m_blur, m_blur->prefferedOutputPoint());
    shader->setInputNode(text("Normal"), normal, normal->prefferedOutputPoint());
    shader->setInputNode(text("Displacement"), m_blur, m_blur->prefferedOutputPoint());
    m_network->viewerNode()->setInputNode(text("1"), shader, shader->prefferedOutputPoint());
    button("New Layer")->click();
    ASSERT_NE(shader->inputNode(text("Displacement")), m_blur);
    EXPECT_EQ(normal->inputNode(height), shader->inputNode(text("Displacement")));
}

TEST_F(PaintBars, aLayerIsPaintOverTheChannelsOfAMaterialAllOfItPaintedAtOnce)
{
    QSignalSpy told(OssStatusManager::instance(), &OssStatusManager::messageShown);
    button("New Layer")->click();
    EXPECT_EQ(told.size(), 1) << "a blur is no material";
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    shader->setInputNode(text("Roughness"), m_blur, m_blur->prefferedOutputPoint());
    m_network->viewerNode()->setInputNode(text("1"), shader, shader->prefferedOutputPoint());
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    button("New Layer")->click();
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(m_session->along().size(), 3);
    EXPECT_EQ(shader->inputNode(text("Base Color")), m_session->node());
    EXPECT_FALSE(m_session->node()->imageSet()->isScalar());
    const OssSnBaseNode *merge = shader->inputNode(text("Roughness"));
    ASSERT_NE(merge, nullptr);
    EXPECT_EQ(merge->inputNode(text("Base")), m_blur);
    auto *rough = qobject_cast<OssSnImageSetNodeBase *>(merge->inputNode(text("Over")));
    ASSERT_TRUE(m_session->along().contains(rough));
    EXPECT_TRUE(rough->imageSet()->isScalar());
    EXPECT_DOUBLE_EQ(m_session->colorAlong(rough).green(), 0.5) << "as the shader has it";
    EXPECT_DOUBLE_EQ(m_session->colorAlong(m_session->along().last()).green(), 0.0);
    // Each has its colour in the bar.
    auto *field = named<QDoubleSpinBox>(m_bar.get(), "Roughness Paint");
    field->selectAll();
    QTest::keyClicks(field, text("0.25"));
    EXPECT_DOUBLE_EQ(m_session->colorAlong(rough).green(), 0.25);
    rough->imageSet()->setScalar(false);
    m_bar->refresh();
    whenOpen<QColorDialog>([](QColorDialog *picker) {
        picker->setCurrentColor(Qt::white);
        picker->accept();
    });
    button("Roughness Paint")->click();
    EXPECT_NEAR(m_session->colorAlong(rough).red(), 1.0, 1e-3);
    rough->imageSet()->setScalar(true);
    // One of them alone is painted on when it is selected alone.
    for (OssSnBaseNode *node : m_network->getAllNodes())
        node->setSelected(node == rough);
    m_bar->refresh();
    EXPECT_EQ(m_session->node(), rough);
    EXPECT_TRUE(m_session->along().isEmpty());
    // And those of a group when the group is.
    m_session->setNode(nullptr);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(PaintBars, fieldsOfALayerGoOnBelowWhereThereIsNoRoom)
{
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    m_network->viewerNode()->setInputNode(text("1"), shader, shader->prefferedOutputPoint());
    button("New Layer")->click();
    const auto along = [this](const char *name) {
        return named<QDoubleSpinBox>(m_bar.get(), name);
    };
    m_bar->resize(m_bar->minimumSizeHint().width(), 400);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return along("Displacement Paint")->y() > along("Roughness Paint")->y(); }));
    EXPECT_LE(along("Displacement Paint")->geometry().right(), m_bar->width());
}

TEST_F(PaintBars, paintNodesInASelectedGroupArePaintedTogether)
{
    OssSnBaseNode *first = paintNode("First");
    OssSnBaseNode *second = paintNode("Second");
    OssSnBaseNode *group = m_network->groupNodes({first, second});
    ASSERT_NE(group, nullptr);
    group->setSelected(true);
    m_bar->refresh();
    ASSERT_NE(m_session->node(), nullptr);
    EXPECT_EQ(m_session->along().size(), 1);
    m_blur->setSelected(true);
    m_bar->refresh();
    EXPECT_TRUE(m_session->along().isEmpty())
        << "a rubber band around everything is no wish to paint";
    m_blur->setSelected(false);
    m_bar->refresh();
    EXPECT_EQ(m_session->along().size(), 1);
    stroke();
    m_bar->bake();
    EXPECT_FALSE(m_session->hasPaint());
    EXPECT_FALSE(m_session->node()->imageSet()->pixels().isEmpty());
    EXPECT_FALSE(m_session->along().first()->imageSet()->pixels().isEmpty());
}

TEST_F(PaintBars, fieldsAreTheBrush)
{
    OssEvBrush brush = Brushes::instance()->brush();
    brush.radius = 7.3; // the keys make such
    brush.hardness = 0.4;
    brush.tool = OssEvBrush::Tool::Eraser;
    Brushes::instance()->setBrush(brush);
    EXPECT_EQ(size()->value(), 15);
    EXPECT_EQ(number("Hard ")->value(), 40);
    auto *tool = named<QComboBox>(m_bar.get(), "Tool");
    EXPECT_EQ(tool->currentText(), text("Eraser"));
    number("Hard ")->setValue(60);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().hardness, 0.6);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().radius, 7.3) << "another field was meant";
    size()->setValue(20);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().radius, 10.0);
    brush = Brushes::instance()->brush();
    brush.sizeIn = OssEvBrush::SizeIn::World;
    brush.worldRadius = 0.123;
    Brushes::instance()->setBrush(brush);
    EXPECT_DOUBLE_EQ(size()->value(), 0.246);
    size()->selectAll();
    QTest::keyClicks(size(), text("3.75"));
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().worldRadius, 1.875) << "digit by digit";
    size()->setValue(0.5);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().worldRadius, 0.25);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().radius, 10.0) << "each has its own";
    number("Opacity ")->setValue(25);
    EXPECT_DOUBLE_EQ(Brushes::instance()->brush().opacity, 0.25);
    Q_EMIT tool->activated(tool->findText(text("Smear")));
    EXPECT_EQ(Brushes::instance()->brush().tool, OssEvBrush::Tool::Smear);
}

TEST_F(PaintBars, aColourIsTakenFromThePickerAndLeavingItChangesNothing)
{
    OssEvBrush brush = Brushes::instance()->brush();
    brush.tool = OssEvBrush::Tool::Eraser;
    brush.color = {0.25F, 0.5F, 0.75F};
    Brushes::instance()->setBrush(brush);
    auto *color = named<QToolButton>(m_bar.get(), "Color of the brush");
    ASSERT_NE(color, nullptr);
    for (const bool takes : {false, true}) {
        whenOpen<QColorDialog>([takes](QColorDialog *picker) {
            picker->setCurrentColor(Qt::red);
            takes ? picker->accept() : picker->reject();
        });
        color->click();
        const std::array<float, 3> red{1.0F, 0.0F, 0.0F};
        EXPECT_EQ(Brushes::instance()->brush().color, takes ? red : brush.color);
        EXPECT_EQ(Brushes::instance()->brush().erases(), !takes)
            << "who takes a colour wants to paint";
    }
}

TEST_F(PaintBars, theBrushLooksTheSameInAnotherWorkingSpace)
{
    OssEvBrush brush = Brushes::instance()->brush();
    brush.color = {1.0F, 0.0F, 0.0F};
    Brushes::instance()->setBrush(brush);
    m_project->setWorkingSpace(text("ACEScg"));
    EXPECT_NEAR(Brushes::instance()->brush().color[0], 0.6131F, 1e-3F);
    EXPECT_NEAR(Brushes::instance()->brush().color[1], 0.0702F, 1e-3F);
    m_project->setWorkingSpace({});
    EXPECT_NEAR(Brushes::instance()->brush().color[0], 1.0F, 1e-3F);
    EXPECT_NEAR(Brushes::instance()->brush().color[1], 0.0F, 1e-3F);
}

TEST_F(PaintBars, bakesAndSaysWhyItCannot)
{
    m_network->geoEntity()->setGeometry(text("plane"));
    OssSnBaseNode *node = paintNode("First");
    m_bar->refresh();
    EXPECT_FALSE(button("Bake")->isEnabled() || button("Clear")->isEnabled());
    stroke();
    EXPECT_TRUE(button("Bake")->isEnabled() && button("Clear")->isEnabled());
    const DialogAnswers answers(QString(), QMessageBox::Ok);
    button("Bake")->click();
    EXPECT_TRUE(answers.boxes.isEmpty());
    EXPECT_TRUE(m_session->buffer().isEmpty());
    EXPECT_FALSE(qobject_cast<OssSnImageSetNodeBase *>(node)->imageSet()->pixels().isEmpty());
    stroke();
    {
        const NoRoomForPixels none;
        button("Bake")->click();
    }
    EXPECT_EQ(answers.boxes.size(), 1);
    EXPECT_FALSE(m_session->buffer().isEmpty());
    button("Clear")->click();
    EXPECT_TRUE(m_session->buffer().isEmpty());
}

TEST_F(PaintBars, hintsWhenPaintIsNotToBeSeen)
{
    const auto hint = [this] {
        QString shown;
        const auto labels = m_bar->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            shown += label->isHidden() ? QString() : label->text();
        return shown;
    };
    m_bar->refresh();
    EXPECT_TRUE(hint().contains(text("nothing to paint on"))) << qPrintable(hint());
    OssSnBaseNode *node = paintNode("First");
    m_bar->refresh();
    EXPECT_TRUE(hint().contains(text("\"First\" is no part"))) << qPrintable(hint());
    m_source->setActive(true);
    m_network->viewerNode()->setInputNode(text("1"), node, node->prefferedOutputPoint());
    EXPECT_TRUE(QTest::qWaitFor([&] { return hint().isEmpty(); }, 5000)) << qPrintable(hint());
}

} // namespace
