#include "OssInterface/Popups/OssFileDialog.h"

#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Images/OssFilePath.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QRegularExpression>
#include <QTimer>
#include <QTreeView>

namespace {

QString settingsKey(const QString &pathKey)
{
    return QStringLiteral("FileDialogs/") + pathKey;
}

QStringList suffixes(const QString &filter)
{
    static const QRegularExpression pattern(QStringLiteral("\\*(\\.[\\w.]+)"));
    QStringList found;
    auto matches = pattern.globalMatch(filter);
    while (matches.hasNext())
        found.append(matches.next().captured(1));
    return found;
}

/// Names go from A to Z, where Qt's dialog begins the other way round until it has been used.
void sortByName(const QFileDialog &dialog)
{
    auto *list = dialog.findChild<QTreeView *>(QStringLiteral("treeView"));
    if (list && list->header()->sortIndicatorSection() == 0)
        list->sortByColumn(0, Qt::AscendingOrder);
}

QStringList run(QFileDialog &dialog, const QString &pathKey, const QString &folder)
{
    dialog.setDirectory(QFileInfo(folder).isDir() ? folder
                                                  : OssFileDialog::rememberedFolder(pathKey));
    sortByName(dialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    OssFileDialog::rememberFolder(pathKey, QFileInfo(dialog.selectedFiles().first()).path());
    return dialog.selectedFiles();
}

QStringList openFiles(QFileDialog::FileMode mode, const QString &title, const QString &filter,
                      const QString &pathKey, QWidget *parent, const QString &folder)
{
    if (!OssApplication::popupsAllowed())
        return {};
    QFileDialog dialog(parent ? parent : OssApplication::mainWindow(), title, QString(), filter);
    dialog.setFileMode(mode);
    dialog.setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
    return run(dialog, pathKey, folder);
}

QString tr(const char *text)
{
    return QCoreApplication::translate("OssFileDialog", text);
}

bool mayReplace(const QString &path, QWidget *parent = nullptr)
{
    return OssMessageBox::question(parent, tr("Replace File"),
                                   tr("\"%1\" is there already. Do you want to replace it?")
                                       .arg(QFileInfo(path).fileName()),
                                   QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
           == QMessageBox::Yes;
}

QString asFileName(const QString &name)
{
    static const QRegularExpression unfit(QStringLiteral("[/\\\\:\\x00-\\x1f]+"));
    QString fit = name;
    fit.replace(unfit, QStringLiteral("-"));
    while (fit.startsWith(QLatin1Char('.')))
        fit.remove(0, 1); // it would be hidden
    return fit;
}

/// Takes a folder whose name ends in the filter's suffix for a document of that kind: it can be
/// chosen and replaced, and is not entered.
class SaveDialog final : public QFileDialog
{
public:
    SaveDialog(QWidget *parent, const QString &title, const QString &filter)
        : QFileDialog(parent, title, QString(), filter)
        , m_filter(filter)
    {
        setOption(DontUseNativeDialog); // it cannot be taught that
        setAcceptMode(AcceptSave);
        setFileMode(AnyFile);
        setDefaultSuffix(suffixes(filter).value(0));
        // Qt shows only files that are selected as the name. Being current is not enough: the list
        // makes its first entry so when it gets the focus.
        const auto *list = findChild<QListView *>(QStringLiteral("listView"));
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this, list] {
            const QModelIndexList rows = list->selectionModel()->selectedRows();
            if (!rows.isEmpty())
                showName(rows.first().data(QFileSystemModel::FilePathRole).toString());
        });
        connect(this, &QFileDialog::directoryEntered, this, [this](const QString &path) {
            if (!isDocument(path))
                return;
            setDirectory(QFileInfo(path).path());
            showName(path);
        });
    }

    /// The part before the suffix is selected: typing replaces it.
    void beginWith(const QString &name)
    {
        auto *edit = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        selectFile(name);
        if (edit)
            QTimer::singleShot(0, edit, [edit] {
                edit->setFocus();
                edit->setSelection(0, QFileInfo(edit->text()).completeBaseName().size());
            });
    }

    void accept() override
    {
        leaveOneSuffix();
        const QString path = OssFileDialog::withSuffix(selectedFiles().value(0), m_filter);
        if (!isDocument(path))
            QFileDialog::accept();
        else if (mayReplace(path, this))
            done(Accepted);
    }

private:
    bool isDocument(const QString &path) const
    {
        return QFileInfo(path).isDir() && OssFileDialog::withSuffix(path, m_filter) == path;
    }

    void showName(const QString &path)
    {
        auto *edit = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        if (edit && isDocument(path))
            edit->setText(QFileInfo(path).fileName());
    }

    /// Who types a whole name into the selected part before the suffix gets that suffix twice.
    void leaveOneSuffix() const
    {
        auto *edit = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        const QStringList known = suffixes(m_filter);
        for (const QString &suffix : known) {
            if (edit && edit->text().endsWith(suffix + suffix, Qt::CaseInsensitive))
                edit->setText(edit->text().chopped(suffix.size()));
        }
    }

    QString m_filter;
};

} // namespace

QString OssFileDialog::getSaveFileName(const QString &title, const QString &filter,
                                       const QString &pathKey, QWidget *parent, const QString &name,
                                       const QString &folder)
{
    if (!OssApplication::popupsAllowed())
        return {};
    SaveDialog dialog(parent ? parent : OssApplication::mainWindow(), title, filter);
    if (!name.isEmpty())
        dialog.beginWith(withSuffix(asFileName(name), filter));
    const QString chosen = run(dialog, pathKey, folder).value(0);
    if (chosen.isEmpty())
        return {};
    // The dialog's own suffix is not added to a name such as "wall.v2". Where such a name is a
    // folder, the dialog has asked already.
    const QString path = withSuffix(chosen, filter);
    const bool asked = path == chosen || QFileInfo(path).isDir();
    return asked || !QFileInfo::exists(path) || mayReplace(path) ? path : QString();
}

QString OssFileDialog::getOpenFileName(const QString &title, const QString &filter,
                                       const QString &pathKey, QWidget *parent,
                                       const QString &folder)
{
    return openFiles(QFileDialog::ExistingFile, title, filter, pathKey, parent, folder).value(0);
}

QStringList OssFileDialog::getOpenFileNames(const QString &title, const QString &filter,
                                            const QString &pathKey, QWidget *parent)
{
    return openFiles(QFileDialog::ExistingFiles, title, filter, pathKey, parent, {});
}

QString OssFileDialog::getExistingDirectory(const QString &title, const QString &pathKey,
                                            QWidget *parent, const QString &folder)
{
    return openFiles(QFileDialog::Directory, title, QString(), pathKey, parent, folder).value(0);
}

QString OssFileDialog::rememberedFolder(const QString &pathKey)
{
    const QString folder = OssSettings().value(settingsKey(pathKey)).toString();
    for (const QString &one : {folder, OssFilePath::base()}) {
        if (!one.isEmpty() && QFileInfo(one).isDir())
            return one;
    }
    return QDir::homePath();
}

void OssFileDialog::rememberFolder(const QString &pathKey, const QString &folder)
{
    OssSettings().setValue(settingsKey(pathKey), folder);
}

QString OssFileDialog::withSuffix(const QString &path, const QString &filter)
{
    const QStringList known = suffixes(filter);
    if (path.isEmpty() || known.isEmpty())
        return path;
    for (const QString &suffix : known) {
        if (path.endsWith(suffix, Qt::CaseInsensitive))
            return path;
    }
    return path + known.first();
}
