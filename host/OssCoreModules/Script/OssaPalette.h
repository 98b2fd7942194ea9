#pragma once

#include "OssCoreModules/OssCoreModules_export.h"
#include "OssCoreModules/Script/OssaAPI.h"

class OssPalette;

namespace Ossa {

/// A palette for scripts.
class OSSCOREMODULES_EXPORT Palette : public API
{
    Q_OBJECT

public:
    /// Wraps an OssPalette; reports any other object and stays empty.
    explicit Palette(QObject *palette);

public Q_SLOTS:
    QString name() const;
    QString title() const;
    bool isVisible() const;
    /// Opens the palette and brings it to the front.
    void show();

protected:
    /// Binds nothing and reports nothing: derived classes do that.
    Palette() = default;

private:
    /// Null, and reported, when it is gone.
    OssPalette *palette() const;
};

} // namespace Ossa
