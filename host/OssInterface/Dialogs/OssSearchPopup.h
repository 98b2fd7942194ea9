#pragma once

#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Popups/OssPopupDialog.h"

class QAbstractItemModel;
class QLineEdit;
class QListView;

/// A popup with a search field and what it finds, worked by the keyboard alone: arrows choose,
/// Enter takes, Escape leaves. Subclasses search and say what a row is.
class OSSINTERFACE_EXPORT OssSearchPopup : public OssPopupDialog
{
    Q_OBJECT

public:
    explicit OssSearchPopup(const QString &title, QWidget *parent = nullptr);

    /// Places the dialog at a point of the viewport of a given size, so that all of it lies over it
    /// where it fits.
    void placeAt(const QWidget *viewport, const QPoint &viewPos);

protected:
    void setModel(QAbstractItemModel *model);

    QListView *list() const { return m_list; }

    virtual void search(const QString &text) = 0;
    /// Enter or a click on a row. The base accepts when a row is current.
    virtual void take();
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void searchAndChooseFirst(const QString &text);

    QLineEdit *m_search;
    QListView *m_list;
};
