#pragma once

#include "OssInterface/Dialogs/OssSearchPopup.h"
#include "OssInterface/OssInterface_export.h"

#include <QColor>
#include <QStringList>

#include <functional>

class OssNodeTypeListModel;
class OssSnNodeType;

/// Finds a node type to make by a few letters. Ctrl+Space, or a click on the star, makes the type
/// a favourite.
class OSSINTERFACE_EXPORT OssNodeQuickFindDialog : public OssSearchPopup
{
    Q_OBJECT

public:
    /// Of `lastUsed`, most recent first, `shownLastUsed` are listed. `position` is a point of the
    /// graph's viewport and becomes the node's; `viewSize` the viewport's size.
    OssNodeQuickFindDialog(const QStringList &lastUsed, const QStringList &favourites,
                           int shownLastUsed, const QPoint &position, const QSize &viewSize,
                           QWidget *parent = nullptr);

    /// Shows beside each type the colour that its nodes bear.
    void setColors(std::function<QColor(const QString &pathKey)> colorOf);

    /// Offers the types alone that the filter lets through.
    void setFilter(const std::function<bool(const OssSnNodeType &type)> &fits);

    /// Also what the user changed before leaving with Escape.
    QStringList favourites() const;
    /// Empty when nothing was chosen.
    QString chosenPathKey() const;

    /// Point of the viewport.
    QPoint nodePosition() const { return m_position; }

protected:
    void search(const QString &text) override;
    void take() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    OssNodeTypeListModel *m_model;
    QPoint m_position;
    QString m_chosen;
};
