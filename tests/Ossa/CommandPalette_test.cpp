#include "Ossa/Dialogs/CommandPalette.h"

#include "Ossa/Dialogs/CommandDelegate.h"
#include "Ossa/Dialogs/CommandListModel.h"
#include "OssCore/Values/OssFuzzyMatch.h"
#include "OssInterface/Actions/OssActionTreeManager.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QStandardItemModel>
#include <QTest>

namespace {

int score(const char *pattern, const char *text)
{
    return OssFuzzyMatch::score(QString::fromLatin1(pattern), QString::fromLatin1(text));
}

class CommandFinding : public testing::Test
{
protected:
    CommandFinding()
    {
        for (QAction *action : {&frame, &rename, &disable}) {
            OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Finding/"),
                                                             action);
            QObject::connect(action, &QAction::triggered,
                             [this, action] { triggered.append(action->text()); });
        }
    }

    QStringList found(const char *text)
    {
        CommandListModel model;
        model.setSearchText(QString::fromLatin1(text));
        QStringList names;
        for (int row = 0; row < model.rowCount(); ++row)
            names.append(model.index(row, 0).data().toString());
        return names;
    }

    QAction frame{QStringLiteral("Frame Zzyx Nodes")};
    QAction rename{QStringLiteral("Rename Zzyx")};
    QAction disable{QStringLiteral("Disable Zzyx")};
    QStringList triggered;
};

} // namespace

TEST(FuzzyMatching, lettersMustOccurInOrder)
{
    EXPECT_GE(score("fn", "Frame Nodes"), 0);
    EXPECT_GE(score("FRAMENODES", "Frame Nodes"), 0);
    EXPECT_GE(score("frame nodes", "Frame Nodes"), 0);
    EXPECT_LT(score("nf", "Frame Nodes"), 0);
    EXPECT_LT(score("x", "Frame Nodes"), 0);
    EXPECT_LT(score("a", ""), 0);
    EXPECT_EQ(score("", "anything"), 0);
}

TEST(FuzzyMatching, wordStartsAndNeighboursCountMore)
{
    EXPECT_GT(score("fn", "Frame Nodes"), score("fn", "Offline"));
    EXPECT_GT(score("pan", "Pan Left"), score("pan", "Toggle Port List Name"));
    EXPECT_GT(score("cut", "Cut"), score("cut", "Cut Everything in Two"));
    // The best way to lay the letters counts, not the first.
    EXPECT_GT(score("se", "Use Selection"), score("se", "Use Slower"));
}

TEST_F(CommandFinding, bestComesFirst)
{
    EXPECT_EQ(found("rezz").value(0), rename.text());
    EXPECT_EQ(found("zzyx").size(), 3);
    EXPECT_TRUE(found("qqqzz").isEmpty());
}

TEST_F(CommandFinding, commandsThatDieWhileShownAreHarmless)
{
    auto dying = std::make_unique<QAction>(QStringLiteral("Zzyx Dying"));
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Finding"), dying.get());
    CommandListModel model;
    model.setSearchText(QStringLiteral("zzyx dying"));
    ASSERT_EQ(model.rowCount(), 1);
    dying.reset();
    EXPECT_EQ(model.action(model.index(0, 0)), nullptr);
    EXPECT_FALSE(model.index(0, 0).data().isValid());
}

TEST_F(CommandFinding, enterRunsTheChosenCommandAfterTheDialogHasGone)
{
    CommandPalette palette;
    palette.show();
    auto *search = palette.findChild<QLineEdit *>();
    QTest::keyClicks(search, QStringLiteral("zzyx"));
    QTest::keyClick(search, Qt::Key_Down);
    const QString chosen = palette.findChild<QListView *>()->currentIndex().data().toString();
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_FALSE(palette.isVisible());
    EXPECT_TRUE(triggered.isEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(triggered, QStringList(chosen));
}

TEST_F(CommandFinding, escapeRunsNothing)
{
    CommandPalette palette;
    palette.show();
    auto *search = palette.findChild<QLineEdit *>();
    QTest::keyClicks(search, QStringLiteral("frame zzyx"));
    QTest::keyClick(search, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_FALSE(palette.isVisible());
    EXPECT_TRUE(triggered.isEmpty());
}

TEST_F(CommandFinding, disabledCommandsAreListedButNotRun)
{
    disable.setEnabled(false);
    CommandPalette palette;
    palette.show();
    auto *search = palette.findChild<QLineEdit *>();
    QTest::keyClicks(search, QStringLiteral("disable zzyx"));
    QTest::keyClick(search, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(palette.isVisible());
    EXPECT_TRUE(triggered.isEmpty());
}

TEST_F(CommandFinding, rowsShowNameKeyAndFolderWithoutRunningOverEachOther)
{
    const CommandDelegate delegate(nullptr);
    QStandardItemModel model;
    model.appendRow(new QStandardItem(QStringLiteral("Frame")));
    const QModelIndex index = model.index(0, 0);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 300, 24);
    option.state = QStyle::State_Enabled;
    const auto picture = [&] {
        QImage image(option.rect.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        delegate.paint(&painter, option, index);
        return image;
    };
    const QImage plain = picture();
    model.setData(index, QStringLiteral("Node Graph"), CommandListModel::FolderRole);
    const QImage withFolder = picture();
    EXPECT_NE(withFolder, plain);
    model.setData(index, QStringLiteral("Ctrl+F"), CommandListModel::KeyRole);
    const QImage whole = picture();
    EXPECT_NE(whole, withFolder);
    EXPECT_EQ(whole.copy(0, 0, 60, 24), withFolder.copy(0, 0, 60, 24));
    option.state = QStyle::State_None;
    EXPECT_NE(picture(), whole) << "what cannot be done now looks so";
    option.state = QStyle::State_Enabled;
    model.setData(index, QString(100, QLatin1Char('W')), Qt::DisplayRole);
    const QImage longName = picture();
    EXPECT_EQ(longName.copy(260, 0, 40, 24), whole.copy(260, 0, 40, 24)) << "the key is to be seen";
    model.setData(index, QString(), CommandListModel::FolderRole);
    EXPECT_EQ(picture(), longName) << "the name comes first";
    EXPECT_GT(delegate.sizeHint(option, index).height(), option.fontMetrics.height());
}
