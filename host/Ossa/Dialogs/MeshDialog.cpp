#include "Ossa/Dialogs/MeshDialog.h"

#include "Ossa/Common/Theme.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const QSize firstSize(520, 420);

} // namespace

MeshDialog::MeshDialog(MeshPanel::Purpose purpose, const QString &title,
                       const OssGeometrySource &source, QWidget *parent)
    : QDialog(parent)
    , m_panel(new MeshPanel(purpose, this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(title);
    auto *path = new QLabel(QDir::toNativeSeparators(source.path()), this);
    path->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(path);
    layout->addWidget(m_panel);
    layout->addStretch(1);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    QPushButton *ok = m_buttons->button(QDialogButtonBox::Ok);
    ok->setEnabled(false);
    connect(m_panel, &MeshPanel::stateChanged, ok, [this, ok] {
        ok->setEnabled(m_panel->isUsable());
        ok->setDefault(true); // Cancel was, as long as there was no other
    });
    connect(this, &QDialog::rejected, m_panel, &MeshPanel::stop);
    resize(Theme::fitting(firstSize));
    m_panel->setSource(source);
}
