#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

class PropertiesPanel : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_widget = m_manager->nodePropertiesWidget();
        ASSERT_NE(m_widget, nullptr);
        invoke("deleteAllProperties");
        setMax("10");
    }

    void TearDown() override
    {
        setMax("10");
        GraphFixture::TearDown();
    }

    void invoke(const char *slot) const { QMetaObject::invokeMethod(m_widget, slot); }

    QLineEdit *maxField() const
    {
        return m_widget->findChild<QLineEdit *>(QString(), Qt::FindDirectChildrenOnly);
    }

    void setMax(const char *text) const
    {
        maxField()->setText(QLatin1String(text));
        invoke("onMaxPanelsEditingFinished");
    }

    void open(OssSnBaseNode *node) const { Q_EMIT m_view->nodeDoubleClicked(node); }

    /// From the top.
    QList<QWidget *> panels() const
    {
        QList<QWidget *> found;
        const QLayout *layout = m_widget->findChild<QScrollArea *>()->widget()->layout();
        for (int i = 0; i + 1 < layout->count(); ++i)
            found.append(layout->itemAt(i)->widget());
        EXPECT_NE(layout->itemAt(layout->count() - 1)->spacerItem(), nullptr);
        return found;
    }

    /// The small button of that text in the heading of a node's panel.
    void pressInHeading(const OssSnBaseNode *node, const char *button) const
    {
        const auto *panel = qobject_cast<OssExpandableListWidget *>(m_widget->panel(node));
        const auto buttons = panel->heading()->findChildren<OssMiniButton *>();
        for (OssMiniButton *one : buttons) {
            if (one->text() == QLatin1String(button))
                QTest::mouseClick(one, Qt::LeftButton);
        }
    }

    /// A number that stands in a section of the node's properties.
    static void give(OssSnBaseNode *node, const QString &name, const char *section)
    {
        OssCustomAttribute attribute(name, 1.0);
        attribute.editDefinition().group = text(section);
        node->setUserAttribute(attribute, true);
    }

    static void deleteLater()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    OssSnNodePropertiesWidget *m_widget = nullptr;
};

TEST_F(PropertiesPanel, newestStandsOnTopAndReopeningMoves)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *color = add("Procedural/Color");
    const QSignalSpy clicked(m_widget, &OssSnNodePropertiesWidget::nodeDoubledClicked);
    open(blur);
    QWidget *first = m_widget->panel(blur);
    ASSERT_NE(first, nullptr);
    open(color);
    EXPECT_EQ(panels(), QList<QWidget *>({m_widget->panel(color), first}));
    open(blur);
    EXPECT_EQ(panels(), QList<QWidget *>({first, m_widget->panel(color)}));
    EXPECT_EQ(first->objectName(), blur->uuidString().mid(1, 36));
    OssPalette *palette = OssPaletteManager::instance()->find(text("node_properties_palette"),
                                                              false);
    ASSERT_NE(palette, nullptr);
    EXPECT_TRUE(palette->isVisible());
    palette->setVisible(false);
    open(add("Misc/Dot"));
    open(m_network->viewerNode());
    EXPECT_EQ(panels().size(), 2);
    EXPECT_FALSE(palette->isVisible()) << "there is nothing to see in it";
    EXPECT_EQ(clicked.count(), 5);
    open(nullptr);
    expectLogged("Node is NULL");

    OssSnBaseNode *levels = add("Adjust/Levels");
    auto *networks = OssShaderNetworkManager::instance();
    Q_EMIT networks->showNodePropertiesAtPositionEndRequest(levels, blur, true);
    EXPECT_EQ(panels().indexOf(m_widget->panel(levels)), 1);
    Q_EMIT networks->showNodePropertiesAtPositionBeginRequest(color, blur, true);
    EXPECT_EQ(panels().first(), m_widget->panel(color));
    Q_EMIT networks->showNodePropertiesRequest(levels);
    EXPECT_EQ(panels().first(), m_widget->panel(levels));
    EXPECT_NE(OssPaletteManager::instance()->find(text("node_properties_palette"), false), nullptr);
}

