#include "OssInterface/Actions/OssMenuDefinition.h"

#include <QStringList>

OssMenuDefinition OssMenuDefinition::fromText(const QString &text)
{
    OssMenuDefinition definition;
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QString item = line.trimmed();
        if (item == QLatin1String("-"))
            definition.items.append(Item{Item::Separator, {}});
        else if (item == QLatin1String("<"))
            definition.items.append(Item{Item::End, {}});
        else if (item.startsWith(QLatin1String("> ")))
            definition.items.append(Item{Item::Submenu, item.mid(2)});
        else if (item.endsWith(QLatin1String("/*")))
            definition.items.append(Item{Item::Folder, item.chopped(2)});
        else if (!item.isEmpty())
            definition.items.append(Item{Item::Command, item});
    }
    return definition;
}
