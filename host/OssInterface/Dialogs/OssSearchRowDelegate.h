#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QStyledItemDelegate>

/// A row of a search popup: a heading where a section begins, the name, where it belongs in a
/// muted colour, a line of explanation, and a star for favourites.
class OSSINTERFACE_EXPORT OssSearchRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// Roles of the model; -1 for what it does not have.
    struct Roles
    {
        int place = -1;
        int explanation = -1;
        int section = -1;
        int favourite = -1;
        int color = -1;
    };

    OssSearchRowDelegate(const Roles &roles, QObject *parent);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    /// Where a click means the star.
    static QRect starRect(const QRect &row);

private:
    Roles m_roles;
};
