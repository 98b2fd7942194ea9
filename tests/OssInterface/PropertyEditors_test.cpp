#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssCurveEditor.h"
#include "OssInterface/Properties/OssRampEditor.h"
#include "OssModel/Images/OssDisplayColor.h"
#include "OssModel/Images/OssImage.h"
#include "PropertiesFixture.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QImage>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointF>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUrl>

namespace {

/// The editors of single attributes.
class PropertyEditors : public PropertiesFixture
{};

TEST_F(PropertyEditors, everyKindOfAttributeHasAnEditor)
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

TEST_F(PropertyEditors, dragChangesAtOnceStaysInTheSoftRangeAndIsOneStep)
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

TEST_F(PropertyEditors, typedArithmeticIsBoundedHardAndFaultsStayOpen)
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

TEST_F(PropertyEditors, heldKeysAreOneStep)
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

TEST_F(PropertyEditors, everyEditorChangesItsValueInOneStep)
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

TEST_F(PropertyEditors, rampIsEditedByPointerKeysAndFields)
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

TEST_F(PropertyEditors, curveIsEditedByPointerAndKeys)
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

TEST_F(PropertyEditors, imagesAreChosenFromTheProjectsAndDroppedAsItsPaletteDragsThem)
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

TEST_F(PropertyEditors, pictureFilesFromOutsideBecomeImagesOfTheProjectInOneStep)
{
    const QTemporaryDir folder;
    const QString moss = folder.filePath(QStringLiteral("moss.png"));
    ASSERT_TRUE(QImage(4, 4, QImage::Format_RGB32).save(moss));
    QMimeData mime;
    const auto drop = [this, &mime] {
        QWidget *target = m_panel->row(QStringLiteral("Pictures"))->editor();
        QDragEnterEvent enter({2, 2}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent event({2, 2}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
        return enter.isAccepted();
    };
    mime.setUrls({QUrl::fromLocalFile(folder.filePath(QStringLiteral("notes.txt")))});
    EXPECT_FALSE(drop());
    EXPECT_EQ(undoCount(), 0);
    mime.setUrls({QUrl::fromLocalFile(moss)});
    EXPECT_TRUE(drop());
    ASSERT_EQ(m_project->images().size(), 1);
    EXPECT_EQ(m_node->attribute(QStringLiteral("Pictures")).toStringList(),
              QStringList{m_project->images().first()->uniqueId().toString()});
    EXPECT_EQ(editor<QComboBox>("Pictures")->currentText(), QStringLiteral("moss.png"));
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(m_start);
}

TEST_F(PropertyEditors, pickerWorksInDisplayColorsAndKeepsBrightness)
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

} // namespace
