#include "OssNodeGraph/View/OssNgAccessible.h"

#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QGraphicsScene>
#include <QPointer>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssNgAccessible", text);
}

OssNgView *viewOf(const OssNgNode *node)
{
    const QList<QGraphicsView *> views = node && node->scene() ? node->scene()->views()
                                                               : QList<QGraphicsView *>();
    OssNgView *found = nullptr;
    for (QGraphicsView *view : views) {
        auto *graph = qobject_cast<OssNgView *>(view);
        if (graph && (!found || graph->isVisible()))
            found = graph;
    }
    return found;
}

QList<OssNgNode *> nodesOf(const OssNgView *view)
{
    QList<OssNgNode *> nodes;
    if (!view->scene())
        return nodes;
    for (const OssNgSceneIndex::NodeEntry &entry : view->sceneIndex()->nodeEntries()) {
        if (entry.node && entry.visible)
            nodes.append(entry.node);
    }
    return nodes;
}

class NodeInterface final
    : public QAccessibleInterface
    , public QAccessibleActionInterface
{
public:
    explicit NodeInterface(OssNgNode *node)
        : m_node(node)
    {
    }

    bool isValid() const override { return m_node && viewOf(m_node); }

    QObject *object() const override { return m_node; }

    QAccessibleInterface *childAt(int, int) const override { return nullptr; }

    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(viewOf(m_node));
    }

    QAccessibleInterface *child(int) const override { return nullptr; }

    int childCount() const override { return 0; }

    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QString text(QAccessible::Text kind) const override
    {
        if (!m_node)
            return {};
        if (kind == QAccessible::Name)
            return OssNgAccessible::nodeDescription(m_node);
        if (kind == QAccessible::Description)
            return OssNgAccessible::portDescriptions(m_node).join(QStringLiteral("; "));
        return {};
    }

    void setText(QAccessible::Text, const QString &) override {}

    QRect rect() const override
    {
        const OssNgView *view = viewOf(m_node);
        if (!view)
            return {};
        const QRect local = view->mapFromScene(m_node->sceneBoundingRect()).boundingRect();
        return {view->viewport()->mapToGlobal(local.topLeft()), local.size()};
    }

    QAccessible::Role role() const override { return QAccessible::ListItem; }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!m_node)
            return state;
        const OssNgView *view = viewOf(m_node);
        state.selectable = true;
        state.multiSelectable = true;
        state.focusable = true;
        state.selected = m_node->isSelected();
        state.focused = state.selected && view && view->hasFocus()
                        && m_node->scene()->selectedItems().size() == 1;
        state.offscreen = view
                          && !view->viewportInSceneCoords().intersects(m_node->sceneBoundingRect());
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }

    QStringList actionNames() const override { return {setFocusAction(), pressAction()}; }

    void doAction(const QString &) override
    {
        OssNgView *view = viewOf(m_node);
        if (!view)
            return;
        view->scene()->clearSelection();
        m_node->setSelected(true);
        if (!view->viewportInSceneCoords().contains(m_node->sceneBoundingRect()))
            view->centerViewOn(m_node->sceneBoundingRect().center(), true);
        view->setFocus();
    }

    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<OssNgNode> m_node;
};

class ViewInterface final : public QAccessibleWidget
{
public:
    explicit ViewInterface(OssNgView *view)
        : QAccessibleWidget(view, QAccessible::List)
    {
    }

    int childCount() const override { return nodesOf(view()).size(); }

    QAccessibleInterface *child(int index) const override
    {
        OssNgNode *node = nodesOf(view()).value(index);
        return node ? QAccessible::queryAccessibleInterface(node) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return nodesOf(view()).indexOf(qobject_cast<OssNgNode *>(child->object()));
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint local = view()->viewport()->mapFromGlobal({x, y});
        OssNgNode *node = view()->scene() ? view()->sceneIndex()->nodeAt(view()->toScene(local))
                                          : nullptr;
        return node ? QAccessible::queryAccessibleInterface(node) : nullptr;
    }

    QAccessibleInterface *focusChild() const override
    {
        const QList<QGraphicsItem *> selected = view()->scene() ? view()->scene()->selectedItems()
                                                                : QList<QGraphicsItem *>();
        auto *node = selected.size() == 1 ? dynamic_cast<OssNgNode *>(selected.first()) : nullptr;
        return node ? QAccessible::queryAccessibleInterface(node) : nullptr;
    }

private:
    OssNgView *view() const { return static_cast<OssNgView *>(widget()); }
};

// Qt asks for each class of an object's inheritance, the most derived one first.
QAccessibleInterface *make(const QString &className, QObject *object)
{
    if (className == QLatin1String("OssNgNode"))
        return new NodeInterface(static_cast<OssNgNode *>(object)); // Qt's cache takes it
    if (className == QLatin1String("OssNgView"))
        return new ViewInterface(static_cast<OssNgView *>(object));
    return nullptr;
}

} // namespace

void OssNgAccessible::install()
{
    static const bool once = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    Q_UNUSED(once)
}

QString OssNgAccessible::nodeDescription(const OssNgNode *node)
{
    QStringList words{node->text()};
    if (!node->category().isEmpty())
        words.append(node->category());
    if (node->hasMark(OssNgNode::Disabled))
        words.append(tr("disabled"));
    if (node->hasMark(OssNgNode::Bypassed))
        words.append(tr("bypassed"));
    if (node->hasMark(OssNgNode::Stale))
        words.append(tr("out of date"));
    if (!node->errorText().isEmpty())
        words.append(tr("error: %1").arg(node->errorText()));
    return words.join(QStringLiteral(", "));
}

QStringList OssNgAccessible::portDescriptions(const OssNgNode *node)
{
    QStringList ports;
    for (const OssNgPort &port : node->inputPorts()) {
        const OssNgEdge *edge = node->input(port.name);
        const QString name = node->inputDescriptiveName(port.name);
        if (edge && edge->source())
            ports.append(
                tr("%1, from %2 %3")
                    .arg(name, edge->source()->text(),
                         edge->source()->outputPointDescriptiveName(edge->sourceOutput())));
        else
            ports.append(tr("%1, not connected").arg(name));
    }
    for (const OssNgPort &port : node->outputPorts()) {
        QStringList targets;
        const QList<OssNgEdge *> edges = node->outputs();
        for (const OssNgEdge *edge : edges) {
            if (edge->sourceOutput() == port.name && edge->destination())
                targets.append(
                    edge->destination()->text() + QLatin1Char(' ')
                    + edge->destination()->inputDescriptiveName(edge->destinationInput()));
        }
        const QString name = node->outputPointDescriptiveName(port.name);
        ports.append(targets.isEmpty()
                         ? tr("%1, not connected").arg(name)
                         : tr("%1, to %2").arg(name, targets.join(QStringLiteral(", "))));
    }
    return ports;
}
