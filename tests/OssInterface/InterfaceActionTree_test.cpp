#include "OssInterface/Actions/OssActionTreeManager.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QSignalSpy>

namespace {

OssActionTreeManager *tree()
{
    return OssActionTreeManager::instance();
}

std::unique_ptr<QAction> filed(const char *folder, const char *text)
{
    auto action = std::make_unique<QAction>(QString::fromLatin1(text), nullptr);
    tree()->registerAction(QString::fromLatin1(folder), action.get());
    return action;
}

QAction *find(const char *path)
{
    return tree()->findAction(QString::fromLatin1(path));
}

} // namespace

TEST(ActionTree, slashesMeanNothingInLookUp)
{
    const auto action = filed("Tests/Slashes/", "Frame");
    for (const char *path : {"/Tests/Slashes/Frame", "Tests/Slashes/Frame",
                             "//Tests//Slashes///Frame", "/Tests/Slashes/Frame/"})
        EXPECT_EQ(find(path), action.get()) << path;
    EXPECT_EQ(find("/Tests/SlashesFrame"), nullptr);
    EXPECT_EQ(find("/Tests/Slashes"), nullptr);
}

TEST(ActionTree, letterCaseCountsForFindingButNotForTheDuplicateCheck)
{
    const auto action = filed("/Tests/Case/", "Delete All");
    EXPECT_EQ(find("/Tests/Case/Delete all"), nullptr);
    EXPECT_TRUE(tree()->hasAction(QStringLiteral("/Tests/Case/Delete all")));
    EXPECT_FALSE(tree()->hasAction(QStringLiteral("/Tests/Case/Delete")));
}

TEST(ActionTree, firstOfEqualIdentitiesAnswersAndTheNextTakesOver)
{
    auto first = filed("/Tests/Equal/", "Pick Up");
    const auto second = filed("/Tests/Equal", "Pick Up");
    EXPECT_EQ(find("/Tests/Equal/Pick Up"), first.get());
    EXPECT_EQ(tree()->entries(QStringLiteral("/Tests/Equal"), false).size(), 2);
    EXPECT_EQ(tree()->paths().count(QStringLiteral("/Tests/Equal/Pick Up")), 1);
    first.reset();
    EXPECT_EQ(find("/Tests/Equal/Pick Up"), second.get());
}

TEST(ActionTree, deadActionsDropOut)
{
    QSignalSpy removed(tree(), &OssActionTreeManager::actionRemoved);
    filed("/Tests/Dead/", "Gone");
    EXPECT_EQ(find("/Tests/Dead/Gone"), nullptr);
    EXPECT_FALSE(tree()->hasAction(QStringLiteral("/Tests/Dead/Gone")));
    EXPECT_TRUE(tree()->entries(QStringLiteral("/Tests/Dead"), true).isEmpty());
    EXPECT_EQ(removed.count(), 1);
}

TEST(ActionTree, identityOutlastsALaterText)
{
    const auto action = filed("/Tests/Text/", "Undo");
    action->setText(QStringLiteral("Undo Move node Brick"));
    EXPECT_EQ(find("/Tests/Text/Undo"), action.get());
    EXPECT_EQ(tree()->pathOf(action.get()), QStringLiteral("/Tests/Text/Undo"));
}

TEST(ActionTree, filingTheSameActionTwiceKeepsOneEntry)
{
    const auto action = filed("/Tests/Twice/", "Once");
    tree()->registerAction(QStringLiteral("Tests//Twice"), action.get());
    EXPECT_EQ(tree()->entries(QStringLiteral("/Tests/Twice"), false).size(), 1);
}

TEST(ActionTree, listingKeepsTheFolderAsPassedAndTheOrderOfFiling)
{
    const auto one = filed("/Tests/List/", "Zebra");
    const auto two = filed("Tests/List", "Ant");
    const auto below = filed("/Tests/List/Sub", "Deep");
    const auto other = filed("/Tests/Listing", "Other");
    const auto here = tree()->entries(QStringLiteral("/Tests/List"), false);
    ASSERT_EQ(here.size(), 2);
    EXPECT_EQ(here[0].action, one.get());
    EXPECT_EQ(here[0].folder, QStringLiteral("/Tests/List/"));
    EXPECT_EQ(here[1].folder, QStringLiteral("Tests/List"));
    EXPECT_EQ(tree()->entries(QStringLiteral("/Tests/List"), true).size(), 3);
}
