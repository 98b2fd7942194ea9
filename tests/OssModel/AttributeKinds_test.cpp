#include "OssCore/Values/OssValueText.h"
#include "OssModel/Evaluation/OssSnParameter.h"
#include "support/ModelFixture.h"
#include "support/OtherValue.h"

#include <QTemporaryDir>

namespace {

/// A group with a node that has an attribute of every kind, under the kind's name.
class AttributeKindsOfNodes : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        QByteArray xml = R"(<NodeType PathKey="Test/Kinds"><Attributes>)";
        for (const OssAttributeKind &kind : OssAttributeKind::all())
            xml += QByteArray("<Attribute Choices=\"A,B,C\" Name=\"") + kind.name.data()
                   + "\" Type=\"" + kind.name.data() + "\"/>";
        OssResult result;
        OssShaderNetworkManager::instance()->registerNodeType(
            OssSnNodeType::read(xml + "</Attributes></NodeType>", QStringLiteral("t"), &result));
        m_node = add("Test/Kinds", "Kinds");
        ASSERT_NE(m_node, nullptr) << qPrintable(result.error());
        m_group = m_network->groupNodes({m_node});
    }

    OssSnBaseNode *m_node = nullptr;
    OssSnGroupNode *m_group = nullptr;
};

TEST_F(AttributeKindsOfNodes, descriptionsNameThemAndKernelsSeeTheirValues)
{
    for (const OssAttributeKind &kind : OssAttributeKind::all()) {
        const std::string name = kind.name.data();
        const OssCustomAttribute attribute = m_node->userAttribute(kind.name);
        EXPECT_EQ(OssAttributeKind::of(attribute), &kind) << name;
        const QString usual = kind.hasChoices() ? QStringLiteral("0") : QString(kind.defaultText);
        EXPECT_EQ(OssValueText::toText(attribute.value()), usual) << name;
        OssEvParameter first;
        OssEvParameter second;
        EXPECT_TRUE(OssSnParameter::fromValue(attribute.value(), &first)) << name;
        EXPECT_TRUE(OssSnParameter::fromValue(otherValue(attribute.value(), 1), &second));
        // Images that the project does not have are all the same.
        EXPECT_EQ(first == second, name == "images") << name;
    }
    OssEvParameter parameter;
    EXPECT_FALSE(OssSnParameter::fromValue(QVariantList(), &parameter));
}

TEST_F(AttributeKindsOfNodes, valuesAndKnobsOfThemAreSavedAndRead)
{
    QMap<QString, QVariant> values;
    for (const OssAttributeKind &kind : OssAttributeKind::all()) {
        const QString knob = m_group->createKnob(m_node, kind.name);
        values.insert(knob, otherValue(m_node->attribute(kind.name), 2));
        EXPECT_TRUE(m_group->setAttribute(knob, values.value(knob))) << kind.name.data();
    }
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Kinds.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    const QByteArray saved = m_project->stateHash();
    const QString groupName = m_group->name();
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    OssProject *project = OssProjectManager::instance()->currentProject();
    EXPECT_EQ(project->stateHash(), saved);
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    const OssSnBaseNode *group = network->node(groupName);
    ASSERT_NE(group, nullptr);
    const OssSnBaseNode *node = network->nodeByPath(groupName + QStringLiteral("/Kinds"));
    ASSERT_NE(node, nullptr);
    for (auto one = values.cbegin(); one != values.cend(); ++one) {
        for (const OssSnBaseNode *read : {group, node}) {
            EXPECT_EQ(read->attribute(one.key()), *one) << qPrintable(one.key());
            EXPECT_EQ(OssAttributeKind::choices(read->attribute(one.key())),
                      OssAttributeKind::choices(*one));
            EXPECT_EQ(OssAttributeKind::of(read->userAttribute(one.key())),
                      OssAttributeKind::named(one.key()));
        }
    }
}

} // namespace
