#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssModel/Images/OssImageManager.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QAction>
#include <QMimeData>
#include <QSignalSpy>

// What is dragged within the application finds who takes it.

namespace {

OssDragAndDropManager *manager()
{
    return OssDragAndDropManager::instance();
}

std::unique_ptr<QMimeData> dataOf(const QString &format, const char *content)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(format, content);
    return data;
}

using DragAndDrop = ModelFixture;

TEST_F(DragAndDrop, eachTargetIsAskedForItsOwnInTurn)
{
    constexpr int First = 4711;
    constexpr int Second = 4712;
    int asked = 0;
    const auto handler = [&asked](int target, const char *format, bool uses) {
        manager()->registerHandler(
            {target, [format](const QMimeData *data) { return data->hasFormat(text(format)); },
             [&asked, uses](const QMimeData *, const QVariantMap &) {
                 ++asked;
                 return uses;
             }});
    };
    handler(First, "text/one", false);
    handler(First, "text/one", true);
    handler(First, "text/one", true);
    handler(Second, "text/two", true);
    const std::tuple<int, const char *, int> cases[] = {
        {First, "text/one", 2}, // until one has a use for it
        {First, "text/two", 0},
        {Second, "text/one", 0},
        {Second, "text/two", 1},
    };
    for (const auto &[target, format, wanted] : cases) {
        const auto data = dataOf(text(format), "x");
        asked = 0;
        EXPECT_EQ(manager()->acceptDragEnter(data.get(), target), wanted > 0) << target << format;
        EXPECT_EQ(asked, 0) << "it is still in the user's hand";
        EXPECT_EQ(manager()->drop(data.get(), target, {}), wanted > 0) << target << format;
        EXPECT_EQ(asked, wanted) << target << format;
    }
}

TEST_F(DragAndDrop, nodeTypesBecomeNodesAsTheirMenuEntriesMakeThem)
{
    const int graph = OssImageManager::NodeGraphTarget;
    QAction blur(text("Blur"));
    OssActionTreeManager::instance()->registerAction(text("/Ossa/NodeGraph/Create/Filter/"), &blur);
    QSignalSpy made(&blur, &QAction::triggered);
    const std::pair<const char *, int> cases[] = {
        {"Filter/Blur", 1}, {"No/Such\nFilter/Blur\n\nFilter/Blur", 2}, {"No/Such", 0}, {"", 0}};
    for (const auto &[keys, wanted] : cases) {
        made.clear();
        const auto data = dataOf(OssNodeTypeListModel::MimeType, keys);
        EXPECT_TRUE(manager()->acceptDragEnter(data.get(), graph));
        EXPECT_FALSE(manager()->acceptDragEnter(data.get(), graph + 4711));
        EXPECT_EQ(manager()->drop(data.get(), graph, {}), wanted > 0) << keys;
        EXPECT_EQ(made.size(), wanted) << keys;
    }
    const QMimeData nothing;
    EXPECT_FALSE(manager()->acceptDragEnter(&nothing, graph));
    EXPECT_FALSE(manager()->acceptDragEnter(nullptr, graph));
}

} // namespace
