#include "Ossa/Dialogs/CommandPalette.h"

#include "Ossa/Dialogs/CommandListModel.h"
#include "OssCore/Values/OssFuzzyMatch.h"
#include "OssInterface/Actions/OssActionTreeManager.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListView>
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
