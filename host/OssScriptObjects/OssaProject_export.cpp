#include "OssScriptObjects/OssaProject.h"

#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Export/OssExportPresets.h"
#include "OssModel/Project/OssProject.h"

#include <QHash>

#include <functional>

namespace {

using Take = std::function<bool(const QVariant &, OssExportOptions *)>;

bool takeNumber(const QVariant &value, int *number)
{
    bool isNumber = false;
    const int found = value.toInt(&isNumber);
    if (isNumber)
        *number = found;
    return isNumber;
}

bool takeNames(const QVariant &value, QStringList *names)
{
    *names = value.toStringList();
    return !names->isEmpty();
}

/// What the options of scripts set. False: the value makes no sense.
const QHash<QString, Take> &options()
{
    static const QHash<QString, Take> table{
        {QStringLiteral("resolution"),
         [](const QVariant &value, auto *to) {
             return takeNumber(value, &to->resolution);
         }},
        {QStringLiteral("padding"),
         [](const QVariant &value, auto *to) {
             return takeNumber(value, &to->padding);
         }},
        {QStringLiteral("version"),
         [](const QVariant &value, auto *to) {
             return takeNumber(value, &to->version);
         }},
        {QStringLiteral("patches"),
         [](const QVariant &value, auto *to) {
             to->patches = OssPatchList::fromText(value.toString());
             return !to->patches.isEmpty();
         }},
        {QStringLiteral("materials"),
         [](const QVariant &value, auto *to) {
             return takeNames(value, &to->materials);
         }},
        {QStringLiteral("channels"),
         [](const QVariant &value, auto *to) {
             return takeNames(value, &to->channels);
         }},
        {QStringLiteral("constants"), [](const QVariant &value, auto *to) {
             to->writesConstants = value.toBool();
             return value.canConvert<bool>();
         }}};
    return table;
}

} // namespace

namespace Ossa {

QStringList Project::exportPresets() const
{
    QStringList names;
    if (!wrapped<OssProject>())
        return names;
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    for (const OssExportPresets::Entry &entry : entries)
        names.append(entry.preset.name);
    return names;
}

QStringList Project::exportTextures(const QString &preset, const QString &folder,
                                    const QVariantMap &options) const
{
    const auto *own = wrapped<OssProject>();
    if (!own)
        return {};
    OssExportOptions choices;
    choices.folder = folder;
    for (auto at = options.cbegin(); at != options.cend(); ++at) {
        const Take take = ::options().value(at.key());
        if (!take || !take(at.value(), &choices)) {
            fail(OssScriptException::OutOfRange,
                 take ? QStringLiteral("\"%1\" cannot be %2").arg(at.key(), at.value().toString())
                      : QStringLiteral("There is no option \"%1\"").arg(at.key()));
            return {};
        }
    }
    OssExportPreset found;
    OssExportPlan plan;
    OssResult result = OssExportPresets::find(preset, &found);
    if (result)
        result = OssExportPlan::make(own, found, choices, &plan);
    if (!result) {
        fail(OssScriptException::NotAllowed, result.error());
        return {};
    }
    OssBakeProgress progress(QStringLiteral("Exporting textures"), 1);
    const auto tell = progress.forPart(0, found.name);
    OssExportManager *exports = OssExportManager::instance();
    result = exports->run(
        plan, [&tell](const OssExportJob &job) { return tell(job.thousandths(), 1000); });
    if (!result)
        fail(result.isCancelled() ? OssScriptException::Cancelled
                                  : OssScriptException::FileNotAccessible,
             result.error());
    return exports->job()->written();
}

} // namespace Ossa
