#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QObject>
#include <QString>

#include <memory>

class OssChannel;
class OssProject;

/// The open project: opened, saved, closed here and nowhere else. GUI thread.
///
/// Order on opening: networks are added, their nodes registered, onMakeProjectCurrent(), the
/// current network set, projectOpenCompleted(). Order on closing: projectClosing() while
/// everything lives, nodes deregistered and networks destroyed, projectClosed(). A project that
/// cannot be opened leaves the open one as it is.
class OSSMODEL_EXPORT OssProjectManager
    : public QObject
    , public OssService<OssProjectManager>
{
    Q_OBJECT

public:
    OssProjectManager();
    ~OssProjectManager() override;

    /// Null when none is open.
    OssProject *currentProject() const;

    OssChannel *currentChannel() const { return m_currentChannel; }

    /// Null: no channel.
    void setCurrentChannel(OssChannel *channel);

    /// Closes the open project without a question and starts an empty one, which has no
    /// place yet, with one object.
    OssProject *newProject(const QString &name);
    /// `path` is the project's folder or the project.xml in it.
    OssResult openProject(const QString &path);
    /// Opens the copy of a project that was not saved as that project: modified, and saving goes to
    /// `path`, which is empty for one that never had a place.
    OssResult restoreProject(const QString &copy, const QString &path, bool readOnly);
    /// Fails for a project that never had a path, for one opened read-only, where paint that is in
    /// no image yet cannot be baked, and where the disk refuses it; nothing counts as saved then.
    OssResult saveProject();
    /// In another place the project is called as its folder is, and can be edited if it was
    /// read-only.
    OssResult saveProjectAs(const QString &path);
    /// Without a question: whoever calls has asked.
    void closeProject();

    /// Whether the open project differs from what is on disk.
    bool isModified() const;

Q_SIGNALS:
    void currentChannelChanged(OssChannel *channel);
    void projectClosing();
    void projectClosed();
    /// The flag tells whether the project came from disk.
    void projectOpenCompleted(OssProject *project, bool fromDisk);
    void onMakeProjectCurrent(OssProject *project);
    void projectSaved(const QString &path);
    void modifiedChanged(bool modified);
    /// There is work that no copy of the project would bring back unless one is taken now.
    void copyWanted();

private:
    void makeCurrent(std::unique_ptr<OssProject> project, bool fromDisk);

    std::unique_ptr<OssProject> m_project;
    OssChannel *m_currentChannel = nullptr;
};
