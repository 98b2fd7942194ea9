#include "Ossa/Dialogs/ShortcutEditor.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/KeyRecorder.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Popups/OssMessageBox.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

enum Column { CommandColumn, KeysColumn, ColumnCount };

constexpr int pathRole = Qt::UserRole;
constexpr int searchRole = Qt::UserRole + 1;

QString keysText(const QString &path)
{
    QStringList texts;
    const QList<QKeySequence> keys = OssShortcutManager::instance()->keys(path);
    for (const QKeySequence &key : keys)
        texts.append(key.toString(QKeySequence::NativeText));
    return texts.join(QStringLiteral(", "));
}

/// "Connect Selected Node to Viewer", or "Filter > Blur" for a command in a subfolder.
QString titleOf(const QString &path)
{
    return path.section(QLatin1Char('/'), 3).replace(QLatin1Char('/'), QStringLiteral(" \u203a "));
}

} // namespace

ShortcutEditor::ShortcutEditor(QWidget *parent)
    : QDialog(parent)
    , m_model(new QStandardItemModel(0, ColumnCount, this))
    , m_filter(new QSortFilterProxyModel(this))
    , m_search(new QLineEdit(this))
    , m_tree(new QTreeView(this))
    , m_command(new QLabel(this))
    , m_recorder(new KeyRecorder(this))
    , m_assign(new QPushButton(tr("Assign"), this))
    , m_remove(new QPushButton(tr("Remove Keys"), this))
    , m_reset(new QPushButton(tr("Reset"), this))
    , m_warning(new QLabel(this))
{
    setWindowTitle(tr("Keyboard Shortcuts"));
    m_search->setPlaceholderText(tr("Find by name or key"));
    m_search->setAccessibleName(tr("Find a command by name or key"));
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_filter->setFilterFixedString(text);
        m_tree->expandAll();
        // The first command found, in the first group that has one.
        m_tree->setCurrentIndex(m_filter->index(0, 0, m_filter->index(0, 0)));
    });

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto *resetAllButton = buttons->addButton(tr("Reset All..."), QDialogButtonBox::ResetRole);
    resetAllButton->setAutoDefault(false);
    connect(resetAllButton, &QPushButton::clicked, this, &ShortcutEditor::resetAll);
    connect(buttons, &QDialogButtonBox::rejected, this, &ShortcutEditor::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(m_tree, 1);
    layout->addLayout(createEditRow());
    layout->addWidget(m_warning);
    layout->addWidget(buttons);
    m_warning->setObjectName(QStringLiteral("Warning"));
    m_warning->setWordWrap(true);
    m_warning->setMinimumHeight(m_warning->fontMetrics().lineSpacing());

    createTree();
    fillTree();
    connect(OssShortcutManager::instance(), &OssShortcutManager::keysChanged, this,
            &ShortcutEditor::showKeys);
    refresh();
    resize(Theme::fitting({720, 600}));
    m_search->setFocus();
}

void ShortcutEditor::createTree()
{
    m_model->setHorizontalHeaderLabels({tr("Command"), tr("Keys")});
    m_filter->setSourceModel(m_model);
    m_filter->setRecursiveFilteringEnabled(true);
    m_filter->setFilterRole(searchRole);
    m_filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_tree->setModel(m_filter);
    m_tree->setUniformRowHeights(true);
    m_tree->setAccessibleName(tr("Commands and their keys"));
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(CommandColumn, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(KeysColumn, QHeaderView::Fixed);
    m_tree->header()->resizeSection(KeysColumn, 200);
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
        m_recorder->setKeys(QKeySequence());
        refresh();
    });
    connect(m_tree, &QTreeView::activated, this, [this] { m_recorder->setFocus(); });
}

QLayout *ShortcutEditor::createEditRow()
{
    m_recorder->setMaximumWidth(160);
    connect(m_recorder, &KeyRecorder::keysChanged, this, &ShortcutEditor::refresh);
    connect(m_assign, &QPushButton::clicked, this, &ShortcutEditor::assign);
    connect(m_remove, &QPushButton::clicked, this, &ShortcutEditor::removeKeys);
    connect(m_reset, &QPushButton::clicked, this, &ShortcutEditor::resetCurrent);
    for (QPushButton *button : {m_assign, m_remove, m_reset})
        button->setAutoDefault(false);
    auto *row = new QHBoxLayout;
    row->addWidget(m_command, 1);
    row->addWidget(m_recorder);
    row->addWidget(m_assign);
    row->addWidget(m_remove);
    row->addWidget(m_reset);
    return row;
}

