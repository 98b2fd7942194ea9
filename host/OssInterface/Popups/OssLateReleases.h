#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QMouseEvent>
#include <QPointer>

#include <memory>
#include <vector>

class QEvent;
class QObject;

/// For filters that keep the user's hands off for a while: releases of buttons that a widget had seen
/// pressed before are put by, and it gets them once the hands are free. Those of presses that were kept
/// off stay away as well. GUI thread.
class OSSINTERFACE_EXPORT OssLateReleases
{
public:
    /// For each event that is kept from an object.
    void keep(QObject *watched, const QEvent *event);
    /// The hands are free: whoever still lives gets what was put by, with the next events.
    void deliver();

private:
    struct Release
    {
        QPointer<QObject> target;
        std::unique_ptr<QMouseEvent> event;
    };

    std::vector<Release> m_releases;
    Qt::MouseButtons m_pressed; ///< meanwhile: nobody knows of them
};
