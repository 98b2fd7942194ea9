#include "Ossa/Help/CommandNames.h"

#include "OssInterface/Actions/OssShortcutManager.h"

#include <QStringList>

#include <algorithm>

namespace {

/// "Graph" of "Graph 3.2, Context 4.4".
QString firstMenu(const char *places)
{
    return QString::fromLatin1(places)
        .section(QLatin1Char(','), 0, 0)
        .section(QLatin1Char(' '), 0, -2);
}

QString menuNamed(const QString &name)
{
    const auto &menus = OssCommandTable::menus();
    const auto found = std::find_if(
        menus.begin(), menus.end(),
        [&](const OssCommandTable::Menu &menu) { return name == QLatin1String(menu.name); });
    if (found == menus.end())
        return {};
    const QString title = OssCommandTable::title(*found).remove(QLatin1Char('&'));
    const QString above = menuNamed(firstMenu(found->places));
    return above.isEmpty() ? title : above + QStringLiteral(" \u203a ") + title;
}

} // namespace

QString CommandNames::menu(const OssCommandTable::Row &row)
{
    return menuNamed(firstMenu(row.places));
}

QString CommandNames::keys(const OssCommandTable::Row &row)
{
    QStringList texts;
    const QList<QKeySequence> keys = OssShortcutManager::instance()->keys(
        OssCommandTable::path(row));
    for (const QKeySequence &key : keys)
        texts.append(key.toString(QKeySequence::NativeText));
    return texts.join(QStringLiteral(", "));
}

QString CommandNames::folder(const OssCommandTable::Row &row)
{
    return OssShortcutManager::instance()->groupOf(OssCommandTable::path(row));
}

QString CommandNames::asMarkdown(const OssCommandTable::Row &row)
{
    const QString name = menu(row);
    const QString text = OssCommandTable::text(row);
    const QString keysNow = keys(row);
    QString words = QStringLiteral("**%1**").arg(
        name.isEmpty() ? text : name + QStringLiteral(" \u203a ") + text);
    if (!keysNow.isEmpty())
        words += QStringLiteral(" (<kbd>%1</kbd>)").arg(keysNow.toHtmlEscaped());
    return words;
}
