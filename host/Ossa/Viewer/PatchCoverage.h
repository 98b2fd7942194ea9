#pragma once

#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <memory>

class OssEvMesh;

/// Has looked, on a thread of its own, what of patches the faces of a mesh cover, so that pictures of small
/// objects know it (OssRdCoverageStore). GUI thread.
class PatchCoverage : public QObject
{
    Q_OBJECT

public:
    explicit PatchCoverage(QObject *parent = nullptr);
    ~PatchCoverage() override;

    /// Nothing where it is on its way already.
    void want(const std::shared_ptr<const OssEvMesh> &mesh, int patch);

Q_SIGNALS:
    /// It is known.
    void ready(int patch);

private:
    QSet<int> m_wanted; ///< of m_mesh
    std::weak_ptr<const OssEvMesh> m_mesh;
    QThreadPool m_pool;
};
