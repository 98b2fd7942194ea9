#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssGroupNodeKnobWidget.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "support/InterfaceUser.h"

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>

#include <functional>

namespace {

const QString Radius = text("Radius");

class KnobDialog : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        OssSnBaseNode *blur = add("Filter/Blur", "Blur");
        OssSnBaseNode *sharpen = add("Filter/Sharpen", "Sharpen");
        OssSnBaseNode *paint = add("Channel Input/Paint", "Painted");
        m_group = m_network->groupNodes({blur, sharpen, paint});
        m_group->createKnob(blur, Radius);
        m_group->createKnob(blur, text("Quality"));
        m_group->createKnob(sharpen, Radius);
        begin();
        m_start = m_project->stateHash();
        m_dialog = std::make_unique<OssGroupNodeKnobDialog>(m_group);
        m_dialog->show();
        m_tree = m_dialog->findChild<QTreeWidget *>();
    }

    void TearDown() override
    {
        m_dialog.reset();
        GraphFixture::TearDown();
    }

    QPushButton *knobButton(const char *name) const
    {
        return button<QPushButton>(m_dialog.get(), name);
    }

    void press(const char *name) const { QTest::mousePress(knobButton(name), Qt::LeftButton); }

    void expectLines(std::initializer_list<const char *> expected) const
    {
        EXPECT_EQ(lines().join(QLatin1Char('|')), texts(expected).join(QLatin1Char('|')));
    }

    /// What to do with the modal dialogs that come, one after the other.
    void answer(const std::function<void(QDialog *)> &first,
                const std::function<void(QDialog *)> &then = {})
    {
        QTimer::singleShot(0, m_dialog.get(), [this, first, then] {
            auto *modal = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            ASSERT_NE(modal, nullptr);
            if (then)
                answer(then);
            first(modal);
        });
    }

    static std::function<void(QDialog *)> typing(const char *typed)
    {
        return [typed](QDialog *dialog) {
            auto *input = qobject_cast<QInputDialog *>(dialog);
            ASSERT_NE(input, nullptr);
            input->setTextValue(QLatin1String(typed));
            input->accept();
        };
    }

    QTreeWidgetItem *item(const char *start) const
    {
        for (QTreeWidgetItemIterator it(m_tree); *it; ++it) {
            if ((*it)->text(0).startsWith(QLatin1String(start)))
                return *it;
        }
        return nullptr;
    }

    void select(const QList<QTreeWidgetItem *> &items) const
    {
        m_tree->clearSelection();
        m_tree->setCurrentItem(items.first());
        for (QTreeWidgetItem *one : items)
            one->setSelected(true);
    }

    /// The tree as lines; sections end in a colon.
    QStringList lines() const
    {
        QStringList texts;
        for (QTreeWidgetItemIterator it(m_tree); *it; ++it)
            texts.append((*it)->parent() ? (*it)->text(0) : (*it)->text(0) + QLatin1Char(':'));
        return texts;
    }

    QString enabledButtons() const
    {
        QString enabled;
        for (const char *name : {"Pick", "Edit", "Link", "Delete", "Up", "Down"})
            enabled += QLatin1Char(knobButton(name)->isEnabled() ? name[0] : '-');
        return enabled;
    }

    OssSnGroupNode *m_group = nullptr;
    std::unique_ptr<OssGroupNodeKnobDialog> m_dialog;
    QTreeWidget *m_tree = nullptr;
    QByteArray m_start;
};

TEST_F(KnobDialog, treeAndButtonsFollowTheSelection)
{
    expectLines({"Blur:", "Radius { Blur.Radius }", "Quality { Blur.Quality }",
                 "Sharpen:", "Radius { Sharpen.Radius }"});
    expectLogged("[ -- ] Group node attributes : 'Blur/Radius, Blur/Quality, Sharpen/Radius_2'");
    EXPECT_EQ(item("Radius")->data(0, Qt::UserRole + 4).toString(), Radius);
    EXPECT_EQ(enabledButtons(), text("P-----"));
    select({item("Quality")});
    EXPECT_EQ(enabledButtons(), text("PELDUD"));
    select({item("Quality"), item("Radius")});
    EXPECT_EQ(enabledButtons(), text("P-LD--"));
    select({item("Blur")});
    EXPECT_EQ(enabledButtons(), text("P--DUD"));
    m_group->groupNetwork()->removeNodes({m_group->groupNetwork()->node(text("Blur"))});
    OssGroupNodeKnobDialog again(m_group);
    EXPECT_EQ(again.findChild<QTreeWidget *>()->topLevelItem(0)->child(0)->text(0),
              text("Radius { Blur.Radius (broken) }"));
    const auto tip = [&](int section) {
        return again.findChild<QTreeWidget *>()->topLevelItem(section)->child(0)->toolTip(0);
    };
    EXPECT_FALSE(tip(0).isEmpty());
    EXPECT_TRUE(tip(1).isEmpty());
}

