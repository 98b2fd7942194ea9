#pragma once

#include "OssModel/Project/OssProjectMeshes.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;

/// Lists the files that the open project names and that are not there, and has the user find them one by
/// one or all in a folder. Changes nothing itself: paths() tells what was found.
class MissingFilesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit MissingFilesDialog(QList<OssProjectMeshes::MissingFile> files,
                                QWidget *parent = nullptr);

    /// New paths by old ones, of what was found.
    QMap<QString, QString> paths() const { return m_paths; }

    /// Takes what lies in or below the folder.
    void searchIn(const QString &folder);

private:
    void askForFolder();
    void askForFile();
    void fill();

    QList<OssProjectMeshes::MissingFile> m_files;
    QMap<QString, QString> m_paths;
    QString m_folder; ///< where a search begins: first the project's
    QTreeWidget *m_list;
    QPushButton *m_relink;
};
