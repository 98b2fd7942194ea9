#pragma once

#include "Ossa/Viewer/ViewerPixels.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QTimer>

#include <functional>
#include <memory>

class OssGeoEntity;
class OssSnBaseNode;

/// Follows what is looked at, by itself (OssSolo) or through the current viewer, and has it computed. Watches cheaply: only when the
/// document or the viewer changed it asks whether the picture would be another one. A newer request
/// takes the place of the one that runs. A coarse picture comes first, so that a value under the
/// user's hand shows at once what it does. Nothing here waits for pixels.
class ViewerSource : public QObject
{
    Q_OBJECT

public:
    explicit ViewerSource(QObject *parent = nullptr);
    ~ViewerSource() override;

    void setLook(const ViewerLook &look);
    void setResolution(int resolution);

    int resolution() const { return m_resolution; }

    /// Whose surface the picture belongs to; null when no object is open.
    const OssGeoEntity *entity() const;

    /// Whether the picture depends on the node.
    bool shows(const OssSnBaseNode *node) const;

    /// Whether that or another channel of the material that is looked at does.
    bool dependsOn(const OssSnBaseNode *node) const;

    /// Whether the picture is what the node puts out, and nothing is done to it.
    bool showsOnly(const OssSnBaseNode *node) const;

    /// Whether the picture is of a node that is looked at by itself.
    bool showsSolo() const { return m_shown.isSolo; }

    /// Where the user looks, in patches: tiles nearest to it come first.
    void setFocus(const QPointF &place);
    /// Has all pixels made anew.
    void refresh();

    /// The document is the same, but not what it shows.
    void touch();

    /// What comes next will look much as what is shown: no coarse picture is computed before it.
    void expectSamePicture() { m_expectsSame = true; }

    /// Whether nothing is computed.
    bool isIdle() const { return m_running.isEmpty() || m_fineLeft == 0; }

    /// While off nothing is computed.
    void setActive(bool active);
    /// Gives the picture up until something is another.
    void halt();
    /// The same without a word, for a moment; whether there was something to give up.
    bool makeWay();

Q_SIGNALS:
    /// Another picture begins: these patches will come. `node` is what it is of; `problem` says why
    /// nothing will come, in words.
    void began(const QList<int> &patches, const QString &node, const QString &problem);
    /// The node that the picture is of has another name; the picture is the same.
    void renamed(const QString &node);
    /// In texels of the patch at that resolution, which for the coarse picture is a lower one; from
    /// the top.
    void tileArrived(int patch, int resolution, const QPoint &place, const QImage &picture,
                     const OssEvTilePointer &tile);
    /// How far the picture is in thousandths, which only grow until the next one begins, and what is
    /// computed now. 1000: nothing is, be it that the picture is there or that the user stopped it.
    void progressed(int thousandths, const QString &pass);

private:
    struct Shown
    {
        QPointer<const OssSnBaseNode> node;
        QString outputPoint;
        QString key;
        bool isSolo = false;
    };

    struct Running
    {
        OssEvEngine::Id id;
        int patch;
        int resolution;
        double done; ///< from 0 to 1
    };

    /// Looks for changes, until there are no more.
    void wake();
    void look();
    QString shownName() const;
    void start(const OssGeoEntity *entity);
    void startPatch(const OssSnEvaluationGraph &graph, const OssGeoEntity *entity, int patch,
                    int resolution);
    void follow(const OssSnEvaluationGraph &graph);
    void stop();
    void progress(int patch, int resolution, int done, int total);
    void tellProgress(int resolution);
    void finish(const OssSnEvaluationGraph &graph, int resolution, const OssEvOutcome &outcome);
    /// From any thread: has it done on the GUI thread, unless another picture has begun by then, or
    /// the source is gone. Requests that were given up may still call.
    template <class Work>
    static void later(const QPointer<ViewerSource> &self, int generation, Work work);

    QTimer m_timer;
    bool m_dirty = true;
    bool m_expectsSame = false;
    bool m_active = false;
    Shown m_shown;
    QPointer<const OssGeoEntity> m_entity;
    QVector<QPointer<const OssSnBaseNode>> m_sources; ///< of the picture alone
    QVector<QPointer<const OssSnBaseNode>> m_allSources;
    ViewerLook m_look;
    int m_resolution = 1024;
    QPointF m_focus{0.5, 0.5};
    int m_generation = 0;
    int m_coarseLeft = 0; ///< coarse patches that have not come yet
    int m_fineLeft = 0;
    int m_patches = 0;
    QString m_toldName; ///< of the node, as users know it
    int m_told = 0;     ///< thousandths
    QElapsedTimer m_sinceStart;
    std::function<void()> m_startFine;
    std::unique_ptr<QObject> m_follower; ///< receiver of the connections to the sources
    QVector<Running> m_running;
};
