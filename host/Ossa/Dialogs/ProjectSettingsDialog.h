#pragma once

#include "OssModel/Images/OssColorManagement.h"

#include <QDialog>

class ColorChoice;
class OssProject;
class QCheckBox;
class QDialogButtonBox;
class QTreeWidget;
class QVBoxLayout;

/// The settings that a project keeps: its colours, and in which spaces image files are. Changes nothing
/// itself.
class ProjectSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ProjectSettingsDialog(const OssProject *project, QWidget *parent = nullptr);

    OssColorSettings settings() const;
    /// Whether the colours of nodes are to look as before.
    bool converts() const;

private:
    void makeRules(QVBoxLayout *layout);
    void addRule(const QString &pattern, const QString &space);
    void showRules(const QStringList &rules);
    QStringList rules() const;
    void refresh();

    const OssProject *m_project;
    ColorChoice *m_colors;
    QCheckBox *m_converts;
    QTreeWidget *m_rules;
    QDialogButtonBox *m_buttons;
};
