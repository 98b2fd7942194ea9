#include "Ossa/Help/Manual.h"

#include "Ossa/Help/HelpCommands.h"
#include "Ossa/Help/ManualWindow.h"
#include "Ossa/Help/ManualWriter.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Widgets/OssHelpBrowser.h"
#include "OssModel/Types/OssSnTypeHelp.h"
#include "WindowFixture.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>

namespace {

QStringList captured(const QString &html, const char *expression)
{
    QStringList found;
    auto matches = QRegularExpression(text(expression)).globalMatch(html);
    while (matches.hasNext())
        found.append(matches.next().captured(1));
    return found;
}

class ManualPages : public WindowFixture
{
protected:
    static int shownPages(const QTreeWidget *contents)
    {
        int shown = 0;
        for (QTreeWidgetItemIterator item(const_cast<QTreeWidget *>(contents)); *item; ++item)
            shown += !(*item)->isHidden() && (*item)->childCount() == 0
                     && !((*item)->parent() && (*item)->parent()->isHidden());
        return shown;
    }
};

TEST_F(ManualPages, everythingThatIsNamedIsThereAndNoLinkIsDead)
{
    const Manual manual(Manual::InBrowser, text("/nowhere"));
    ASSERT_EQ(manual.pages().first().address, Manual::firstAddress());
    QStringList reached{Manual::firstAddress()};
    for (const Manual::Page &page : manual.pages()) {
        EXPECT_FALSE(page.title.isEmpty()) << qPrintable(page.address);
        EXPECT_EQ(manual.unknownNames(page.address), QStringList())
            << "In " << qPrintable(page.file)
            << ": [[...]] holds a command's path, a node type or example:NAME";
        const QString body = manual.body(page.address);
        // Types that other tests brought have little to tell.
        EXPECT_GT(body.size(), page.pathKey.isEmpty() ? 400 : 40) << qPrintable(page.address);
        for (const QString &link : captured(body, "href=\"([^\"#]+)")) {
            EXPECT_TRUE(manual.find(link))
                << qPrintable(page.address) << " leads to " << qPrintable(link);
            reached.append(link);
        }
    }
    for (const Manual::Page &page : manual.pages())
        EXPECT_TRUE(reached.contains(page.address))
            << "No page leads to " << qPrintable(page.address);
}

TEST_F(ManualPages, everyCommandStandsInItWithItsKeys)
{
    const Manual manual(Manual::InBrowser, text("/nowhere"));
    const QString page = manual.body(text("commands.html"));
    for (const OssCommandTable::Row &row : OssCommandTable::rows()) {
        if (text(row.name) == text("*"))
            continue;
        EXPECT_TRUE(page.contains(OssCommandTable::text(row).toHtmlEscaped())) << row.name;
        EXPECT_TRUE(page.contains(OssCommandTable::tip(row).toHtmlEscaped())) << row.name;
    }
    EXPECT_TRUE(page.contains(text("<td>Quick Create</td><td>Tab</td><td>Node Graph</td>")));
    EXPECT_TRUE(page.contains(text("Node Graph \u203a Group")));
}

TEST_F(ManualPages, areWrittenForABrowserWithWordsToSearch)
{
    const QTemporaryDir target;
    const QDir folder(target.filePath(text("manual")));
    const OssResult written = ManualWriter::write(folder.path());
    ASSERT_TRUE(written) << qPrintable(written.error());
    const Manual manual(Manual::InBrowser, folder.path());
    for (const Manual::Page &page : manual.pages())
        EXPECT_TRUE(folder.exists(page.address)) << qPrintable(page.address);
    QFile first(folder.filePath(Manual::firstAddress()));
    ASSERT_TRUE(first.open(QIODevice::ReadOnly));
    const QString html = QString::fromUtf8(first.readAll());
    for (const QString &file : captured(html, "(?:src|href)=\"([^\"#]+)"))
        EXPECT_TRUE(folder.exists(file)) << qPrintable(file);
    QFile index(folder.filePath(text("search-index.js")));
    ASSERT_TRUE(index.open(QIODevice::ReadOnly));
    const QByteArray words = index.readAll();
    EXPECT_TRUE(words.contains("When to use it To soften masks"));

    QFile blocker(target.filePath(text("file")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    EXPECT_TRUE(ManualWriter::write(blocker.fileName()).error().contains(blocker.fileName()));
}

TEST_F(ManualPages, theWindowFollowsLinksGoesBackAndFindsPages)
{
    ManualWindow manual;
    QSignalSpy chosen(&manual, &ManualWindow::projectChosen);
    auto *page = manual.findChild<OssHelpBrowser *>();
    manual.open(text("nowhere.html"));
    EXPECT_TRUE(manual.isVisible());
    EXPECT_EQ(manual.address(), Manual::firstAddress());
    manual.open(text("node-filter-blur.html"));
    EXPECT_TRUE(page->toPlainText().contains(text("To soften masks")));
    Q_EMIT page->anchorClicked(QUrl(text("node-filter-bilateral.html")));
    EXPECT_EQ(manual.address(), text("node-filter-bilateral.html"));
    const auto *contents = manual.findChild<QTreeWidget *>();
    ASSERT_TRUE(contents->currentItem());
    EXPECT_EQ(contents->currentItem()->text(0), text("Bilateral"));
    const auto buttons = manual.findChildren<QToolButton *>();
    ASSERT_GE(buttons.size(), 2);
    buttons.at(0)->click();
    EXPECT_EQ(manual.address(), text("node-filter-blur.html"));
    buttons.at(1)->click();
    EXPECT_EQ(manual.address(), text("node-filter-bilateral.html"));

    Q_EMIT page->anchorClicked(QUrl(Manual::exampleScheme() + text("Old%20Plaster")));
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_TRUE(QDir(chosen.first().first().toString()).exists());

    const int all = shownPages(contents);
    auto *search = manual.findChild<QLineEdit *>();
    search->setText(text("kuwahara strokes"));
    EXPECT_GE(shownPages(contents), 1);
    EXPECT_LT(shownPages(contents), 5);
    search->clear();
    EXPECT_EQ(shownPages(contents), all);
    EXPECT_EQ(all, Manual(Manual::InProgram, QString()).pages().size());
}

TEST_F(ManualPages, helpOpensWhereOneLooks)
{
    OssPalette *viewer = make("Viewer", "viewer_palette");
    OssPalette *graph = make("Node Graph", "node_graph_palette");
    open();
    EXPECT_EQ(HelpCommands::addressHere(), Manual::firstAddress());
    projects()->newProject(text("Test"));
    QApplication::setActiveWindow(window.get());
    viewer->originalWidget()->setFocus();
    EXPECT_EQ(HelpCommands::addressHere(), text("the-viewer.html"));
    graph->originalWidget()->setFocus();
    EXPECT_EQ(HelpCommands::addressHere(), text("the-graph.html"));
    OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentViewNetwork();
    ASSERT_TRUE(network);
    network->createNode(text("Filter/Blur"))->setSelected(true);
    EXPECT_EQ(HelpCommands::addressHere(), text("node-filter-blur.html"));

    OssActionTreeManager::instance()->findAction(text("/Ossa/Help/Help"))->trigger();
    const auto *manual = window->findChild<ManualWindow *>();
    ASSERT_TRUE(manual);
    EXPECT_EQ(manual->address(), text("node-filter-blur.html"));
    OssActionTreeManager::instance()->findAction(text("/Ossa/Help/Manual"))->trigger();
    EXPECT_EQ(manual->address(), Manual::firstAddress());
}

} // namespace
