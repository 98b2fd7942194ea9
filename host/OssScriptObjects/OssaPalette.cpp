#include "OssScriptObjects/OssaPalette.h"

#include "OssInterface/Palettes/OssPalette.h"

namespace Ossa {

Palette::Palette(QObject *palette)
{
    initAs<OssPalette>(palette);
}

QString Palette::name() const
{
    const auto *own = wrapped<OssPalette>();
    return own ? own->identity() : QString();
}

QString Palette::title() const
{
    const auto *own = wrapped<OssPalette>();
    return own ? own->windowTitle() : QString();
}

bool Palette::isVisible() const
{
    const auto *own = wrapped<OssPalette>();
    return own && own->isVisible();
}

void Palette::show()
{
    if (auto *own = wrapped<OssPalette>())
        own->showBySidebar();
}

void Palette::hide()
{
    if (auto *own = wrapped<OssPalette>())
        own->setVisible(false);
}

} // namespace Ossa
