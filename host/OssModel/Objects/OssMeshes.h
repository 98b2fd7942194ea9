#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/Objects/OssGeometrySource.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include <functional>
#include <future>
#include <memory>

/// The meshes of the open project: read by a worker when they are first asked for and again when their
/// files hold something else, kept in case the files go. GUI thread.
class OSSMODEL_EXPORT OssMeshes
    : public QObject
    , public OssService<OssMeshes>
{
    Q_OBJECT

public:
    enum class State {
        Ready,
        Reading, ///< for the first time; there is no mesh yet
        Kept,    ///< the file cannot be used: the mesh is the last good one
        Missing  ///< it cannot be used, and no mesh is kept
    };

    struct Look
    {
        State state = State::Missing;
        std::shared_ptr<const OssEvMesh> mesh; ///< null while reading and where it is missing
        QString problem;                       ///< why the file cannot be used; empty when it can
        OssEvMeshCheck::Report report;         ///< what is wrong with texture coordinates
    };

    OssMeshes();
    /// Stops all reading.
    ~OssMeshes() override;

    /// What is known; a file that was not read yet, or is another now, begins to be.
    Look look(const OssGeometrySource &source);
    /// The same when it is known: handles events meanwhile, but no input. Missing when reading was
    /// stopped or the project closed.
    Look waitFor(const OssGeometrySource &source);
    /// Names the mesh's content: another mesh, another text. Null while nobody knows.
    QString contentOf(const OssGeometrySource &source);

    /// Reads the file again, whether it changed or not.
    void reload(const OssGeometrySource &source);
    /// What was read elsewhere by OssEvMeshFile, so that it need not be read again. `content` is what
    /// OssFileWatch says of the file, asked before it was read.
    void take(const OssGeometrySource &source, const OssEvMeshFile::Reading &reading,
              const QString &content);

    /// Name of the kept file for a source: that of the mesh that was read, else the one that the source
    /// names. With `waits` it is on the disk when this returns; without, the newest that is.
    QString keptFile(const OssGeometrySource &source, bool waits = false);

    bool isReading() const;
    void stopReading();
    /// The project is gone: forgets all and stops reading.
    void forget();

Q_SIGNALS:
    /// Some look() is another.
    void changed();
    /// A file that had been read before was read again; in words, what is other in it.
    void reread(const QString &path, const QString &changes);
    void readingChanged(const QString &path, int thousandths);
    void readingEnded();

private:
    struct Part
    {
        std::shared_ptr<const OssEvMesh> mesh;
        OssEvMeshCheck::Report report;
        QString problem;
        std::shared_future<QString> kept; ///< its name; empty when it could not be written
    };

    struct File
    {
        QString path;
        QString content; ///< null: not read yet
        QMap<QString, Part> parts;
        QString problem;                     ///< of the file as a whole
        std::shared_ptr<OssEvCancel> cancel; ///< null when it is not being read
    };

    struct KeptMesh
    {
        std::shared_ptr<const OssEvMesh> mesh;
        bool isLoading = false;
        bool isGone = false;
    };

    struct Outcome
    {
        OssEvMeshFile::Reading reading;
        QString problem;
        QString content;
        bool wasStopped = false;
    };

    void read(const QString &key, const OssGeometrySource &source);
    void finish(const QString &key, const Outcome &outcome);
    void setParts(File *file, const OssEvMeshFile::Reading &reading);
    void loadKept(const QString &name);
    void checkFiles();
    std::shared_future<QString> keep(const std::shared_ptr<const OssEvMesh> &mesh);
    /// Runs on a worker, then `done` here, unless all was forgotten meanwhile.
    template <class Work, class Done>
    void start(QThreadPool *pool, Work work, Done done);

    QHash<QString, File> m_files;                ///< by fileKey()
    QHash<QString, OssGeometrySource> m_sources; ///< one of each file
    QHash<QString, KeptMesh> m_kept;             ///< by name
    int m_generation = 0;                        ///< counts how often everything was forgotten
    QThreadPool m_readers;
    QThreadPool m_keepers;
};
