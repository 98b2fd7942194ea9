#pragma once

#include "Ossa/Surfaces/LitLast.h"
#include "Ossa/Surfaces/LitPicture.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssRender/Draw/OssRdScene.h"

#include <QImage>
#include <QObject>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

/// Draws lit scenes on a thread of its own, the last one that was asked for. While the user turns the
/// object a coarse picture is enough, as large as can be had in a blink; at rest it comes first, unless
/// the whole one is as quick, and the object is drawn smoothly, and then again as exactly as the renderer
/// can. GUI thread.
class LitRenderer : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        std::shared_ptr<const OssRdScene> scene;
        OssRdView view; ///< how smooth and exact is chosen here
        LitPicture::Screen screen;
        bool isMoving = false;
        /// Little but what is painted on becomes another from picture to picture: where it does it is laid
        /// over the sharp picture, which stays.
        bool isPainted = false;
        /// What is seen left of a border, which is a part of the width; null: nothing.
        std::shared_ptr<const OssRdScene> beside = nullptr;
        float border = 0.0F;

        /// Whether it gives the same picture.
        friend bool operator==(const Request &a, const Request &b);
    };

    explicit LitRenderer(QObject *parent = nullptr);
    ~LitRenderer() override;

    /// Takes the place of what was asked for before, unless that gives the same picture: then it goes on.
    void draw(const Request &request);

Q_SIGNALS:
    /// A picture of what was asked for last, or of something shortly before it. A coarse one is smaller.
    void drawn(const QImage &picture);
    /// Nothing can be drawn on this machine; why, in words.
    void failed(const QString &problem);

private:
    void run();
    /// Whether the picture was drawn as wanted and nothing else is wanted by now.
    bool drawOne(class OssRdRenderer *renderer, const Request &request, int pass);
    static OssRdImage render(class OssRdRenderer *renderer, const Request &request,
                             const OssRdView &view, const OssEvCancel *cancel);
    OssRdView coarseOf(const OssRdView &whole) const;
    /// The first and the last pass that are to be drawn.
    std::pair<int, int> passesOf(const Request &request) const;
    std::shared_ptr<OssEvCancel> cancelOfNow();

    // Over the last sharp picture.
    /// Whether it shows what the last sharp picture does, but for what surfaces are made of.
    bool goesOn(const Request &request) const;
    /// Whether it shows no more than that.
    bool isThere(const Request &request) const;
    void keep(int pass, const Request &request, OssRdImage image, const QImage &picture);
    void paintOver(OssRdRenderer *renderer, const Request &request);
    bool paintSharply(OssRdRenderer *renderer, const Request &request, const QRect &area);
    bool isSmall(const QRect &area) const;

    /// Learns how large a coarse picture may be from how long one of that size took.
    void learn(int pass, int height, double milliseconds);
    /// Has it shown; on the thread.
    void tell(const QImage &picture);

    // Of the thread.
    double m_coarseHeight = 0.0; ///< pixels; 0: nobody knows yet
    double m_wholeTime = 0.0;    ///< of a picture at full size, in milliseconds; the last one's
    double m_smoothTime = 0.0;   ///< the same of a smooth one
    LitLast m_last;
    Request m_lastOf; ///< whose picture that is

    std::mutex m_mutex; ///< guards all below
    std::condition_variable m_changed;
    Request m_wanted;
    std::shared_ptr<OssEvCancel> m_cancel; ///< of what is being drawn
    bool m_isWanted = false;
    bool m_ends = false;
    std::thread m_thread;
};
