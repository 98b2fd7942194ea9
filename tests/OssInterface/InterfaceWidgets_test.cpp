#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssFormLayout.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssInterface/Widgets/OssSearchKeys.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
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
