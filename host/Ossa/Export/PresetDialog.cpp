#include "Ossa/Export/PresetDialog.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Export/PresetFileEditor.h"
#include "OssModel/Export/OssExportPresets.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int looksAfter = 150; ///< milliseconds without a change
constexpr int listWidth = 240;
constexpr int previewHeight = 110;
const QSize firstSize(900, 840);

/// Channels that the open project's materials have, and those that any shader has.
QStringList channelNames()
{
    QStringList names;
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QVector<OssExportMaterial> materials = project ? OssExportMaterial::of(project)
                                                         : QVector<OssExportMaterial>();
    for (const OssExportMaterial &material : materials) {
        for (const OssExportMaterial::Channel &channel : material.channels)
            names.append(channel.name);
    }
    OssLayerShaderModelManager *models = OssLayerShaderModelManager::instance();
    const QStringList ids = models->modelIds();
    for (const QString &id : ids)
        names += models->model(id)->inputList();
    names.removeDuplicates();
    return names;
}

OssExportPreset::File newFile()
{
    OssExportPreset::File file;
    file.name = QStringLiteral("$object_new[.$udim]");
    file.format = QStringLiteral("png");
    file.form.depth = OssEvDepth::Byte;
    file.channels[0].isUsed = true;
    return file;
}

} // namespace

PresetDialog::PresetDialog(const OssExportPreset &preset, const QString &ownName,
                           const OssExportOptions &options, QWidget *parent)
    : QDialog(parent)
    , m_ownName(ownName)
    , m_options(options)
    , m_name(new QLineEdit(preset.name))
    , m_description(new QLineEdit(preset.description))
    , m_list(new QListWidget)
    , m_editor(new PresetFileEditor(channelNames()))
    , m_preview(new QPlainTextEdit)
    , m_fault(new QLabel)
{
    m_options.channels.clear(); // of another preset
    setWindowTitle(ownName.isEmpty() ? tr("New Preset") : tr("Edit Preset"));
    m_name->setObjectName(QStringLiteral("PresetName"));
    auto *head = new QFormLayout;
    head->addRow(tr("Preset"), m_name);
    head->addRow(tr("Description"), m_description);
    auto *middle = new QHBoxLayout;
    middle->addWidget(makeList());
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(m_editor);
    middle->addWidget(area, 1);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    m_save = buttons->button(QDialogButtonBox::Save);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addLayout(middle, 1);
    layout->addWidget(makePreview());
    layout->addWidget(buttons);
    m_rest.setSingleShot(true);
    m_rest.setInterval(looksAfter);
    connect(&m_rest, &QTimer::timeout, this, &PresetDialog::refresh);
    connect(m_name, &QLineEdit::textChanged, this, &PresetDialog::refresh);
    connect(m_editor, &PresetFileEditor::changed, this, &PresetDialog::takeFile);
    connect(m_list, &QListWidget::currentRowChanged, this, &PresetDialog::showFile);
    connect(buttons, &QDialogButtonBox::accepted, this, &PresetDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PresetDialog::reject);
    for (const OssExportPreset::File &file : preset.files)
        addFile(file);
    m_list->setCurrentRow(0);
    refresh();
    resize(Theme::fitting(firstSize));
}

QWidget *PresetDialog::makeList()
{
    m_list->setObjectName(QStringLiteral("PresetFiles"));
    m_list->setAccessibleName(tr("Files of the preset"));
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *add = new QPushButton(tr("Add"));
    auto *copy = new QPushButton(tr("Copy"));
    m_remove = new QPushButton(tr("Remove"));
    connect(add, &QPushButton::clicked, this, [this] { addFile(newFile()); });
    connect(copy, &QPushButton::clicked, this, [this] {
        if (m_shown >= 0)
            addFile(m_files.at(m_shown));
    });
    connect(m_remove, &QPushButton::clicked, this, &PresetDialog::removeFile);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {add, copy, m_remove}) {
        button->setAutoDefault(false);
        row->addWidget(button);
    }
    auto *widget = new QWidget;
    widget->setFixedWidth(listWidth);
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1);
    layout->addLayout(row);
    return widget;
}

