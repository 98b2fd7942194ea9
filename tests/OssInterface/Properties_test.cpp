#include "OssCore/OssAttributeKind.h"
#include "OssCore/OssColor.h"
#include "OssCore/OssUserEnum.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssInterface/Properties/OssExpression.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssNumberField.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssInterface/Properties/OssRampEditor.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Images/OssImage.h"
#include "support/ModelFixture.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointF>
#include <QPushButton>
#include <QTest>

#include <cmath>

namespace {

// --- arithmetic

TEST(Expression, arithmeticFollowsTheUsualRules)
{
    const struct
    {
        const char *text;
        double value;
    } cases[] = {
        {"1", 1},         {" 2 + 3 * 4 ", 14}, {"(2+3)*4", 20},     {"2^3^2", 512},
        {"-2^2", -4},     {"2^-1", 0.5},       {"10-4-3", 3},       {"8/4/2", 1},
        {".5", 0.5},      {"1e3", 1000},       {"2.5e-1", 0.25},    {"50%", 0.5},
        {"--3", 3},       {"min(2, 1)", 1},    {"max(2,3*2)", 6},   {"clamp(7,0,5)", 5},
        {"sqrt(16)", 4},  {"x*2", 14},         {"*2", 14},          {"/ 2", 3.5},
        {"+=3", 10},      {"-=2*2", 3},        {"+3", 3},           {"-3", -3},
        {"deg(pi)", 180}, {"floor(-1.5)", -2}, {"pow(2,10)", 1024}, {"abs(-4)", 4},
        {"-=1-2", 8},
    };

    for (const auto &test : cases) {
        double value = NAN;
        const OssResult result = OssExpression::evaluate(QLatin1String(test.text), 7.0, &value);
        EXPECT_TRUE(result) << test.text << ": " << qPrintable(result.error());
        EXPECT_DOUBLE_EQ(value, test.value) << test.text;
    }
}

TEST(Expression, whatIsNoFiniteNumberIsRefusedWithAReason)
{
    const QString deep = QString(50000, QLatin1Char('('));
    for (const QString &text :
         {QStringLiteral(""), QStringLiteral("1+"), QStringLiteral("(1"), QStringLiteral("1)"),
          QStringLiteral("1 2"), QStringLiteral("1,5"), QStringLiteral("foo"),
          QStringLiteral("sqrt"), QStringLiteral("min(1)"), QStringLiteral("1/0"),
          QStringLiteral("log(0)"), QStringLiteral("sqrt(-1)"), QStringLiteral("1e999"),
          QStringLiteral("0x10"), QStringLiteral("nan"), QStringLiteral("system(1)"), deep,
          QString(900, QLatin1Char('-')) + QLatin1Char('1')}) {
        double value = 42.0;
        EXPECT_FALSE(OssExpression::evaluate(text, 0.0, &value)) << qPrintable(text.left(40));
        EXPECT_EQ(value, 42.0);
    }
}

// --- panels

/// Every kind of attribute.
const char *const Everything = R"(<NodeType PathKey="Test/Everything"><Attributes>
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

class Properties : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssResult result;
        OssShaderNetworkManager::instance()->registerNodeType(
            OssSnNodeType::read(Everything, QStringLiteral("t"), &result));
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
        m_panel.reset(new OssNodePropertyPanel(m_node, options, nullptr));
        m_panel->resize(300, 900);
        m_panel->show();
    }

    template <class Editor>
    Editor *editor(const char *attribute, int index = 0) const
    {
        const OssPropertyRow *row = m_panel->row(QLatin1String(attribute));
        return row ? row->editor()->findChildren<Editor *>().value(index) : nullptr;
    }

    OssNumberField *field(const char *attribute, int index = 0) const
    {
        return editor<OssNumberField>(attribute, index);
    }

    double amount() const { return m_node->attribute(QStringLiteral("Amount")).toDouble(); }

    /// The field in which the number is typed at the moment.
    static QLineEdit *typingIn(const OssNumberField *field)
    {
        QLineEdit *open = nullptr;
        const auto lines = field->findChildren<QLineEdit *>();
        for (QLineEdit *line : lines)
            open = line->isHidden() ? open : line;
        return open;
    }

    static void type(OssNumberField *field, const char *text)
    {
        QTest::keyClick(field, Qt::Key_Return);
        QLineEdit *line = typingIn(field);
        ASSERT_NE(line, nullptr);
        line->selectAll();
        QTest::keyClicks(line, QLatin1String(text));
        QTest::keyClick(line, Qt::Key_Return);
    }

    static void drag(OssNumberField *field, int way, Qt::KeyboardModifiers modifiers = {})
    {
        const QPoint start(field->width() / 2, field->height() / 2);
        QTest::mousePress(field, Qt::LeftButton, modifiers, start);
        for (int i = 0; i <= 10; ++i) {
            QMouseEvent move(QEvent::MouseMove, start + QPoint(4 + (way - 4) * i / 10, 0),
                             Qt::NoButton, Qt::LeftButton, modifiers);
            QApplication::sendEvent(field, &move);
        }
    }

    static void release(OssNumberField *field)
    {
        QTest::mouseRelease(field, Qt::LeftButton, {}, {0, 0});
    }

    OssSnBaseNode *m_node = nullptr;
    std::unique_ptr<OssNodePropertyPanel> m_panel;
    QByteArray m_start;
};

