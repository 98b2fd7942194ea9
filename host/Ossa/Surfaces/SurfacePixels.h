#pragma once

#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Export/OssSurfaceMaps.h"
#include "OssRender/Surface/OssRdMaterial.h"

#include <QList>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <map>
#include <memory>
#include <vector>

/// Has the maps of a surface computed, patch by patch: first small ones, so that a value under the
/// user's hand shows at once what it does, then those that are wanted. What comes out the same is not
/// computed again. Nothing here waits for pixels. GUI thread.
class SurfacePixels : public QObject
{
    Q_OBJECT

public:
    static constexpr int coarse = 128; ///< texels of a small map

    explicit SurfacePixels(QObject *parent = nullptr);
    ~SurfacePixels() override;

    /// In place of what was shown; that stays until its maps are replaced.
    void show(const OssSurfaceMaps &maps, const QList<int> &patches, int resolution);

    /// Of maps that are started from now on: before the pictures of patches, where nobody sees these.
    void setFirst(bool first) { m_isFirst = first; }

    /// All of them behind everything else.
    void setBehind(bool behind) { m_isBehind = behind; }

    /// Gives up what is not there yet.
    void stop();
    void clear();

    /// As far as they are there.
    const std::map<int, OssRdMaterial> &materials() const { return m_materials; }

    bool isWhole() const { return m_running.empty() && m_waiting.empty() && !m_isPlanning; }

    /// Thousandths, which only grow until show() is called again.
    int progress() const;

    /// Why pixels do not come, in words.
    QString problem() const { return m_problem; }

Q_SIGNALS:
    /// There are other materials(), or a problem.
    void changed();
    /// Nothing is left to come.
    void finished();

private:
    struct Picture;
    using Place = std::pair<int, int>; ///< patch and map

    struct Running
    {
        OssEvEngine::Id id = 0;
        Place place;
    };

    struct Known
    {
        OssEvKey key;
        int resolution = 0;
        bool isKnown = false;
    };

    struct Planned
    {
        Place place;
        OssEvKey key;
        bool isPlanned = false; ///< else the pixels will say why not
    };

    void plan(const QList<int> &patches);
    void begin(const std::vector<Planned> &all);
    void start(const Place &place, int resolution);
    void startWaiting();
    void fail(const std::string &reason);
    /// All tiles of a map are there.
    void finish(const Place &place, const std::shared_ptr<Picture> &picture);
    /// And all that is made of them.
    void take(const Place &place, const Picture &picture);

    OssSurfaceMaps m_maps;
    int m_resolution = 0;
    bool m_isFirst = false;
    bool m_isBehind = false;
    int m_generation = 0;
    std::map<int, OssRdMaterial> m_materials;
    std::map<Place, Known> m_known; ///< what is in them
    std::vector<Running> m_running;
    std::vector<Place> m_waiting; ///< large maps, until the small ones have been seen
    QTimer m_look;                ///< since the last of them came
    bool m_isPlanning = false;
    int m_toDo = 0; ///< of this picture, in parts of the work
    int m_done = 0;
    QString m_problem;
    QThreadPool m_planner;  ///< for many patches it takes longer than a frame
    QThreadPool m_finisher; ///< has a look at all texels of what comes
};