TEST_F(PropertiesPanel, atMostAsManyPanelsAsTheUserWantsAndPinnedOnesStay)
{
    setMax("2");
    {
        OssSettings settings;
        settings.beginGroup(text("OssSnNodePropertiesWidget"));
        EXPECT_EQ(settings.value(text("MaxPanels")).toInt(), 2);
    }
    QList<OssSnBaseNode *> nodes;
    for (int i = 0; i < 4; ++i)
        nodes.append(add("Filter/Blur"));
    open(nodes.at(0));
    m_widget->panel(nodes.at(0))->setProperty("pinned", true);
    for (int i = 1; i < 4; ++i)
        open(nodes.at(i));
    EXPECT_EQ(panels().size(), 3);
    deleteLater();
    EXPECT_EQ(m_widget->panel(nodes.at(1)), nullptr);
    EXPECT_NE(m_widget->panel(nodes.at(0)), nullptr);
    open(nodes.at(1)); // anew
    EXPECT_NE(m_widget->panel(nodes.at(1)), nullptr);

    invoke("deleteAllProperties");
    EXPECT_EQ(panels(), QList<QWidget *>{m_widget->panel(nodes.at(0))});
    m_widget->panel(nodes.at(0))->setProperty("pinned", false);
    invoke("deleteAllProperties");
    EXPECT_TRUE(panels().isEmpty());
    maxField()->clear();
    open(nodes.at(1));
    EXPECT_TRUE(panels().isEmpty()); // no number keeps none
}

TEST_F(PropertiesPanel, deletionUndoAndProjectCloseTakePanelsAlong)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    open(blur);
    m_network->removeNodes({blur});
    EXPECT_TRUE(panels().isEmpty());
    undo();
    open(blur);
    EXPECT_EQ(panels().size(), 1);
    undo(); // its making
    EXPECT_TRUE(panels().isEmpty());
    OssUndoManager::instance()->redo();
    open(blur);
    replaceProject();
    EXPECT_TRUE(panels().isEmpty());
}

TEST_F(PropertiesPanel, rebuildKeepsPlaceAndCollapsedSections)
{
    OssSnBaseNode *levels = add("Adjust/Levels");
    OssSnGroupNode *group = m_network->groupNodes({levels});
    group->createKnob(levels, text("InLow"));
    group->setSelected(false);
    open(group);
    open(add("Procedural/Color"));
    QWidget *before = m_widget->panel(group);
    auto *section = before->findChild<OssExpandableListWidget *>();
    ASSERT_NE(section, nullptr);
    section->collapse();
    group->createKnob(levels, text("Gamma"));
    QWidget *after = m_widget->panel(group);
    EXPECT_NE(after, before);
    EXPECT_EQ(panels().indexOf(after), 1);
    auto *panel = qobject_cast<OssNodePropertyPanel *>(after);
    EXPECT_NE(panel->row(text("Gamma")), nullptr);
    EXPECT_TRUE(after->findChild<OssExpandableListWidget *>()->isCollapsed());
    undo();
    panel = qobject_cast<OssNodePropertyPanel *>(m_widget->panel(group));
    EXPECT_EQ(panel->row(text("Gamma")), nullptr);

    OssCustomAttribute hidden(text("hidden"), 1.0);
    hidden.editDefinition().visible = false;
    group->setUserAttribute(hidden, true);
    EXPECT_EQ(m_widget->panel(group), panel);
    m_widget->panel(group)->close();
    QTest::qWait(0); // until it is deleted
    open(group);
    EXPECT_TRUE(m_widget->panel(group)->findChild<OssExpandableListWidget *>()->isCollapsed())
        << "as the user left it";
}