TEST_F(KnobDialog, linkingAsksForAGoodNameAndMakesOneKnob)
{
    QString said;
    const auto readBox = [&said](QDialog *dialog) {
        if (auto *box = qobject_cast<QMessageBox *>(dialog))
            said = box->text();
        dialog->accept();
    };
    select({item("Quality"), item("Radius")});
    answer(readBox);
    press("Link");
    EXPECT_EQ(said, text("Cannot link knobs of differing types."));
    select({item("Quality")});
    answer(readBox);
    press("Link");
    EXPECT_EQ(said, text("More than one knob needs to be selected in order to link."));
    EXPECT_EQ(undoCount(), 0);

    QString reopened;
    select({item("Radius"), item("Sharpen")->child(0)});
    answer(typing("two words"), [&](QDialog *box) {
        said = qobject_cast<QMessageBox *>(box)->text();
        answer([&](QDialog *input) {
            reopened = qobject_cast<QInputDialog *>(input)->textValue();
            answer([&](QDialog *second) {
                EXPECT_EQ(qobject_cast<QMessageBox *>(second)->text(),
                          text("There is a node attribute of the same name. The new "
                               "knob name must be unique."));
                answer(typing("Softness"));
                second->accept();
            });
            typing("Radius")(input);
        });
        box->accept();
    });
    press("Link");
    EXPECT_EQ(said, text("The new name must consist of alphabets, numbers and underscores."));
    EXPECT_EQ(reopened, text("two words"));
    expectLogged("There already is an user attribute with the same name : Radius");
    expectLines({"Blur:", "Softness { Blur.Radius, Sharpen.Radius }", "Quality { Blur.Quality }"});
    EXPECT_EQ(m_tree->currentItem(), item("Softness"));
    expectStep("Link Knobs: Softness");
    expectUndoIsExact(m_start);
}

TEST_F(KnobDialog, knobsAreRenamedDeletedAndMovedWithinTheirSection)
{
    select({item("Quality")});
    QString title;
    answer([&title](QDialog *dialog) {
        title = dialog->windowTitle();
        typing("Grain <1>")(dialog);
    });
    press("Edit");
    EXPECT_EQ(title, text("Knob linked to \"Blur.Quality\""));
    EXPECT_EQ(m_group->userAttribute(text("Quality")).prettyName(), text("Grain <1>"));
    EXPECT_EQ(m_tree->currentItem(), item("Grain"));
    press("Up");
    EXPECT_EQ(lines().mid(1, 2), texts({"Grain <1> { Blur.Quality }", "Radius { Blur.Radius }"}));
    press("Up"); // a knob does not leave its section
    EXPECT_EQ(undoCount(), 2);
    select({item("Sharpen")->child(0)});
    press("Up");
    press("Down");
    EXPECT_EQ(undoCount(), 2);
    select({item("Sharpen")});
    press("Up");
    EXPECT_EQ(lines().first(), text("Sharpen:"));
    EXPECT_EQ(m_tree->currentItem()->text(0), text("Sharpen"));
    press("Down");
    EXPECT_EQ(lines().first(), text("Blur:"));
    select({item("Blur")});
    press("Delete");
    expectLines({"Sharpen:", "Radius { Sharpen.Radius }"});
    EXPECT_EQ(undoCount(), 5);
    expectUndoIsExact(m_start);
}

