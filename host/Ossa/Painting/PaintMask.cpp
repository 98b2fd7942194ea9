#include "Ossa/Painting/PaintMask.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCoreApplication>

#include <new>

namespace {

constexpr int restTime = 300; ///< milliseconds

/// Texels across a patch, of so many.
int resolutionFor(std::size_t patches)
{
    constexpr std::size_t few = 4;
    constexpr std::size_t some = 16;
    return patches <= few ? 2048 : patches <= some ? 1024 : 512;
}

} // namespace

PaintMask::PaintMask(QObject *parent)
    : QObject(parent)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(restTime);
    connect(&m_rest, &QTimer::timeout, this, &PaintMask::look);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, [this] {
        if (m_source)
            m_rest.start();
    });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this,
            [this] { setSource(nullptr); });
}

PaintMask::~PaintMask()
{
    stop();
}

void PaintMask::stop()
{
    ++m_generation;
    for (const OssEvEngine::Id id : m_running)
        OssEvaluationService::instance()->engine()->cancel(id);
    m_running.clear();
}

void PaintMask::setSource(const OssSnBaseNode *node)
{
    if (node == m_source)
        return;
    stop();
    m_source = node;
    m_mask.reset();
    m_key.clear();
    m_problem.clear();
    look();
    Q_EMIT changed();
}

const OssSnBaseNode *PaintMask::source() const
{
    return m_source && m_source->network() ? m_source.data() : nullptr;
}

void PaintMask::setInverted(bool inverted)
{
    if (inverted == m_isInverted)
        return;
    m_isInverted = inverted;
    if (m_mask)
        m_mask = m_mask->turned();
    Q_EMIT changed();
}

OssEvPaintMask::Pointer PaintMask::mask() const
{
    return source() ? m_mask : nullptr;
}

QString PaintMask::problem() const
{
    if (!source() || m_mask)
        return {};
    if (!m_problem.isEmpty())
        return tr("\"%1\" cannot mask: %2").arg(m_source->name(), m_problem);
    return tr("The mask of \"%1\" is being computed").arg(m_source->name());
}

void PaintMask::look()
{
    if (!source()) {
        m_mask.reset();
        m_key.clear();
        Q_EMIT changed(); // it is named no more
        return;
    }
    const QString key = OssSnResultKey::of(m_source, m_source->prefferedOutputPoint());
    if (key != m_key)
        start();
    m_key = key;
}

void PaintMask::start()
{
    stop();
    m_problem.clear();
    const auto graph = OssSnEvaluationGraph::of(m_source, m_source->prefferedOutputPoint());
    OssEvaluationService *service = OssEvaluationService::instance();
    OssEvTarget target = service->target(graph, m_source->network()->geoEntity(), 0, 0);
    if (!graph.error.isEmpty() || !target.mesh) {
        m_problem = graph.error.isEmpty() ? tr("its object is not there") : graph.error;
        m_mask.reset();
        Q_EMIT changed();
        return;
    }
    const std::vector<int> patches = target.mesh->patches();
    const int resolution = resolutionFor(patches.size());
    std::shared_ptr<OssEvPaintMask> mask;
    try {
        mask = std::make_shared<OssEvPaintMask>(patches, resolution, m_isInverted);
    } catch (const std::bad_alloc &) {
        m_problem = tr("there is no memory left");
        return;
    }
    const auto luminance = OssColorManagement::spaces()->workingSpace().luminance;
    m_left = int(patches.size());
    for (const int patch : patches) {
        OssEvRequest request;
        request.target = target;
        request.target.patch = patch;
        request.target.width = resolution;
        request.target.height = resolution;
        request.onTile = [mask, luminance, patch](const OssEvArrival &arrival) {
            mask->setTile(patch, arrival.x, arrival.y, *arrival.tile, luminance);
        };
        request.onFinished = [self = QPointer<PaintMask>(this), generation = m_generation,
                              mask](const OssEvOutcome &outcome) {
            const auto use = [=] {
                if (self)
                    self->finish(generation, mask, outcome);
            };
            QMetaObject::invokeMethod(qApp, use, Qt::QueuedConnection);
        };
        m_running.push_back(service->engine()->start(std::move(request)));
    }
}

void PaintMask::finish(int generation, const std::shared_ptr<OssEvPaintMask> &mask,
                       const OssEvOutcome &outcome)
{
    if (generation != m_generation)
        return;
    if (!outcome.ok()) {
        stop();
        m_problem = QString::fromStdString(outcome.error);
        m_mask.reset();
    } else if (--m_left > 0) {
        return;
    } else {
        m_running.clear();
        m_mask = mask->isInverted() == m_isInverted ? mask : mask->turned();
    }
    Q_EMIT changed();
}
