#include "Ossa/Palettes/MaterialsPanel.h"

#include "Ossa/Commands/MaterialCommands.h"
#include "Ossa/Palettes/DragList.h"
#include "Ossa/Palettes/MaterialListModel.h"
#include "Ossa/Palettes/MaterialPictures.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssInterface/Widgets/OssSearchKeys.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Project/OssNodeTypeWatch.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QSignalBlocker>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr QSize cell(MaterialPictures::side + 20, MaterialPictures::side + 44);

void showAsGrid(QListView *list)
{
    list->setViewMode(QListView::IconMode);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->setIconSize({MaterialPictures::side, MaterialPictures::side});
    list->setGridSize(cell);
    list->setWordWrap(true);
    list->setDragDropMode(QAbstractItemView::DragOnly);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
}

} // namespace

MaterialsPanel::MaterialsPanel(QWidget *parent)
    : QWidget(parent)
    , m_pictures(new MaterialPictures(this))
    , m_search(new QLineEdit(this))
    , m_folder(new QComboBox(this))
    , m_list(new DragList(this))
    , m_hint(new QLabel(this))
{
    m_search->setPlaceholderText(tr("Find a material"));
    m_search->setAccessibleName(tr("Find a material"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_folder->setAccessibleName(tr("Folder"));
    m_list->setAccessibleName(tr("Materials"));
    showAsGrid(m_list);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_hint->setObjectName(QStringLiteral("Muted"));
    m_hint->setWordWrap(true);
    auto *open = new QToolButton(this);
    open->setText(tr("Own Folder"));
    open->setToolTip(
        tr("Opens the folder of your own node types. Groups become materials when they are "
           "published with a category below \"Materials\""));
    connect(open, &QToolButton::clicked, this, &MaterialsPanel::openFolder);

    auto *bar = new QHBoxLayout;
    bar->addWidget(m_search, 2);
    bar->addWidget(m_folder, 1);
    auto *foot = new QHBoxLayout;
    foot->addWidget(m_hint, 1);
    foot->addWidget(open);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(bar);
    layout->addWidget(m_list, 1);
    layout->addLayout(foot);
    setFocusProxy(m_search);

    readFolders();
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::registeredNodePopulationChanged, this,
            &MaterialsPanel::readFolders);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_model->setSearchText(text);
        m_list->setCurrentIndex(m_model->index(0));
        showCount();
    });
    connect(m_folder, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &MaterialsPanel::readTypes);
    connect(m_list, &QListView::activated, this, &MaterialsPanel::create);
    connect(m_list, &QWidget::customContextMenuRequested, this, &MaterialsPanel::showMenu);
}

void MaterialsPanel::readFolders()
{
    const QString before = m_folder->currentData().toString();
    {
        const QSignalBlocker blocker(m_folder);
        m_folder->clear();
        m_folder->addItem(tr("All Materials"), QString());
        const QStringList folders = MaterialListModel::folders();
        for (const QString &folder : folders)
            m_folder->addItem(folder, folder);
        m_folder->setCurrentIndex(std::max(0, m_folder->findData(before)));
    }
    readTypes();
}

void MaterialsPanel::readTypes()
{
    MaterialListModel *before = m_model;
    m_model = new MaterialListModel(m_pictures, m_folder->currentData().toString(), this);
    m_model->setSearchText(m_search->text());
    m_list->setModel(m_model);
    delete before;
    showCount();
}

void MaterialsPanel::showCount()
{
    m_hint->setText(m_model->rowCount() > 0
                        ? tr("Drag a material into the graph or onto the object")
                        : tr("No material fits"));
}

void MaterialsPanel::create(const QModelIndex &index)
{
    if (!OssDragAndDropManager::createNode(
            index.data(OssNodeTypeListModel::PathKeyRole).toString()))
        OssStatusManager::instance()->showMessage(tr("Open a project first"));
}

void MaterialsPanel::showMenu(const QPoint &place)
{
    const QPersistentModelIndex index = m_list->indexAt(place);
    if (!index.isValid())
        return;
    const QString pathKey = index.data(OssNodeTypeListModel::PathKeyRole).toString();
    QMenu menu(this);
    menu.addAction(tr("Add to Graph"), this, [this, index] { create(index); });
    menu.addAction(tr("Put on Object"), this,
                   [pathKey] { MaterialCommands::putOnObject(pathKey); });
    menu.exec(m_list->viewport()->mapToGlobal(place));
}

void MaterialsPanel::openFolder()
{
    const OssResult made = OssNodeTypeWatch::makeFolder();
    if (!made)
        OssStatusManager::instance()->showMessage(made.error());
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(OssNodeTypeWatch::folderPath()));
}

bool MaterialsPanel::eventFilter(QObject *watched, QEvent *event)
{
    const auto choose = [this](const QModelIndex &row) {
        create(row);
    };
    return OssSearchKeys::passOn(event, m_list, choose) || QWidget::eventFilter(watched, event);
}
