#include "Ossa/HistoryPanel.h"

#include "OssCore/OssUndoManager.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUndoStack>
#include <QUndoView>

HistoryPanel::HistoryPanel(QWidget *parent)
    : QWidget(parent)
    , m_view(new QUndoView(OssUndoManager::instance()->stack(), this))
    , m_summary(new QLabel(this))
    , m_undo(new QPushButton(tr("Undo"), this))
    , m_redo(new QPushButton(tr("Redo"), this))
{
    auto *manager = OssUndoManager::instance();
    m_view->setEmptyLabel(tr("As Opened"));
    m_view->setAccessibleName(tr("Undo history"));
    connect(m_undo, &QPushButton::clicked, manager, &OssUndoManager::undo);
    connect(m_redo, &QPushButton::clicked, manager, &OssUndoManager::redo);
    connect(manager, &OssUndoManager::changed, this, &HistoryPanel::refresh);
    connect(manager->stack(), &QUndoStack::indexChanged, this, &HistoryPanel::refresh);

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
}

void HistoryPanel::refresh()
{
    const auto *manager = OssUndoManager::instance();
    m_summary->setText(tr("Steps: %1").arg(manager->count()));
    m_undo->setEnabled(manager->canUndo());
    m_redo->setEnabled(manager->canRedo());
}
