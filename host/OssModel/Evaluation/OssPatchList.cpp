#include "OssModel/Evaluation/OssPatchList.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <QStringList>

#include <algorithm>

QList<int> OssPatchList::fromText(const QString &text)
{
    QList<int> patches;
    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const QStringList ends = part.split(QLatin1Char('-'));
        bool firstOk = false;
        bool lastOk = false;
        const int first = ends.first().trimmed().toInt(&firstOk);
        const int last = ends.last().trimmed().toInt(&lastOk);
        if (!firstOk || !lastOk || ends.size() > 2 || !OssEvPatch::isValid(first)
            || !OssEvPatch::isValid(last) || last < first)
            return {};
        for (int patch = first; patch <= last; ++patch) {
            if (!patches.contains(patch))
                patches.append(patch);
        }
    }
    std::sort(patches.begin(), patches.end());
    return patches;
}

QString OssPatchList::toText(const QList<int> &patches)
{
    QStringList parts;
    for (int i = 0; i < patches.size(); ++i) {
        const int first = i;
        while (i + 1 < patches.size() && patches.at(i + 1) == patches.at(i) + 1)
            ++i;
        parts.append(i == first
                         ? QString::number(patches.at(i))
                         : QStringLiteral("%1-%2").arg(patches.at(first)).arg(patches.at(i)));
    }
    return parts.join(QLatin1Char(','));
}
