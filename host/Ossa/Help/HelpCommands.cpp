#include "Ossa/Help/HelpCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Help/ManualWindow.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTypeHelp.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QApplication>
#include <QCursor>

namespace {

struct Chapter
{
    const char *helpKey; ///< of a palette
    const char *address;
};

const Chapter chapters[] = {
    {"node_graph_palette", "the-graph.html"},
    {"node_properties_palette", "the-graph.html"},
    {"nodes_palette", "nodes.html"},
    {"viewer_palette", "the-viewer.html"},
    {"brushes_palette", "painting.html"},
    {"images_palette", "colour.html"},
    {"export_palette", "baking-and-export.html"},
    {"problems_palette", "the-graph.html"},
    {"history_palette", "first-hour.html"},
    {"log_palette", "scripting.html"},
    {"script_console_palette", "scripting.html"},
};

/// The nearest of the kind around a widget, itself among them; null for none.
template <class Kind>
const Kind *around(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (const auto *found = qobject_cast<const Kind *>(widget))
            return found;
    }
    return nullptr;
}

const OssSnBaseNode *nodeUnderPointer()
{
    const auto *view = around<OssNgView>(QApplication::widgetAt(QCursor::pos()));
    if (!view || !view->scene())
        return nullptr;
    const QPoint place = view->viewport()->mapFromGlobal(QCursor::pos());
    const OssNgNode *item = OssNgSceneIndex::of(view->scene())->nodeAt(view->toScene(place));
    return item ? qobject_cast<OssSnBaseNode *>(item->businessNode()) : nullptr;
}

const OssSnBaseNode *selectedNode()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentViewNetwork();
    const QList<OssSnBaseNode *> nodes = network ? network->selectedNodes()
                                                 : QList<OssSnBaseNode *>();
    return nodes.isEmpty() ? nullptr : nodes.first();
}

QString pageOf(const OssSnBaseNode *node)
{
    return node ? OssSnTypeHelp::pageName(node->pathKey()) : Manual::firstAddress();
}

} // namespace

HelpCommands::HelpCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    Commands::file(this, QStringLiteral("/Ossa/Help/Help"), [this] { open(addressHere()); });
    Commands::file(this, QStringLiteral("/Ossa/Help/Manual"),
                   [this] { open(Manual::firstAddress()); });
    Commands::file(this, QStringLiteral("/Ossa/Help/Node Help"),
                   [this] { open(pageOf(selectedNode())); });
}

QString HelpCommands::addressHere()
{
    if (const OssSnBaseNode *node = nodeUnderPointer())
        return pageOf(node);
    const auto *palette = around<OssPalette>(QApplication::focusWidget());
    const QString key = palette ? palette->contextHelpKey() : QString();
    const OssSnBaseNode *node = selectedNode();
    if (node && (key.isEmpty() || key.startsWith(QLatin1String("node_"))))
        return pageOf(node);
    for (const Chapter &chapter : chapters) {
        if (key == QLatin1String(chapter.helpKey))
            return QString::fromLatin1(chapter.address);
    }
    return Manual::firstAddress();
}

void HelpCommands::open(const QString &address)
{
    if (!m_manual) {
        m_manual = new ManualWindow(m_window); // owned by the window
        connect(m_manual, &ManualWindow::projectChosen, this, &HelpCommands::projectChosen);
    }
    m_manual->open(address);
}
