#include "OssInterface/Dialogs/OssSearchPopup.h"

#include "OssInterface/Widgets/OssNothingFound.h"
#include "OssInterface/Widgets/OssSearchKeys.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QVBoxLayout>

#include <algorithm>

OssSearchPopup::OssSearchPopup(const QString &title, QWidget *parent)
    : OssPopupDialog(parent)
    , m_search(new QLineEdit(this))
    , m_list(new QListView(this))
{
    setWindowTitle(title);
    m_search->setPlaceholderText(title);
    m_search->setAccessibleName(title);
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, &OssSearchPopup::searchAndChooseFirst);
    connect(m_search, &QLineEdit::returnPressed, this, [this] { take(); });
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setAccessibleName(tr("Found"));
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    connect(m_list, &QListView::clicked, this, [this] { take(); });
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    resize(420, 440);
    m_search->setFocus();
}

void OssSearchPopup::setModel(QAbstractItemModel *model)
{
    m_list->setModel(model);
    new OssNothingFound(tr("Nothing fits"), m_list); // the list's
    m_list->setCurrentIndex(model->index(0, 0));
}

void OssSearchPopup::placeAt(const QWidget *viewport, const QPoint &viewPos)
{
    const QRect room = viewport->rect();
    const QPoint corner(
        std::clamp(viewPos.x(), room.left(), std::max(room.left(), room.right() - width())),
        std::clamp(viewPos.y(), room.top(), std::max(room.top(), room.bottom() - height())));
    move(viewport->mapToGlobal(corner));
}

void OssSearchPopup::searchAndChooseFirst(const QString &text)
{
    search(text);
    m_list->setCurrentIndex(m_list->model()->index(0, 0));
    m_list->scrollToTop();
}

void OssSearchPopup::take()
{
    if (m_list->currentIndex().isValid())
        accept();
}

bool OssSearchPopup::eventFilter(QObject *watched, QEvent *event)
{
    if (OssSearchKeys::passOn(event, m_list))
        return true;
    // Opened with Tab by many: pressing it again must not leave the field.
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Tab)
        return true;
    return OssPopupDialog::eventFilter(watched, event);
}