TEST_F(KnobDialog, pickedAttributesBecomeKnobsInOneStepAndSearchWraps)
{
    QStringList offered;
    QStringList found;
    answer([&](QDialog *dialog) {
        auto *tree = dialog->findChild<QTreeWidget *>();
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
            offered.append(tree->topLevelItem(i)->text(0));
        auto *search = dialog->findChild<QLineEdit *>();
        const auto look = [&](const char *pattern) {
            search->setText(QLatin1String(pattern));
            QTest::keyClick(search, Qt::Key_Return);
            found.append(tree->currentItem() ? tree->currentItem()->text(0) : QString());
        };
        look("amo*T"); // anywhere, any case
        look("sharpen");
        EXPECT_TRUE(tree->currentItem()->isExpanded());
        found.removeLast();
        tree->setCurrentItem(tree->topLevelItem(0)->child(0));
        look("RADIUS");
        look("radius");
        look("nothing");
        const auto buttons = dialog->findChildren<QPushButton *>();
        QTest::mousePress(buttons.first(), Qt::LeftButton);
        QTest::keyClick(dialog, Qt::Key_Escape);
        EXPECT_TRUE(dialog->isVisible()); // no key closes it
        tree->clearSelection();
        look("amount");
        EXPECT_TRUE(tree->currentItem()->parent()->isExpanded());
        dialog->accept();
    });
    press("Pick");
    EXPECT_EQ(offered, texts({"Blur", "Sharpen"}));
    ASSERT_EQ(found.size(), 5);
    EXPECT_EQ(found.mid(0, 4), texts({"Amount", "Radius", "Radius", "Radius"}));
    EXPECT_TRUE(m_group->isKnob(text("Amount")));
    expectStep("Creating Knobs");
    expectUndoIsExact(m_start);
}

TEST_F(KnobDialog, whatWasPickedStaysPickedThroughSearchesAndItsNodesLightUp)
{
    OssShaderNetwork *inside = m_group->groupNetwork();
    const auto lit = [&](const char *name) {
        const OssNgNode *node = itemOf(inside->node(text(name)));
        return node && node->hasMark(OssNgNode::PointedOut);
    };
    answer([&](QDialog *dialog) {
        auto *tree = dialog->findChild<QTreeWidget *>();
        auto *search = dialog->findChild<QLineEdit *>();
        const auto look = [&](const char *pattern) {
            search->setText(QLatin1String(pattern));
            QTest::keyClick(search, Qt::Key_Return);
        };
        EXPECT_FALSE(lit("Blur") || lit("Sharpen"));
        tree->expandAll();
        QTreeWidgetItem *picked = tree->topLevelItem(0)->child(0);
        const QRect place = tree->visualItemRect(picked);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, place.center());
        EXPECT_TRUE(lit("Blur"));
        look("radius*sharpen");
        look("amount");
        EXPECT_TRUE(picked->isSelected());
        EXPECT_TRUE(tree->currentItem()->isSelected());
        EXPECT_TRUE(lit("Blur") && lit("Sharpen"));
        const OssShaderNetworkView *inFront = m_manager->currentView();
        EXPECT_EQ(inFront->network(), inside) << "where what lights up is seen";
        look("threshold");
        EXPECT_LE(tree->selectedItems().size(), 2) << "what the search passed is not picked";
        look("amount");
        const QTreeWidgetItem *found = tree->currentItem();
        QTest::keyClick(tree, Qt::Key_Space); // as a click on it
        look("threshold");
        EXPECT_TRUE(found->isSelected());
        dialog->accept();
    });
    OssSnNodeGraphWidget *tabs = m_manager->nodeGraphWidget();
    const QWidget *before = tabs->currentWidget();
    const int open = tabs->count();
    press("Pick");
    EXPECT_EQ(tabs->currentWidget(), before);
    EXPECT_EQ(tabs->count(), open);
    EXPECT_FALSE(lit("Blur") || lit("Sharpen"));
    EXPECT_TRUE(m_group->isKnob(text("Amount")));
}

TEST_F(KnobDialog, exposingMakesKnobsOfAllAttributesInOneStep)
{
    OssShaderNetwork *inside = m_group->groupNetwork();
    const QString qualityBefore = m_group->nodeAttributes().join(QLatin1Char(','));
    inside->node(text("Sharpen"))->setSelected(true);
    auto *context = contextOf(m_group);
    QMetaObject::invokeMethod(context, "showGroupNodeTab");
    m_manager->currentView()->exposeNodeProperties();
    m_manager->nodeGraphWidget()->setCurrentIndex(0);
    EXPECT_TRUE(m_group->isKnob(text("Amount")));
    EXPECT_EQ(m_group->nodeAttributes().size(), 4); // the radius was one already
    EXPECT_EQ(undoCount(), 1);
    m_view->exposeNodeProperties(); // at the root there is nothing to expose to
    EXPECT_EQ(undoCount(), 1);
    inside->node(text("Sharpen"))->setSelected(false);
    undo();
    EXPECT_EQ(m_group->nodeAttributes().join(QLatin1Char(',')), qualityBefore);
}

