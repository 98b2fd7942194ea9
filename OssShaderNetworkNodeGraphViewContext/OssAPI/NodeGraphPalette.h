#pragma once

#include "OssAPI/NodeGraphView.h"
#include "OssScriptObjects/OssaPalette.h"

#include <QList>

class OssSnNodeGraphWidget;

namespace Ossa {

/// The "Node Graph" palette for scripts. Tabs count from 0, which is the root graph's. Errors are
/// reported; the call then gives -1, null or nothing.
class Q_DECL_EXPORT NodeGraphPalette : public Palette
{
    Q_OBJECT
    Q_CLASSINFO("doc", "The Node Graph palette. Tabs count from 0, which is the root graph's.")
    Q_CLASSINFO("currentTabIndex", "The tab that is shown.")
    Q_CLASSINFO("setCurrentTabIndex", "Shows a tab.")
    Q_CLASSINFO("closeTab", "Closes a tab.")
    Q_CLASSINFO("nodeGraphViewList", "The views of all tabs, in their order.")
    Q_CLASSINFO("nodeGraphView", "The view of a tab; None where there is no such tab.")
    Q_CLASSINFO("indexForNodeGraph", "The tab that shows a graph; opens one when there is none.")

public:
    /// Wraps an OssPalette; reports any other object and stays empty.
    explicit NodeGraphPalette(QObject *internal);
    ~NodeGraphPalette() override;

public Q_SLOTS:
    int currentTabIndex() const;
    void setCurrentTabIndex(int Index);
    void closeTab(int Index);
    /// In the order of the tabs.
    QList<NodeGraphView *> nodeGraphViewList() const;
    /// Null where there is no such tab.
    NodeGraphView *nodeGraphView(int TabIndex) const;
    /// Of the tab that shows the graph; opens one behind the others when there is none.
    int indexForNodeGraph(NodeGraph *NodeGraphObject);

private:
    /// Null, and reported, when the palette is gone or has another body.
    OssSnNodeGraphWidget *widget() const;
};

} // namespace Ossa