TEST_F(PropertiesPanel, frameShowsTheNodesColourSelectionAndHover)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    OssNgNode *item = itemOf(blur);
    item->setNodeColor(QColor(10, 20, 30), QColor(40, 50, 60));
    open(blur);
    QWidget *panel = m_widget->panel(blur);
    blur->setSelected(true);
    const QBrush brush = item->fillBrush();
    const QString top =
        (brush.gradient() ? brush.gradient()->stops().first().second : brush.color()).name();
    const QString expected = text(
        "QFrame#%1[OssExpandableListWidget=true] {    border-top-style: solid;    "
        "border-top-width: 2px;    border-top-color: %2;    border-left-style: solid;    "
        "border-left-width: 1px;    border-left-color: %3;    border-right-style: solid;    "
        "border-right-width: 1px;    border-right-color: %3;    border-bottom-style: solid;    "
        "border-bottom-width: 1px;    border-bottom-color: %3;    border-radius: 3px;}");
    EXPECT_EQ(panel->styleSheet(), expected.arg(panel->objectName(), top, top));
    blur->setSelected(false);
    EXPECT_EQ(panel->styleSheet(),
              expected.arg(panel->objectName(), top, text("rgba(0, 0, 0, 0%)")));
    item->setHovered(true);
    blur->emitNodeStateRefreshed();
    EXPECT_TRUE(panel->styleSheet().contains(text(", 50%)")));
    item->setHovered(false);
    {
        const OssStatusManager::Work work(text("work"));
        const QString before = panel->styleSheet();
        blur->setSelected(true);
        EXPECT_EQ(panel->styleSheet(), before);
    }
    EXPECT_EQ(panel->styleSheet(),
              expected.arg(panel->objectName(), top, text("rgba(0, 0, 0, 0%)")))
        << "the work's end itself changes nothing";
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->styleSheet(), expected.arg(panel->objectName(), top, top));
    blur->setSelected(false);
}

TEST_F(PropertiesPanel, theKeyboardGoesBackToTheGraphWhateverEndsAnEdit)
{
    InOneWindow window({m_manager->nodeGraphWidget(), m_widget});
    OssSnBaseNode *blur = add("Filter/Blur");
    const auto typeInto = [&](const char *attribute, const char *digits) {
        m_widget->insertBefore(blur, nullptr);
        window.activate();
        auto *panel = qobject_cast<OssNodePropertyPanel *>(m_widget->panel(blur));
        QWidget *field = panel->row(text(attribute))->editor()->focusProxy();
        window.elsewhere->setFocus();
        field->setFocus();
        ASSERT_TRUE(field->hasFocus());
        QTest::keyClicks(field, text(digits).left(1));
        QTest::keyClicks(QApplication::focusWidget(), text(digits).mid(1));
    };
    const auto focused = [] {
        return QApplication::focusWidget();
    };
    const auto radius = [blur] {
        return blur->attribute(text("Radius")).toDouble();
    };
    typeInto("Radius", "12");
    QTest::keyClick(focused(), Qt::Key_Return);
    EXPECT_EQ(focused(), m_view);
    EXPECT_EQ(radius(), 12.0);
    typeInto("Radius", "13");
    m_widget->panel(blur)->close();
    EXPECT_EQ(focused(), m_view);
    EXPECT_EQ(radius(), 13.0);
    deleteLater();
    typeInto("Radius", "14");
    invoke("deleteAllProperties");
    EXPECT_EQ(focused(), m_view);
    EXPECT_EQ(radius(), 14.0);
    typeInto("Radius", "15");
    const QWidget *before = m_widget->panel(blur);
    give(blur, text("More"), "Section"); // the panel is made anew
    EXPECT_NE(m_widget->panel(blur), before);
    EXPECT_EQ(radius(), 15.0);
    const auto *made = qobject_cast<OssNodePropertyPanel *>(m_widget->panel(blur));
    EXPECT_NE(made->focusedRow(), nullptr);
    EXPECT_EQ(made->focusedRow(), made->row(text("Radius")));
    undo(); // the attribute
    const int steps = OssUndoManager::instance()->index();
    typeInto("Radius", "16");
    m_network->removeNodes({blur});
    EXPECT_EQ(focused(), m_view);
    EXPECT_EQ(radius(), 15.0) << "it was on its way out";
    EXPECT_EQ(OssUndoManager::instance()->index(), steps + 1);
}

