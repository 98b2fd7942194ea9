#include "Ossa/Palettes/HistoryPanel.h"

#include "Ossa/Palettes/HistoryModel.h"
#include "OssCore/Undo/OssUndoManager.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>

HistoryPanel::HistoryPanel(QWidget *parent)
    : QWidget(parent)
    , m_model(new HistoryModel(this))
    , m_view(new QListView(this))
    , m_summary(new QLabel(this))
    , m_undo(new QPushButton(tr("Undo"), this))
    , m_redo(new QPushButton(tr("Redo"), this))
{
    auto *manager = OssUndoManager::instance();
    m_view->setModel(m_model);
    m_view->setAccessibleName(tr("Undo history"));
    connect(m_undo, &QPushButton::clicked, manager, &OssUndoManager::undo);
    connect(m_redo, &QPushButton::clicked, manager, &OssUndoManager::redo);
    connect(manager, &OssUndoManager::changed, this, &HistoryPanel::refresh);
    connect(m_model, &HistoryModel::currentMoved, this, &HistoryPanel::showCurrent);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, manager,
            [manager](const QModelIndex &row) { manager->setIndex(row.row()); });

    auto *bar = new QHBoxLayout;
    bar->addWidget(m_summary, 1);
    bar->addWidget(m_undo);
    bar->addWidget(m_redo);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(bar);
    layout->addWidget(m_view);
    setFocusProxy(m_view);
    refresh();
    showCurrent();
}

void HistoryPanel::refresh()
{
    const auto *manager = OssUndoManager::instance();
    m_summary->setText(tr("Steps: %1").arg(manager->count()));
    m_undo->setEnabled(manager->canUndo());
    m_redo->setEnabled(manager->canRedo());
}

void HistoryPanel::showCurrent()
{
    const QSignalBlocker quiet(m_view->selectionModel());
    m_view->setCurrentIndex(m_model->current());
    m_view->viewport()->update();
}
