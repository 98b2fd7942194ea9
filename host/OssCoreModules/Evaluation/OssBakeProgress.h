#pragma once

#include "OssCore/OssStatusManager.h"
#include "OssCoreModules/OssCoreModules_export.h"

#include <functional>
#include <memory>

class QProgressDialog;

/// Shows how far a bake is, in the status bar and in a dialog with a button that stops it. The
/// dialog keeps the user from editing what is being baked. Without popups there is only the status.
class OSSCOREMODULES_EXPORT OssBakeProgress
{
public:
    /// `parts`: bakes that are done one after the other.
    OssBakeProgress(const QString &title, int parts);
    OssBakeProgress(const OssBakeProgress &) = delete;
    OssBakeProgress &operator=(const OssBakeProgress &) = delete;
    ~OssBakeProgress();

    /// For OssEvaluationService::BakeJob::onProgress, while this object lives. `part` counts from 0.
    std::function<bool(int, int)> forPart(int part, const QString &name);

    bool isStopped() const;

private:
    bool tell(int done, int total);

    OssStatusManager::Work m_work;
    std::unique_ptr<QProgressDialog> m_dialog;
    int m_parts;
};