TEST_F(PropertiesPanel, groupsHaveTheirButtonsFirst)
{
    OssSnGroupNode *group = addGroup();
    open(group);
    QStringList shown;
    const auto *panel = qobject_cast<OssExpandableListWidget *>(m_widget->panel(group));
    const auto buttons = panel->heading()->findChildren<OssMiniButton *>();
    for (const OssMiniButton *button : buttons)
        shown.append(button->text());
    shown.removeAll(QString());
    EXPECT_EQ(shown, texts({"p", "s"}));
    QString title;
    whenOpen<QDialog>([&title](QDialog *dialog) {
        title = dialog->windowTitle();
        dialog->close();
    });
    pressInHeading(group, "p");
    EXPECT_EQ(title, text("Group Node Knobs"));
    pressInHeading(group, "s");
    EXPECT_EQ(m_manager->currentView()->network(), group->groupNetwork());
    // Double clicks in the group's view open panels too.
    OssSnBaseNode *inside = addInside(group, "Filter/Blur");
    Q_EMIT m_manager->currentView()->nodeDoubleClicked(inside);
    EXPECT_NE(m_widget->panel(inside), nullptr);
    m_manager->nodeGraphWidget()->setCurrentIndex(0);
}

TEST_F(PropertiesPanel, nodeUnderThePointerIsTold)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    open(blur);
    const QSignalSpy told(m_widget, &OssSnNodePropertiesWidget::propertiesUnderMouseChanged);
    const auto hover = [this](QEvent::Type type) {
        QHoverEvent event(type, {5, 5}, {4, 4});
        QApplication::sendEvent(m_widget, &event);
    };
    m_widget->panel(blur)->setAttribute(Qt::WA_UnderMouse);
    hover(QEvent::HoverMove);
    hover(QEvent::HoverMove);
    EXPECT_EQ(told.count(), 1);
    EXPECT_TRUE(itemOf(blur)->hovered());
    hover(QEvent::HoverLeave);
    ASSERT_EQ(told.count(), 2);
    EXPECT_EQ(told.at(1).at(0).value<OssSnBaseNode *>(), nullptr);
    EXPECT_EQ(told.at(1).at(1).value<OssSnBaseNode *>(), blur);
    EXPECT_FALSE(itemOf(blur)->hovered());
}

TEST_F(PropertiesPanel, commandOpensThePanelsOfTheSelection)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *color = add("Procedural/Color");
    add("Procedural/Scalar")->setSelected(false);
    blur->setSelected(true);
    color->setSelected(true);
    m_view->openNodeProperties();
    EXPECT_EQ(panels().size(), 2);
}

TEST_F(PropertiesPanel, shadersListTheirSectionsInTheOrderOfLight)
{
    const auto headings = [this](OssSnBaseNode *node) {
        for (const char *section :
             {"Other", "Displacement map", "Specular", "Diffuse light", "Displacement"})
            give(node, text("In ") + text(section), section);
        open(node);
        QStringList texts;
        const auto lists = m_widget->panel(node)->findChildren<OssExpandableListWidget *>();
        for (const OssExpandableListWidget *list : lists)
            texts.append(list->heading()->text());
        return texts.join(QLatin1Char('|'));
    };
    const QString inOrder = text("Diffuse light|Specular|Displacement map|Displacement|"
                                 "Other");
    const QString asTheyCame = text("Other|Displacement map|Specular|Diffuse light|"
                                    "Displacement");
    const auto panelOf = [this](const OssSnBaseNode *node) {
        return qobject_cast<OssNodePropertyPanel *>(m_widget->panel(node));
    };
    OssSnBaseNode *plain = add("Filter/Blur");
    EXPECT_EQ(headings(plain), asTheyCame);
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    EXPECT_TRUE(headings(shader).endsWith(inOrder)) << qPrintable(headings(shader));
    EXPECT_FALSE(panelOf(shader)->findChildren<QLineEdit *>().isEmpty());
    OssSnBaseNode *own = add("Shaders/Standard Surface");
    own->addTag(text("_respectShaderGroupNodeAttributeOrder"));
    EXPECT_TRUE(headings(own).endsWith(asTheyCame)) << qPrintable(headings(own));
    OssSnBaseNode *stack = add("Shaders/Standard Surface");
    stack->addTag(text("_stackShader"));
    EXPECT_TRUE(headings(stack).endsWith(text("Displacement map|Other")))
        << qPrintable(headings(stack));
}

