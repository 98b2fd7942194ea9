#pragma once

#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Export/OssSurfaceMaps.h"
#include "OssRender/Surface/OssRdMaterial.h"

#include <QList>
#include <QObject>
#include <QRectF>
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

    /// Areas of patches, in parts of them from their top left corner.
    using Areas = std::map<int, QRectF>;

    /// Has what lies in areas of the same surface computed before all else, and laid over the maps that are
    /// there: paint in hand. Not while isTouching().
    void touch(const OssSurfaceMaps &maps, const Areas &areas);

    bool isTouching() const { return m_touch != nullptr; }

    /// What is shown next looks as what is there: no coarse map is wanted in between.
    void expectSame() { m_expectsSame = true; }

    /// Of maps that are started from now on: before the pictures of patches, where nobody sees these.
    void setFirst(bool first) { m_isFirst = first; }

    /// All of them behind everything else.
    void setBehind(bool behind) { m_isBehind = behind; }

    /// Gives up what is not there yet.
    void stop();
    /// The same where each map is there at least small; false where it goes on.
    bool stopRefining();
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
    /// What touch() began is there, or will never be.
    void touched();
    /// Maps of another size came, without what touch() laid over those before.
    void bared();

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
        OssEvKey seenKey; ///< of what is there, until other pixels come
        int seenSize = 0;
    };

    class Touch;
    struct Layers;

    /// A change and which touch it comes from.
    struct Laid
    {
        std::shared_ptr<const OssRdMaterial::Change> change;
        int number;
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
    void lay(const std::shared_ptr<Touch> &touch);
    /// Keeps of the changes those that the pixels which came cannot have.
    void dropChanges(const Place &place, int size);
    OssRdMaterial::Changes changesOf(const Place &place) const;

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
    std::map<Place, std::vector<Laid>> m_laid;
    std::shared_ptr<Touch> m_touch;   ///< on its way; null: none is
    std::shared_ptr<Layers> m_layers; ///< that touches work on, one after the other
    int m_touches = 0;                ///< that were begun
    int m_shownAt = 0;                ///< as many were when show() was called
    bool m_expectsSame = false;
    bool m_keepsFine =
        false; ///< until maps of their size come, those of another key are good enough
    bool m_isPlanning = false;
    int m_toDo = 0; ///< of this picture, in parts of the work
    int m_done = 0;
    QString m_problem;
    QThreadPool m_planner;  ///< for many patches it takes longer than a frame
    QThreadPool m_finisher; ///< has a look at all texels of what comes
    QThreadPool m_toucher;
};
