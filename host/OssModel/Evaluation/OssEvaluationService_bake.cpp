#include "OssModel/Evaluation/OssEvaluationService.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <atomic>

namespace {

constexpr int TellEvery = 50; ///< milliseconds

QString tr(const char *text)
{
    return QCoreApplication::translate("OssEvaluationService", text);
}

/// One after the other, on a thread of their own: baking waits.
OssEvResult runAll(OssEvEngine *engine, std::vector<OssEvBake::Job> *bakes, OssEvCancel *cancel,
                   std::atomic<int> *thousandths)
{
    const int count = int(bakes->size());
    for (int i = 0; i < count; ++i) {
        OssEvBake::Job &bake = (*bakes)[std::size_t(i)];
        bake.cancel = cancel;
        bake.onProgress = [=](int done, int total) {
            *thousandths = (1000 * i + (total > 0 ? int(1000LL * done / total) : 0)) / count;
        };
        OssEvResult result = OssEvBake::run(engine, bake);
        if (!result)
            return result;
    }
    return {};
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
    for (const QPointer<const OssSnBaseNode> &source : sources) {
        if (canvas && source)
            canvas->handleBakeBehavior(OssShaderNetworkUtils::imageSetOf(source));
    }
}

OssResult OssEvaluationService::runBakes(std::vector<OssEvBake::Job> bakes,
                                         const OssSnEvaluationGraph &graph,
                                         const std::function<bool(int, int)> &onProgress)
{
    OssEvCancel cancel;
    OssEvResult result;
    std::atomic<int> thousandths{0};
    const auto tell = [&] {
        if (onProgress && !onProgress(thousandths, 1000))
            cancel.cancel();
    };
    tell();
    OssEvEngine *worker = engine();
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { result = runAll(worker, &bakes, &cancel, &thousandths); }));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, tell);
    timer.start(TellEvery);
    thread->start();
    loop.exec();
    // The loop also ends when the application does.
    if (!thread->isFinished())
        cancel.cancel();
    thread->wait();
    if (!result && cancel.isCancelled())
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

OssResult OssEvaluationService::bakeInto(OssImageSet *set, const BakeJob &job)
{
    OssEvTarget target;
    OssSnEvaluationGraph graph;
    const OssResult prepared = prepare(job, &graph, &target);
    if (!prepared)
        return prepared;
    std::vector<OssEvBake::Job> bakes;
    QMap<int, QString> made;
    for (const int patch : job.patches) {
        OssEvBake::Job bake;
        bake.target = target;
        bake.target.patch = patch;
        made.insert(patch, OssPixelStore::newPath());
        bake.path = made.value(patch).toStdString();
        bake.target.bleed = set->bleed();
        bake.isPrecise = set->depth() == OssImageSet::FloatDepth;
        bake.isData = set->isScalar();
        bake.isScalar = set->isScalar();
        if (job.keepsDepth)
            bake.depth = set->engineDepth();
        bake.fileSpace = set->fileSpace().toStdString();
        bakes.push_back(bake);
    }
    OssResult result = made.isEmpty()
                           ? OssResult::failure(tr("There is no patch to bake"))
                           : OssAtomicFile::makeFolder(QFileInfo(made.first()).absolutePath());
    const QPointer<OssImageSet> living = set; // events are handled meanwhile
    if (result)
        result = runBakes(std::move(bakes), graph, job.onProgress);
    if (!living)
        result = OssResult::failure(tr("The images are gone that were to have the pixels"));
    QMap<int, QString> pixels = living ? living->pixels() : QMap<int, QString>();
    for (auto at = made.cbegin(); at != made.cend(); ++at) {
        if (result)
            result = OssPixelStore::adopt(at.value(), &pixels[at.key()]);
        if (!result)
            QFile::remove(at.value());
    }
    if (result)
        set->setPixels(pixels);
    return result;
}
