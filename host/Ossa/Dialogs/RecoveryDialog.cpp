#include "Ossa/Dialogs/RecoveryDialog.h"

#include "Ossa/Common/Theme.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Project/OssProjectFile.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

enum Column { ProjectColumn, CopiedColumn, SavedColumn, PlaceColumn };

const QSize firstSize(760, 260);

QString savedText(const OssRecovery::Entry &entry)
{
    if (entry.path.isEmpty())
        return RecoveryDialog::tr("Never saved");
    const QFileInfo saved(OssProjectFile::documentPath(entry.path));
    return saved.exists() ? RecoveryDialog::timeText(saved.lastModified())
                          : RecoveryDialog::tr("Not there any more");
}

} // namespace

RecoveryDialog::RecoveryDialog(QVector<OssRecovery::Entry> entries, QWidget *parent)
    : QDialog(parent)
    , m_entries(std::move(entries))
{
    setWindowTitle(tr("Recover Unsaved Work"));
    auto *text = new QLabel(
        tr("Ossa ended before this work was saved. Restoring opens it as the project that it was; "
           "nothing on disk changes until you save."));
    text->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(createList(), 1);
    layout->addWidget(createButtons());
    fill();
    resize(Theme::fitting(firstSize));
}

QTreeWidget *RecoveryDialog::createList()
{
    m_list = new QTreeWidget;
    m_list->setHeaderLabels({tr("Project"), tr("Work of"), tr("Last Saved"), tr("Place")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->header()->setStretchLastSection(true);
    m_list->setAccessibleName(tr("Unsaved work"));
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    return m_list;
}

QWidget *RecoveryDialog::createButtons()
{
    auto *buttons = new QDialogButtonBox;
    auto *restore = buttons->addButton(tr("Restore"), QDialogButtonBox::AcceptRole);
    auto *later = buttons->addButton(tr("Keep for Later"), QDialogButtonBox::RejectRole);
    auto *discard = buttons->addButton(tr("Discard..."), QDialogButtonBox::DestructiveRole);
    restore->setDefault(true);
    connect(restore, &QPushButton::clicked, this, &QDialog::accept);
    connect(later, &QPushButton::clicked, this, &QDialog::reject);
    connect(discard, &QPushButton::clicked, this, &RecoveryDialog::discardChosen);
    return buttons;
}

void RecoveryDialog::fill()
{
    m_list->clear();
    for (const OssRecovery::Entry &entry : qAsConst(m_entries)) {
        auto *item = new QTreeWidgetItem(m_list); // owned by the list
        const QString place = QDir::toNativeSeparators(entry.path);
        item->setSizeHint(ProjectColumn, QSize(fontMetrics().horizontalAdvance(entry.name)
                                                   + 2 * fontMetrics().height(),
                                               fontMetrics().height() * 3 / 2));
        item->setText(ProjectColumn, entry.name);
        item->setText(CopiedColumn, timeText(entry.copiedAt));
        item->setText(SavedColumn, savedText(entry));
        item->setText(PlaceColumn, place);
        item->setToolTip(PlaceColumn, place);
    }
    m_list->setCurrentItem(m_list->topLevelItem(0));
}

int RecoveryDialog::row() const
{
    return m_list->indexOfTopLevelItem(m_list->currentItem());
}

OssRecovery::Entry RecoveryDialog::chosen() const
{
    return m_entries.value(row());
}

void RecoveryDialog::discardChosen()
{
    const int index = row();
    if (index < 0)
        return;
    const auto answer = OssMessageBox::question(
        this, tr("Discard Unsaved Work"),
        tr("Do you want to throw away the unsaved work on \"%1\"? It cannot be brought back.")
            .arg(m_entries.at(index).name),
        QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Discard)
        return;
    OssRecovery::discard(m_entries.takeAt(index));
    fill();
    if (m_entries.isEmpty())
        reject();
}

QString RecoveryDialog::timeText(const QDateTime &time)
{
    const QDateTime local = time.toLocalTime();
    const QLocale locale;
    const QString clock = locale.toString(local.time(), QLocale::ShortFormat);
    if (local.date() == QDate::currentDate())
        return tr("Today, %1").arg(clock);
    return tr("%1, %2").arg(locale.toString(local.date(), QLocale::ShortFormat), clock);
}
