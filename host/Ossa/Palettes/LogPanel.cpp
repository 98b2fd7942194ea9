#include "Ossa/Palettes/LogPanel.h"

#include "Ossa/Common/NodeMention.h"
#include "Ossa/Palettes/LogFilter.h"
#include "Ossa/Palettes/LogModel.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>

LogPanel::LogPanel(QWidget *parent)
    : QWidget(parent)
    , m_model(new LogModel(this))
    , m_filter(new LogFilter(this))
    , m_view(new QListView(this))
{
    m_filter->setSourceModel(m_model);
    m_view->setModel(m_filter);
    m_view->setUniformItemSizes(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setTextElideMode(Qt::ElideRight);
    m_view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_view->setAccessibleName(tr("Log lines"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(makeBar());
    layout->addWidget(m_view);
    setFocusProxy(m_view);
    addCopyAction();
    followEnd();
}

QHBoxLayout *LogPanel::makeBar()
{
    auto *search = new QLineEdit(this);
    search->setPlaceholderText(tr("Filter"));
    search->setClearButtonEnabled(true);
    search->setAccessibleName(tr("Filter log lines"));
    connect(search, &QLineEdit::textChanged, m_filter, &LogFilter::setText);

    auto *copyButton = new QPushButton(tr("Copy"), this);
    connect(copyButton, &QPushButton::clicked, this, &LogPanel::copy);
    auto *clearButton = new QPushButton(tr("Clear"), this);
    connect(clearButton, &QPushButton::clicked, m_model, &LogModel::clear);

    auto *bar = new QHBoxLayout; // the caller's
    bar->addWidget(search, 1);
    addCategory(bar, OssDebugLog::Warning, tr("Warnings"));
    addCategory(bar, OssDebugLog::Information, tr("Notes"));
    addCategory(bar, OssDebugLog::Plain, tr("Other"));
    bar->addWidget(copyButton);
    bar->addWidget(clearButton);
    return bar;
}

void LogPanel::addCopyAction()
{
    auto *action = new QAction(tr("Copy"), m_view);
    action->setShortcut(QKeySequence::Copy);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, &LogPanel::copy);
    m_view->addAction(action);
    auto *goTo = new QAction(tr("Go to Node"), m_view);
    connect(goTo, &QAction::triggered, this, [this] { goToNode(m_view->currentIndex()); });
    m_view->addAction(goTo);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(m_view, &QListView::activated, this, &LogPanel::goToNode);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, goTo,
            [goTo](const QModelIndex &row) { goTo->setEnabled(nodeOf(row)); });
    goTo->setEnabled(false);
}

OssSnBaseNode *LogPanel::nodeOf(const QModelIndex &row)
{
    return row.isValid() ? NodeMention::find(row.data().toString()) : nullptr;
}

void LogPanel::goToNode(const QModelIndex &row)
{
    OssShaderNetworkManager::instance()->goToNode(nodeOf(row));
}

void LogPanel::followEnd()
{
    const QScrollBar *scroll = m_view->verticalScrollBar();
    connect(m_filter, &QAbstractItemModel::rowsAboutToBeInserted, this,
            [this, scroll] { m_following = scroll->value() == scroll->maximum(); });
    connect(m_filter, &QAbstractItemModel::rowsInserted, this, [this] {
        if (m_following)
            QMetaObject::invokeMethod(m_view, &QListView::scrollToBottom, Qt::QueuedConnection);
    });
}

void LogPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_following) // nothing could be scrolled while nobody saw it
        QMetaObject::invokeMethod(m_view, &QListView::scrollToBottom, Qt::QueuedConnection);
}

QString LogPanel::textToCopy() const
{
    QModelIndexList rows = m_view->selectionModel()->selectedIndexes();
    std::sort(rows.begin(), rows.end());
    if (rows.isEmpty()) {
        for (int row = 0; row < m_filter->rowCount(); ++row)
            rows.append(m_filter->index(row, 0));
    }
    QStringList texts;
    for (const QModelIndex &row : qAsConst(rows))
        texts.append(row.data(LogModel::FullTextRole).toString());
    return texts.join(QLatin1Char('\n'));
}

void LogPanel::addCategory(QHBoxLayout *bar, OssDebugLog::Category category, const QString &text)
{
    auto *button = new QPushButton(text, this);
    button->setCheckable(true);
    button->setChecked(true);
    button->setToolTip(tr("Show lines of this kind"));
    connect(button, &QPushButton::toggled, m_filter,
            [this, category](bool shown) { m_filter->setCategoryShown(category, shown); });
    bar->addWidget(button);
}

void LogPanel::copy() const
{
    QApplication::clipboard()->setText(textToCopy());
}
