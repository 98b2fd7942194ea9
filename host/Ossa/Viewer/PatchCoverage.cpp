#include "Ossa/Viewer/PatchCoverage.h"

#include "OssRender/Surface/OssRdCoverage.h"

#include <QCoreApplication>
#include <QPointer>

PatchCoverage::PatchCoverage(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
}

PatchCoverage::~PatchCoverage()
{
    m_pool.clear();
}

void PatchCoverage::want(const std::shared_ptr<const OssEvMesh> &mesh, int patch)
{
    if (m_mesh.lock() != mesh) {
        m_mesh = mesh;
        m_wanted.clear();
        m_pool.clear();
    }
    if (!mesh || m_wanted.contains(patch))
        return;
    m_wanted.insert(patch);
    m_pool.start([self = QPointer<PatchCoverage>(this), mesh, patch] {
        const bool isMade = OssRdCoverageStore::instance()->get(mesh, patch) != nullptr;
        const auto tell = [self, patch] {
            if (self)
                Q_EMIT self->ready(patch);
        };
        if (isMade)
            QMetaObject::invokeMethod(qApp, tell, Qt::QueuedConnection);
    });
}
