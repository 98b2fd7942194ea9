#include "Ossa/Palettes/NodeTypesPanel.h"

#include "Ossa/Palettes/DragList.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/Dialogs/OssSearchRowDelegate.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssInterface/Widgets/OssSearchKeys.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"

#include <QLineEdit>
#include <QListView>
#include <QVBoxLayout>

NodeTypesPanel::NodeTypesPanel(QWidget *parent)
    : QWidget(parent)
    , m_search(new QLineEdit(this))
    , m_list(new DragList(this))
{
    m_search->setPlaceholderText(tr("Find a node"));
    m_search->setAccessibleName(tr("Find a node"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_list->setAccessibleName(tr("Node types"));
    m_list->setDragDropMode(QAbstractItemView::DragOnly);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    OssSearchRowDelegate::Roles roles;
    roles.place = OssNodeTypeListModel::FolderRole;
    roles.explanation = OssNodeTypeListModel::DescriptionRole;
    m_list->setItemDelegate(new OssSearchRowDelegate(roles, m_list));
    readTypes();
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::registeredNodePopulationChanged, this,
            &NodeTypesPanel::readTypes);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_model->setSearchText(text);
        m_list->setCurrentIndex(m_model->index(0));
    });
    connect(m_list, &QListView::activated, this, &NodeTypesPanel::create);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    setFocusProxy(m_search);
}

void NodeTypesPanel::readTypes()
{
    OssNodeTypeListModel *before = m_model;
    m_model = new OssNodeTypeListModel(this);
    m_model->setSearchText(m_search->text());
    m_list->setModel(m_model);
    delete before;
}

void NodeTypesPanel::create(const QModelIndex &index)
{
    OssDragAndDropManager::createNode(index.data(OssNodeTypeListModel::PathKeyRole).toString());
}

bool NodeTypesPanel::eventFilter(QObject *watched, QEvent *event)
{
    const auto choose = [this](const QModelIndex &row) {
        create(row);
    };
    return OssSearchKeys::passOn(event, m_list, choose) || QWidget::eventFilter(watched, event);
}
