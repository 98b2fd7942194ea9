#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class OssEvEngine;
class OssEvImageProvider;
class OssEvMesh;
class OssGeoEntity;
class OssImageSet;

/// The engine of the process and what evaluation needs of the document beside the graph: meshes and
/// images. Everything that shows or writes pixels uses it. GUI thread, but for the engine itself.
class OSSMODEL_EXPORT OssEvaluationService : public OssService<OssEvaluationService>
{
public:
    OssEvaluationService();
    /// Stops all work.
    ~OssEvaluationService();

    OssEvEngine *engine();
    std::shared_ptr<OssEvImageProvider> images();
    /// As OssMeshes has it: where its file is being read this handles events until it is. Null where
    /// there is no mesh to be had. A plane for no object at all.
    std::shared_ptr<const OssEvMesh> mesh(const OssGeoEntity *entity);
    /// Of the mesh, in ascending order.
    QList<int> patches(const OssGeoEntity *entity);

    /// Fresh paint becomes part of the images that these nodes read, as the user prefers it. May handle
    /// events.
    static void settlePaint(const QVector<QPointer<const OssSnBaseNode>> &sources);

    /// The mesh is that which is there now.
    OssEvTarget target(const OssSnEvaluationGraph &graph, const OssGeoEntity *entity, int patch,
                       int resolution);

    /// What is computed, and what for.
    struct BakeJob
    {
        const OssSnBaseNode *node = nullptr;
        QString outputPoint;
        const OssGeoEntity *entity = nullptr;
        QList<int> patches;
        int resolution = 2048;
        /// Into a set: whether values are kept as finely as the set says, or as they come.
        bool keepsDepth = true;
        /// Of the job as a whole. Called on this thread several times a second; false stops the
        /// bake, which then fails.
        std::function<bool(int done, int total)> onProgress;
    };

    /// Writes a file for each patch. "<UDIM>" in the path stands for the patch; the suffix says the
    /// format (OssEvImageFormat). Returns when it is done, while events go on being handled; callers
    /// see to it that they change nothing below the bake. Files are there whole or not at all; a bake
    /// that fails or is stopped leaves none that were not there before.
    OssResult bake(const BakeJob &job, const QString &path);

    /// Bakes into the set's images: each patch of the job gets new pixels, the others keep theirs.
    /// One undo step; nothing changes when a patch fails.
    OssResult bakeInto(OssImageSet *set, const BakeJob &job);

    /// Of a bake into images: a file for each patch, in the store, and what they are computed from.
    struct PixelBakes
    {
        std::vector<OssEvBake::Job> jobs;
        OssSnEvaluationGraph graph;
        QMap<int, QString> files; ///< by patch
    };

    /// The parts of bakeInto(), for bakes in the background. Copies out of the document what is
    /// computed, for images like these. May handle events.
    OssResult prepareInto(const OssImageSet &images, const BakeJob &job, PixelBakes *made);
    OssResult run(const PixelBakes &bakes, const std::function<bool(int, int)> &onProgress);
    /// Files that were computed become pixels in the store, or none of them stays.
    static OssResult adopt(const PixelBakes &bakes, QMap<int, QString> *pixels);
    static void discard(const PixelBakes &bakes);

private:
    /// Fails, in words, where the job cannot be computed.
    OssResult prepare(const BakeJob &job, OssSnEvaluationGraph *copied, OssEvTarget *made);
    OssResult runBakes(std::vector<OssEvBake::Job> bakes, const OssSnEvaluationGraph &graph,
                       const std::function<bool(int, int)> &onProgress);

    std::unique_ptr<OssEvEngine> m_engine;
    /// Reads into the colours that are the project's; made anew when those are others, so that work
    /// goes on as it began.
    std::shared_ptr<OssEvImageProvider> m_images;
    QMetaObject::Connection m_colors;
};
