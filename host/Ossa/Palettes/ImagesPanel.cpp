#include "Ossa/Palettes/ImagesPanel.h"

#include "Ossa/Palettes/DragList.h"
#include "Ossa/Palettes/ImageListModel.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>

ImagesPanel::ImagesPanel(QWidget *parent)
    : QWidget(parent)
    , m_model(new ImageListModel(this))
    , m_list(new DragList(this))
{
    m_list->setModel(m_model);
    m_list->setAccessibleName(tr("Images"));
    m_list->setIconSize({ImageListModel::pictureSide, ImageListModel::pictureSide});
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setDragDropMode(QAbstractItemView::DragDrop);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setSpacing(2);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ImagesPanel::passSelectionOn);
    connect(m_list, &QWidget::customContextMenuRequested, this, &ImagesPanel::showMenu);
    connect(m_model, &ImageListModel::refused, this, &ImagesPanel::tellRefused);

    auto *hint = new QLabel(tr("Drag images into the graph"), this);
    hint->setObjectName(QStringLiteral("Muted"));
    auto *open = new QPushButton(tr("Open..."), this);
    connect(open, &QPushButton::clicked, this, &ImagesPanel::openImages);
    auto *bar = new QHBoxLayout;
    bar->addWidget(hint, 1);
    bar->addWidget(open);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(bar);
    layout->addWidget(m_list);
    setFocusProxy(m_list);
    fileCommands();
}

void ImagesPanel::fileCommands()
{
    // So that they are found by name and can have keys.
    const auto actions = OssImageManager::instance()->globalContextMenuActions();
    for (const OssImageManager::ContextMenuAction &entry : actions) {
        if (auto *action = qobject_cast<QAction *>(entry.action.data()))
            OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/Images"),
                                                             action);
    }
}

void ImagesPanel::openImages()
{
    const QStringList reasons = ImageListModel::add(OssFileDialog::getOpenFileNames(
        tr("Open Images"), OssImageManager::fileFilter(), QStringLiteral("Images"), this));
    if (!reasons.isEmpty())
        tellRefused(reasons);
}

void ImagesPanel::tellRefused(const QStringList &reasons)
{
    OssMessageBox::warning(this, tr("Open Images"), reasons.join(QLatin1Char('\n')));
}

void ImagesPanel::passSelectionOn()
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QModelIndex index = m_model->index(row);
        if (OssImage *image = m_model->image(index))
            image->setSelected(m_list->selectionModel()->isSelected(index));
    }
}

void ImagesPanel::showMenu(const QPoint &place)
{
    if (!m_list->indexAt(place).isValid())
        return;
    QMenu menu(this);
    const auto actions = OssImageManager::instance()->globalContextMenuActions();
    for (const OssImageManager::ContextMenuAction &entry : actions) {
        QMenu *submenu = OssMenu::submenu(&menu, {entry.menuTitle});
        submenu->setIcon(QIcon(entry.iconPath));
        if (auto *action = qobject_cast<QAction *>(entry.action.data()))
            submenu->addAction(action);
    }
    menu.exec(m_list->viewport()->mapToGlobal(place));
}
