#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssFormLayout.h"
#include "OssInterface/Widgets/OssMiniButton.h"
#include "OssInterface/Widgets/OssSearchKeys.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

TEST(ExpandableList, headingFoldsTheBodyByMouseAndKey)
{
    OssExpandableListWidget panel(QStringLiteral("Warp"));
    auto *body = new QLabel(QStringLiteral("body"));
    panel.setBody(body);
    panel.show();
    QTest::mouseClick(panel.heading(), Qt::LeftButton);
    EXPECT_TRUE(panel.isCollapsed());
    EXPECT_FALSE(body->isVisible());
    QTest::keyClick(panel.heading()->findChild<QToolButton *>(), Qt::Key_Space);
    EXPECT_FALSE(panel.isCollapsed());
    EXPECT_TRUE(body->isVisible());
}

TEST(ExpandableList, collapsedChangedOnlyOnChange)
{
    OssExpandableListWidget panel;
    const QSignalSpy changed(&panel, &OssExpandableListWidget::collapsedChanged);
    panel.expand();
    panel.collapse();
    panel.collapse();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(panel.heading(), nullptr);
}

TEST(ExpandableList, styleSheetsSelectItByIdAndProperty)
{
    OssExpandableListWidget panel(QStringLiteral("Warp"));
    panel.setObjectName(QStringLiteral("4f8a8b"));
    panel.setStyleSheet(QStringLiteral(
        "QFrame#4f8a8b[OssExpandableListWidget=true] { border-top: 6px solid #ff0000; }"));
    panel.resize(80, 60);
    EXPECT_EQ(panel.grab().toImage().pixelColor(40, 2), QColor(255, 0, 0));
}

TEST(ExpandableList, insertedWidgetsKeepTheirOrderAroundTheTitle)
{
    OssExpandableListHeading heading(QStringLiteral("Warp"));
    auto *first = new OssMiniButton(QStringLiteral("p"));
    auto *second = new OssMiniButton(QStringLiteral("s"));
    heading.insertWidget(0, first);
    heading.insertWidget(1, second);
    auto *last = new OssMiniButton(QStringLiteral("x"));
    heading.insertWidget(-1, last);
    heading.resize(300, 30);
    heading.show();
    EXPECT_LT(first->x(), second->x());
    const QRect title = heading.findChild<QLabel *>()->geometry();
    EXPECT_LT(second->geometry().right(), title.left());
    EXPECT_GT(last->x(), title.right());
}

TEST(FormLayout, labelsOfAllFormsGetOneWidth)
{
    QWidget panel;
    auto *column = new QVBoxLayout(&panel);
    QList<QLineEdit *> editors;
    for (const char *text : {"A", "A considerably longer label"}) {
        auto *part = new QWidget;
        auto *form = new OssFormLayout(part);
        editors.append(new QLineEdit);
        form->addRow(QString::fromLatin1(text), editors.last());
        column->addWidget(part);
    }
    OssFormLayout::alignLabels(&panel);
    panel.show();
    EXPECT_EQ(editors[0]->mapTo(&panel, QPoint()).x(), editors[1]->mapTo(&panel, QPoint()).x());
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
    QLineEdit field(QStringLiteral("ab"));
    field.installEventFilter(&passing);
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_EQ(passing.list.currentRow(), 51);
    QTest::keyClick(&field, Qt::Key_Up);
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(passing.list.currentRow(), 49);
    QTest::keyClick(&field, Qt::Key_PageDown);
    const int below = passing.list.currentRow();
    EXPECT_GT(below, 50);
    QTest::keyClick(&field, Qt::Key_PageUp);
    const int row = passing.list.currentRow();
    EXPECT_LT(row, below);
    QTest::keyClick(&field, Qt::Key_Left);
    QTest::keyClick(&field, Qt::Key_C);
    EXPECT_EQ(field.text(), QStringLiteral("acb"));
    EXPECT_EQ(passing.list.currentRow(), row);
}

TEST(FormLayout, labelsOfAllFormsLineUp)
{
    QWidget panel;
    auto *column = new QVBoxLayout(&panel);
    QList<QLabel *> labels;
    for (const char *text : {"A", "A much longer name"}) {
        auto *box = new QWidget;
        auto *form = new OssFormLayout(box);
        auto *label = new QLabel(QString::fromLatin1(text));
        form->addRow(label, new QLineEdit);
        form->addRow(new QLineEdit); // over the whole width
        column->addWidget(box);
        labels.append(label);
    }
    OssFormLayout::alignLabels(nullptr);
    OssFormLayout::alignLabels(&panel);
    EXPECT_EQ(labels.first()->minimumWidth(), labels.last()->minimumWidth());
    EXPECT_GE(labels.first()->minimumWidth(), labels.last()->sizeHint().width());
    for (const QLabel *label : labels)
        EXPECT_EQ(label->alignment(), Qt::AlignRight | Qt::AlignVCenter);
}
