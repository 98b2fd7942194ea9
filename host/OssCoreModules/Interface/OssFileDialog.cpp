#include "OssCoreModules/Interface/OssFileDialog.h"

#include "OssCore/OssSettings.h"
#include "OssCoreModules/Interface/OssApplication.h"
#include "OssCoreModules/Interface/OssMessageBox.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

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

QStringList run(QFileDialog &dialog, const QString &pathKey)
{
    dialog.setDirectory(OssFileDialog::rememberedFolder(pathKey));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    OssFileDialog::rememberFolder(pathKey, QFileInfo(dialog.selectedFiles().first()).path());
    return dialog.selectedFiles();
}

QStringList openFiles(QFileDialog::FileMode mode, const QString &title, const QString &filter,
                      const QString &pathKey, QWidget *parent)
{
    if (!OssApplication::popupsAllowed())
        return {};
    QFileDialog dialog(parent ? parent : OssApplication::mainWindow(), title, QString(), filter);
    dialog.setFileMode(mode);
    dialog.setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
    return run(dialog, pathKey);
}

bool mayReplace(const QString &path)
{
    const QString text = QCoreApplication::translate(
        "OssFileDialog", "\"%1\" is there already. Do you want to replace it?");
    return OssMessageBox::question(nullptr,
                                   QCoreApplication::translate("OssFileDialog", "Replace File"),
                                   text.arg(QFileInfo(path).fileName()))
           == QMessageBox::Yes;
}

} // namespace

QString OssFileDialog::getSaveFileName(const QString &title, const QString &filter,
                                       const QString &pathKey, QWidget *parent)
{
    if (!OssApplication::popupsAllowed())
        return {};
    QFileDialog dialog(parent ? parent : OssApplication::mainWindow(), title, QString(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(suffixes(filter).value(0));
    const QString chosen = run(dialog, pathKey).value(0);
    if (chosen.isEmpty())
        return {};
    // The dialog's own suffix is not added to a name such as "wall.v2".
    const QString path = withSuffix(chosen, filter);
    return path == chosen || !QFileInfo::exists(path) || mayReplace(path) ? path : QString();
}

QString OssFileDialog::getOpenFileName(const QString &title, const QString &filter,
                                       const QString &pathKey, QWidget *parent)
{
    return openFiles(QFileDialog::ExistingFile, title, filter, pathKey, parent).value(0);
}

QStringList OssFileDialog::getOpenFileNames(const QString &title, const QString &filter,
                                            const QString &pathKey, QWidget *parent)
{
    return openFiles(QFileDialog::ExistingFiles, title, filter, pathKey, parent);
}

QString OssFileDialog::getExistingDirectory(const QString &title, const QString &pathKey,
                                            QWidget *parent)
{
    return openFiles(QFileDialog::Directory, title, QString(), pathKey, parent).value(0);
}

QString OssFileDialog::rememberedFolder(const QString &pathKey)
{
    const QString folder = OssSettings().value(settingsKey(pathKey)).toString();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath();
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
