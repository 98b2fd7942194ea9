#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"

#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/Dialogs/OssSearchRowDelegate.h"

#include <QKeyEvent>
#include <QListView>

OssNodeQuickFindDialog::OssNodeQuickFindDialog(const QStringList &lastUsed,
                                               const QStringList &favourites, int shownLastUsed,
                                               const QPoint &position, const QSize &viewSize,
                                               QWidget *parent)
    : OssSearchPopup(tr("Type to find a node"), parent)
    , m_model(new OssNodeTypeListModel(this))
    , m_position(position)
{
    setObjectName(QStringLiteral("OssNodeQuickFindDialog"));
    m_model->setLastUsed(lastUsed.mid(0, shownLastUsed));
    m_model->setFavourites(favourites);
    setModel(m_model);
    OssSearchRowDelegate::Roles roles;
    roles.place = OssNodeTypeListModel::FolderRole;
    roles.explanation = OssNodeTypeListModel::DescriptionRole;
    roles.section = OssNodeTypeListModel::SectionRole;
    roles.favourite = OssNodeTypeListModel::FavouriteRole;
    roles.color = OssNodeTypeListModel::ColorRole;
    list()->setItemDelegate(new OssSearchRowDelegate(roles, list()));
    list()->viewport()->installEventFilter(this);
    resize(qBound(260, viewSize.width() - 40, 420), qBound(200, viewSize.height() - 40, 460));
    if (const QWidget *viewport = parent)
        placeAt(viewport, position);
}

void OssNodeQuickFindDialog::setColors(std::function<QColor(const QString &)> colorOf)
{
    m_model->setColors(std::move(colorOf));
}

void OssNodeQuickFindDialog::setFilter(const std::function<bool(const OssSnNodeType &)> &fits)
{
    m_model->setFilter(fits);
    list()->setCurrentIndex(m_model->index(0, 0));
}

QStringList OssNodeQuickFindDialog::favourites() const
{
    return m_model->favourites();
}

QString OssNodeQuickFindDialog::chosenPathKey() const
{
    return m_chosen;
}

void OssNodeQuickFindDialog::search(const QString &text)
{
    m_model->setSearchText(text);
}

void OssNodeQuickFindDialog::take()
{
    m_chosen = list()->currentIndex().data(OssNodeTypeListModel::PathKeyRole).toString();
    OssSearchPopup::take();
}

bool OssNodeQuickFindDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::ControlModifier) {
            m_model->toggleFavourite(list()->currentIndex());
            return true;
        }
    }
    if (watched == list()->viewport() && event->type() == QEvent::MouseButtonPress) {
        const QPoint place = static_cast<QMouseEvent *>(event)->pos();
        const QModelIndex index = list()->indexAt(place);
        if (index.isValid()
            && OssSearchRowDelegate::starRect(list()->visualRect(index)).contains(place)) {
            m_model->toggleFavourite(index);
            return true;
        }
    }
    return OssSearchPopup::eventFilter(watched, event);
}
