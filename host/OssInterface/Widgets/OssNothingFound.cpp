#include "OssInterface/Widgets/OssNothingFound.h"

#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QEvent>

OssNothingFound::OssNothingFound(const QString &text, QAbstractItemView *list)
    : QLabel(text, list->viewport())
    , m_list(list)
{
    setObjectName(QStringLiteral("Muted"));
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(8);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    list->viewport()->installEventFilter(this);
    const QAbstractItemModel *model = list->model();
    connect(model, &QAbstractItemModel::modelReset, this, &OssNothingFound::follow);
    connect(model, &QAbstractItemModel::layoutChanged, this, &OssNothingFound::follow);
    connect(model, &QAbstractItemModel::rowsInserted, this, &OssNothingFound::follow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &OssNothingFound::follow);
    follow();
}

bool OssNothingFound::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(m_list->viewport()->rect());
    return QLabel::eventFilter(watched, event);
}

void OssNothingFound::follow()
{
    setGeometry(m_list->viewport()->rect());
    setVisible(m_list->model()->rowCount(m_list->rootIndex()) == 0);
}
