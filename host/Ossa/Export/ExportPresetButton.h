#pragma once

#include "OssModel/Export/OssExportPlan.h"

#include <QToolButton>

/// The menu beside the choice of a preset: a copy of one's own, edit it, away with it.
class ExportPresetButton : public QToolButton
{
    Q_OBJECT

public:
    explicit ExportPresetButton(QWidget *parent = nullptr);

    /// The preset that the menu acts on.
    void setPreset(const QString &name) { m_name = name; }

    /// What the export is to be of, for the names of files that are shown.
    void setOptions(const OssExportOptions &options) { m_options = options; }

Q_SIGNALS:
    /// The presets are others; the one to choose now.
    void presetsChanged(const QString &chosen);

private:
    void fillMenu();
    void copy();
    void edit();
    void open(const OssExportPreset &preset, const QString &ownName);
    void openFile(const QString &path);
    void remove();

    QString m_name;
    OssExportOptions m_options;
};
