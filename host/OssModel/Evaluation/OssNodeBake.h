#pragma once

#include "OssModel/Evaluation/OssEvaluationService.h"

#include <QCoreApplication>
#include <QPointer>

#include <functional>
#include <memory>

class OssImageSet;
class OssSnBaseNode;

/// An output of a node that is baked for somebody else: a paint node that is to be made, a geo-channel.
/// The document changes only when all is computed. GUI thread.
struct OSSMODEL_EXPORT OssNodeBake
{
    Q_DECLARE_TR_FUNCTIONS(OssNodeBake)

public:
    QString title; ///< of the step
    QPointer<const OssSnBaseNode> node;
    QString outputPoint;
    std::shared_ptr<const OssImageSet> like; ///< size and settings of the images
    /// As part of the step: whoever is to have the pixels comes into being, and its images. Null where
    /// it cannot: the step is then taken back.
    std::function<OssImageSet *()> makeImages;
    QString message; ///< for the status bar, once it is there

    /// Waits for it, below a progress that can be stopped: for scripts and commands.
    OssResult run() const;

    /// Copies what is computed out of the document. May handle events.
    OssResult prepare(OssEvaluationService::PixelBakes *pixels) const;
    /// What was computed goes where it is wanted, as one step; or nothing changes.
    OssResult take(const OssEvaluationService::PixelBakes &pixels) const;
};
