#include "Ossa/Painting/PaintSurfaces.h"

#include "OssCore/Program/OssStatusManager.h"

#include <QThread>

#include <new>

PaintSurfaces::PaintSurfaces(QObject *parent)
    : QObject(parent)
{
}

PaintSurfaces::~PaintSurfaces()
{
    if (m_thread)
        m_thread->wait();
}

std::shared_ptr<OssEvPaintSurface> PaintSurfaces::find(const MeshPointer &mesh,
                                                       int resolution) const
{
    const bool fits = m_surface && m_surface->mesh() == mesh
                      && m_surface->resolution() == resolution;
    return fits ? m_surface : nullptr;
}

void PaintSurfaces::want(const MeshPointer &mesh, int resolution)
{
    m_mesh = mesh;
    m_resolution = resolution;
    make();
}

void PaintSurfaces::forget()
{
    m_mesh.reset();
    m_surface.reset();
}

void PaintSurfaces::make()
{
    if (!m_mesh || m_thread || find(m_mesh, m_resolution))
        return;
    auto made = std::make_shared<std::shared_ptr<OssEvPaintSurface>>();
    m_thread.reset(QThread::create([made, mesh = m_mesh, resolution = m_resolution] {
        try {
            *made = std::make_shared<OssEvPaintSurface>(mesh, resolution);
        } catch (const std::bad_alloc &) {
            made->reset();
        }
    }));
    connect(m_thread.get(), &QThread::finished, this, [this, made] {
        m_thread->wait();
        m_thread.release()->deleteLater(); // it is still telling
        if (!*made) {
            OssStatusManager::instance()->showMessage(
                tr("There is no memory left to paint on the object"));
            return;
        }
        m_surface = m_mesh ? std::move(*made) : nullptr;
        if (m_mesh && !find(m_mesh, m_resolution))
            make(); // it is another one meanwhile
        else if (m_surface)
            Q_EMIT ready();
    });
    m_thread->start();
}