QWidget *PresetDialog::makePreview()
{
    m_preview->setObjectName(QStringLiteral("PresetPreview"));
    m_preview->setReadOnly(true);
    m_preview->setFixedHeight(previewHeight);
    m_preview->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_preview->setAccessibleName(tr("Names of files"));
    m_fault->setObjectName(QStringLiteral("PresetFault"));
    m_fault->setWordWrap(true);
    auto *widget = new QWidget;
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(tr("Files that the project would get:")));
    layout->addWidget(m_preview);
    layout->addWidget(m_fault);
    return widget;
}

void PresetDialog::addFile(const OssExportPreset::File &file)
{
    m_files.append(file);
    m_list->addItem(file.name + QLatin1Char('.') + file.format);
    m_list->setCurrentRow(m_list->count() - 1);
    m_rest.start();
}

void PresetDialog::removeFile()
{
    const int row = m_shown;
    if (row < 0)
        return;
    m_shown = -1; // what the editor has goes
    m_files.remove(row);
    delete m_list->takeItem(row);
    showFile(m_list->currentRow());
    refresh();
}

void PresetDialog::showFile(int row)
{
    m_shown = row < m_files.size() ? row : -1;
    m_editor->setEnabled(m_shown >= 0);
    m_remove->setEnabled(m_shown >= 0);
    if (m_shown >= 0)
        m_editor->setFile(OssExportPreset::File(m_files.at(m_shown)));
}

void PresetDialog::takeFile()
{
    if (m_shown < 0)
        return;
    m_files[m_shown] = m_editor->file();
    m_list->item(m_shown)->setText(m_files.at(m_shown).name + QLatin1Char('.')
                                   + m_files.at(m_shown).format);
    m_rest.start();
}

OssExportPreset PresetDialog::preset() const
{
    OssExportPreset preset;
    preset.name = m_name->text().trimmed();
    preset.description = m_description->text().simplified();
    preset.files = m_files;
    return preset;
}

/// Why it cannot be saved; empty when it can.
QString PresetDialog::fault() const
{
    const OssExportPreset now = preset();
    const OssResult possible = now.check();
    if (!possible)
        return possible.error();
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    const auto isTaken = [&](const OssExportPresets::Entry &entry) {
        return entry.isOwn && entry.preset.name != m_ownName
               && entry.preset.name.compare(now.name, Qt::CaseInsensitive) == 0;
    };
    return std::any_of(entries.cbegin(), entries.cend(), isTaken)
               ? tr("You have a preset \"%1\" already").arg(now.name)
               : QString();
}

void PresetDialog::refresh()
{
    m_rest.stop();
    QString text = fault();
    m_save->setEnabled(text.isEmpty());
    const OssProject *project = OssProjectManager::instance()->currentProject();
    QStringList names;
    OssExportPlan plan;
    OssResult planned;
    if (text.isEmpty() && project)
        planned = OssExportPlan::make(project, preset(), m_options, &plan);
    for (const OssExportFile &file : qAsConst(plan.files))
        names.append(QStringLiteral("%1    %2, %3, %4")
                         .arg(QDir(m_options.folder).relativeFilePath(file.path),
                              file.contentText(), file.depthText(), file.spaceText()));
    m_preview->setPlainText(names.join(QLatin1Char('\n')));
    if (!planned)
        text = planned.error();
    else if (text.isEmpty())
        text = plan.notes.join(QLatin1Char('\n'));
    m_fault->setText(text);
}

void PresetDialog::accept()
{
    refresh();
    if (!m_save->isEnabled())
        return;
    OssResult saved = OssExportPresets::save(preset());
    if (saved && !m_ownName.isEmpty() && m_ownName != preset().name)
        saved = OssExportPresets::remove(m_ownName);
    if (saved)
        QDialog::accept();
    else
        m_fault->setText(saved.error());
}
