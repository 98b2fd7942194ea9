#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssModel/Images/OssImageManager.h"
#include "support/ModelFixture.h"

#include <QAction>
#include <QMimeData>

// What is dragged within the application finds who takes it.

namespace {

class DragAndDrop : public ModelFixture
{
protected:
    static OssDragAndDropManager *manager() { return OssDragAndDropManager::instance(); }

    static std::unique_ptr<QMimeData> nodeTypes(const char *keys)
    {
        auto data = std::make_unique<QMimeData>();
        data->setData(OssNodeTypeListModel::MimeType, keys);
        return data;
    }
};

TEST_F(DragAndDrop, eachTargetIsAskedForItsOwnInTurn)
{
    constexpr int First = 4711;
    constexpr int Second = 4712;
    QStringList asked;
    const auto handler = [&asked](int target, const char *format, bool uses) {
        const QString name = QStringLiteral("%1 %2").arg(target).arg(QLatin1String(format));
        manager()->registerHandler(
            {target,
             [format](const QMimeData *data) { return data->hasFormat(QLatin1String(format)); },
             [&asked, name, uses](const QMimeData *, const QVariantMap &) {
                 asked.append(name);
                 return uses;
             }});
    };
    handler(First, "text/one", false);
    handler(First, "text/one", true);
    handler(First, "text/one", true);
    handler(Second, "text/two", true);

    const struct
    {
        int target;
        const char *format;
        bool taken;
        QStringList asked;
    } cases[] = {
        {First,
         "text/one",
         true,
         {QStringLiteral("4711 text/one"), QStringLiteral("4711 text/one")}},
        {First, "text/two", false, {}},
        {Second, "text/one", false, {}},
        {Second, "text/two", true, {QStringLiteral("4712 text/two")}},
    };

    for (const auto &c : cases) {
        QMimeData data;
        data.setData(QLatin1String(c.format), "x");
        asked.clear();
        EXPECT_EQ(manager()->acceptDragEnter(&data, c.target), c.taken) << c.target << c.format;
        EXPECT_TRUE(asked.isEmpty()) << "it is still in the user's hand";
        EXPECT_EQ(manager()->drop(&data, c.target, {}), c.taken) << c.target << c.format;
        EXPECT_EQ(asked, c.asked) << c.target << c.format;
    }
}

TEST_F(DragAndDrop, nodeTypesBecomeNodesAsTheirMenuEntriesMakeThem)
{
    const int graph = OssImageManager::NodeGraphTarget;
    QAction blur(QStringLiteral("Blur"));
    OssActionTreeManager::setName(&blur, QStringLiteral("Blur"));
    OssActionTreeManager::instance()->registerAction(
        QStringLiteral("/Ossa/NodeGraph/Create/Filter/"), &blur);
    int made = 0;
    QObject::connect(&blur, &QAction::triggered, [&made] { ++made; });

    const struct
    {
        const char *keys;
        int made;
    } cases[] = {
        {"Filter/Blur", 1}, {"No/Such\nFilter/Blur\n\nFilter/Blur", 2}, {"No/Such", 0}, {"", 0}};

    for (const auto &c : cases) {
        made = 0;
        const auto data = nodeTypes(c.keys);
        EXPECT_TRUE(manager()->acceptDragEnter(data.get(), graph));
        EXPECT_EQ(manager()->drop(data.get(), graph, {}), c.made > 0) << c.keys;
        EXPECT_EQ(made, c.made) << c.keys;
    }
    EXPECT_FALSE(manager()->acceptDragEnter(nodeTypes("Filter/Blur").get(), graph + 4711));
    const QMimeData nothing;
    EXPECT_FALSE(manager()->acceptDragEnter(&nothing, graph));
    EXPECT_FALSE(manager()->acceptDragEnter(nullptr, graph));
}

} // namespace
