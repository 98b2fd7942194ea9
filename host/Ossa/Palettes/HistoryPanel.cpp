#include "Ossa/Palettes/HistoryPanel.h"

#include "Ossa/Commands/MarkCommands.h"
#include "Ossa/Palettes/HistoryModel.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>

HistoryPanel::HistoryPanel(QWidget *parent)
    : QWidget(parent)
    , m_model(new HistoryModel(this))
    , m_view(new QListView(this))
    , m_summary(new QLabel(this))
    , m_undo(new QPushButton(tr("Undo"), this))
    , m_redo(new QPushButton(tr("Redo"), this))
    , m_goTo(new QPushButton(tr("Go to Node"), this))
{
    auto *manager = OssUndoManager::instance();
    m_view->setModel(m_model);
    m_view->setAccessibleName(tr("Undo history"));
    connect(m_undo, &QPushButton::clicked, manager, &OssUndoManager::undo);
    connect(m_redo, &QPushButton::clicked, manager, &OssUndoManager::redo);
    m_goTo->setToolTip(tr("Go to the node that the current step changed"));
    connect(m_goTo, &QPushButton::clicked, manager, [manager] { goTo(manager->index() - 1); });
    m_view->viewport()->installEventFilter(this);
    m_view->installEventFilter(this);
    connect(manager, &OssUndoManager::changed, this, &HistoryPanel::refresh);
    connect(m_model, &HistoryModel::currentMoved, this, &HistoryPanel::showCurrent);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, manager,
            [manager](const QModelIndex &row) {
                if (row.isValid())
                    manager->setIndex(row.row());
            });

    auto *bar = new QHBoxLayout;
    bar->addWidget(m_summary, 1);
    bar->addWidget(m_goTo);
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
    m_goTo->setEnabled(manager->canUndo());
}

bool HistoryPanel::eventFilter(QObject *watched, QEvent *event)
{
    const auto isRight = [event] {
        return static_cast<QMouseEvent *>(event)->button() == Qt::RightButton;
    };
    // A press makes its row the current one, which is going to that step.
    if (watched == m_view->viewport()
        && (event->type() == QEvent::MouseButtonPress
            || event->type() == QEvent::MouseButtonDblClick)
        && isRight())
        return true;
    if (event->type() != QEvent::ContextMenu)
        return false;
    const auto *asked = static_cast<QContextMenuEvent *>(event);
    const QModelIndex row = asked->reason() == QContextMenuEvent::Keyboard
                                ? m_view->currentIndex()
                                : m_view->indexAt(
                                    m_view->viewport()->mapFromGlobal(asked->globalPos()));
    if (row.isValid())
        openMenu(asked->globalPos(), row.row() - 1);
    return true;
}

void HistoryPanel::openMenu(const QPoint &globalPosition, int step)
{
    QMenu menu(this);
    menu.addAction(tr("Go to Node"), this, [step] { goTo(step); })->setEnabled(step >= 0);
    menu.exec(globalPosition);
}

void HistoryPanel::goTo(int step)
{
    if (!MarkCommands::goToStep(step))
        OssStatusManager::instance()->showMessage(
            tr("The step changes no node that is in a graph now"));
}

void HistoryPanel::showCurrent()
{
    const QSignalBlocker quiet(m_view->selectionModel());
    m_view->setCurrentIndex(m_model->current());
    m_view->viewport()->update();
}
