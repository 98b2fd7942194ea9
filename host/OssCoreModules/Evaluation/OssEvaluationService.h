#pragma once

#include "OssCore/OssResult.h"
#include "OssCoreModules/Evaluation/OssSnEvaluationGraph.h"

#include <QList>
#include <QMap>
#include <QString>

#include <functional>
#include <memory>

class OssEvEngine;
class OssEvImageProvider;
class OssEvMesh;
class OssGeoEntity;
struct OssEvTarget;

/// The engine of the process and what evaluation needs of the document beside the graph: meshes and
/// images. Everything that shows or writes pixels uses it. GUI thread, but for the engine itself.
class OSSCOREMODULES_EXPORT OssEvaluationService
{
public:
    static OssEvaluationService *instance();
    ~OssEvaluationService();

    OssEvEngine *engine();
    std::shared_ptr<OssEvImageProvider> images();
    /// Read once for each shape. A shape that cannot be read is a debug line, and a plane.
    std::shared_ptr<const OssEvMesh> mesh(const OssGeoEntity *entity);
    /// In ascending order.
    QList<int> patches(const OssGeoEntity *entity);

    OssEvTarget target(const OssSnEvaluationGraph &graph, const OssGeoEntity *entity, int patch,
                       int resolution);

    struct BakeJob
    {
        const OssSnBaseNode *node = nullptr;
        QString outputPoint;
        const OssGeoEntity *entity = nullptr;
        QList<int> patches;
        int resolution = 2048;
        /// "<UDIM>" stands for the patch; the suffix says the format: exr, png or tif.
        QString path;
        /// Called on this thread between rows of tiles; false stops the bake.
        std::function<bool(int done, int total)> onProgress;
    };

    /// Writes a file for each patch and waits for it, keeping progress going: for the command line
    /// and for bakes that a user watches. The files are there whole or not at all.
    OssResult bake(const BakeJob &job);

    /// Before the process ends: stops all work.
    void shutdown();

private:
    OssEvaluationService();

    std::unique_ptr<OssEvEngine> m_engine;
    std::shared_ptr<OssEvImageProvider> m_images;
    QMap<QString, std::shared_ptr<const OssEvMesh>> m_meshes;
};
