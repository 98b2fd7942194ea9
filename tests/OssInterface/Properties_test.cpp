#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "PropertiesFixture.h"

#include <QAccessible>
#include <QClipboard>

namespace {

/// What a panel does as a whole.
class Properties : public PropertiesFixture
{};

TEST_F(Properties, visibleAttributesStandInSectionsInTheirOrder)
{
    QStringList sections;
    const auto lists = m_panel->findChildren<OssExpandableListWidget *>();
    for (const OssExpandableListWidget *list : lists)
        sections.append(list->heading()->text());
    EXPECT_EQ(sections, QStringList({QStringLiteral("More"), QStringLiteral("Texts")}));
    EXPECT_EQ(m_panel->row(QStringLiteral("Hidden")), nullptr);
    EXPECT_EQ(m_panel->heading()->text(), m_node->name());

    OssPropertyPanelOptions options;
    options.sectionOrder = {QRegularExpression(QStringLiteral("Te.*")),
                            QRegularExpression(QStringLiteral("or"))}; // whole titles only
    options.orderSections = true;
    options.foldUntouchedSections = true;
    options.showNodeProperties = true;
    options.nodeProperties = QStringList{QStringLiteral("name")};
    options.nodePropertyPaths = QStringList{QStringLiteral("/Node")};
    m_node->setAttribute(QStringLiteral("On"), true);
    open(options);
    sections.clear();
    const auto ordered = m_panel->findChildren<OssExpandableListWidget *>();
    for (const OssExpandableListWidget *list : ordered)
        sections.append(list->heading()->text() + QLatin1Char(list->isCollapsed() ? '-' : '+'));
    EXPECT_EQ(sections, QStringList({QStringLiteral("Node+"), QStringLiteral("Texts-"),
                                     QStringLiteral("More+")}));
    auto *name = ordered.first()->findChild<QLineEdit *>();
    name->setText(QStringLiteral("Renamed"));
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_EQ(m_node->name(), QStringLiteral("Renamed"));
    EXPECT_EQ(m_panel->heading()->text(), QStringLiteral("Renamed"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(name->text(), m_node->name());

    options.hiddenSections = QStringList{QStringLiteral("Texts")};
    open(options);
    EXPECT_EQ(m_panel->row(QStringLiteral("Line")), nullptr);
}

TEST_F(Properties, selectedNodesOfTheTypeAreEditedTogether)
{
    OssSnBaseNode *other = add("Test/Everything");
    OssSnBaseNode *blur = add("Filter/Blur");
    other->setAttribute(QStringLiteral("Amount"), 0.9);
    OssUndoManager::instance()->clear();
    m_start = m_project->stateHash();
    other->setSelected(true);
    blur->setSelected(true);
    type(field("Amount"), "0.1"); // this one is not among them
    EXPECT_DOUBLE_EQ(other->attribute(QStringLiteral("Amount")).toDouble(), 0.9);
    m_node->setSelected(true);
    EXPECT_EQ(field("Amount")->text(), QStringLiteral("mixed"));
    EXPECT_EQ(field("Count")->text(), QStringLiteral("3"));
    drag(field("Amount"), 20);
    release(field("Amount"));
    EXPECT_GT(amount(), 0.1);
    EXPECT_DOUBLE_EQ(other->attribute(QStringLiteral("Amount")).toDouble(), amount());
    EXPECT_NE(field("Amount")->text(), QStringLiteral("mixed"));
    EXPECT_EQ(undoCount(), 2);
    m_panel->row(QStringLiteral("Amount"))->reset();
    EXPECT_DOUBLE_EQ(other->attribute(QStringLiteral("Amount")).toDouble(), 0.5);
    EXPECT_EQ(undoCount(), 3);
    expectUndoIsExact(m_start);
}

TEST_F(Properties, valuesAreCopiedPastedAndResetByKeys)
{
    type(field("Amount"), "0.75");
    const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
    QApplication::setActiveWindow(m_panel.get());
    field("Amount")->setFocus();
    ASSERT_EQ(m_panel->focusedRow(), m_panel->row(QStringLiteral("Amount")));
    QTest::keyClick(field("Amount"), Qt::Key_C, both);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("0.75"));
    QTest::keyClick(field("Amount"), Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(amount(), 0.5);
    QTest::keyClick(field("Amount"), Qt::Key_V, both);
    EXPECT_DOUBLE_EQ(amount(), 0.75);
    QApplication::clipboard()->setText(QStringLiteral("rubbish"));
    for (const char *name : {"Amount", "Count", "Tint", "Mode", "On", "Place"})
        m_panel->row(QLatin1String(name))->pasteValue();
    EXPECT_DOUBLE_EQ(amount(), 0.75);
    EXPECT_EQ(undoCount(), 3);

    m_node->setAttribute(QStringLiteral("Mode"), QStringLiteral("Mix"));
    m_panel->copyValues();
    OssSnBaseNode *other = add("Test/Everything");
    OssNodePropertyPanel second(other, {}, nullptr);
    const int before = undoCount();
    second.pasteValues();
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_DOUBLE_EQ(other->attribute(QStringLiteral("Amount")).toDouble(), 0.75);
    EXPECT_EQ(other->attribute(QStringLiteral("Mode")).toString(), QStringLiteral("Mix"));
    second.resetValues();
    EXPECT_EQ(undoCount(), before + 2);
    EXPECT_TRUE(other->userAttribute(QStringLiteral("Mode")).isDefault());
}

TEST_F(Properties, lockedPanelShowsAndDoesNotEdit)
{
    m_panel->setLocked(true);
    QTest::keyClick(field("Count"), Qt::Key_5);
    EXPECT_FALSE(field("Count")->isTyping());
    drag(field("Amount"), 50);
    release(field("Amount"));
    m_panel->row(QStringLiteral("Amount"))->reset();
    m_panel->resetValues();
    EXPECT_EQ(undoCount(), 0);
    m_node->setAttribute(QStringLiteral("Amount"), 0.25);
    EXPECT_DOUBLE_EQ(field("Amount")->value(), 0.25);
    open({});
    EXPECT_TRUE(m_panel->isLocked()); // the node's, not the panel's
    EXPECT_FALSE(field("Amount")->isEnabled());
    m_panel->setLocked(false);
    EXPECT_TRUE(field("Amount")->isEnabled());
}

TEST_F(Properties, panelFollowsTheNodeAndOutlivesIt)
{
    m_node->setAttribute(QStringLiteral("Count"), 7);
    EXPECT_DOUBLE_EQ(field("Count")->value(), 7.0);
    EXPECT_FALSE(m_panel->row(QStringLiteral("Count"))->label()->accessibleDescription().isEmpty());
    OssUndoManager::instance()->undo();
    EXPECT_DOUBLE_EQ(field("Count")->value(), 3.0);
    EXPECT_TRUE(m_panel->row(QStringLiteral("Count"))->label()->accessibleDescription().isEmpty());
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(field("Count"));
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Count"));
    EXPECT_EQ(accessible->text(QAccessible::Value), QStringLiteral("3"));
    ASSERT_NE(accessible->valueInterface(), nullptr);
    EXPECT_EQ(accessible->valueInterface()->maximumValue().toDouble(), 9.0);

    drag(field("Amount"), 30); // the project closes under a drag
    OssProjectManager::instance()->closeProject();
    EXPECT_EQ(m_panel->node(), nullptr);
    release(field("Amount"));
    type(field("Count"), "4");
    m_panel->row(QStringLiteral("Amount"))->reset();
    m_panel->copyValues();
    m_panel->setLocked(true);
    EXPECT_EQ(undoCount(), 0);
}

} // namespace
