#pragma once

#include "Ossa/Dialogs/MeshPanel.h"

#include <QDialog>

class QDialogButtonBox;

/// Asks how a mesh file is to be understood, and shows what is wrong with it. It can be accepted once
/// the mesh is read and can be used.
class MeshDialog : public QDialog
{
    Q_OBJECT

public:
    MeshDialog(MeshPanel::Purpose purpose, const QString &title, const OssGeometrySource &source,
               QWidget *parent = nullptr);

    OssGeometrySource source() const { return m_panel->source(); }

    const OssMeshReader &read() const { return m_panel->read(); }

private:
    MeshPanel *m_panel;
    QDialogButtonBox *m_buttons;
};
