#pragma once

#include "OssCore/Program/OssDebug.h"

#include <QWidget>

class LogFilter;
class LogModel;
class OssSnBaseNode;
class QAction;
class QModelIndex;
class QHBoxLayout;
class QListView;

/// The debug log: filtered by category and text, copied, cleared. Follows new lines while its end
/// is in view. A line that speaks of a node leads to it, by a double click or the menu.
class LogPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LogPanel(QWidget *parent = nullptr);

    /// The selected lines, or all that are shown when none is selected, whole and in order.
    QString textToCopy() const;

protected:
    void showEvent(QShowEvent *event) override;

private:
    QHBoxLayout *makeBar();
    void addCategory(QHBoxLayout *bar, OssDebugLog::Category category, const QString &text);
    void addCopyAction();
    void followEnd();
    void copy() const;
    /// Of a line; null when it speaks of none.
    static OssSnBaseNode *nodeOf(const QModelIndex &row);
    static void goToNode(const QModelIndex &row);

    LogModel *m_model;
    LogFilter *m_filter;
    QListView *m_view;
    bool m_following = true;
};
