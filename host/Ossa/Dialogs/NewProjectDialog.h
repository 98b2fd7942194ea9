#pragma once

#include "Ossa/Dialogs/MeshPanel.h"
#include "OssModel/Images/OssColorManagement.h"

#include <QDialog>

class ColorChoice;
class QComboBox;
class QDialogButtonBox;
class QLineEdit;

/// Asks for the name of a new project, what is textured in it, how large its images are and in which
/// colours it is reckoned.
class NewProjectDialog : public QDialog
{
    Q_OBJECT

public:
    explicit NewProjectDialog(QWidget *parent = nullptr);

    QString name() const;
    /// Chooses the file as if the user had.
    void setFile(const QString &path);
    /// A shape, or the file that was chosen.
    OssGeometrySource source() const;
    int resolution() const;
    OssColorSettings colors() const;

    /// Of the file that was chosen.
    const OssMeshReader &read() const { return m_panel->read(); }

private:
    void chooseShape(int index);
    void askForFile();
    void refresh();

    QLineEdit *m_name;
    QComboBox *m_shape; ///< the last entry is a file
    QComboBox *m_resolution;
    ColorChoice *m_colors;
    MeshPanel *m_panel;
    QDialogButtonBox *m_buttons;
    int m_chosen = 0;
    QString m_offeredName; ///< not the user's own
};
