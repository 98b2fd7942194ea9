#include "Ossa/Dialogs/NewProjectDialog.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/ColorChoice.h"
#include "OssInterface/Actions/OssTabOrder.h"
#include "OssModel/Project/OssProject.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace {

const QSize firstSize(520, 480);

/// All as wide as the widest, so that fields stand in one column.
void alignLabels(const std::vector<const QFormLayout *> &forms)
{
    std::vector<QWidget *> labels;
    int width = 0;
    for (const QFormLayout *form : forms) {
        for (int row = 0; row < form->rowCount(); ++row) {
            QLayoutItem *item = form->itemAt(row, QFormLayout::LabelRole);
            if (!item || !item->widget())
                continue;
            labels.push_back(item->widget());
            width = std::max(width, item->widget()->sizeHint().width());
        }
    }
    for (QWidget *label : labels)
        label->setMinimumWidth(width);
}

} // namespace

NewProjectDialog::NewProjectDialog(QWidget *parent)
    : QDialog(parent)
    , m_name(new QLineEdit(tr("Untitled"), this))
    , m_shape(new QComboBox(this))
    , m_resolution(new QComboBox(this))
    , m_panel(new MeshPanel(MeshPanel::MakesObjects, this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(tr("New Project"));
    const QStringList shapes = OssGeometrySource::shapes();
    for (const QString &shape : shapes)
        m_shape->addItem(OssGeometrySource::shapeTitle(shape), shape);
    m_shape->addItem(tr("Mesh File..."));
    const QList<int> sizes = OssProject::newResolutions();
    for (const int size : sizes)
        m_resolution->addItem(QString::number(size), size);
    m_resolution->setCurrentIndex(sizes.indexOf(OssImageManager::UsualResolution));
    auto *form = new QFormLayout;
    form->addRow(tr("Name:"), m_name);
    form->addRow(tr("Mesh:"), m_shape);
    form->addRow(tr("Size of images:"), m_resolution);
    m_colors = new ColorChoice(form, this);
    OssColorSettings colors;
    colors.fileRules = OssColorSettings::usualFileRules();
    m_colors->setSettings(colors);
    connect(m_colors, &ColorChoice::changed, this, &NewProjectDialog::refresh);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_panel);
    layout->addStretch(1);
    layout->addWidget(m_buttons);
    m_panel->hide();
    connect(m_shape, qOverload<int>(&QComboBox::activated), this, &NewProjectDialog::chooseShape);
    connect(m_name, &QLineEdit::textChanged, this, &NewProjectDialog::refresh);
    connect(m_panel, &MeshPanel::stateChanged, this, &NewProjectDialog::refresh);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::rejected, m_panel, &MeshPanel::stop);
    alignLabels({form, m_panel->form()});
    m_offeredName = name();
    m_name->selectAll();
    OssTabOrder::followLayout(this);
    resize(Theme::fitting(firstSize));
    refresh();
}

QString NewProjectDialog::name() const
{
    return m_name->text().trimmed();
}

int NewProjectDialog::resolution() const
{
    return m_resolution->currentData().toInt();
}

OssColorSettings NewProjectDialog::colors() const
{
    return m_colors->settings();
}

OssGeometrySource NewProjectDialog::source() const
{
    const QString shape = m_shape->currentData().toString();
    if (shape.isEmpty())
        return m_panel->source();
    OssGeometrySource source;
    source.shape = shape;
    return source;
}

void NewProjectDialog::chooseShape(int index)
{
    if (m_shape->itemData(index).toString().isEmpty()) {
        askForFile();
        return;
    }
    m_chosen = index;
    m_panel->stop();
    m_panel->hide();
    refresh();
}

void NewProjectDialog::askForFile()
{
    const QString path = MeshPanel::askForFile(tr("Mesh of the Project"), this);
    if (path.isEmpty())
        m_shape->setCurrentIndex(m_chosen); // as it was
    else
        setFile(path);
}

void NewProjectDialog::setFile(const QString &path)
{
    const int last = m_shape->count() - 1;
    m_chosen = last;
    m_shape->setItemText(last, tr("Mesh File: %1").arg(QFileInfo(path).fileName()));
    m_shape->setCurrentIndex(last);
    // As long as nobody has given it a name of its own.
    if (name() == m_offeredName) {
        m_offeredName = QFileInfo(path).completeBaseName();
        m_name->setText(m_offeredName);
    }
    m_panel->show();
    OssGeometrySource source;
    source.shape = path;
    m_panel->setSource(source);
}

void NewProjectDialog::refresh()
{
    m_buttons->button(QDialogButtonBox::Ok)
        ->setEnabled(!name().isEmpty() && m_colors->isUsable()
                     && (!source().isFile() || m_panel->isUsable()));
}
