#include "Ossa/Export/ExportPanel.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Export/ExportFilesModel.h"
#include "Ossa/Export/ExportPresetButton.h"
#include "Ossa/Export/ExportProgress.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Export/OssExportPresets.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardPaths>
#include <QTableView>

#include <algorithm>

namespace {

constexpr int plansAfter = 250; ///< milliseconds without a change
constexpr int listHeight = 84;
constexpr int choicesWidth = 300;
constexpr QSize usualSize(3 * choicesWidth, 420);
constexpr int largestPadding = 64;
constexpr int largestVersion = 9999;
const QString firstPreset = QStringLiteral("One File per Channel");
const QString pathKey = QStringLiteral("ExportTextures");

/// Of what was chosen last for the project.
QString keyOf(const OssProject *project, const char *choice)
{
    const QByteArray name = QCryptographicHash::hash(project->path().toUtf8(),
                                                     QCryptographicHash::Md5);
    return QStringLiteral("Export/%1/%2").arg(QLatin1String(choice), QLatin1String(name.toHex()));
}

QString folderKey(const OssProject *project)
{
    return keyOf(project, "Folders");
}

QString resolutionKey(const OssProject *project)
{
    return keyOf(project, "Resolutions");
}

QString usualFolder(const OssProject *project)
{
    const QString beside = project->path().isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                               : QFileInfo(project->path()).absolutePath();
    return QDir(beside).filePath(project->name() + QStringLiteral("_textures"));
}

/// Names with a mark each, where what was marked before stays as it was.
void fill(QListWidget *list, const QStringList &names)
{
    QStringList off;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->checkState() == Qt::Unchecked)
            off.append(list->item(i)->text());
    }
    list->clear();
    for (const QString &name : names) {
        auto *item = new QListWidgetItem(name, list); // the list's
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(off.contains(name) ? Qt::Unchecked : Qt::Checked);
    }
}

/// Empty where all are marked.
QStringList marked(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->checkState() == Qt::Checked)
            names.append(list->item(i)->text());
    }
    return names.size() == list->count() ? QStringList() : names;
}

bool hasMarks(const QListWidget *list)
{
    return list->count() == 0 || !marked(list).isEmpty()
           || list->item(0)->checkState() == Qt::Checked;
}

} // namespace

ExportPanel::ExportPanel(QWidget *parent)
    : QWidget(parent)
    , m_preset(new QComboBox)
    , m_presetMenu(new ExportPresetButton)
    , m_description(new QLabel)
    , m_folder(new QLineEdit)
    , m_resolution(new QComboBox)
    , m_padding(new QSpinBox)
    , m_version(new QSpinBox)
    , m_patches(new QLineEdit)
    , m_constants(new QCheckBox(tr("Channels that are one value")))
    , m_materials(new QListWidget)
    , m_channels(new QListWidget)
    , m_channelsTitle(new QLabel(tr("Channels")))
    , m_table(new QTableView)
    , m_files(new ExportFilesModel(this))
    , m_notes(new QLabel)
    , m_export(new QPushButton(tr("Export")))
    , m_watch(new QCheckBox(tr("Watch")))
{
    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(makeChoices());
    splitter->addWidget(makeFiles());
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({choicesWidth, 2 * choicesWidth});
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(splitter);

    m_rest.setSingleShot(true);
    m_rest.setInterval(plansAfter);
    connect(&m_rest, &QTimer::timeout, this, &ExportPanel::plan);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &ExportPanel::planSoon);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, &ExportPanel::planSoon);
    connect(OssProjectManager::instance(), &OssProjectManager::projectOpenCompleted, this,
            &ExportPanel::takeProject);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &ExportPanel::planSoon);
    OssExportManager *exports = OssExportManager::instance();
    connect(exports, &OssExportManager::jobChanged, this, [this, exports] {
        connect(exports->job(), &OssExportJob::progressed, this, &ExportPanel::showState);
        showState();
    });
    connect(exports, &OssExportManager::finished, this, &ExportPanel::showState);
    connect(exports, &OssExportManager::watchingChanged, m_watch, &QCheckBox::setChecked);
    fillPresets();
    restoreChoices();
    takeProject();
}

QWidget *ExportPanel::makeChoices()
{
    auto *inside = new QWidget;
    auto *form = new QFormLayout(inside);
    form->setContentsMargins(0, 0, 8, 0);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    makeFields(form);
    auto *area = new QScrollArea;
    area->setFocusPolicy(Qt::NoFocus); // a click beside the fields leaves the keyboard where it is
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumWidth(choicesWidth - 20); // however long the name is that is being written
    area->setWidget(inside);
    return area;
}

