#include "Ossa/Headless/BakeCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/ExportCommand.h"
#include "Ossa/Headless/Interrupt.h"
#include "Ossa/Headless/ProgressBar.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssUdimPath.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdio>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("BakeCommand", text);
}

/// One file for each patch.
struct Texture
{
    const OssSnBaseNode *node;
    QString outputPoint;
    const OssGeoEntity *entity;
    QString name;
};

QString fileName(const QString &text)
{
    QString name = text;
    return name.replace(QRegularExpression(QStringLiteral("[^\\w.-]+")), QStringLiteral("_"));
}

OssResult addNode(const OssProject *project, const QString &wanted, QVector<Texture> *textures)
{
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const OssSnBaseNode *node = group->network()->nodeByPath(wanted);
        if (!node)
            continue;
        if (node->prefferedOutputPoint().isEmpty())
            return OssResult::failure(tr("\"%1\" has no output to bake").arg(wanted));
        textures->append(
            {node, node->prefferedOutputPoint(), group->geoEntity(), fileName(node->name())});
        return {};
    }
    return OssResult::failure(tr("There is no node \"%1\"").arg(wanted));
}

/// The patches of the texture's object, or those of them that were asked for.
OssResult findPatches(const Texture &texture, const QString &wanted, QList<int> *patches)
{
    const QList<int> all = OssEvaluationService::instance()->patches(texture.entity);
    *patches = wanted.isEmpty() ? all : OssPatchList::fromText(wanted);
    for (const int patch : qAsConst(*patches)) {
        if (!all.contains(patch))
            return OssResult::failure(tr("%1: there is no patch %2").arg(texture.name).arg(patch));
    }
    return {};
}

/// What a file for each channel of the materials is.
OssExportPreset eachChannel(const QString &format)
{
    OssExportPreset preset;
    preset.name = tr("Textures");
    OssExportPreset::File file;
    file.name = QStringLiteral("$material_$channel.$udim");
    file.format = format;
    file.isEach = true;
    preset.files.append(file);
    return preset;
}

int bakeMaterials(const BakeOptions &options)
{
    OssExportOptions choices;
    choices.folder = options.folder;
    choices.patches = OssPatchList::fromText(options.patches);
    choices.resolution = options.resolution;
    return exportOpenProject(eachChannel(options.format), choices);
}

} // namespace

int runBakeCommand(const BakeOptions &options)
{
    OssProjectManager *projects = OssProjectManager::instance();
    const OssResult opened = projects->openProject(options.project);
    if (!opened)
        return failCommand(opened.error());
    const OssProject *project = projects->currentProject();
    if (options.nodes.isEmpty())
        return bakeMaterials(options);
    QVector<Texture> textures;
    for (const QString &name : options.nodes) {
        const OssResult added = addNode(project, name, &textures);
        if (!added)
            return failCommand(added.error());
    }
    Interrupt::catchSignals();
    const ProgressBar bar;
    OssEvaluationService *service = OssEvaluationService::instance();
    for (const Texture &texture : qAsConst(textures)) {
        OssEvaluationService::BakeJob job;
        job.node = texture.node;
        job.outputPoint = texture.outputPoint;
        job.entity = texture.entity;
        const OssResult found = findPatches(texture, options.patches, &job.patches);
        if (!found)
            return failCommand(found.error());
        job.resolution = options.resolution;
        const QString name = QStringLiteral("%1.%2.%3")
                                 .arg(texture.name, QLatin1String(OssEvUdim::Placeholder),
                                      options.format);
        const QString path = QDir(options.folder).filePath(name);
        job.onProgress = [&](int done, int total) {
            bar.show(texture.name, done, total);
            return !Interrupt::isRequested();
        };
        const OssResult baked = service->bake(job, path);
        if (Interrupt::isRequested())
            return Interrupt::exitCode;
        if (!baked)
            return failCommand(texture.name + QStringLiteral(": ") + baked.error());
        for (const int patch : qAsConst(job.patches))
            std::printf("%s\n", qPrintable(OssUdimPath::file(path, patch)));
    }
    return ExitCode::Success;
}