void ShortcutEditor::fillTree()
{
    const QStringList paths = OssActionTreeManager::instance()->paths();
    for (const QString &path : paths) {
        auto *command = new QStandardItem(titleOf(path));
        auto *keys = new QStandardItem;
        command->setData(path, pathRole);
        command->setEditable(false);
        keys->setEditable(false);
        groupItem(OssShortcutManager::instance()->groupOf(path))->appendRow({command, keys});
        showKeys(path);
    }
    m_tree->expandAll();
}

QStandardItem *ShortcutEditor::groupItem(const QString &group)
{
    const QList<QStandardItem *> known = m_model->findItems(group);
    if (!known.isEmpty())
        return known.first();
    auto *item = new QStandardItem(group);
    item->setEditable(false);
    m_model->appendRow(item);
    return item;
}

void ShortcutEditor::showKeys(const QString &path)
{
    const QModelIndexList found = m_model->match(m_model->index(0, 0), pathRole, path, 1,
                                                 Qt::MatchExactly | Qt::MatchRecursive);
    if (found.isEmpty())
        return;
    const QModelIndex command = found.first();
    const QString text = keysText(path);
    m_model->setData(command.siblingAtColumn(KeysColumn), text);
    m_model->setData(command, command.data().toString() + QLatin1Char(' ') + text, searchRole);
    QFont font = this->font();
    font.setBold(OssShortcutManager::instance()->isCustomized(path));
    m_model->setData(command.siblingAtColumn(KeysColumn), font, Qt::FontRole);
}

QString ShortcutEditor::currentPath() const
{
    return m_tree->currentIndex().siblingAtColumn(CommandColumn).data(pathRole).toString();
}

void ShortcutEditor::refresh()
{
    const auto *shortcuts = OssShortcutManager::instance();
    const QString path = currentPath();
    const QKeySequence keys = m_recorder->keys();
    m_conflicts = path.isEmpty() ? QStringList() : shortcuts->conflicts(path, keys);
    m_command->setText(path.isEmpty() ? tr("Choose a command") : titleOf(path));
    m_recorder->setEnabled(!path.isEmpty());
    m_assign->setEnabled(!path.isEmpty() && !keys.isEmpty());
    m_assign->setText(m_conflicts.isEmpty() ? tr("Assign") : tr("Take Over"));
    m_remove->setEnabled(!path.isEmpty() && !shortcuts->keys(path).isEmpty());
    m_reset->setEnabled(!path.isEmpty() && shortcuts->isCustomized(path));
    QStringList titles;
    for (const QString &other : qAsConst(m_conflicts))
        titles.append(QLatin1Char('"') + titleOf(other) + QLatin1Char('"'));
    m_warning->setText(
        titles.isEmpty()
            ? QString()
            : tr("%1 is the key of %2").arg(keys.toString(), titles.join(QStringLiteral(", "))));
}

void ShortcutEditor::assign()
{
    auto *shortcuts = OssShortcutManager::instance();
    const QKeySequence keys = m_recorder->keys();
    for (const QString &other : qAsConst(m_conflicts)) {
        QList<QKeySequence> remaining = shortcuts->keys(other);
        remaining.removeAll(keys);
        // One that only begins with the key would still wait for it.
        if (remaining.size() == shortcuts->keys(other).size())
            remaining.clear();
        shortcuts->setKeys(other, remaining);
    }
    shortcuts->setKeys(currentPath(), {keys});
    m_recorder->setKeys(QKeySequence());
}

void ShortcutEditor::removeKeys()
{
    OssShortcutManager::instance()->setKeys(currentPath(), {});
    refresh();
}

void ShortcutEditor::resetCurrent()
{
    OssShortcutManager::instance()->resetKeys(currentPath());
    refresh();
}

void ShortcutEditor::resetAll()
{
    if (OssMessageBox::question(this, tr("Reset All Keys"),
                                tr("Do you want to give all commands their default keys?"))
        == QMessageBox::Yes)
        OssShortcutManager::instance()->resetAll();
    refresh();
}
