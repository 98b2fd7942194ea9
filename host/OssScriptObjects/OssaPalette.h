#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

namespace Ossa {

/// A palette for scripts.
class OSSSCRIPTOBJECTS_EXPORT Palette : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "A palette of the window.")
    Q_PROPERTY(QString name READ name)
    Q_PROPERTY(QString title READ title)
    Q_PROPERTY(bool visible READ isVisible)
    Q_CLASSINFO("show", "Opens the palette and brings it to the front.")
    Q_CLASSINFO("hide", "Closes the palette.")

public:
    /// Wraps an OssPalette; reports any other object and stays empty.
    explicit Palette(QObject *palette);

    QString name() const;
    QString title() const;
    bool isVisible() const;

public Q_SLOTS:
    void show();
    void hide();

protected:
    /// Binds nothing and reports nothing: derived classes do that.
    Palette() = default;
};

} // namespace Ossa
