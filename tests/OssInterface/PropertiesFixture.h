#pragma once

#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssNumberField.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "support/InterfaceUser.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QLineEdit>
#include <QTest>

#include <memory>

/// A type with every kind of attribute.
inline constexpr char Everything[] = R"(<NodeType PathKey="Test/Everything"><Attributes>
    <Attribute Name="Amount" Type="real" Default="0.5" Minimum="0" Maximum="10" SoftMaximum="1"/>
    <Attribute Name="Count" Type="integer" Default="3" Minimum="1" Maximum="9"/>
    <Attribute Name="Hidden" Type="real" Visible="false"/>
    <Group Name="More">
        <Attribute Name="Tint" Type="color" Default="0.25,0.5,2,1"/>
        <Attribute Name="Mode" Type="choice" Choices="Add,Mix"/>
        <Attribute Name="On" Type="boolean"/>
        <Attribute Name="Place" Type="vector2" Default="1,2"/>
    </Group>
    <Group Name="Texts">
        <Attribute Name="Line" Type="text"/>
        <Attribute Name="Note" Type="paragraph"/>
        <Attribute Name="Path" Type="file"/>
        <Attribute Name="Shape" Type="curve"/>
        <Attribute Name="Colors" Type="ramp"/>
        <Attribute Name="Pictures" Type="images"/>
    </Group>
</Attributes></NodeType>)";

/// The panel of a node of that type.
class PropertiesFixture : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssResult result;
        OssShaderNetworkManager::instance()->registerNodeType(
            OssSnNodeType::read(Everything, text("t"), &result));
        m_node = add("Test/Everything");
        ASSERT_NE(m_node, nullptr) << qPrintable(result.error());
        open({});
        OssUndoManager::instance()->clear();
        m_start = m_project->stateHash();
    }

    void TearDown() override
    {
        m_panel.reset();
        ModelFixture::TearDown();
    }

    void open(const OssPropertyPanelOptions &options)
    {
        m_panel = std::make_unique<OssNodePropertyPanel>(m_node, options, nullptr);
        m_panel->resize(300, 900);
        m_panel->show();
    }

    OssPropertyRow *row(const char *attribute) const { return m_panel->row(text(attribute)); }

    template <class Editor>
    Editor *editor(const char *attribute, int index = 0) const
    {
        const OssPropertyRow *found = row(attribute);
        return found ? found->editor()->findChildren<Editor *>().value(index) : nullptr;
    }

    OssNumberField *field(const char *attribute, int index = 0) const
    {
        return editor<OssNumberField>(attribute, index);
    }

    QVariant value(const char *attribute) const { return m_node->attribute(text(attribute)); }

    double amount() const { return value("Amount").toDouble(); }

    /// The field in which the number is typed at the moment.
    static QLineEdit *typingIn(const OssNumberField *field)
    {
        QLineEdit *open = nullptr;
        const auto lines = field->findChildren<QLineEdit *>();
        for (QLineEdit *line : lines)
            open = line->isHidden() ? open : line;
        return open;
    }

    static void type(OssNumberField *field, const char *typed)
    {
        QTest::keyClick(field, Qt::Key_Return);
        QLineEdit *line = typingIn(field);
        ASSERT_NE(line, nullptr);
        line->selectAll();
        QTest::keyClicks(line, text(typed));
        QTest::keyClick(line, Qt::Key_Return);
    }

    static void drag(OssNumberField *field, int way, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint start = field->rect().center();
        QTest::mousePress(field, Qt::LeftButton, modifiers, start);
        for (int i = 0; i <= 10; ++i)
            moveMouse(field, start + QPoint(4 + (way - 4) * i / 10, 0), Qt::LeftButton, modifiers);
    }

    static void release(OssNumberField *field)
    {
        QTest::mouseRelease(field, Qt::LeftButton, {}, {0, 0});
    }

    OssSnBaseNode *m_node = nullptr;
    std::unique_ptr<OssNodePropertyPanel> m_panel;
    QByteArray m_start;
};
