#pragma once

#include "OssModel/Export/OssExportPlan.h"

#include <QDialog>
#include <QTimer>

class PresetFileEditor;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

/// A preset of the user's own: its files, and the names that they would have of the open project. Saved
/// when it is accepted.
class PresetDialog : public QDialog
{
    Q_OBJECT

public:
    /// `ownName`: of the user's preset that is edited; empty for a new one. `options`: what the export is
    /// to be of, for the names.
    PresetDialog(const OssExportPreset &preset, const QString &ownName,
                 const OssExportOptions &options, QWidget *parent = nullptr);

    OssExportPreset preset() const;

public Q_SLOTS:
    /// Stays open, and says why, where it cannot be saved.
    void accept() override;

private:
    QWidget *makeList();
    QWidget *makePreview();
    void addFile(const OssExportPreset::File &file);
    void removeFile();
    void showFile(int row);
    void takeFile();
    void refresh();
    QString fault() const;

    QString m_ownName;
    OssExportOptions m_options;
    QVector<OssExportPreset::File> m_files;
    int m_shown = -1; ///< of the files, which the editor has
    QTimer m_rest;
    QLineEdit *m_name;
    QLineEdit *m_description;
    QListWidget *m_list;
    PresetFileEditor *m_editor;
    QPlainTextEdit *m_preview;
    QLabel *m_fault;
    QPushButton *m_save;
    QPushButton *m_remove = nullptr;
};
