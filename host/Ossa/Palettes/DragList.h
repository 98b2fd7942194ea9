#pragma once

#include <QListView>

/// A list whose drags show a small picture, or nothing, under the pointer: what they are dragged
/// over shows what a drop would do.
class DragList : public QListView
{
    Q_OBJECT

public:
    using QListView::QListView;

protected:
    void startDrag(Qt::DropActions actions) override;
};
