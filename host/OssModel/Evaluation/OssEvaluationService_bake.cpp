#include "OssModel/Evaluation/OssEvaluationService.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssModel/Evaluation/OssBakeWork.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssEvaluationService", text);
}

} // namespace

OssResult OssEvaluationService::prepare(const BakeJob &job, OssSnEvaluationGraph *copied,
                                        OssEvTarget *made)
{
    OssSnEvaluationGraph &graph = *copied;
    graph = OssSnEvaluationGraph::of(job.node, job.outputPoint);
    settlePaint(graph.sources);
    graph = OssSnEvaluationGraph::of(job.node, job.outputPoint);
    if (!graph.error.isEmpty()) {
        graph.tellProblem(graph.faulty, graph.error);
        return OssResult::failure(graph.error);
    }
    const OssMeshes::Look shape = OssMeshes::instance()->waitFor(job.entity ? job.entity->source()
                                                                            : OssGeometrySource());
    if (!shape.mesh)
        return OssResult::failure(shape.problem.isEmpty() ? tr("The mesh was not read")
                                                          : shape.problem);
    *made = target(graph, job.entity, 0, job.resolution);
    made->keepIntermediates = false;
    return {};
}

void OssEvaluationService::settlePaint(const QVector<QPointer<const OssSnBaseNode>> &sources)
{
    OssCanvasWidget *canvas = OssCanvasManager::instance()->currentCanvas();
    const OssUndoManager::AutoMacro macro(tr("Bake Paint"));
    for (const QPointer<const OssSnBaseNode> &source : sources) {
        if (canvas && source)
            canvas->handleBakeBehavior(OssShaderNetworkUtils::imageSetOf(source));
    }
}

OssResult OssEvaluationService::runBakes(std::vector<OssEvBake::Job> bakes,
                                         const OssSnEvaluationGraph &graph,
                                         const std::function<bool(int, int)> &onProgress)
{
    OssBakeWork work(std::move(bakes));
    const auto tell = [&] {
        if (onProgress && !onProgress(work.thousandths(), 1000))
            work.cancel();
    };
    tell();
    QEventLoop loop;
    QObject::connect(&work, &OssBakeWork::finished, &loop, &QEventLoop::quit);
    QObject::connect(&work, &OssBakeWork::progressed, &loop, tell);
    work.start(false);
    loop.exec();
    // The loop also ends when the application does.
    if (work.isRunning())
        work.cancel();
    work.wait();
    const OssEvResult result = work.result();
    if (!result && work.isCancelled())
        return OssResult::cancelled(tr("The bake was stopped"));
    if (result)
        graph.tellSuccess();
    else
        graph.tellProblem(result.node(), QString::fromStdString(result.error()));
    return result ? OssResult() : OssResult::failure(QString::fromStdString(result.error()));
}

OssResult OssEvaluationService::bake(const BakeJob &job, const QString &path)
{
    const OssEvImageFormat *format = OssEvImageFormat::ofFile(path.toStdString());
    if (!format || !format->writer)
        return OssResult::failure(
            tr("%1: images are written as %2")
                .arg(path, QString::fromStdString(OssEvImageFormat::writtenInWords("."))));
    OssEvTarget target;
    OssSnEvaluationGraph graph;
    const OssResult prepared = prepare(job, &graph, &target);
    if (!prepared)
        return prepared;
    const OssResult folder = OssAtomicFile::makeFolder(QFileInfo(path).absolutePath());
    if (!folder)
        return folder;
    std::vector<OssEvBake::Job> bakes;
    QStringList fresh;
    for (const int patch : job.patches) {
        OssEvBake::Job bake;
        bake.target = target;
        bake.target.patch = patch;
        bake.isData = graph.isData;
        bake.form.colors = OssColorManagement::spaces();
        bake.path = OssEvUdim::file(path.toStdString(), patch);
        if (!QFile::exists(QString::fromStdString(bake.path)))
            fresh.append(QString::fromStdString(bake.path));
        bakes.push_back(bake);
    }
    const OssResult result = runBakes(std::move(bakes), graph, job.onProgress);
    for (const QString &file : qAsConst(fresh)) {
        if (!result)
            QFile::remove(file);
    }
    return result;
}

OssResult OssEvaluationService::prepareInto(const OssImageSet &images, const BakeJob &job,
                                            PixelBakes *made)
{
    OssEvTarget target;
    const OssResult prepared = prepare(job, &made->graph, &target);
    if (!prepared)
        return prepared;
    for (const int patch : job.patches) {
        OssEvBake::Job bake;
        bake.target = target;
        bake.target.patch = patch;
        made->files.insert(patch, OssPixelStore::newPath());
        bake.path = made->files.value(patch).toStdString();
        bake.target.bleed = images.bleed();
        bake.isPrecise = images.depth() == OssImageSet::FloatDepth;
        bake.isData = images.isScalar();
        bake.isScalar = images.isScalar();
        if (job.keepsDepth)
            bake.depth = images.engineDepth();
        bake.fileSpace = images.fileSpace().toStdString();
        bake.form.colors = OssColorManagement::spaces();
        if (made->graph.isData)
            bake.form.space = OssEvColorSpaces::Data;
        made->jobs.push_back(bake);
    }
    return made->files.isEmpty()
               ? OssResult::failure(tr("There is no patch to bake"))
               : OssAtomicFile::makeFolder(QFileInfo(made->files.first()).absolutePath());
}

OssResult OssEvaluationService::run(const PixelBakes &bakes,
                                    const std::function<bool(int, int)> &onProgress)
{
    return runBakes(bakes.jobs, bakes.graph, onProgress);
}

OssResult OssEvaluationService::adopt(const PixelBakes &bakes, QMap<int, QString> *pixels)
{
    OssResult result;
    for (auto at = bakes.files.cbegin(); at != bakes.files.cend(); ++at) {
        if (result)
            result = OssPixelStore::adopt(at.value(), &(*pixels)[at.key()]);
        if (!result)
            QFile::remove(at.value());
    }
    return result;
}

void OssEvaluationService::discard(const PixelBakes &bakes)
{
    for (const QString &file : bakes.files)
        QFile::remove(file);
}

OssResult OssEvaluationService::bakeInto(OssImageSet *set, const BakeJob &job)
{
    PixelBakes bakes;
    OssResult result = prepareInto(*set, job, &bakes);
    const QPointer<OssImageSet> living = set; // events are handled meanwhile
    if (result)
        result = run(bakes, job.onProgress);
    if (!living)
        result = OssResult::failure(tr("The images are gone that were to have the pixels"));
    QMap<int, QString> pixels = living ? living->pixels() : QMap<int, QString>();
    if (result)
        result = adopt(bakes, &pixels);
    else
        discard(bakes);
    if (result)
        set->setPixels(pixels);
    return result;
}
