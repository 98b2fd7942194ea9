#include "OssModel/Graph/OssBakeReport.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssBakeReport", text);
}

/// "Wall", or "3 bake points".
QString listOf(const QStringList &names)
{
    return names.size() == 1 ? names.first() : tr("%1 bake points").arg(names.size());
}

} // namespace

QString OssBakeReport::inWords() const
{
    QStringList parts;
    if (!baked.isEmpty())
        parts.append(tr("Baked %1").arg(listOf(baked)));
    parts += forOthers;
    if (isStopped)
        parts.append(tr("Stopped before the rest was baked"));
    if (!filtered.isEmpty())
        parts.append(tr("Not baked, for the filter names other objects: %1").arg(listOf(filtered)));
    if (!neverBaked.isEmpty())
        parts.append(tr("Never baked so far, and so not updated: %1").arg(listOf(neverBaked)));
    const bool isAll = parts.isEmpty() && failures.isEmpty();
    if (isAll)
        return tr("All baked results are up to date");
    if (!upToDate.isEmpty() && baked.isEmpty() && !isStopped)
        parts.append(tr("Up to date: %1").arg(listOf(upToDate)));
    return parts.join(QStringLiteral(". "));
}
