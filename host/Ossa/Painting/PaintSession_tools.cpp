#include "Ossa/Painting/PaintSession.h"

#include "Ossa/Painting/Brushes.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

// What strokes are made of.

namespace {

using Within = OssEvBrush::Within;

bool hasRegion(const OssEvBrush &brush)
{
    return brush.within == Within::Island || brush.within == Within::Face
           || brush.within == Within::Material;
}

void tell(const QString &what)
{
    OssStatusManager::instance()->showMessage(what);
}

} // namespace

std::shared_ptr<OssEvPaintSurface> PaintSession::surface() const
{
    const std::shared_ptr<const OssEvMesh> object = mesh();
    if (!object)
        return nullptr;
    if (const auto shared = m_leader ? m_leader->m_surfaces.find(object, texelsAcross()) : nullptr)
        return shared;
    return m_surfaces.find(object, texelsAcross());
}

void PaintSession::wantSurface()
{
    if (const std::shared_ptr<const OssEvMesh> object = mesh())
        m_surfaces.want(object, texelsAcross());
}

OssEvBrush PaintSession::brushAt(const PaintStart &start)
{
    OssEvBrush used = Brushes::instance()->brush();
    const QTransform &sheet = start.toSheet;
    if (m_leader != nullptr) {
        used.color = m_ownColor;
        used.secondColor = m_ownSecond;
        used.picture.reset(); // its colours are those of another channel
    }
    if (used.sizeIn == OssEvBrush::SizeIn::Texels)
        used.radius *= m_scale;
    used.toSheet = {sheet.m11(), sheet.m21(), sheet.dx(), sheet.m12(), sheet.m22(), sheet.dy()};
    if (start.cloneFrom)
        used.cloneFrom = {start.cloneFrom->x(), start.cloneFrom->y()};
    used.mask = mask()->mask();
    used.luminance = OssColorManagement::spaces()->workingSpace().luminance;
    return used;
}

/// Tells the user why not.
bool PaintSession::canUse(const OssEvBrush &used, const PaintStart &start)
{
    if (used.tool == OssEvBrush::Tool::Clone && !start.cloneFrom) {
        tell(tr("Ctrl and a click chooses whose colors are cloned"));
        return false;
    }
    const QString problem = mask()->problem();
    if (!problem.isEmpty())
        tell(problem);
    return problem.isEmpty();
}

/// Has the colours that are there at hand, if the brush depends on them.
void PaintSession::lookBeneath()
{
    if (!Brushes::instance()->brush().looksBeneath()) {
        m_ground.reset();
        return;
    }
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QString folder = project ? project->path() : QString();
    OssEvPaintGround::Images images;
    const QMap<int, QString> pixels = m_images->pixels();
    for (auto entry = pixels.cbegin(); entry != pixels.cend(); ++entry)
        images.files[entry.key()] = OssPixelStore::find(*entry, folder).toStdString();
    images.resolution = m_buffer.resolution();
    images.isData = m_images->isScalar();
    images.colors = OssColorManagement::spaces();
    if (!m_ground || !m_ground->state() || !(m_ground->images() == images))
        m_ground = std::make_shared<OssEvPaintGround>(std::move(images));
}

QString PaintSession::stepName()
{
    switch (Brushes::instance()->brush().tool) {
    case OssEvBrush::Tool::Eraser:
        return tr("Erase Paint");
    case OssEvBrush::Tool::Clone:
        return tr("Clone Paint");
    case OssEvBrush::Tool::Smear:
        return tr("Smear Paint");
    case OssEvBrush::Tool::Blur:
        return tr("Blur Paint");
    case OssEvBrush::Tool::Fill:
        return tr("Fill Paint");
    case OssEvBrush::Tool::Gradient:
        return tr("Paint Gradient");
    case OssEvBrush::Tool::Brush:
        break;
    }
    return tr("Paint Stroke");
}

PaintSession::MakeStroke PaintSession::flatStroke(const PaintStart &start)
{
    return [this, start](OssEvPaintBuffer *buffer) -> std::unique_ptr<OssEvStroke> {
        OssEvBrush used = brushAt(start);
        if (!canUse(used, start))
            return nullptr;
        const std::shared_ptr<OssEvPaintSurface> object = hasRegion(used) ? surface() : nullptr;
        if (hasRegion(used) && !object) {
            wantSurface();
            tell(tr("The object is being made ready to be painted on"));
            return nullptr;
        }
        used.radius = flatRadius(start.pixel);
        lookBeneath();
        const QList<int> patches = OssEvaluationService::instance()->patches(
            node()->network()->geoEntity());
        auto stroke = std::make_unique<OssEvFlatStroke>(
            buffer, used, std::vector<int>(patches.cbegin(), patches.cend()), m_ground.get());
        if (object)
            stroke->keepWithin(object, start.place.x(), start.place.y());
        return stroke;
    };
}

PaintSession::MakeStroke PaintSession::objectStroke(const OssEvSurfaceStroke::ViewPointer &view,
                                                    const PaintStart &start)
{
    return [this, view, start](OssEvPaintBuffer *buffer) -> std::unique_ptr<OssEvStroke> {
        const OssEvBrush used = brushAt(start);
        if (!canUse(used, start))
            return nullptr;
        const std::shared_ptr<OssEvPaintSurface> object = surface();
        if (!object)
            return nullptr;
        lookBeneath();
        auto stroke = std::make_unique<OssEvSurfaceStroke>(buffer, used, object, view,
                                                           m_ground.get());
        if (used.tool == OssEvBrush::Tool::Fill || used.tool == OssEvBrush::Tool::Gradient)
            stroke->keepWithin(start.place.x(), start.place.y());
        return stroke;
    };
}
