#include "Ossa/Export/ExportPresetButton.h"

#include "Ossa/Export/PresetDialog.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Export/OssExportPresets.h"

#include <QDesktopServices>
#include <QMenu>
#include <QUrl>

#include <algorithm>

ExportPresetButton::ExportPresetButton(QWidget *parent)
    : QToolButton(parent)
{
    setText(tr("…"));
    setToolTip(tr("Make a preset of your own"));
    setAccessibleName(tr("Presets"));
    setPopupMode(QToolButton::InstantPopup);
    setMenu(new QMenu(this));
    connect(menu(), &QMenu::aboutToShow, this, &ExportPresetButton::fillMenu);
}

void ExportPresetButton::fillMenu()
{
    menu()->clear();
    menu()->addAction(tr("Copy as My Own..."), this, &ExportPresetButton::copy);
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    const auto found = std::find_if(entries.cbegin(), entries.cend(), [this](const auto &entry) {
        return entry.preset.name == m_name;
    });
    const bool isOwn = found != entries.cend() && found->isOwn;
    const QString path = isOwn ? found->path : QString();
    menu()->addAction(tr("Edit..."), this, &ExportPresetButton::edit)->setEnabled(isOwn);
    menu()
        ->addAction(tr("Open Its File"), this, [this, path] { openFile(path); })
        ->setEnabled(isOwn);
    menu()->addAction(tr("Remove"), this, &ExportPresetButton::remove)->setEnabled(isOwn);
    menu()->addSeparator();
    menu()->addAction(tr("Read Presets Again"), this, [this] { Q_EMIT presetsChanged(m_name); });
}

void ExportPresetButton::copy()
{
    OssExportPreset preset;
    if (!OssExportPresets::find(m_name, &preset))
        return;
    preset.name = tr("My %1").arg(m_name);
    open(preset, {});
}

void ExportPresetButton::edit()
{
    OssExportPreset preset;
    if (OssExportPresets::find(m_name, &preset))
        open(preset, m_name);
}

void ExportPresetButton::open(const OssExportPreset &preset, const QString &ownName)
{
    if (!OssApplication::popupsAllowed())
        return;
    PresetDialog dialog(preset, ownName, m_options, this);
    if (dialog.exec() == QDialog::Accepted)
        Q_EMIT presetsChanged(dialog.preset().name);
}

void ExportPresetButton::openFile(const QString &path)
{
    OssStatusManager::instance()->showMessage(
        QDesktopServices::openUrl(QUrl::fromLocalFile(path))
            ? tr("Read presets again when the file is saved: %1").arg(path)
            : tr("No program opens it: the preset is the file %1").arg(path));
}

void ExportPresetButton::remove()
{
    const auto answer = OssMessageBox::question(
        this, tr("Remove Preset"), tr("Remove the preset \"%1\" and its file?").arg(m_name),
        QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Yes)
        return;
    const OssResult removed = OssExportPresets::remove(m_name);
    if (!removed)
        OssMessageBox::warning(this, tr("Remove Preset"), removed.error());
    Q_EMIT presetsChanged({});
}
