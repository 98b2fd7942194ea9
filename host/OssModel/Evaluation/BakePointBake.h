#pragma once

#include "OssModel/Evaluation/OssEvaluationService.h"

#include <QPointer>

#include <functional>

class OssSnBakePointNode;
struct OssBakeReport;

/// Which of the bake points that are named are baked.
struct BakeChoice
{
    bool updates = true;    ///< those whose results are out of date
    bool fillsEmpty = true; ///< those without one
    bool again = false;     ///< all, whatever they hold

    /// As the list of the report that the bake point then comes into.
    QStringList OssBakeReport::*listFor(const OssSnBakePointNode *node) const;
};

/// The bake of one bake point: what is computed for it, and what it was computed from. GUI thread.
struct BakePointBake
{
    QPointer<OssSnBakePointNode> node;
    OssEvaluationService::PixelBakes pixels;
    QString key;
    QList<int> patches;
    int resolution = 0;
    QString form;

    /// Copies what is computed out of the document, and changes nothing of it. May handle events.
    static OssResult prepare(OssSnBakePointNode *node, BakePointBake *made);

    /// Whether the bake point is still there and a bake now would compute the same.
    bool isCurrent() const;
    /// The files that were computed become the bake point's pixels, as one step; or nothing changes.
    OssResult take() const;
    /// What was computed is not wanted.
    void discard() const;

    /// The document's reasons become a problem of the bake point, or its problem goes.
    static OssResult tell(OssSnBakePointNode *node, const OssResult &baked);
    /// That it has the pixels it should have: its geo-channel gets them.
    static void fillGeoChannel(const OssSnBakePointNode *node);
    /// What another takes from comes before it.
    static QList<OssSnBakePointNode *> sourcesFirst(const QList<OssSnBakePointNode *> &nodes);
    /// Has the files that feed the bake points looked at, so that their state is known.
    static void knowFiles(const QList<OssSnBakePointNode *> &nodes,
                          const std::function<bool()> &goesOn);
};
