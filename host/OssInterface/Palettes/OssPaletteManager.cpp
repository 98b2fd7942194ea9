#include "OssInterface/Palettes/OssPaletteManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Palettes/OssPalette.h"

#include <algorithm>

namespace {

QString asHelpKey(const QString &name)
{
    QString key = name.toLower();
    key.replace(QLatin1Char(' '), QLatin1Char('_'));
    const QLatin1String suffix("_palette");
    return key.endsWith(suffix) ? key : key + suffix;
}

} // namespace

OssPaletteManager::~OssPaletteManager()
{
    deletePalettes();
}

OssPalette *OssPaletteManager::find(const QString &name, bool reportMissing) const
{
    for (const Entry &entry : m_entries) {
        if (entry.palette && entry.palette->objectName() == name)
            return entry.palette;
    }
    const QString key = asHelpKey(name);
    for (const Entry &entry : m_entries) {
        if (entry.palette && entry.palette->contextHelpKey() == key)
            return entry.palette;
    }
    if (reportMissing)
        OssDebug(__FILE__, __LINE__, "[ !! ] There is no palette \"%s\"", qPrintable(name));
    return nullptr;
}

bool OssPaletteManager::registerPalette(OssPalette *palette, bool shownAtFirst,
                                        const QString &iconPath)
{
    if (!palette) {
        OssDebug(__FILE__, __LINE__, "Palette is NULL");
        return false;
    }
    for (const Entry &entry : qAsConst(m_entries)) {
        if (entry.palette && entry.palette->objectName() == palette->objectName()) {
            OssDebug(__FILE__, __LINE__, "[ !! ] There is a palette \"%s\" already",
                     qPrintable(palette->objectName()));
            return false;
        }
    }
    m_entries.append({palette, iconPath, shownAtFirst});
    Q_EMIT paletteRegistered(palette);
    return true;
}

QVector<OssPalette *> OssPaletteManager::palettes() const
{
    QVector<OssPalette *> living;
    for (const Entry &entry : m_entries) {
        if (entry.palette)
            living.append(entry.palette);
    }
    return living;
}

QString OssPaletteManager::iconPath(const OssPalette *palette) const
{
    const Entry *entry = entryOf(palette);
    return entry ? entry->iconPath : QString();
}

bool OssPaletteManager::shownAtFirst(const OssPalette *palette) const
{
    const Entry *entry = entryOf(palette);
    return entry && entry->shownAtFirst;
}

void OssPaletteManager::deletePalettes()
{
    // Later palettes may lean on earlier ones.
    while (!m_entries.isEmpty())
        delete m_entries.takeLast().palette;
}

const OssPaletteManager::Entry *OssPaletteManager::entryOf(const OssPalette *palette) const
{
    const auto found = std::find_if(
        m_entries.cbegin(), m_entries.cend(),
        [palette](const Entry &entry) { return entry.palette == palette; });
    return found == m_entries.cend() ? nullptr : &*found;
}