TEST_F(KnobDialog, theMenuPrintsKnobsAndRemovesBrokenLinks)
{
    // Opens the menu, says which entries can be chosen, and chooses one.
    const auto menu = [this](const char *wanted) {
        QStringList enabled;
        whenMenuOpens([&enabled, wanted](QMenu *popup) {
            QAction *chosen = nullptr;
            const QList<QAction *> actions = popup->actions();
            for (QAction *action : actions) {
                if (action->isEnabled())
                    enabled.append(action->text());
                if (action->text() == QLatin1String(wanted))
                    chosen = action;
            }
            popup->setActiveAction(chosen);
            QTest::keyClick(popup, chosen ? Qt::Key_Return : Qt::Key_Escape);
        });
        Q_EMIT m_tree->customContextMenuRequested({5, 5});
        return enabled;
    };
    const QString print = text("Print Info");
    const QString removal = text("Remove Broken Links");
    OssShaderNetwork *inside = m_group->groupNetwork();
    EXPECT_EQ(menu(""), QStringList());
    select({item("Blur")});
    EXPECT_EQ(menu(""), QStringList());
    select({item("Quality")});
    EXPECT_EQ(menu("Print Info"), QStringList{print});
    expectLogged("[ -- ] Selected: this.'Quality' ('Quality') --> 'Blur'.'Quality'");
    inside->removeNodes({inside->node(text("Blur"))});
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    EXPECT_EQ(menu(""), QStringList({removal, print}));
    EXPECT_EQ(lines().size(), 5);
    EXPECT_EQ(m_project->stateHash(), before);
    menu("Remove Broken Links");
    expectLines({"Sharpen:", "Radius { Sharpen.Radius }"});
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(before);
}

TEST_F(KnobDialog, whatIsCancelledOrLeftAsItWasChangesNothing)
{
    const auto cancel = [](QDialog *dialog) {
        dialog->reject();
    };
    select({item("Quality")});
    for (const auto &given :
         {std::function<void(QDialog *)>(cancel), typing("Quality"), typing("")}) {
        answer(given);
        press("Edit");
    }
    select({item("Radius"), item("Sharpen")->child(0)});
    answer(cancel);
    press("Link");
    answer(cancel);
    press("Pick");
    answer([](QDialog *dialog) {
        dialog->findChild<QTreeWidget *>()->clearSelection();
        QTest::keyClick(dialog, Qt::Key_Enter);
        EXPECT_TRUE(dialog->isVisible());
        dialog->accept();
    });
    press("Pick"); // nothing
    select({item("Blur")});
    Q_EMIT m_tree->itemDoubleClicked(item("Blur"), 0); // a section has no name to edit
    select({item("Sharpen")});
    press("Down");
    select({item("Blur")});
    press("Up");
    expectNothingDone();
    EXPECT_EQ(lines().size(), 5);
}

TEST_F(KnobDialog, theDialogClosesWithItsGroupAndDoesNothingToOneThatIsGone)
{
    select({item("Quality")});
    OssProjectManager::instance()->closeProject();
    EXPECT_FALSE(m_dialog->isVisible());
    for (const char *name : {"Pick", "Edit", "Link", "Delete", "Up", "Down"})
        press(name);
    Q_EMIT m_tree->customContextMenuRequested({5, 5});
    OssGroupNodeKnobDialog without(nullptr);
    EXPECT_EQ(without.findChild<QTreeWidget *>()->topLevelItemCount(), 0);
    replaceProject();
}

TEST_F(KnobDialog, aKnobThatIsRenamedKeepsTheKeyboardOfItsPanel)
{
    const QString quality = m_group->nodeAttributes().value(1).section(QLatin1Char('/'), -1);
    m_dialog->hide();
    auto *panels = m_manager->nodePropertiesWidget();
    InOneWindow window({m_manager->nodeGraphWidget(), panels});
    panels->insertBefore(m_group, nullptr);
    window.activate();
    const auto panel = [&] {
        return qobject_cast<OssNodePropertyPanel *>(panels->panel(m_group));
    };
    ASSERT_NE(panel()->row(quality), nullptr);
    panel()->row(quality)->editor()->setFocus();
    const QString care = m_group->renameKnob(quality, text("Care"));
    EXPECT_NE(panel()->focusedRow(), nullptr);
    EXPECT_EQ(panel()->focusedRow(), panel()->row(care));
    QDialog asking; // as that for the name, which is still there when the knob gets it
    asking.show();
    QApplication::setActiveWindow(&asking);
    const QString finish = m_group->renameKnob(care, text("Finish"));
    asking.hide();
    window.activate();
    EXPECT_NE(panel()->focusedRow(), nullptr);
    EXPECT_EQ(panel()->focusedRow(), panel()->row(finish));
}

} // namespace
