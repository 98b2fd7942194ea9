#pragma once

#include "Ossa/Surfaces/LitPicture.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssRender/Draw/OssRdScene.h"

#include <QImage>
#include <QObject>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

/// Draws lit scenes on a thread of its own, the last one that was asked for. While the user turns the
/// object a coarse picture is enough; at rest it is drawn smoothly, and then again as exactly as the
/// renderer can. GUI thread.
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
    };

    explicit LitRenderer(QObject *parent = nullptr);
    ~LitRenderer() override;

    /// Takes the place of what was asked for before.
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
    template <class Work>
    void later(Work work);

    std::mutex m_mutex; ///< guards all below
    std::condition_variable m_changed;
    Request m_wanted;
    std::shared_ptr<OssEvCancel> m_cancel; ///< of what is being drawn
    bool m_isWanted = false;
    bool m_ends = false;
    std::thread m_thread;
};
