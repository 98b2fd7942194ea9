#include "OssInterface/Popups/OssMessageBox.h"
#include "OssInterface/Popups/OssPlainTexts.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssFormLayout.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssInterface/Widgets/OssSearchKeys.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QHelpEvent>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>

TEST(ExpandableList, foldsItsBodyByMouseAndKeyAndTellsOnlyOfChanges)
{
    OssExpandableListWidget panel(text("Warp"));
    const QSignalSpy changed(&panel, &OssExpandableListWidget::collapsedChanged);
    auto *body = new QLabel(text("body"));
    panel.setBody(body);
    panel.show();
    panel.expand();
    EXPECT_EQ(changed.count(), 0);
    QTest::mouseClick(panel.heading(), Qt::LeftButton);
    EXPECT_TRUE(panel.isCollapsed());
    panel.collapse();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(body->isVisible());
    QTest::keyClick(panel.heading()->findChild<QToolButton *>(), Qt::Key_Space);
    EXPECT_FALSE(panel.isCollapsed());
    EXPECT_TRUE(body->isVisible());
    OssExpandableListWidget bare;
    bare.collapse();
    EXPECT_TRUE(bare.isCollapsed());
    EXPECT_EQ(bare.heading(), nullptr);
}

TEST(ExpandableList, styleSheetsSelectItByIdAndProperty)
{
    OssExpandableListWidget panel(text("Warp"));
    panel.setObjectName(text("4f8a8b"));
    panel.setStyleSheet(
        text("QFrame#4f8a8b[OssExpandableListWidget=true] { border-top: 6px solid #ff0000; }"));
    panel.resize(80, 60);
    EXPECT_EQ(panel.grab().toImage().pixelColor(40, 2), QColor(255, 0, 0));
}

TEST(ExpandableList, insertedWidgetsKeepTheirOrderAroundTheTitle)
{
    OssExpandableListHeading heading(text("Warp"));
    QWidget *buttons[] = {new OssMiniButton(text("p")), new OssMiniButton(text("s")),
                          new OssMiniButton(text("x"))};
    heading.insertWidget(0, buttons[0]);
    heading.insertWidget(1, buttons[1]);
    heading.insertWidget(-1, buttons[2]);
    heading.resize(300, 30);
    heading.show();
    EXPECT_LT(buttons[0]->x(), buttons[1]->x());
    const QRect title = heading.findChild<QLabel *>()->geometry();
    EXPECT_LT(buttons[1]->geometry().right(), title.left());
    EXPECT_GT(buttons[2]->x(), title.right());
}

TEST(FormLayout, labelsOfAllFormsLineUp)
{
    QWidget panel;
    auto *column = new QVBoxLayout(&panel);
    QList<QLabel *> labels;
    QList<QLineEdit *> editors;
    for (const char *name : {"A", "A much longer name"}) {
        auto *box = new QWidget;
        auto *form = new OssFormLayout(box);
        labels.append(new QLabel(text(name)));
        editors.append(new QLineEdit);
        form->addRow(labels.last(), editors.last());
        form->addRow(new QLineEdit); // over the whole width
        column->addWidget(box);
    }
    OssFormLayout::alignLabels(nullptr);
    OssFormLayout::alignLabels(&panel);
    panel.show();
    EXPECT_EQ(editors[0]->mapTo(&panel, QPoint()).x(), editors[1]->mapTo(&panel, QPoint()).x());
    EXPECT_EQ(labels.first()->minimumWidth(), labels.last()->minimumWidth());
    EXPECT_GE(labels.first()->minimumWidth(), labels.last()->sizeHint().width());
    for (const QLabel *label : qAsConst(labels))
        EXPECT_EQ(label->alignment(), Qt::AlignRight | Qt::AlignVCenter);
}