void ExportPanel::makeFields(QFormLayout *form)
{
    const auto beside = [](QWidget *field, QWidget *button) {
        auto *row = new QHBoxLayout;
        row->addWidget(field, 1);
        row->addWidget(button);
        return row;
    };
    m_preset->setAccessibleName(tr("Preset"));
    m_preset->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_description->setObjectName(QStringLiteral("Muted"));
    m_description->setWordWrap(true);
    auto *browse = new QPushButton(tr("Browse..."));
    connect(browse, &QPushButton::clicked, this, &ExportPanel::browse);
    for (int size = 256; size <= 16384; size *= 2)
        m_resolution->addItem(QString::number(size), size);
    m_resolution->setToolTip(tr("Width and height of a patch, where the preset does not say"));
    m_padding->setRange(OssExportOptions::EndlessPadding, largestPadding);
    m_padding->setSpecialValueText(tr("Everything"));
    m_padding->setSuffix(tr(" px"));
    m_padding->setToolTip(tr("How far colors go on beyond the mesh's charts"));
    m_version->setRange(0, largestVersion);
    m_version->setToolTip(tr("What $version in names stands for"));
    m_patches->setPlaceholderText(tr("All, or such as 1001-1004,1011"));
    m_constants->setToolTip(tr("Also write files for channels to which nothing is connected"));
    m_materials->setFixedHeight(listHeight);
    m_channels->setFixedHeight(listHeight);
    m_materials->setAccessibleName(tr("Materials"));
    m_channels->setAccessibleName(tr("Channels"));
    form->addRow(tr("Preset"), beside(m_preset, m_presetMenu));
    form->addRow(QString(), m_description);
    form->addRow(tr("Folder"), beside(m_folder, browse));
    form->addRow(tr("Size"), m_resolution);
    form->addRow(tr("Padding"), m_padding);
    form->addRow(tr("Patches"), m_patches);
    form->addRow(tr("Version"), m_version);
    form->addRow(tr("Materials"), m_materials);
    form->addRow(m_channelsTitle, m_channels);
    form->addRow(QString(), m_constants);
    connectFields();
}

void ExportPanel::connectFields()
{
    connect(m_preset, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ExportPanel::planSoon);
    connect(m_presetMenu, &ExportPresetButton::presetsChanged, this, [this](const QString &name) {
        fillPresets();
        m_preset->setCurrentIndex(std::max(0, m_preset->findText(name)));
        planSoon();
    });
    connect(m_folder, &QLineEdit::textChanged, this, &ExportPanel::planSoon);
    connect(m_patches, &QLineEdit::textChanged, this, &ExportPanel::planSoon);
    connect(m_resolution, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ExportPanel::planSoon);
    for (QSpinBox *box : {m_padding, m_version})
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &ExportPanel::planSoon);
    for (QListWidget *list : {m_materials, m_channels})
        connect(list, &QListWidget::itemChanged, this, &ExportPanel::planSoon);
    connect(m_constants, &QCheckBox::toggled, this, &ExportPanel::planSoon);
}

QWidget *ExportPanel::makeFiles()
{
    m_table->setModel(m_files);
    m_table->setAccessibleName(tr("Files"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTextElideMode(Qt::ElideMiddle);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(ExportFilesModel::Name, QHeaderView::Stretch);
    m_notes->setObjectName(QStringLiteral("Muted"));
    m_notes->setWordWrap(true);
    m_watch->setToolTip(tr("Write files again whose pixels change, when you rest"));
    connect(m_watch, &QCheckBox::toggled, OssExportManager::instance(),
            &OssExportManager::setWatching);
    connect(m_export, &QPushButton::clicked, this, &ExportPanel::begin);
    auto *row = new QHBoxLayout;
    row->addWidget(new ExportProgress, 1);
    row->addStretch();
    row->addWidget(m_watch);
    row->addWidget(m_export);
    auto *widget = new QWidget;
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_notes);
    layout->addLayout(row);
    return widget;
}

QSize ExportPanel::sizeHint() const
{
    return usualSize;
}

void ExportPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    planSoon();
}

void ExportPanel::fillPresets()
{
    const QString chosen = m_preset->currentText();
    const QSignalBlocker blocker(m_preset);
    m_preset->clear();
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    for (const OssExportPresets::Entry &entry : entries)
        m_preset->addItem(entry.preset.name, entry.preset.description);
    m_preset->setCurrentIndex(std::max(0, m_preset->findText(chosen)));
}

void ExportPanel::takeProject()
{
    OssProject *project = OssProjectManager::instance()->currentProject();
    if (project && project != m_project) {
        m_folder->setText(OssSettings().value(folderKey(project), usualFolder(project)).toString());
        chooseResolution(resolutionOf(project));
        m_patches->clear();
        m_materials->clear(); // and which of them are marked
        m_channels->clear();
    }
    m_project = project;
    planSoon();
}

void ExportPanel::restoreChoices()
{
    const OssSettings settings;
    const auto value = [&settings](const char *key, int otherwise) {
        return settings.value(QLatin1String("Export/") + QLatin1String(key), otherwise).toInt();
    };
    m_preset->setCurrentIndex(
        std::max(0, m_preset->findText(
                        settings.value(QStringLiteral("Export/Preset"), firstPreset).toString())));
    m_padding->setValue(value("Padding", OssExportOptions::UsualPadding));
    m_version->setValue(value("Version", 1));
    m_constants->setChecked(value("Constants", 1) != 0);
}

void ExportPanel::chooseResolution(int resolution)
{
    if (m_resolution->findData(resolution) < 0)
        m_resolution->addItem(QString::number(resolution), resolution);
    m_resolution->setCurrentIndex(m_resolution->findData(resolution));
}

