#include "Ossa/Dialogs/MissingFilesDialog.h"

#include "Ossa/Common/Theme.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssUdimPath.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

enum Column { FileColumn, UserColumn, OldColumn, NewColumn };

const QSize firstSize(860, 320);
const QString pathKey = QStringLiteral("MissingFilesPath");

} // namespace

MissingFilesDialog::MissingFilesDialog(QList<OssProjectMeshes::MissingFile> files, QWidget *parent)
    : QDialog(parent)
    , m_files(std::move(files))
    , m_folder(OssFilePath::base())
    , m_list(new QTreeWidget(this))
{
    setWindowTitle(tr("Missing Files"));
    auto *layout = new QVBoxLayout(this);
    auto *text = new QLabel(
        m_files.isEmpty() ? tr("No file that the project names is missing.")
                          : tr("These files are not where the project names them, or cannot "
                               "be read. Choose a folder to find all of them by their names."),
        this);
    text->setWordWrap(true);
    layout->addWidget(text);
    layout->addWidget(m_list, 1);
    m_list->setHeaderLabels({tr("File"), tr("Used By"), tr("Named As"), tr("Found As")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->setAccessibleName(tr("Missing files"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_relink = buttons->addButton(tr("Relink"), QDialogButtonBox::AcceptRole);
    auto *folder = buttons->addButton(tr("Find in Folder..."), QDialogButtonBox::ActionRole);
    auto *file = buttons->addButton(tr("Choose File..."), QDialogButtonBox::ActionRole);
    folder->setEnabled(!m_files.isEmpty());
    file->setEnabled(!m_files.isEmpty());
    layout->addWidget(buttons);
    connect(folder, &QPushButton::clicked, this, &MissingFilesDialog::askForFolder);
    connect(file, &QPushButton::clicked, this, &MissingFilesDialog::askForFile);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &MissingFilesDialog::askForFile);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(Theme::fitting(firstSize));
    fill();
    m_list->setCurrentItem(m_list->topLevelItem(0));
}

void MissingFilesDialog::fill()
{
    const int current = m_list->indexOfTopLevelItem(m_list->currentItem());
    m_list->clear();
    for (const OssProjectMeshes::MissingFile &file : qAsConst(m_files)) {
        auto *row = new QTreeWidgetItem(m_list); // the list's
        row->setText(FileColumn, QFileInfo(file.path).fileName());
        row->setText(UserColumn, file.users.join(QStringLiteral(", ")));
        row->setText(OldColumn, QDir::toNativeSeparators(QFileInfo(file.path).path()));
        row->setText(NewColumn, QDir::toNativeSeparators(m_paths.value(file.path)));
        for (const int column : {FileColumn, OldColumn, NewColumn})
            row->setToolTip(column, column == NewColumn ? row->text(column)
                                                        : QDir::toNativeSeparators(file.path));
    }
    m_list->setCurrentItem(m_list->topLevelItem(current));
    m_relink->setEnabled(!m_paths.isEmpty());
}

void MissingFilesDialog::searchIn(const QString &folder)
{
    const QMap<QString, QString> found = OssProjectMeshes::findIn(m_files, folder);
    for (auto at = found.cbegin(); at != found.cend(); ++at)
        m_paths.insert(at.key(), at.value());
    fill();
    if (m_relink->isEnabled())
        m_relink->setFocus(); // what comes next
}

void MissingFilesDialog::askForFolder()
{
    const QString folder = OssFileDialog::getExistingDirectory(tr("Find Missing Files"), pathKey,
                                                               this, m_folder);
    if (folder.isEmpty())
        return;
    m_folder = folder;
    searchIn(folder);
}

/// What lies beside the file that the user finds is found with it.
void MissingFilesDialog::askForFile()
{
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (row < 0)
        return;
    const QString old = m_files.at(row).path;
    const QString path = OssFileDialog::getOpenFileName(
        tr("Find %1").arg(QFileInfo(old).fileName()), tr("All files (*)"), pathKey, this, m_folder);
    if (path.isEmpty())
        return;
    m_folder = QFileInfo(path).path();
    m_paths.insert(old, OssUdimPath::isPattern(old) ? OssUdimPath::pattern(path) : path);
    fill();
}
