#pragma once

#include "OssModel/Export/OssExportPlan.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class ExportFilesModel;
class ExportPresetButton;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTableView;

/// Body of the "Export" palette: what is chosen at the left; at the right the files that would be
/// written, as the choices are made, and what becomes of them.
class ExportPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ExportPanel(QWidget *parent = nullptr);

    /// With which size the project's textures were exported last; that of its new images before.
    static int resolutionOf(const OssProject *project);

    /// With room for the choices and some files.
    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    QWidget *makeChoices();
    QWidget *makeFiles();
    void makeFields(QFormLayout *form);
    void connectFields();
    void fillPresets();
    void fillLists();
    void takeProject();
    void chooseResolution(int resolution);
    void restoreChoices();
    void keepChoices() const;
    OssExportOptions options() const;
    /// False, and what is wrong is shown, where nothing could be written.
    bool plan();
    void planSoon();
    void begin();
    void showState();
    void browse();

    QComboBox *m_preset;
    ExportPresetButton *m_presetMenu;
    QLabel *m_description;
    QLineEdit *m_folder;
    QComboBox *m_resolution;
    QSpinBox *m_padding;
    QSpinBox *m_version;
    QLineEdit *m_patches;
    QCheckBox *m_constants;
    QListWidget *m_materials;
    QListWidget *m_channels;
    QLabel *m_channelsTitle;
    QTableView *m_table;
    ExportFilesModel *m_files;
    QLabel *m_notes;
    QPushButton *m_export;
    QCheckBox *m_watch;
    OssExportPlan m_plan;
    QPointer<OssProject> m_project; ///< of which the choices are
    QTimer m_rest;
};
