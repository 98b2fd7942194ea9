#include "OssCore/Values/OssAttributeKind.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssInterface/Properties/OssRampEditor.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "PropertiesFixture.h"
#include "support/DialogAnswers.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QSignalSpy>

#include <functional>

namespace {

/// What a panel does as a whole.
class Properties : public PropertiesFixture
{
protected:
    /// The titles in their order, "-" behind those that are folded.
    QStringList sections() const
    {
        QStringList titles;
        const auto lists = m_panel->findChildren<OssExpandableListWidget *>();
        for (const OssExpandableListWidget *list : lists)
            titles.append(list->heading()->text() + text(list->isCollapsed() ? "-" : ""));
        return titles;
    }
};

/// Two nodes in a group that has a knob for the first one's radius.
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
        m_group->setName(text("Moss"));
        m_group->createKnob(m_first, text("Radius"));
    }

    static const QLabel *label(const OssNodePropertyPanel &panel, const char *row = "Radius")
    {
        return panel.row(text(row))->label();
    }

    static bool tells(const OssNodePropertyPanel &panel, const char *what,
                      const char *row = "Radius")
    {
        return label(panel, row)->toolTip().contains(text(what));
    }

    OssSnBaseNode *m_first = nullptr;
    OssSnBaseNode *m_second = nullptr;
    OssSnGroupNode *m_group = nullptr;
};

} // namespace