TEST(SearchKeys, theListIsWalkedThroughAndTheRestIsTyped)
{
    class Passing : public QObject
    {
    public:
        QListWidget list;

        bool eventFilter(QObject *, QEvent *event) override
        {
            return OssSearchKeys::passOn(event, &list);
        }
    } passing;

    for (int i = 0; i < 100; ++i)
        passing.list.addItem(QString::number(i));
    passing.list.setCurrentRow(50);
    QLineEdit field(text("ab"));
    field.installEventFilter(&passing);
    const auto rowAfter = [&](Qt::Key key) {
        QTest::keyClick(&field, key);
        return passing.list.currentRow();
    };
    EXPECT_EQ(rowAfter(Qt::Key_Down), 51);
    EXPECT_EQ(rowAfter(Qt::Key_Up), 50);
    const int below = rowAfter(Qt::Key_PageDown);
    EXPECT_GT(below, 51);
    const int row = rowAfter(Qt::Key_PageUp);
    EXPECT_LT(row, below);
    EXPECT_EQ(rowAfter(Qt::Key_Left), row);
    EXPECT_EQ(rowAfter(Qt::Key_C), row);
    EXPECT_EQ(field.text(), text("acb"));
}

namespace {

QString markupName() // what a user may call a node
{
    return text("<b>x</b> a < b & c");
}

/// The tip that the pointer brings there.
QString tipOf(QWidget *widget, const QPoint &place)
{
    QToolTip::hideText();
    QHelpEvent event(QEvent::ToolTip, place, widget->mapToGlobal(place));
    QApplication::sendEvent(widget, &event);
    return QToolTip::text();
}

} // namespace

TEST(PlainTexts, tipsOfWidgetsRowsTabsAndMenusShowNamesAsTheyAre)
{
    const OssPlainTexts plain;
    const QString shown = text("<html>&lt;b&gt;x&lt;/b&gt; a &lt; b &amp; c</html>");
    const QString meant = text("<html><b>meant</b></html>");
    QWidget widget;
    QListWidget list;
    list.addItem(text("row"));
    QTabBar tabs;
    tabs.addTab(text("tab"));
    QMenu menu;
    menu.setToolTipsVisible(true);
    QAction *action = menu.addAction(text("entry"));
    for (QWidget *one : {&widget, static_cast<QWidget *>(&list), static_cast<QWidget *>(&tabs),
                         static_cast<QWidget *>(&menu)}) {
        one->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(one));
    }
    const QString expected[] = {shown, meant};
    const QString tips[] = {markupName(), meant};
    for (int i = 0; i < 2; ++i) {
        widget.setToolTip(tips[i]);
        list.item(0)->setToolTip(tips[i]);
        tabs.setTabToolTip(0, tips[i]);
        action->setToolTip(tips[i]);
        EXPECT_EQ(tipOf(&widget, {5, 5}), expected[i]);
        EXPECT_EQ(tipOf(list.viewport(), list.visualItemRect(list.item(0)).center()), expected[i]);
        EXPECT_EQ(tipOf(&tabs, tabs.tabRect(0).center()), expected[i]);
        EXPECT_EQ(tipOf(&menu, menu.actionGeometry(action).center()), expected[i]);
    }
    const QString longLine = text("word ").repeated(20);
    for (const QString &plainTip : {text("plain"), text("two\nlines")}) {
        widget.setToolTip(plainTip);
        EXPECT_EQ(tipOf(&widget, {5, 5}), plainTip);
    }
    widget.setToolTip(longLine);
    EXPECT_EQ(tipOf(&widget, {5, 5}), text("<html>%1</html>").arg(longLine)) << "is not broken";
    QToolTip::hideText();
}

TEST(PlainTexts, labelsAndBoxesShowNamesAsTheyAreUnlessMarkupIsMeant)
{
    const OssPlainTexts plain;
    QLabel label(markupName());
    QLabel meant(text("<b>meant</b>"));
    meant.setTextFormat(Qt::RichText);
    QInputDialog input;
    input.setLabelText(markupName());
    for (QWidget *one : {static_cast<QWidget *>(&label), static_cast<QWidget *>(&meant),
                         static_cast<QWidget *>(&input)})
        one->show();
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_EQ(meant.textFormat(), Qt::RichText);
    EXPECT_EQ(input.findChild<QLabel *>()->textFormat(), Qt::PlainText);
    const auto formatOf = [](const QString &message) {
        Qt::TextFormat format = Qt::AutoText;
        QTimer::singleShot(0, [&format] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            format = box->textFormat();
            box->reject();
        });
        OssMessageBox::warning(nullptr, text("Rename node"), message);
        return format;
    };
    EXPECT_EQ(formatOf(markupName()), Qt::PlainText);
    EXPECT_EQ(formatOf(text("<html><b>meant</b></html>")), Qt::RichText);
}
