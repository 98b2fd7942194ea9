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

/// Why the options make no sense; empty when they do.
QString take(const QVariantMap &given, OssExportOptions *choices)
{
    for (auto at = given.cbegin(); at != given.cend(); ++at) {
        const Take one = options().value(at.key());
        if (!one)
            return QStringLiteral("There is no option \"%1\"").arg(at.key());
        if (!one(at.value(), choices))
            return QStringLiteral("\"%1\" cannot be %2").arg(at.key(), at.value().toString());
    }
    return {};
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
    OssExportOptions choices;
    choices.folder = folder;
    OssExportPreset found;
    OssExportPlan plan;
    return write(
        options, &choices,
        [&](const OssProject *own) {
            const OssResult result = OssExportPresets::find(preset, &found);
            return result ? OssExportPlan::make(own, found, choices, &plan) : result;
        },
        &plan);
}

void Project::exportGltf(const QString &path, const QVariantMap &options) const
{
    OssExportOptions choices;
    choices.file = path;
    OssExportPlan plan;
    write(
        options, &choices,
        [&](const OssProject *own) {
            return path.endsWith(QLatin1String(".glb"), Qt::CaseInsensitive)
                       ? OssExportPlan::makeGltf(own, choices, &plan)
                       : OssResult::failure(
                           QStringLiteral("%1: glTF is written as *.glb").arg(path));
        },
        &plan);
}

QStringList Project::write(const QVariantMap &options, OssExportOptions *choices,
                           const std::function<OssResult(const OssProject *)> &makePlan,
                           const OssExportPlan *plan) const
{
    const auto *own = wrapped<OssProject>();
    if (!own)
        return {};
    const QString fault = take(options, choices);
    if (!fault.isEmpty()) {
        fail(OssScriptException::OutOfRange, fault);
        return {};
    }
    OssExportPlan::waitForMeshes(own);
    OssResult result = makePlan(own);
    if (!result) {
        fail(OssScriptException::NotAllowed, result.error());
        return {};
    }
    OssBakeProgress progress(QStringLiteral("Exporting"), 1);
    const auto tell = progress.forPart(0, plan->preset.name);
    OssExportManager *exports = OssExportManager::instance();
    result = exports->run(
        *plan, [&tell](const OssExportJob &job) { return tell(job.thousandths(), 1000); });
    if (!result)
        fail(result.isCancelled() ? OssScriptException::Cancelled
                                  : OssScriptException::FileNotAccessible,
             result.error());
    return exports->job() ? exports->job()->written() : QStringList();
}

} // namespace Ossa
