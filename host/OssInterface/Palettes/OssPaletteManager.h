#pragma once

#include "OssCore/Program/OssService.h"
#include "OssInterface/OssInterface_export.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

class OssPalette;

/// Owner of all palettes. They may be registered before the main window exists or at any time
/// later; the window docks what is there and listens for the rest. GUI thread.
class OSSINTERFACE_EXPORT OssPaletteManager
    : public QObject
    , public OssService<OssPaletteManager>
{
    Q_OBJECT

public:
    OssPaletteManager() = default;
    ~OssPaletteManager() override;

    /// By object name. Since that may be translated, the context help key is accepted as well, in
    /// full ("node_graph_palette") or as a name ("Node Graph"). Null when unknown; with
    /// `reportMissing` a debug line says so.
    OssPalette *find(const QString &name, bool reportMissing = false) const;

    /// Takes ownership. `shownAtFirst` tells whether the default layout has the palette open.
    /// A second palette of an object name that is taken is refused and stays the caller's.
    bool registerPalette(OssPalette *palette, bool shownAtFirst, const QString &iconPath);

    /// In the order of registration.
    QVector<OssPalette *> palettes() const;
    QString iconPath(const OssPalette *palette) const;
    bool shownAtFirst(const OssPalette *palette) const;

    /// Deletes all palettes.
    void deletePalettes();

Q_SIGNALS:
    void paletteRegistered(OssPalette *palette);

private:
    struct Entry
    {
        QPointer<OssPalette> palette;
        QString iconPath;
        bool shownAtFirst;
    };

    const Entry *entryOf(const OssPalette *palette) const;

    QVector<Entry> m_entries;
};