int ExportPanel::resolutionOf(const OssProject *project)
{
    return OssSettings().value(resolutionKey(project), project->newResolution()).toInt();
}

void ExportPanel::keepChoices() const
{
    OssSettings settings;
    settings.setValue(QStringLiteral("Export/Preset"), m_preset->currentText());
    settings.setValue(QStringLiteral("Export/Padding"), m_padding->value());
    settings.setValue(QStringLiteral("Export/Version"), m_version->value());
    settings.setValue(QStringLiteral("Export/Constants"), m_constants->isChecked() ? 1 : 0);
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project || project->path().isEmpty())
        return;
    settings.setValue(folderKey(project), m_folder->text());
    settings.setValue(resolutionKey(project), m_resolution->currentData());
}

void ExportPanel::fillLists()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    QStringList names;
    QStringList channels;
    const QVector<OssExportMaterial> materials = project ? OssExportMaterial::of(project)
                                                         : QVector<OssExportMaterial>();
    for (const OssExportMaterial &material : materials) {
        names.append(material.path());
        for (const OssExportMaterial::Channel &channel : material.channels) {
            if (!channels.contains(channel.name))
                channels.append(channel.name);
        }
    }
    const QSignalBlocker first(m_materials);
    const QSignalBlocker second(m_channels);
    fill(m_materials, names);
    fill(m_channels, channels);
}

OssExportOptions ExportPanel::options() const
{
    OssExportOptions options;
    options.folder = m_folder->text().trimmed();
    options.materials = marked(m_materials);
    options.channels = marked(m_channels);
    options.patches = OssPatchList::fromText(m_patches->text());
    options.resolution = m_resolution->currentData().toInt();
    options.padding = m_padding->value();
    options.version = m_version->value();
    options.writesConstants = m_constants->isChecked();
    return options;
}

void ExportPanel::planSoon()
{
    if (isVisible())
        m_rest.start();
}

bool ExportPanel::plan()
{
    m_rest.stop();
    fillLists();
    const OssProject *project = OssProjectManager::instance()->currentProject();
    OssExportPreset preset;
    OssResult result = project ? OssExportPresets::find(m_preset->currentText(), &preset)
                               : OssResult::failure(tr("Open a project first"));
    m_presetMenu->setPreset(m_preset->currentText());
    m_presetMenu->setOptions(options());
    m_description->setText(m_preset->currentData().toString());
    const bool isEach = std::any_of(preset.files.cbegin(), preset.files.cend(),
                                    [](const auto &file) { return file.isEach; });
    for (QWidget *widget :
         {static_cast<QWidget *>(m_channels), static_cast<QWidget *>(m_channelsTitle),
          static_cast<QWidget *>(m_constants)})
        widget->setVisible(isEach);
    OssExportPlan made;
    if (result && !hasMarks(m_materials))
        result = OssResult::failure(tr("Mark a material"));
    if (result && isEach && !hasMarks(m_channels))
        result = OssResult::failure(tr("Mark a channel"));
    if (result && !m_patches->text().trimmed().isEmpty() && options().patches.isEmpty())
        result = OssResult::failure(tr("Patches are written like 1001-1004,1011"));
    OssExportOptions chosen = options();
    if (!isEach)
        chosen.channels.clear(); // the list is hidden
    if (result)
        result = OssExportPlan::make(project, preset, chosen, &made);
    m_plan = made;
    m_files->setPlan(m_plan);
    m_notes->setText(result ? m_plan.notes.join(QLatin1Char('\n')) : result.error());
    m_notes->setVisible(!m_notes->text().isEmpty());
    showState();
    return result.ok();
}

void ExportPanel::begin()
{
    if (!plan())
        return;
    keepChoices();
    const OssResult begun = OssExportManager::instance()->start(m_plan);
    if (!begun) {
        m_notes->setText(begun.error());
        m_notes->show();
    }
}

void ExportPanel::showState()
{
    const OssExportManager *exports = OssExportManager::instance();
    const OssExportJob *job = exports->job();
    m_files->tellStates(exports->canExportAgain() ? job : nullptr);
    m_export->setEnabled(!m_plan.files.isEmpty() && !exports->isRunning());
    m_export->setText(m_plan.files.size() > 1 ? tr("Export %1 Files").arg(m_plan.files.size())
                                              : tr("Export"));
    m_export->setToolTip(
        m_plan.files.isEmpty()
            ? QString()
            : tr("%1 before they are packed").arg(ExportFilesModel::bytesText(m_plan.bytes())));
    m_watch->setEnabled(exports->canExportAgain());
    if (!job || job->isRunning() || job->failures().isEmpty() || !exports->canExportAgain())
        return;
    m_notes->setText(job->failures().join(QLatin1Char('\n')));
    m_notes->show();
}

void ExportPanel::browse()
{
    const QString folder = OssFileDialog::getExistingDirectory(tr("Folder for Textures"), pathKey,
                                                               this);
    if (!folder.isEmpty())
        m_folder->setText(folder);
}
