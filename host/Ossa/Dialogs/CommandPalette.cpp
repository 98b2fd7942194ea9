#include "Ossa/Dialogs/CommandPalette.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/CommandDelegate.h"
#include "Ossa/Dialogs/CommandListModel.h"
#include "OssInterface/Widgets/OssNothingFound.h"
#include "OssInterface/Widgets/OssSearchKeys.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QVBoxLayout>

namespace {

constexpr int distanceFromTop = 60;

} // namespace

CommandPalette::CommandPalette(QWidget *parent)
    : OssPopupDialog(parent)
    , m_model(new CommandListModel(this))
    , m_search(new QLineEdit(this))
    , m_list(new QListView(this))
{
    setObjectName(QStringLiteral("CommandPalette"));
    setWindowTitle(tr("Find Command"));
    m_search->setPlaceholderText(tr("Type to find a command"));
    m_search->setAccessibleName(tr("Find a command"));
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, &CommandPalette::search);
    connect(m_search, &QLineEdit::returnPressed, this, &CommandPalette::accept);

    m_list->setModel(m_model);
    new OssNothingFound(tr("No command is called that"), m_list); // the list's
    m_list->setItemDelegate(new CommandDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setAccessibleName(tr("Commands found"));
    connect(m_list, &QListView::clicked, this, &CommandPalette::accept);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    resize(Theme::fitting({560, 420}));
    search(QString());
}

void CommandPalette::accept()
{
    const QPointer<QAction> command = m_model->action(m_list->currentIndex());
    if (!command || !command->isEnabled())
        return;
    OssPopupDialog::accept();
    QMetaObject::invokeMethod(
        command, [command] { command->trigger(); }, Qt::QueuedConnection);
}

bool CommandPalette::eventFilter(QObject *watched, QEvent *event)
{
    return OssSearchKeys::passOn(event, m_list) || OssPopupDialog::eventFilter(watched, event);
}

void CommandPalette::showEvent(QShowEvent *event)
{
    if (const QWidget *owner = parentWidget())
        move(owner->mapToGlobal({(owner->width() - width()) / 2, distanceFromTop}));
    OssPopupDialog::showEvent(event);
    m_search->setFocus();
}

void CommandPalette::search(const QString &text)
{
    m_model->setSearchText(text.trimmed());
    m_list->setCurrentIndex(m_model->index(0, 0));
    m_list->scrollToTop();
}