TEST_F(PropertiesPanel, whatWasFoldedOrUnfoldedStaysSoWhenAttributesCome)
{
    OssSnBaseNode *shader = add("Shaders/Standard Surface");
    give(shader, text("One"), "Diffuse");
    open(shader);
    const auto panel = [&] {
        return qobject_cast<OssExpandableListWidget *>(m_widget->panel(shader));
    };
    const auto section = [&](const char *title) -> OssExpandableListWidget * {
        const auto lists = panel()->findChildren<OssExpandableListWidget *>();
        for (OssExpandableListWidget *list : lists) {
            if (list->heading()->text() == QLatin1String(title))
                return list;
        }
        return nullptr;
    };
    ASSERT_NE(section("Diffuse"), nullptr);
    EXPECT_TRUE(section("Diffuse")->isCollapsed()) << "nothing in it was touched";
    section("Diffuse")->expand();
    give(shader, text("Two"), "Specular");
    deleteLater();
    ASSERT_NE(section("Specular"), nullptr);
    EXPECT_FALSE(section("Diffuse")->isCollapsed());
    EXPECT_TRUE(section("Specular")->isCollapsed()) << "a new one is as it is made";
    EXPECT_FALSE(panel()->isCollapsed());
    panel()->collapse();
    give(shader, text("Three"), "Specular");
    deleteLater();
    EXPECT_TRUE(panel()->isCollapsed());
    Q_EMIT shader->nodeAttributeRenamed(text("Old"), text("None"));
    const QWidget *before = panel();
    EXPECT_EQ(panel(), before);
    Q_EMIT shader->nodeAttributeRenamed(text("Old"), text("Three"));
    EXPECT_NE(panel(), before);
}

TEST_F(PropertiesPanel, placesBesideOthersAreThoseThatWereAskedFor)
{
    QList<OssSnBaseNode *> nodes;
    for (int i = 0; i < 4; ++i) {
        nodes.append(add("Filter/Blur"));
        open(nodes.last());
    }
    const auto order = [&] {
        QString text;
        for (const QWidget *panel : panels()) {
            for (int i = 0; i < nodes.size(); ++i) {
                if (m_widget->panel(nodes.at(i)) == panel)
                    text += QString::number(i);
            }
        }
        return text.toStdString();
    };
    EXPECT_EQ(order(), "3210");
    m_widget->insertAfter(nodes.at(3), nodes.at(1));
    EXPECT_EQ(order(), "2130");
    m_widget->insertBefore(nodes.at(0), nodes.at(1));
    EXPECT_EQ(order(), "2013");
    m_widget->insertBefore(nodes.at(2), nodes.at(3));
    EXPECT_EQ(order(), "0123");
    m_widget->insertAfter(nodes.at(2), nodes.at(2)); // beside itself it is
    EXPECT_EQ(order(), "0123");
    m_widget->insertAfter(nodes.at(3), add("Filter/Blur")); // which has no panel
    EXPECT_EQ(order(), "3012");
}

TEST_F(PropertiesPanel, aClickOnAKnobsNameGivesItTheKeyboard)
{
    InOneWindow window({m_manager->nodeGraphWidget(), m_widget});
    OssSnGroupNode *group = m_network->groupNodes({add("Filter/Blur", "Inner")});
    group->createKnob(group->groupNetwork()->node(text("Inner")), text("Radius"));
    open(group);
    window.activate();
    m_view->setFocus();
    const auto *panel = qobject_cast<OssNodePropertyPanel *>(m_widget->panel(group));
    QTest::mouseClick(panel->row(text("Radius"))->label(), Qt::LeftButton);
    OssApplication::setPopupsAllowed(true);
    whenOpen<QInputDialog>([](QInputDialog *dialog) {
        dialog->setTextValue(text("Softness"));
        dialog->accept();
    });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F2);
    EXPECT_TRUE(group->userAttribute(text("Softness")).isValid());
    EXPECT_NE(group->name(), text("Softness"));
}

TEST_F(PropertiesPanel, paintsPanelKnowsWhetherAChannelDecides)
{
    auto *paint = qobject_cast<OssSnChannelInputNode *>(add("Misc/Channel Input"));
    OssShadingGroup *group = m_project->shadingGroups().first();
    auto *set = new OssImageSet(text("Color"), group); // the group owns both
    paint->setImageSet(set, true);
    EXPECT_FALSE(paint->isManagedByChannel());
    set->setChannel(new OssChannel(text("Color"), group));
    open(paint);
    EXPECT_TRUE(paint->isManagedByChannel());
}

} // namespace
