#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Paint/OssEvPaintBake.h"

#include <QMap>
#include <QObject>
#include <QString>

#include <memory>

class OssImageSet;
class QThread;

/// Makes pixel files of paint over images, on a worker, one for each patch with paint. Remembers
/// them, so that a patch is composed again only when its paint or what lies beneath has changed.
/// GUI thread.
class PaintComposer : public QObject
{
    Q_OBJECT

public:
    explicit PaintComposer(QObject *parent = nullptr);
    /// Waits for the worker.
    ~PaintComposer() override;

    /// The images' pixels with the paint on them. Waits until they are there: the user's input
    /// waits, other events go on.
    OssResult compose(const OssEvPaintBuffer &paint, const OssImageSet *images,
                      QMap<int, QString> *pixels);

    /// The same without waiting, for later. False while the worker is busy with what was
    /// started before.
    bool start(const OssEvPaintBuffer &paint, const OssImageSet *images);
    /// Nobody wants any more what was started.
    void giveUp();

    /// Lets go of the paint that it remembers.
    void forget() { m_made.clear(); }

Q_SIGNALS:
    void failed(const QString &reason);

private:
    /// What the pixels of a patch were made from.
    struct Source
    {
        OssEvPaintBuffer::Tiles tiles;
        QString beneath;
        int resolution = 0;
        bool isData = false;
        bool isPrecise = false;
        OssEvColorSpaces::Pointer colors = {};

        friend bool operator==(const Source &a, const Source &b)
        {
            return a.tiles == b.tiles && a.beneath == b.beneath && a.resolution == b.resolution
                   && a.isData == b.isData && a.isPrecise == b.isPrecise && a.colors == b.colors;
        }
    };

    struct Made
    {
        Source source;
        QString file;
    };

    struct Batch;

    std::shared_ptr<Batch> prepare(const OssEvPaintBuffer &paint, const OssImageSet *images) const;
    OssResult adopt(const Batch &batch, QMap<int, QString> *pixels);
    void finish(const Batch &batch);

    QMap<int, Made> m_made;
    std::unique_ptr<QThread> m_thread;
    std::shared_ptr<Batch> m_batch; ///< that the worker is at
};
