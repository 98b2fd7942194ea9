#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "support/ModelFixture.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>

// What panels tell of knobs and of what they are linked to.

namespace {

class PropertyKnobs : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_first = add("Filter/Blur", "First");
        m_second = add("Filter/Sharpen", "Second");
        m_group = m_network->groupNodes({m_first, m_second});
        ASSERT_NE(m_group, nullptr);
        m_group->setName(QStringLiteral("Moss"));
        m_group->createKnob(m_first, QStringLiteral("Radius"));
    }

    static const QLabel *label(const OssNodePropertyPanel &panel, const char *row = "Radius")
    {
        return panel.row(QLatin1String(row))->label();
    }

    static bool tells(const OssNodePropertyPanel &panel, const char *what,
                      const char *row = "Radius")
    {
        return label(panel, row)->toolTip().contains(QLatin1String(what));
    }

    OssSnBaseNode *m_first = nullptr;
    OssSnBaseNode *m_second = nullptr;
    OssSnGroupNode *m_group = nullptr;
};

TEST_F(PropertyKnobs, bothSidesTellOfEachOtherAsLinksComeAndBreak)
{
    const OssNodePropertyPanel group(m_group, {}, nullptr);
    const OssNodePropertyPanel first(m_first, {}, nullptr);
    const OssNodePropertyPanel second(m_second, {}, nullptr);
    EXPECT_TRUE(tells(first, "Knob \"Radius\" of Moss"));
    EXPECT_TRUE(tells(first, "In pixels")) << "what the type says of it";
    EXPECT_TRUE(tells(group, "First.Radius"));
    EXPECT_FALSE(tells(second, "Knob", "Amount"));
    EXPECT_FALSE(tells(group, "Second"));
    m_group->setAttribute(QStringLiteral("Radius"), 0.5); // as the other side, which then stays
    m_group->addKnobLink(QStringLiteral("Radius"), m_second, QStringLiteral("Amount"));
    EXPECT_TRUE(tells(second, "Knob \"Radius\" of Moss", "Amount"));
    EXPECT_FALSE(tells(second, "Knob"));
    EXPECT_TRUE(tells(group, "Linked to") && tells(group, "Second.Amount"));
    EXPECT_FALSE(tells(group, "Broken"));
    EXPECT_NE(label(group)->accessibleDescription(), QStringLiteral("a link is broken"));

    m_group->groupNetwork()->removeNodes({m_second});
    QCoreApplication::processEvents();
    EXPECT_TRUE(tells(group, "Broken link to")) << qPrintable(label(group)->toolTip());
    EXPECT_TRUE(tells(group, "Linked to")) << "the other is whole";
    EXPECT_EQ(label(group)->accessibleDescription(), QStringLiteral("a link is broken"));
    OssUndoManager::instance()->undo();
    EXPECT_FALSE(tells(group, "Broken")) << "it came back";
}

TEST_F(PropertyKnobs, panelsOfNodesThatAreGoneStandStill)
{
    OssNodePropertyPanel panel(m_first, {}, nullptr);
    OssProjectManager::instance()->closeProject();
    ASSERT_EQ(panel.node(), nullptr);
    Q_EMIT OssLinkedCustomAttributeManager::instance()->linksChanged(nullptr,
                                                                     QStringLiteral("Radius"));
    panel.setPinned(true);
    panel.setLocked(true);
    EXPECT_FALSE(panel.isPinned() || panel.isLocked());
    panel.copyValues();
    panel.pasteValues();
    panel.resetValues();
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(PropertyKnobs, theCountOfOthersFollowsWhenTheFocusComesIn)
{
    OssSnBaseNode *third = add("Filter/Blur", "Third");
    OssSnBaseNode *fourth = add("Filter/Blur", "Fourth");
    QWidget window;
    auto *elsewhere = new QLineEdit(&window);
    auto *panel = new OssNodePropertyPanel(third, {}, &window);
    window.show();
    window.activateWindow();
    elsewhere->setFocus();
    QCoreApplication::processEvents();
    const auto told = [panel] {
        QString text;
        const auto labels = panel->findChildren<QLabel *>();
        for (const QLabel *one : labels)
            text += one->isHidden() ? QString() : one->text() + QLatin1Char('|');
        return text.contains(QStringLiteral("and 1 more"));
    };
    third->setSelected(true);
    EXPECT_FALSE(told());
    fourth->setSelected(true);
    EXPECT_FALSE(told()) << "nobody looks";
    panel->row(QStringLiteral("Radius"))->editor()->setFocus();
    EXPECT_TRUE(told());
    fourth->setSelected(false);
    elsewhere->setFocus();
    panel->row(QStringLiteral("Radius"))->editor()->setFocus();
    EXPECT_FALSE(told());
}

} // namespace