TEST_F(Properties, everyKindOfAttributeHasAnEditor)
{
    for (const OssAttributeKind &kind : OssAttributeKind::all()) {
        OssCustomAttribute attribute(
            QStringLiteral("Value"),
            OssAttributeKind::empty(kind.form.type, {QStringLiteral("A"), QStringLiteral("B")}));
        attribute.editDefinition().editor = kind.name;
        const std::unique_ptr<OssPropertyEditor> made(
            OssPropertyEditor::create(attribute, nullptr));
        EXPECT_TRUE(made->isEditable()) << kind.name.data();
        made->showValue(attribute, false);
    }
    const OssCustomAttribute unknown(QStringLiteral("Value"), QVariantList());
    const std::unique_ptr<OssPropertyEditor> shown(OssPropertyEditor::create(unknown, nullptr));
    EXPECT_FALSE(shown->isEditable());
}

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

TEST_F(Properties, dragChangesAtOnceStaysInTheSoftRangeAndIsOneStep)
{
    int changes = 0;
    QObject::connect(m_node, &OssSerializableObject::userAttributeChanged, m_panel.get(),
                     [&changes] { ++changes; });
    OssNumberField *amountField = field("Amount");
    drag(amountField, amountField->width() * 2);
    EXPECT_DOUBLE_EQ(amount(), 1.0); // beyond it by typing only
    EXPECT_GT(changes, 2);
    EXPECT_FALSE(OssUndoManager::instance()->canUndo()); // nothing is undone under a drag
    EXPECT_EQ(undoCount(), 0);
    release(amountField);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Change Amount"));
    expectUndoIsExact(m_start);

    drag(amountField, -30);
    QTest::keyClick(amountField, Qt::Key_Escape);
    EXPECT_DOUBLE_EQ(amount(), 1.0);
    release(amountField);
    EXPECT_EQ(undoCount(), 1);

    drag(amountField, -100, Qt::ShiftModifier);
    release(amountField);
    EXPECT_GT(amount(), 0.9);
    EXPECT_LT(amount(), 1.0);
}

TEST_F(Properties, typedArithmeticIsBoundedHardAndFaultsStayOpen)
{
    type(field("Amount"), "2*3+1");
    EXPECT_DOUBLE_EQ(amount(), 7.0); // beyond the soft maximum
    type(field("Amount"), "*5");
    EXPECT_DOUBLE_EQ(amount(), 10.0); // not beyond the hard one
    EXPECT_EQ(undoCount(), 2);

    type(field("Amount"), "2*");
    EXPECT_TRUE(field("Amount")->isTyping());
    EXPECT_FALSE(field("Amount")->typingFault().isEmpty());
    QTest::keyClick(typingIn(field("Amount")), Qt::Key_Escape);
    EXPECT_FALSE(field("Amount")->isTyping());
    EXPECT_DOUBLE_EQ(amount(), 10.0);

    QTest::keyClick(field("Count"), Qt::Key_5); // the first digit opens the field
    QTest::keyClick(typingIn(field("Count")), Qt::Key_Return);
    EXPECT_EQ(m_node->attribute(QStringLiteral("Count")).toInt(), 5);
    type(field("Count"), "2.6");
    EXPECT_EQ(m_node->attribute(QStringLiteral("Count")), QVariant(3));
    EXPECT_EQ(undoCount(), 4);
    expectUndoIsExact(m_start);
}

