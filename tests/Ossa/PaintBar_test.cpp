#include "Ossa/Viewer/PaintBar.h"

#include "../support/ModelFixture.h"
#include "Ossa/Viewer/PaintSession.h"
#include "Ossa/Viewer/ViewerSource.h"
#include "OssCore/Program/OssSettings.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/DialogAnswers.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
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

TEST_F(PaintBars, aColourIsTakenFromThePickerAndLeavingItChangesNothing)
{
    OssEvBrush brush = m_session->brush();
    brush.erases = true;
    brush.color = {0.25F, 0.5F, 0.75F};
    m_session->setBrush(brush);
    QToolButton *color = nullptr;
    const auto buttons = m_bar->findChildren<QToolButton *>();
    for (QToolButton *one : buttons)
        color = one->accessibleName() == QLatin1String("Color of the brush") ? one : color;
    ASSERT_NE(color, nullptr);
    for (const bool takes : {false, true}) {
        QTimer::singleShot(0, [takes] {
            auto *picker = qobject_cast<QColorDialog *>(QApplication::activeModalWidget());
            ASSERT_NE(picker, nullptr);
            picker->setCurrentColor(Qt::red);
            takes ? picker->accept() : picker->reject();
        });
        color->click();
        const std::array<float, 3> red{1.0F, 0.0F, 0.0F};
        EXPECT_EQ(m_session->brush().color, takes ? red : brush.color);
        EXPECT_EQ(m_session->brush().erases, !takes) << "who takes a colour wants to paint";
    }
}

TEST_F(PaintBars, bakesAndSaysWhyItCannot)
{
    m_network->geoEntity()->setGeometry(QStringLiteral("plane"));
    OssSnBaseNode *node = paintNode("First");
    m_bar->refresh();
    EXPECT_FALSE(button("Bake")->isEnabled() || button("Clear")->isEnabled());
    const auto stroke = [this] {
        EXPECT_TRUE(m_session->begin({0.5, 0.5}));
        m_session->end();
    };
    stroke();
    EXPECT_TRUE(button("Bake")->isEnabled() && button("Clear")->isEnabled());
    {
        const DialogAnswers answers(QString(), QMessageBox::Ok);
        button("Bake")->click();
        EXPECT_TRUE(answers.boxes.isEmpty());
    }
    EXPECT_TRUE(m_session->buffer().isEmpty());
    EXPECT_FALSE(qobject_cast<OssSnImageSetNodeBase *>(node)->imageSet()->pixels().isEmpty());
    stroke();
    const QDir folder(OssSettings::folderPath());
    QDir(folder.filePath(QStringLiteral("pixels"))).removeRecursively();
    QFile inTheWay(folder.filePath(QStringLiteral("pixels")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    {
        const DialogAnswers answers(QString(), QMessageBox::Ok);
        button("Bake")->click();
        EXPECT_EQ(answers.boxes.size(), 1);
    }
    inTheWay.remove();
    EXPECT_FALSE(m_session->buffer().isEmpty());
    button("Clear")->click();
    EXPECT_TRUE(m_session->buffer().isEmpty());
}

TEST_F(PaintBars, hintsWhenPaintIsNotToBeSeen)
{
    const auto hint = [this] {
        QString text;
        const auto labels = m_bar->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            text += label->isHidden() ? QString() : label->text();
        return text;
    };
    m_bar->refresh();
    EXPECT_TRUE(hint().contains(QStringLiteral("nothing to paint on"))) << qPrintable(hint());
    OssSnBaseNode *node = paintNode("First");
    m_bar->refresh();
    EXPECT_TRUE(hint().contains(QStringLiteral("\"First\" is no part"))) << qPrintable(hint());
    m_source->setActive(true);
    m_network->viewerNode()->setInputNode(QStringLiteral("1"), node, node->prefferedOutputPoint());
    EXPECT_TRUE(QTest::qWaitFor([&] { return hint().isEmpty(); }, 5000)) << qPrintable(hint());
}

} // namespace
