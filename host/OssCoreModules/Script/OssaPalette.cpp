#include "OssCoreModules/Script/OssaPalette.h"

#include "OssCoreModules/Interface/OssPalette.h"
#include "OssCoreModules/Script/OssScriptError.h"

namespace Ossa {

Palette::Palette(QObject *palette)
{
    if (qobject_cast<OssPalette *>(palette))
        initAPI(palette);
    else
        OssScriptError(OssScriptException::ObjectUnavailable, __FILE__, __LINE__,
                       "Invalid OssPalette object passed to %s().", "Ossa::Palette::Palette");
}

QString Palette::name() const
{
    const OssPalette *wrapped = palette();
    return wrapped ? wrapped->objectName() : QString();
}

QString Palette::title() const
{
    const OssPalette *wrapped = palette();
    return wrapped ? wrapped->windowTitle() : QString();
}

bool Palette::isVisible() const
{
    const OssPalette *wrapped = palette();
    return wrapped && wrapped->isVisible();
}

void Palette::show()
{
    if (OssPalette *wrapped = palette())
        wrapped->showBySidebar();
}

OssPalette *Palette::palette() const
{
    auto *wrapped = qobject_cast<OssPalette *>(internalObject());
    if (!wrapped)
        OssScriptError(OssScriptException::InternalObjectGone, __FILE__, __LINE__,
                       "Internal OssPalette object not valid");
    return wrapped;
}

} // namespace Ossa