TEST_F(Properties, heldKeysAreOneStep)
{
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(field("Amount"), Qt::Key_Right);
    EXPECT_DOUBLE_EQ(amount(), 0.6);
    EXPECT_EQ(undoCount(), 1);
    QTest::keyClick(field("Count"), Qt::Key_End);
    EXPECT_EQ(m_node->attribute(QStringLiteral("Count")).toInt(), 9);
    EXPECT_EQ(undoCount(), 2);
    expectUndoIsExact(m_start);

    // Without the focus the wheel is the panel's.
    OssNumberField *count = field("Count");
    QWheelEvent wheel({5, 5}, count->mapToGlobal(QPoint(5, 5)), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(count, &wheel);
    EXPECT_FALSE(wheel.isAccepted());
    EXPECT_EQ(m_node->attribute(QStringLiteral("Count")).toInt(), 9);
}

TEST_F(Properties, everyEditorChangesItsValueInOneStep)
{
    const auto value = [this](const char *name) {
        return m_node->attribute(QLatin1String(name));
    };
    auto *mode = editor<QComboBox>("Mode");
    QTest::keyClick(mode, Qt::Key_Down);
    EXPECT_EQ(value("Mode").toString(), QStringLiteral("Mix"));
    QTest::mouseClick(editor<QCheckBox>("On"), Qt::LeftButton, {}, {6, 8});
    EXPECT_TRUE(value("On").toBool());
    type(field("Place", 1), "5");
    EXPECT_EQ(value("Place").toPointF(), QPointF(1, 5));
    type(field("Tint", 2), "x*2");
    EXPECT_EQ(value("Tint").value<OssColor>(), OssColor(0.25, 0.5, 4, 1));
    QTest::keyClicks(editor<QLineEdit>("Line"), QStringLiteral("word"));
    QTest::keyClick(editor<QLineEdit>("Line"), Qt::Key_Return);
    EXPECT_EQ(value("Line").toString(), QStringLiteral("word"));
    auto *note = editor<QPlainTextEdit>("Note");
    QTest::keyClicks(note, QStringLiteral("a"));
    QTest::keyClick(note, Qt::Key_Return);
    QTest::keyClicks(note, QStringLiteral("b"));
    EXPECT_EQ(value("Note").toString(), QString());
    QTest::keyClick(note, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(value("Note").toString(), QStringLiteral("a\nb"));
    EXPECT_EQ(undoCount(), 6);

    auto *path = editor<QLineEdit>("Path");
    QTest::keyClicks(path, QStringLiteral("/no/such.exr"));
    QTest::keyClick(path, Qt::Key_Return);
    EXPECT_TRUE(path->toolTip().contains(QStringLiteral("/no/such.exr")));
    EXPECT_EQ(path->objectName(), QStringLiteral("Warning"));
    EXPECT_EQ(undoCount(), 7);
    expectUndoIsExact(m_start);
}

TEST_F(Properties, rampIsEditedByPointerKeysAndFields)
{
    auto *ramp = editor<OssRampField>("Colors");
    auto *panel = qobject_cast<OssRampEditor *>(ramp->parentWidget());
    ASSERT_NE(panel, nullptr);
    const auto text = [this] {
        return m_node->attribute(QStringLiteral("Colors")).toString();
    };
    EXPECT_EQ(text(), QStringLiteral("0,0,0,0,1 1,1,1,1,1"));
    const QPoint middle((ramp->gripOf(0).x() + ramp->gripOf(1).x()) / 2, 8);
    QTest::mouseDClick(ramp, Qt::LeftButton, {}, middle);
    ASSERT_EQ(ramp->stops().size(), 3);
    EXPECT_EQ(ramp->current(), 1);
    EXPECT_NEAR(double(ramp->stops().at(1).color[0]), 0.5, 0.02) << "the colour that was there";
    EXPECT_EQ(undoCount(), 1);

    // A stop does not pass its neighbour; a drag is one step.
    const auto drag = [&](const QPoint &by) {
        const QPoint at = ramp->gripOf(1).toPoint();
        QTest::mousePress(ramp, Qt::LeftButton, {}, at);
        for (int i = 1; i <= 4; ++i) {
            QMouseEvent move(QEvent::MouseMove, at + by * i, Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QApplication::sendEvent(ramp, &move);
        }
        QTest::mouseRelease(ramp, Qt::LeftButton, {}, at);
    };
    drag({400, 0});
    EXPECT_EQ(ramp->stops().at(1).place, 1.0);
    EXPECT_EQ(undoCount(), 2);
    QTest::keyClick(ramp, Qt::Key_Left);
    QTest::keyClick(ramp, Qt::Key_Left);
    EXPECT_NEAR(ramp->stops().at(1).place, 0.98, 1e-9);
    EXPECT_EQ(undoCount(), 3);
    EXPECT_NEAR(panel->placeField()->value(), 0.98, 1e-9);

    Q_EMIT panel->colorEditor()->edited(QVariant::fromValue(OssColor(2.0, 0.5, 0.25, 0.5)));
    EXPECT_EQ(text(), QStringLiteral("0,0,0,0,1 0.98,2,0.5,0.25,0.5 1,1,1,1,1"));
    drag({0, 100});
    EXPECT_EQ(text(), QStringLiteral("0,0,0,0,1 1,1,1,1,1")) << "dragged off";
    QTest::keyClick(ramp, Qt::Key_Plus);
    QTest::keyClick(ramp, Qt::Key_Delete);
    QTest::keyClick(ramp, Qt::Key_Delete);
    QTest::keyClick(ramp, Qt::Key_Delete);
    EXPECT_EQ(ramp->stops().size(), 1) << "one colour at least";
    expectUndoIsExact(m_start);
}

TEST_F(Properties, curveIsEditedByPointerAndKeys)
{
    auto *curve = editor<OssCurveField>("Shape");
    const auto text = [this] {
        return m_node->attribute(QStringLiteral("Shape")).toString();
    };
    EXPECT_EQ(text(), QStringLiteral("0,0 1,1"));
    EXPECT_DOUBLE_EQ(curve->valueAt(0.5), 0.5);
    QTest::mouseDClick(curve, Qt::LeftButton, {}, curve->toWidget({0.5, 0.75}).toPoint());
    ASSERT_EQ(curve->points().size(), 3);
    EXPECT_NEAR(curve->points().at(1).y(), 0.75, 0.02);
    EXPECT_NEAR(curve->valueAt(0.5), 0.75, 0.02);
    // Monotone between points: nothing overshoots.
    for (int i = 0; i <= 100; ++i) {
        EXPECT_LE(curve->valueAt(i / 100.0), 1.0);
        EXPECT_LE(curve->valueAt(i / 100.0), curve->valueAt((i + 1) / 100.0) + 1e-12);
    }
    EXPECT_EQ(undoCount(), 1);
    const QPoint at = curve->toWidget(curve->points().at(1)).toPoint();
    QTest::mousePress(curve, Qt::LeftButton, {}, at);
    for (int i = 1; i <= 5; ++i) {
        QMouseEvent move(QEvent::MouseMove, at + QPoint(i * 200, 0), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(curve, &move);
    }
    QTest::mouseRelease(curve, Qt::LeftButton, {}, at);
    ASSERT_EQ(curve->points().size(), 3);
    EXPECT_LT(curve->points().at(1).x(), 1.0); // it did not pass its neighbour
    EXPECT_EQ(undoCount(), 2);
    QTest::keyClick(curve, Qt::Key_Up);
    QTest::keyClick(curve, Qt::Key_Up);
    EXPECT_EQ(undoCount(), 3);
    QTest::keyClick(curve, Qt::Key_Delete);
    QTest::keyClick(curve, Qt::Key_Delete);
    EXPECT_EQ(curve->points().size(), 2); // a line at least
    QTest::keyClick(curve, Qt::Key_Plus);
    EXPECT_EQ(curve->points().size(), 3);
    expectUndoIsExact(m_start);
    OssCurveField steep(nullptr);
    steep.setPoints({{0, 0}, {0.1, 0.9}, {0.2, 0.95}, {0.9, 0.96}, {1, 1}});
    for (int i = 0; i < 200; ++i)
        EXPECT_LE(steep.valueAt(i / 200.0), steep.valueAt((i + 1) / 200.0) + 1e-12) << i;
    EXPECT_EQ(OssCurveEditor::textFromPoints(
                  OssCurveEditor::pointsFromText(QStringLiteral("1,1 x,2 0.25,0.5 3 0,0 nan,1"))),
              QStringLiteral("0,0 0.25,0.5 1,1"));
}

TEST_F(Properties, imagesAreChosenFromTheProjectsAndDroppedAsItsPaletteDragsThem)
{
    QStringList ids;
    for (const char *name : {"rust.png", "wood.png"})
        ids.append(m_project->addImage(QLatin1String(name), {})->uniqueId().toString());
    const auto pictures = [this] {
        return m_node->attribute(QStringLiteral("Pictures")).toStringList();
    };
    auto *list = editor<QComboBox>("Pictures");
    ASSERT_NE(list, nullptr);
    QFocusEvent focus(QEvent::FocusIn);
    QCoreApplication::sendEvent(list, &focus);
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_EQ(pictures(), QStringList{ids.last()});
    EXPECT_EQ(list->currentText(), QStringLiteral("wood.png"));
    QMimeData mime;
    mime.setData(OssImage::MimeType, ids.join(QLatin1Char(',')).toUtf8());
    QWidget *target = m_panel->row(QStringLiteral("Pictures"))->editor();
    QDragEnterEvent enter({2, 2}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    QDropEvent drop({2, 2}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &drop);
    EXPECT_EQ(pictures(), ids);
    EXPECT_EQ(list->currentText(), QStringLiteral("rust.png and 1 more"));
}

TEST_F(Properties, pickerWorksInDisplayColorsAndKeepsBrightness)
{
    const OssColor linear(0.2, 0.5, 0.9, 0.5);
    const OssColor back = OssDisplayColor::toLinear(OssDisplayColor::ofLinear(linear));
    EXPECT_NEAR(back.red(), 0.2, 1e-4);
    EXPECT_NEAR(back.blue(), 0.9, 1e-4);
    EXPECT_NEAR(OssDisplayColor::ofLinear(OssColor(0.5, 0, 0)).redF(), 0.7354, 1e-3);

    QTest::keyClick(editor<QPushButton>("Tint"), Qt::Key_Space);
    auto *picker = m_panel->findChild<QColorDialog *>();
    ASSERT_NE(picker, nullptr);
    EXPECT_DOUBLE_EQ(picker->currentColor().blueF(), 1.0); // 2 is shown as the display's white
    picker->setCurrentColor(QColor(255, 0, 255));
    auto tint = m_node->attribute(QStringLiteral("Tint")).value<OssColor>();
    EXPECT_DOUBLE_EQ(tint.blue(), 2.0);
    EXPECT_DOUBLE_EQ(tint.red(), 2.0);
    EXPECT_DOUBLE_EQ(tint.green(), 0.0);
    EXPECT_EQ(undoCount(), 0);
    picker->accept();
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(m_start);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    QTest::keyClick(editor<QPushButton>("Tint"), Qt::Key_Space);
    picker = m_panel->findChild<QColorDialog *>();
    ASSERT_NE(picker, nullptr);
    picker->setCurrentColor(Qt::red);
    picker->reject();
    EXPECT_EQ(m_node->attribute(QStringLiteral("Tint")).value<OssColor>(), tint);
    EXPECT_EQ(undoCount(), 1);
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
