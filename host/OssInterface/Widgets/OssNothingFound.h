#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QLabel>

class QAbstractItemView;

/// Says over a list that it is empty, while it is. Belongs to the list, which has its model already.
class OSSINTERFACE_EXPORT OssNothingFound : public QLabel
{
    Q_OBJECT

public:
    OssNothingFound(const QString &text, QAbstractItemView *list);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();

    QAbstractItemView *m_list;
};
