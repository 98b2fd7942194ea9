#pragma once

#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/OssModel_export.h"

#include <functional>

/// How far a bake is: work that nobody edits below, which can be stopped.
class OSSMODEL_EXPORT OssBakeProgress
{
public:
    /// `parts`: bakes that are done one after the other.
    OssBakeProgress(const QString &title, int parts);
    OssBakeProgress(const OssBakeProgress &) = delete;
    OssBakeProgress &operator=(const OssBakeProgress &) = delete;

    /// The part begins now, and is shown by its name. What comes back is for
    /// OssEvaluationService::BakeJob::onProgress while this object lives. `part` counts from 0.
    std::function<bool(int, int)> forPart(int part, const QString &name);

    bool isStopped() const { return m_work.isCancelled(); }

private:
    OssStatusManager::Work m_work;
    int m_parts;
};