TEST_F(Properties, visibleAttributesStandInSectionsInTheirOrder)
{
    EXPECT_EQ(sections(), texts({"More", "Texts"}));
    EXPECT_EQ(row("Hidden"), nullptr);
    EXPECT_EQ(m_panel->heading()->text(), m_node->name());
    const auto saysThatThereIsNone = [](const OssNodePropertyPanel &panel) {
        const auto labels = panel.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
            return label->text() == text("This node has no properties");
        });
    };
    EXPECT_FALSE(saysThatThereIsNone(*m_panel));
    EXPECT_TRUE(saysThatThereIsNone(OssNodePropertyPanel(add("Misc/Dot"), {}, nullptr)));

    OssPropertyPanelOptions options;
    options.sectionOrder = {QRegularExpression(text("Te.*")),
                            QRegularExpression(text("or"))}; // whole titles only
    options.orderSections = true;
    options.foldUntouchedSections = true;
    options.showNodeProperties = true;
    options.nodeProperties = texts({"name"});
    options.nodePropertyPaths = texts({"/Node"});
    m_node->setAttribute(text("On"), true);
    open(options);
    EXPECT_EQ(sections(), texts({"Node", "Texts-", "More"}));
    auto *name = m_panel->findChild<OssExpandableListWidget *>()->findChild<QLineEdit *>();
    name->setText(text("Renamed"));
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_EQ(m_node->name(), text("Renamed"));
    EXPECT_EQ(m_panel->heading()->text(), text("Renamed"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(name->text(), m_node->name());

    options.hiddenSections = texts({"Texts"});
    open(options);
    EXPECT_EQ(row("Line"), nullptr);
}

TEST_F(Properties, selectedNodesOfTheTypeAreEditedTogether)
{
    OssSnBaseNode *other = add("Test/Everything");
    const auto others = [other] {
        return other->attribute(text("Amount")).toDouble();
    };
    other->setAttribute(text("Amount"), 0.9);
    add("Filter/Blur")->setSelected(true);
    other->setSelected(true);
    OssUndoManager::instance()->clear();
    m_start = m_project->stateHash();
    type(field("Amount"), "0.1"); // this one is not among them
    EXPECT_DOUBLE_EQ(others(), 0.9);
    m_node->setSelected(true);
    EXPECT_EQ(field("Amount")->text(), text("mixed"));
    EXPECT_EQ(field("Count")->text(), text("3"));
    drag(field("Amount"), 20);
    release(field("Amount"));
    EXPECT_GT(amount(), 0.1);
    EXPECT_DOUBLE_EQ(others(), amount());
    EXPECT_NE(field("Amount")->text(), text("mixed"));
    EXPECT_EQ(undoCount(), 2);
    row("Amount")->reset();
    EXPECT_DOUBLE_EQ(others(), 0.5);
    EXPECT_EQ(undoCount(), 3);
    expectUndoIsExact(m_start);
}

TEST_F(Properties, valuesAreCopiedPastedAndResetByKeys)
{
    type(field("Amount"), "0.75");
    const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
    QApplication::setActiveWindow(m_panel.get());
    field("Amount")->setFocus();
    ASSERT_EQ(m_panel->focusedRow(), row("Amount"));
    QTest::keyClick(field("Amount"), Qt::Key_C, both);
    EXPECT_EQ(QApplication::clipboard()->text(), text("0.75"));
    QTest::keyClick(field("Amount"), Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(amount(), 0.5);
    QTest::keyClick(field("Amount"), Qt::Key_V, both);
    EXPECT_DOUBLE_EQ(amount(), 0.75);
    QApplication::clipboard()->setText(text("rubbish"));
    for (const char *name : {"Amount", "Count", "Tint", "Mode", "On", "Place"})
        row(name)->pasteValue();
    EXPECT_DOUBLE_EQ(amount(), 0.75);
    EXPECT_EQ(undoCount(), 3);

    m_node->setAttribute(text("Mode"), text("Mix"));
    m_panel->copyValues();
    m_node = add("Test/Everything");
    OssNodePropertyPanel second(m_node, {}, nullptr);
    const int before = undoCount();
    second.pasteValues();
    EXPECT_EQ(undoCount(), before + 1);
    EXPECT_DOUBLE_EQ(amount(), 0.75);
    EXPECT_EQ(value("Mode"), text("Mix"));
    second.resetValues();
    EXPECT_EQ(undoCount(), before + 2);
    EXPECT_TRUE(m_node->userAttribute(text("Mode")).isDefault());
}

TEST_F(Properties, aLockedNodeIsShownAndEditedByNobody)
{
    OssSnBaseNode *other = add("Test/Everything");
    m_panel->setLocked(true);
    EXPECT_EQ(undoCount(), 2); // its making and the lock
    const QByteArray locked = m_project->stateHash();
    QTest::keyClick(field("Count"), Qt::Key_5);
    EXPECT_FALSE(field("Count")->isTyping());
    drag(field("Amount"), 50);
    release(field("Amount"));
    turnWheel(field("Amount"), {5, 5}, 120);
    row("Amount")->reset();
    QApplication::clipboard()->setText(text("0.3"));
    row("Amount")->pasteValue();
    m_panel->resetValues();
    {
        const ExpectedLog expected("was not changed: the properties of \"Everything\" are locked");
        EXPECT_FALSE(m_node->setAttribute(text("Amount"), 0.25));
    }
    // From the panel of another one that is selected with it.
    m_node->setSelected(true);
    other->setSelected(true);
    EXPECT_EQ(OssAttributeEdit::targets(other).size(), 1);
    {
        OssNodePropertyPanel second(other, {}, nullptr);
        second.row(text("Amount"))->pasteValue();
        EXPECT_DOUBLE_EQ(other->attribute(text("Amount")).toDouble(), 0.3);
        OssUndoManager::instance()->undo();
    }
    EXPECT_EQ(m_project->stateHash(), locked);
    EXPECT_EQ(undoCount(), 3);
    open({});
    EXPECT_TRUE(m_panel->isLocked()); // the node's, not the panel's
    EXPECT_FALSE(field("Amount")->isEnabled());
    m_panel->setLocked(false);
    EXPECT_TRUE(field("Amount")->isEnabled());
    type(field("Amount"), "0.75");
    m_panel->setLocked(true);
    OssUndoManager::instance()->undo();
    OssUndoManager::instance()->undo();
    EXPECT_DOUBLE_EQ(amount(), 0.5) << "a lock is none against undoing";
}

TEST_F(Properties, ofSeveralNodesOnlyWhatIsEditedChanges)
{
    OssSnBaseNode *other = add("Test/Everything");
    const auto set = [other](const char *name, const char *value) {
        ASSERT_TRUE(other->setAttribute(text(name), text(value)));
    };
    set("Tint", "0.1,0.5,2,0.3");
    set("Place", "7,2");
    set("Colors", "0,1,0,0,1 0.5,1,1,1,1");
    set("Shape", "0,0.25 1,1");
    const auto others = [other](const char *name) {
        return OssAttributeKind::toWords(other->attribute(text(name))).toStdString();
    };
    m_node->setSelected(true);
    other->setSelected(true);
    QCoreApplication::processEvents();
    EXPECT_EQ(field("Tint", 0)->text(), text("mixed"));
    EXPECT_EQ(field("Tint", 1)->text(), text("0.5"));
    EXPECT_EQ(field("Tint", 3)->text(), text("mixed"));
    EXPECT_EQ(field("Place", 0)->text(), text("mixed"));
    EXPECT_EQ(field("Colors", 0)->text(), text("0")) << "its place";
    EXPECT_EQ(field("Colors", 1)->text(), text("mixed")) << "its red";
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();

    type(field("Tint", 2), "0.75");
    EXPECT_EQ(others("Tint"), "0.1,0.5,0.75,0.3");
    drag(field("Place", 1), 20);
    release(field("Place", 1));
    EXPECT_EQ(other->attribute(text("Place")).toPointF(),
              QPointF(7, value("Place").toPointF().y()));
    EXPECT_NE(value("Place").toPointF().y(), 2.0);
    type(field("Colors", 2), "0.5");
    EXPECT_EQ(others("Colors"), "0,1,0.5,0,1 0.5,1,1,1,1");
    auto *curve = editor<OssCurveField>("Shape");
    QTest::keyClick(curve, Qt::Key_Space);
    QTest::keyClick(curve, Qt::Key_Down); // the last point
    EXPECT_EQ(others("Shape"), "0,0.25 1,0.98");
    EXPECT_EQ(undoCount(), 4);
    expectUndoIsExact(before);

    // Mixed is what is mixed now, whoever changed it.
    for (const auto &change : {std::function<void()>([&] { set("Tint", "0.25,0.5,2,1"); }),
                               std::function<void()>([] { OssUndoManager::instance()->undo(); }),
                               std::function<void()>([&] { other->setSelected(false); }),
                               std::function<void()>([&] { other->setSelected(true); }),
                               std::function<void()>([&] { other->setLocked(true); })}) {
        const bool was = field("Tint", 0)->text() == text("mixed");
        change();
        QCoreApplication::processEvents();
        EXPECT_EQ(field("Tint", 0)->text() == text("mixed"), !was);
    }
}

TEST_F(Properties, listsSayThatWhatIsChosenDiffers)
{
    OssSnBaseNode *other = add("Test/Everything");
    other->setAttribute(text("Mode"), text("Mix"));
    m_node->setSelected(true);
    other->setSelected(true);
    QCoreApplication::processEvents();
    auto *list = editor<QComboBox>("Mode");
    EXPECT_EQ(list->currentIndex(), -1);
    EXPECT_EQ(list->placeholderText(), text("mixed"));
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(other->attribute(text("Mode")), value("Mode"));
    EXPECT_EQ(list->placeholderText(), QString());
    OssUndoManager::instance()->undo();
    QCoreApplication::processEvents();
    EXPECT_EQ(list->placeholderText(), text("mixed"));
}

TEST_F(Properties, whoOnlyLooksAtOneOfSeveralValuesKeepsThem)
{
    OssSnBaseNode *other = add("Test/Everything");
    other->setAttribute(text("Amount"), 0.9);
    m_node->setSelected(true);
    other->setSelected(true);
    QCoreApplication::processEvents();
    const int steps = undoCount();
    QTest::mouseClick(field("Amount"), Qt::LeftButton);
    QTest::keyClick(typingIn(field("Amount")), Qt::Key_Tab);
    EXPECT_EQ(field("Amount")->text(), text("mixed"));
    EXPECT_EQ(undoCount(), steps);
    QTest::mouseClick(field("Amount"), Qt::LeftButton);
    QTest::keyClick(typingIn(field("Amount")), Qt::Key_Return);
    EXPECT_DOUBLE_EQ(other->attribute(text("Amount")).toDouble(), 0.5) << "asked for";
}

TEST_F(Properties, escapeAndUndoTakeBackWhatIsDragged)
{
    const auto keys = [](QWidget *widget, bool undoes) {
        QTest::keyClick(widget, undoes ? Qt::Key_Z : Qt::Key_Escape,
                        undoes ? Qt::ControlModifier : Qt::NoModifier);
    };
    QWidget *const editors[] = {field("Amount"), editor<OssRampField>("Colors")};
    for (QWidget *one : editors) {
        ASSERT_NE(one, nullptr);
        auto *ramp = qobject_cast<OssRampField *>(one);
        const QPoint from = ramp ? ramp->gripOf(0).toPoint() : one->rect().center();
        for (const bool undoes : {true, false}) {
            QTest::mousePress(one, Qt::LeftButton, {}, from);
            for (const int way : {5, 10, 30})
                moveMouse(one, from + QPoint(way, 0), Qt::LeftButton);
            EXPECT_NE(m_project->stateHash(), m_start);
            keys(one, undoes);
            EXPECT_EQ(m_project->stateHash(), m_start);
            moveMouse(one, from + QPoint(50, 0), Qt::LeftButton);
            QTest::mouseRelease(one, Qt::LeftButton, {}, from);
            EXPECT_EQ(m_project->stateHash(), m_start);
            EXPECT_EQ(undoCount(), 0);
        }
    }
    drag(field("Amount"), 40);
    release(field("Amount"));
    EXPECT_EQ(undoCount(), 1) << "the next drag counts again";
}

TEST_F(Properties, returnAndEscapeLeaveAndTheNextFieldIsATabAway)
{
    QApplication::setActiveWindow(m_panel.get());
    const QSignalSpy left(m_panel.get(), &OssNodePropertyPanel::left);
    QTest::keyClick(field("Amount"), Qt::Key_0);
    QTest::keyClicks(typingIn(field("Amount")), text(".2"));
    QTest::keyClick(typingIn(field("Amount")), Qt::Key_Tab);
    EXPECT_DOUBLE_EQ(amount(), 0.2);
    EXPECT_EQ(m_panel->focusedRow(), row("Count"));
    QTest::keyClick(field("Count"), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(m_panel->focusedRow(), row("Amount"));
    EXPECT_EQ(left.count(), 0);
    type(field("Amount"), "0.3");
    EXPECT_EQ(left.count(), 1);
    type(field("Amount"), "0.3 +");
    EXPECT_EQ(left.count(), 1) << "that is no number yet";
    QTest::keyClick(typingIn(field("Amount")), Qt::Key_Escape);
    EXPECT_EQ(left.count(), 1);
    QTest::keyClick(field("Amount"), Qt::Key_Escape);
    EXPECT_EQ(left.count(), 2);
    QTest::keyClicks(editor<QLineEdit>("Line"), text("word"));
    QTest::keyClick(editor<QLineEdit>("Line"), Qt::Key_Return);
    EXPECT_EQ(left.count(), 3);
    editor<QLineEdit>("Line")->setFocus();
    m_panel->close();
    EXPECT_EQ(left.count(), 4);
}

TEST_F(Properties, whatThePointerEditsLeavesTheKeyboardWhereItWas)
{
    QApplication::setActiveWindow(m_panel.get());
    const QSignalSpy left(m_panel.get(), &OssNodePropertyPanel::left);
    editor<QLineEdit>("Line")->setFocus();
    QTest::mouseClick(editor<QCheckBox>("On"), Qt::LeftButton, {}, {6, 8});
    EXPECT_TRUE(value("On").toBool());
    EXPECT_EQ(m_panel->focusedRow(), row("Line"));
    EXPECT_EQ(left.count(), 0);
    drag(field("Amount"), 30);
    release(field("Amount"));
    EXPECT_EQ(left.count(), 1);
    field("Amount")->setFocus();
    drag(field("Amount"), 30);
    release(field("Amount"));
    EXPECT_EQ(left.count(), 1) << "it was here before";
    auto *mode = editor<QComboBox>("Mode");
    QTest::keyClick(mode, Qt::Key_Down);
    EXPECT_EQ(left.count(), 1);
    mode->showPopup();
    QTest::keyClick(mode->view(), Qt::Key_Up);
    QTest::keyClick(mode->view(), Qt::Key_Return);
    EXPECT_EQ(value("Mode"), text("Add"));
    EXPECT_EQ(left.count(), 2);
}

TEST_F(Properties, aPanelThatIsLetGoOfMakesNoEditOfWhatIsHalfTyped)
{
    QApplication::setActiveWindow(m_panel.get());
    QTest::keyClicks(field("Amount"), text("0.2"));
    m_panel->letGo();
    editor<QLineEdit>("Line")->setFocus();
    EXPECT_DOUBLE_EQ(amount(), 0.5);
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(Properties, panelFollowsTheNodeAndOutlivesIt)
{
    const QLabel *label = row("Count")->label();
    m_node->setAttribute(text("Count"), 7);
    EXPECT_DOUBLE_EQ(field("Count")->value(), 7.0);
    EXPECT_FALSE(label->accessibleDescription().isEmpty());
    OssUndoManager::instance()->undo();
    EXPECT_DOUBLE_EQ(field("Count")->value(), 3.0);
    EXPECT_TRUE(label->accessibleDescription().isEmpty());
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(field("Count"));
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), text("Count"));
    EXPECT_EQ(accessible->text(QAccessible::Value), text("3"));
    ASSERT_NE(accessible->valueInterface(), nullptr);
    EXPECT_EQ(accessible->valueInterface()->maximumValue().toDouble(), 9.0);

    drag(field("Amount"), 30); // the project closes under a drag
    OssProjectManager::instance()->closeProject();
    EXPECT_EQ(m_panel->node(), nullptr);
    release(field("Amount"));
    type(field("Count"), "4");
    row("Amount")->reset();
    Q_EMIT OssLinkedCustomAttributeManager::instance()->linksChanged(nullptr, text("Amount"));
    m_panel->setPinned(true);
    m_panel->setLocked(true);
    EXPECT_FALSE(m_panel->isPinned() || m_panel->isLocked());
    m_panel->copyValues();
    m_panel->pasteValues();
    m_panel->resetValues();
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(PropertyKnobs, aKnobIsRenamedByItsRow)
{
    const OssNodePropertyPanel panel(m_group, {}, nullptr);
    OssPropertyRow *row = panel.row(text("Radius"));
    const QKeyEvent key(QEvent::KeyPress, Qt::Key_F2, Qt::NoModifier);
    whenOpen<QInputDialog>([](QInputDialog *dialog) {
        dialog->setTextValue(text("Softness"));
        dialog->accept();
    });
    EXPECT_TRUE(row->takeKey(&key));
    EXPECT_FALSE(m_group->exists(text("Radius")));
    EXPECT_TRUE(m_group->isKnob(text("Softness")));
    const OssNodePropertyPanel inner(m_first, {}, nullptr);
    EXPECT_FALSE(inner.row(text("Radius"))->takeKey(&key)) << "no knob";
}

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
    m_group->setAttribute(text("Radius"), 0.5); // as the other side, which then stays
    m_group->addKnobLink(text("Radius"), m_second, text("Amount"));
    EXPECT_TRUE(tells(second, "Knob \"Radius\" of Moss", "Amount"));
    EXPECT_FALSE(tells(second, "Knob"));
    EXPECT_TRUE(tells(group, "Linked to") && tells(group, "Second.Amount"));
    EXPECT_FALSE(tells(group, "Broken"));
    EXPECT_NE(label(group)->accessibleDescription(), text("a link is broken"));

    m_group->groupNetwork()->removeNodes({m_second});
    QCoreApplication::processEvents();
    EXPECT_TRUE(tells(group, "Broken link to")) << qPrintable(label(group)->toolTip());
    EXPECT_TRUE(tells(group, "Linked to")) << "the other is whole";
    EXPECT_EQ(label(group)->accessibleDescription(), text("a link is broken"));
    OssUndoManager::instance()->undo();
    EXPECT_FALSE(tells(group, "Broken")) << "it came back";
}

TEST_F(PropertyKnobs, theCountOfOthersFollowsTheSelection)
{
    OssSnBaseNode *third = add("Filter/Blur", "Third");
    OssSnBaseNode *fourth = add("Filter/Blur", "Fourth");
    const OssNodePropertyPanel panel(third, {}, nullptr);
    const auto isTold = [&panel] {
        const auto labels = panel.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [](const QLabel *one) {
            return !one->isHidden() && one->text().contains(text("and 1 more"));
        });
    };
    third->setSelected(true);
    EXPECT_FALSE(isTold());
    for (const bool selected : {true, false, true}) {
        fourth->setSelected(selected);
        QCoreApplication::processEvents();
        EXPECT_EQ(isTold(), selected);
    }
    for (const bool locked : {true, false, true, false}) {
        fourth->setLocked(locked);
        QCoreApplication::processEvents();
        EXPECT_EQ(isTold(), !locked);
    }
    for (const bool locked : {true, false}) {
        third->setLocked(locked);
        EXPECT_EQ(isTold(), !locked) << "what is locked passes nothing on";
    }
    third->network()->removeNodes({fourth});
    QCoreApplication::processEvents();
    EXPECT_FALSE(isTold());
}
