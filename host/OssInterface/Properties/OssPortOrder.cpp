#include "OssInterface/Properties/OssPortOrder.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QScopedValueRollback>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int MostRows = 8; // without a scroll bar

} // namespace

OssPortOrder::OssPortOrder(OssSnGroupNode *group, QWidget *parent)
    : QWidget(parent)
    , m_group(group)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    m_inputs = makeList(tr("Inputs"));
    m_outputs = makeList(tr("Outputs"));
    follow();
    refresh();
}

QListWidget *OssPortOrder::makeList(const QString &title)
{
    auto *label = new QLabel(title, this);
    label->setObjectName(QStringLiteral("Muted"));
    auto *list = new QListWidget(this);
    list->setAccessibleName(title);
    list->setToolTip(tr("Drag ports up and down, or move them by Alt and an arrow"));
    list->setDragDropMode(QAbstractItemView::InternalMove);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->installEventFilter(this);
    layout()->addWidget(label);
    layout()->addWidget(list);
    label->setBuddy(list);
    // How a drop changes the model is the view's own affair.
    const QAbstractItemModel *model = list->model();
    connect(model, &QAbstractItemModel::rowsMoved, this, &OssPortOrder::applyLater);
    connect(model, &QAbstractItemModel::rowsInserted, this, &OssPortOrder::applyLater);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &OssPortOrder::applyLater);
    return list;
}

void OssPortOrder::follow()
{
    using Node = OssSnBaseNode;
    const OssSnGroupNode *group = m_group;
    connect(group, &Node::inputAdded, this, &OssPortOrder::refresh);
    connect(group, &Node::inputListAdded, this, &OssPortOrder::refresh);
    connect(group, &Node::inputRemoved, this, &OssPortOrder::refresh);
    connect(group, &Node::inputsRefreshed, this, &OssPortOrder::refresh);
    connect(group, &Node::inputOrderChanged, this, &OssPortOrder::refresh);
    connect(group, &Node::nodeInputRenamed, this, &OssPortOrder::refresh);
    connect(group, &Node::outputPointAdded, this, &OssPortOrder::refresh);
    connect(group, &Node::outputPointRemoved, this, &OssPortOrder::refresh);
    connect(group, &Node::outputsRefreshed, this, &OssPortOrder::refresh);
    connect(group, &Node::outputPointRenamed, this, &OssPortOrder::refresh);
    connect(group, &Node::lockedChanged, this, &OssPortOrder::refresh);
}

void OssPortOrder::refresh()
{
    if (!m_group)
        return;
    show(m_inputs, m_group->inputNames());
    show(m_outputs, m_group->outputPointNames());
    setEnabled(!m_group->isLocked());
}

void OssPortOrder::show(QListWidget *list, const QStringList &names)
{
    if (namesOf(list) == names)
        return;
    const QScopedValueRollback<bool> showing(m_showing, true);
    const QString current = list->currentItem() ? list->currentItem()->text() : QString();
    list->clear();
    list->addItems(names);
    list->setCurrentRow(names.indexOf(current));
    const int rows = std::clamp(names.size(), 1, MostRows);
    list->setFixedHeight(rows * list->sizeHintForRow(0) + 2 * list->frameWidth() + 4);
}

QStringList OssPortOrder::namesOf(const QListWidget *list)
{
    QStringList names;
    for (int row = 0; row < list->count(); ++row)
        names.append(list->item(row)->text());
    return names;
}

void OssPortOrder::applyLater()
{
    if (m_showing || m_applies)
        return;
    m_applies = true;
    QMetaObject::invokeMethod(this, &OssPortOrder::apply, Qt::QueuedConnection);
}

void OssPortOrder::apply()
{
    m_applies = false;
    if (!m_group)
        return;
    {
        OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
        const OssUndoManager::AutoMacro macro(tr("Reorder Ports of %1").arg(m_group->name()));
        const QStringList inputs = namesOf(m_inputs);
        if (inputs != m_group->inputNames() && m_group->reorderInputs(inputs))
            networks->requestPlacesInOrderOfPorts(m_group);
        const QStringList outputs = namesOf(m_outputs);
        if (outputs != m_group->outputPointNames() && m_group->reorderOutputs(outputs))
            networks->requestPlacesInOrderOfOutputs(m_group);
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    refresh(); // what was refused stands as it did
}

bool OssPortOrder::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const int step = key->key() == Qt::Key_Up ? -1 : key->key() == Qt::Key_Down ? 1 : 0;
    auto *list = qobject_cast<QListWidget *>(watched);
    if (!list || step == 0 || key->modifiers() != Qt::AltModifier)
        return QWidget::eventFilter(watched, event);
    const int row = list->currentRow();
    const int target = row + step;
    if (row >= 0 && target >= 0 && target < list->count()) {
        QListWidgetItem *taken = list->takeItem(row);
        list->insertItem(target, taken);
        list->setCurrentRow(target);
    }
    return true;
}
