#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssGroupParameterObject.h"

#include <QObject>

/// The application's own entries in the preferences dialog, page "Application".
class ApplicationPreferences
    : public QObject
    , public OssGroupParameterObject
    , public OssService<ApplicationPreferences>
{
    Q_OBJECT
    Q_PROPERTY(bool reopenLastProject READ reopenLastProject WRITE setReopenLastProject)
    Q_PROPERTY(bool nodesGlide READ nodesGlide WRITE setNodesGlide NOTIFY nodesGlideChanged)
    Q_PROPERTY(QString interfaceScale READ interfaceScale WRITE setInterfaceScale)
    Q_PROPERTY(QString autosaveInterval READ autosaveInterval WRITE setAutosaveInterval NOTIFY
                   autosaveIntervalChanged)

public:
    ApplicationPreferences();

    /// In percent, as it was when the program started. Needs no application object.
    static int storedInterfaceScale();

    bool reopenLastProject() const { return m_reopenLastProject; }

    /// Whether nodes that a command arranges are shown on their way.
    bool nodesGlide() const { return m_nodesGlide; }

    QString interfaceScale() const { return m_interfaceScale; }

    QString autosaveInterval() const { return m_autosaveInterval; }

    /// 0 when no copies of unsaved work are wanted.
    int autosaveSeconds() const;

    QString prettyPropertyName(const QString &Name) const override;

public Q_SLOTS:

    void setReopenLastProject(bool reopen) { m_reopenLastProject = reopen; }

    void resetReopenLastProject() { m_reopenLastProject = false; }

    QString reopenLastProjectTooltip() const;
    void setNodesGlide(bool glide);

    void resetNodesGlide() { setNodesGlide(true); }

    QString nodesGlideTooltip() const;
    /// One of interfaceScaleList(); anything else is ignored.
    void setInterfaceScale(const QString &scale);
    void resetInterfaceScale();
    QString interfaceScaleTooltip() const;
    QStringList interfaceScaleList() const;
    /// One of autosaveIntervalList(); anything else is ignored.
    void setAutosaveInterval(const QString &interval);
    void resetAutosaveInterval();
    QString autosaveIntervalTooltip() const;
    QStringList autosaveIntervalList() const;
    void savePreferences();

Q_SIGNALS:
    void autosaveIntervalChanged();
    void nodesGlideChanged(bool glide);

private:
    bool m_reopenLastProject = false;
    bool m_nodesGlide = true;
    QString m_interfaceScale;
    QString m_autosaveInterval;
};
